/*
** hostapp/linearization_services.cpp: the host services behind the plug-in's
** linearization: candidates and their block trees, which points may serve as input or
** output reference, the execution subgraph of the marked blocks, the state and
** derivative entries, A and C by central differences, and the simulation-step request.
*/
#include <algorithm>
#include <cfloat>
#include <cmath>

#include "host/host.h"
#include "hostapp/engine.h"
#include "hostapp/host_state.h"
#include "numeric/matrix.h"

namespace {

using namespace hostapp;

Block *blockOf(const HostBlock *record)
{
    Diagram *diagram = currentDiagram();
    if (!diagram || !record)
        return nullptr;
    auto found = diagram->blockOf.find(record);
    return found == diagram->blockOf.end() ? nullptr : found->second;
}

Point *pointOf(const RefPoint *record)
{
    Diagram *diagram = currentDiagram();
    if (!diagram || !record)
        return nullptr;
    auto found = diagram->pointOf.find(record);
    return found == diagram->pointOf.end() ? nullptr : found->second;
}

bool isMarked(const Block &block)
{
    return (block.record.flags & BLOCK_FLAG_CANDIDATE_MARK) != 0;
}

bool readByMarkedBlock(const Signal &signal)
{
    return std::any_of(signal.readers.begin(), signal.readers.end(), [](const Block *b) { return isMarked(*b); });
}

/* A signal leaves the marked blocks when a block outside them reads it, or nothing does. */
bool leavesMarkedBlocks(const Signal &signal)
{
    return signal.readers.empty() ||
           std::any_of(signal.readers.begin(), signal.readers.end(), [](const Block *b) { return !isMarked(*b); });
}

void visitTree(Block &block, BlockVisitor visitor, intptr_t arg)
{
    visitor(&block.record, arg);
    for (const auto &child : block.children)
        visitTree(*child, visitor, arg);
}

/* The engine's blocks of a list of block records; records it does not know are skipped. */
std::vector<Block *> blocksOf(const HostList *list)
{
    std::vector<Block *> blocks;
    for (uint32_t i = 0; list && list->items && i < list->count; ++i)
        if (Block *block = blockOf((const HostBlock *)list->items[i]))
            blocks.push_back(block);
    return blocks;
}

/* Derivatives by central differences with Richardson extrapolation.  A single central
** difference cannot serve every diagram: its step must be large so that the rounding of
** the sampled values (of size |x|, or of other states' terms) does not swamp the
** quotient, yet a step of 0.25 puts sin(x)'s derivative 1 % off.  So the step halves
** from FIRST_STEP, and each quotient is extrapolated (error order h^2, h^4, ...).  An entry
** is taken when one order agrees with its value at the level before to
** RELATIVE_AGREEMENT, at two levels in a row (one agreement can be chance while the step
** is still coarse), and the rounding of the sampled values allows that accuracy; else the
** estimate whose change and rounding were smallest.  Steps are powers of two, so x +- h
** and the division by 2h are exact: a linear diagram gets its coefficients without
** rounding residue (A = -10, not -10.00000000001).  The first step does not grow with
** |x|: sin, cos and the corners of saturation change on a scale of 1 whatever the state,
** and a coarser step samples them so sparsely that chance agreements pass for
** convergence; for states up to 1e6 the rounding at this step stays near 1e-10.
** One exception to the two levels: an entry whose quotients at the first two steps agree
** to rounding (EARLY_AGREEMENT), or are both exactly 0, is taken at once.  That is what a
** part of the diagram linear in the state gives (most entries of most Jacobians), while
** any curvature on the scale of the first step parts the two quotients by far more. */
const double FIRST_STEP = 0.5;
const int DIFFERENCE_LEVELS = 40;
const int EXTRAPOLATION_ORDERS = 6;
const double RELATIVE_AGREEMENT = 1e-12;
const double EARLY_AGREEMENT = 1e-14;

/* One Jacobian entry's extrapolation table, the current and the previous level. */
struct EntryEstimate {
    double row[EXTRAPOLATION_ORDERS] = {};
    double previous[EXTRAPOLATION_ORDERS] = {};
    bool agreed[EXTRAPOLATION_ORDERS] = {};
    double value = 0.0;
    double error = INFINITY;        /* change against the level before plus rounding */
    bool moved = false;             /* a level gave a nonzero difference */
    bool settled = false;
};

/* Feeds the central difference of one level, and the rounding it may carry, into the
** entry's table. */
void extrapolate(EntryEstimate &e, double difference, double rounding, int level)
{
    std::copy(e.row, e.row + EXTRAPOLATION_ORDERS, e.previous);
    e.row[0] = difference;
    e.moved |= difference != 0.0;
    int orders = std::min(level + 1, EXTRAPOLATION_ORDERS);
    double factor = 1.0;
    for (int m = 1; m < orders; ++m) {
        factor *= 4.0;
        e.row[m] = e.row[m - 1] + (e.row[m - 1] - e.previous[m - 1]) / (factor - 1.0);
    }
    if (level == 0) {
        e.value = difference;
        return;
    }
    if (level == 1 && ((e.row[0] == 0.0 && !e.moved) ||
                       std::fabs(e.row[0] - e.previous[0]) + rounding <= EARLY_AGREEMENT * std::fabs(e.row[0]))) {
        e.value = e.row[0];
        e.settled = true;
        return;
    }
    for (int m = 0; m < std::min(level, EXTRAPOLATION_ORDERS); ++m) {
        double change = std::fabs(e.row[m] - e.previous[m]);
        double error = change + rounding;
        /* A derivative that is exactly 0 from the first step on is 0; one that becomes 0
        ** only once the step is below the values' last bits is not. */
        bool agrees = (e.row[m] == 0.0 && !e.moved) || error <= RELATIVE_AGREEMENT * std::fabs(e.row[m]);
        if (agrees && e.agreed[m]) {
            e.value = e.row[m];
            e.settled = true;
            return;
        }
        e.agreed[m] = agrees;
        if (error < e.error) {
            e.error = error;
            e.value = e.row[m];
        }
    }
}

/* Column j of A (derivative entries 0 ... n-1) and of C (entry n, the output y). */
void differentiateState(double *state, const std::vector<Block *> &blocks, double time, HostList *derivEntries,
                        uint32_t n, const double *y, std::vector<EntryEstimate> &entries)
{
    double operatingPoint = *state;
    std::vector<double> plus(n + 1), minus(n + 1);
    for (int level = 0; level < DIFFERENCE_LEVELS; ++level) {
        double step = std::ldexp(FIRST_STEP, -level);
        if (operatingPoint + step == operatingPoint || operatingPoint - step == operatingPoint)
            break;                  /* below the state's last bit: no further level */
        for (int side : {1, -1}) {
            *state = operatingPoint + side * step;
            executeBlocks(blocks, time);
            std::vector<double> &sample = side > 0 ? plus : minus;
            for (uint32_t i = 0; i < n; ++i)
                sample[i] = *(double *)derivEntries->items[i];
            sample[n] = y ? *y : 0.0;
        }
        /* Done when every entry is settled, or when the rounding alone of those that are
        ** not exceeds the error of their best estimate: it doubles with every level. */
        bool done = true;
        for (uint32_t i = 0; i <= n; ++i) {
            if (entries[i].settled)
                continue;
            double rounding = DBL_EPSILON * std::max(std::fabs(plus[i]), std::fabs(minus[i])) / step;
            extrapolate(entries[i], (plus[i] - minus[i]) / (2 * step), rounding, level);
            done &= entries[i].settled || rounding > entries[i].error;
        }
        if (done)
            break;
    }
    *state = operatingPoint;
}

}

extern "C" {

/* Calls visitor(candidate, arg) for each top-level block of the diagram's selection, in
** the order the selection names them. */
void iterateCandidates(BlockVisitor visitor, intptr_t arg)
{
    Diagram *diagram = currentDiagram();
    if (!diagram || !visitor)
        return;
    std::vector<Block *> candidates = diagram->selection;
    for (Block *candidate : candidates)
        visitor(&candidate->record, arg);
}

/* Calls visitor for the block, then for every block nested in it, depth first. */
void operateNodeTree(HostBlock *block, BlockVisitor visitor, intptr_t arg)
{
    if (!block || !visitor)
        return;
    if (Block *known = blockOf(block))
        visitTree(*known, visitor, arg);
    else
        visitor(block, arg);
}

/* The candidate's first input port that can serve as input reference (see isLinInputRef). */
RefPoint *getVisitedInput(HostBlock *candidate, int)
{
    Block *block = blockOf(candidate);
    if (!block)
        return nullptr;
    for (const auto &point : block->inputs)
        if (isLinInputRef(&point->record))
            return &point->record;
    return nullptr;
}

/* The candidate's first output port whose signal leaves the marked blocks. */
RefPoint *getVisitedOutput(HostBlock *candidate, int)
{
    Block *block = blockOf(candidate);
    if (!block)
        return nullptr;
    for (const auto &point : block->outputs)
        if (point->signal && leavesMarkedBlocks(*point->signal))
            return &point->record;
    return nullptr;
}

/* An input point carries a signal that a block outside the marked ones computes and a
** marked block reads: the marked blocks never recompute it, so a value set there
** reaches them. */
uint8_t isLinInputRef(RefPoint *point)
{
    Point *known = pointOf(point);
    if (!known || !known->signal)
        return 0;
    return !isMarked(*known->signal->producer) && readByMarkedBlock(*known->signal);
}

/* An output point carries a signal that a marked block computes; an input of a plot
** block is one too, whatever it shows (so a point can be both). */
uint8_t isLinOutputRef(RefPoint *point)
{
    Point *known = pointOf(point);
    if (!known || !known->signal)
        return 0;
    return isMarked(*known->signal->producer) || (known->isInput && known->block->type == BlockType::Plot);
}

/* A port of a compound block stands for the inner port it connects to (followed through
** nested compounds); null for any other point, and for a compound input that feeds nothing. */
RefPoint *getVecConnect(RefPoint *point, int)
{
    Point *known = pointOf(point);
    if (!known || !known->connectsTo)
        return nullptr;
    while (known->connectsTo)
        known = known->connectsTo;
    return &known->record;
}

/* The diagram's "perturbation" entry, else 0.05. */
void getLinPerturbation(double *step)
{
    if (!step)
        return;
    Diagram *diagram = currentDiagram();
    *step = diagram ? diagram->perturbation : DEFAULT_LIN_PERTURBATION;
}

/* Appends every marked leaf block, in the engine's evaluation order. */
void createExecutionOrderSubGraph(HostList *executionList)
{
    Diagram *diagram = currentDiagram();
    if (!diagram)
        return;
    for (Block *block : diagram->evaluationOrder)
        if (isMarked(*block))
            addListMember(executionList, &block->record);
}

/* Evaluates the listed blocks once: outputs in list order, then their derivatives (or
** next states).  Blocks outside the list keep their values. */
void executeNodeList(HostList *executionList)
{
    Diagram *diagram = currentDiagram();
    if (diagram)
        executeBlocks(blocksOf(executionList), diagram->time);
}

/* Fills the state entries (pointers to the held states) and the derivative entries
** (pointers to their derivatives, or next states of discrete blocks): the continuous
** blocks in list order, then the sampled ones.  The answer M: when the selection holds
** both continuous and sampled blocks, the model's states are the continuous ones and
** the sampled blocks' states are held between samples; their next-state entries are
** then listed last, M of them, and they get no state entry.  Otherwise M is 0. */
int getStateDerivList(HostList *stateEntries, HostList *derivEntries, HostList *stateBlocks, HostList *sampledBlocks)
{
    std::vector<Block *> continuous = blocksOf(stateBlocks);
    std::vector<Block *> sampled = blocksOf(sampledBlocks);
    bool holdSampled = !continuous.empty() && !sampled.empty();
    int held = 0;
    for (Block *block : continuous) {
        for (size_t i = 0; i < block->state.size(); ++i) {
            addListMember(stateEntries, &block->state[i]);
            addListMember(derivEntries, &block->next[i]);
        }
    }
    for (Block *block : sampled) {
        for (size_t i = 0; i < block->state.size(); ++i) {
            if (holdSampled)
                ++held;
            else
                addListMember(stateEntries, &block->state[i]);
            addListMember(derivEntries, &block->next[i]);
        }
    }
    return held;
}

/* A (n by n) and C (1 by n), n = A's rows: column j from central differences in state
** j, extrapolated (differentiateState), evaluating the execution list at each side; y is
** the output's double.  The states and every listed block's values are back
** at the operating point afterwards.  B, D and the M extra quotients are not needed
** here: the plug-in has them from its own perturbation of the input. */
void calcACMatrix(Matrix *A, Matrix *C, double *y, HostList *executionList, HostList *stateEntries,
                  HostList *derivEntries, int M, Matrix *, Matrix *, Matrix *)
{
    Diagram *diagram = currentDiagram();
    if (!diagram || !A || !C || !stateEntries || !derivEntries)
        return;
    uint32_t n = A->rows;
    if (stateEntries->count < n || derivEntries->count < n + (uint32_t)std::max(M, 0) || C->rows * C->cols < n)
        return;
    std::vector<Block *> blocks = blocksOf(executionList);
    beginLinearReuse();
    executeBlocks(blocks, diagram->time);       /* the references at the operating point */
    for (uint32_t j = 0; j < n; ++j) {
        std::vector<EntryEstimate> entries(n + 1);
        differentiateState((double *)stateEntries->items[j], blocks, diagram->time, derivEntries, n, y, entries);
        for (uint32_t i = 0; i < n; ++i)
            A->data[j * n + i] = entries[i].value;
        C->data[j] = entries[n].value;
    }
    endLinearReuse(blocks);
    executeBlocks(blocks, diagram->time);
    hostapp::host().linearizations++;
}

/* Code 8, a simulation step: the stand-in's blocks hold their values between steps and
** its plots draw only when asked, so the step needs nothing recomputed and time does
** not advance; the request is counted (simulationStepRequests), shown to the step
** observer, and answered 1.  Any other request is answered 0. */
intptr_t tvnRequest(SimStepRequest *request, intptr_t)
{
    if (!request || request->code != SIM_REQUEST_STEP)
        return 0;
    if (Diagram *diagram = currentDiagram()) {
        diagram->simulationSteps++;
        if (diagram->stepObserver)
            diagram->stepObserver();
    }
    return 1;
}

}

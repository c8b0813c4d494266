/*
** linearize/linearizer.cpp: linearize, which turns the marked selection between the
** reference points into the state-space model A, B, C, D: B and D from a central
** difference in the input value, A and C from the host.
*/
#include "host/host.h"
#include "linearize/linearize.h"

StateSpaceModel stateSpaceModel;
HostList executionList;
HostList stateEntryList;
HostList derivEntryList;

/* Working records, reshaped on every run. */
static Matrix *plusSample;      /* derivative entries with the input raised (vector of N) */
static Matrix *minusSample;     /* the same with the input lowered */
static Matrix *extraQuotients;  /* M by 1: quotients of the last M derivative entries */
static double perturbation = 0.05;
/* Only the code is ours to set; the rest of the record stays zero. */
static SimStepRequest stepRequest = {SIM_REQUEST_STEP, {}};

/* Reshapes m (null: allocates) to rows x cols (cols 0: a vector) from the host heap. */
static Matrix *reshape(Matrix *m, uint32_t rows, uint32_t cols)
{
    m = (Matrix *)grealloc(m, matrixBytes(rows, cols));
    m->rows = rows;
    m->cols = cols;
    return m;
}

double *referenceValue(RefPoint *point)
{
    if ((point->flags & REF_FLAG_INDIRECT) || (point->signal && point->signal->kind == SIGNAL_KIND_INDIRECT)) {
        point = getVecConnect(point, 1);
        if (!point)
            return nullptr;
    }
    HostSignal *signal = point->signal;
    if (!signal)
        return nullptr;     /* the host gave a point without a signal: nothing to read */
    uint8_t type = signal->dataType;
    if ((type >= SIGNAL_TYPE_INT_FIRST && type <= SIGNAL_TYPE_INT_LAST) || type == SIGNAL_TYPE_INT_EXTRA) {
        winMsg("Cannot linearize WRT integer function");
        return nullptr;
    }
    if (type == SIGNAL_TYPE_MATRIX_A || type == SIGNAL_TYPE_MATRIX_B) {
        debMsg("Warning, linearizing with respect to the first matrix element only.");
        uint8_t *storage = signal->value.storage;
        return storage ? (double *)(storage + SIGNAL_MATRIX_FIRST) : nullptr;
    }
    if (signal->flags & SIGNAL_FLAG_VECTOR) {
        uint8_t *storage = signal->value.storage;
        /* Element indices count from 1; anything else names no element. */
        if (!storage || point->elementIndex < 1)
            return nullptr;
        return (double *)(storage + SIGNAL_VECTOR_FIRST + (point->elementIndex - 1) * SIGNAL_VECTOR_STRIDE);
    }
    return &signal->value.scalar;
}

/* Keeps the list's first point when `stillValid` says it still is one; otherwise
** collects the candidates' visited points with `visited`. */
static void confirmOrCollect(HostList *list, uint8_t (*stillValid)(RefPoint *),
                             RefPoint *(*visited)(HostBlock *, int))
{
    RefPoint *first = list->count > 0 ? (RefPoint *)list->items[0] : nullptr;
    if (first && stillValid(first))
        return;
    /* A point that is no longer valid is dropped together with the rest of the list,
    ** so that the points found now, not the stale one, become the reference. */
    emptyRefList(list);
    visitedPointFunction = visited;
    iterateCandidates(collectVisited, (intptr_t)list);
}

static void collectAgainIfEmpty(HostList *list, RefPoint *(*visited)(HostBlock *, int))
{
    if (list->count > 0)
        return;
    visitedPointFunction = visited;
    iterateCandidates(collectVisited, (intptr_t)list);
}

/* Sets *input to value, lets the host take a step and evaluates the execution list twice;
** copies the derivative entries into sample and returns the output value. */
static double sampleAt(double *input, double value, Matrix *sample, const double *output)
{
    *input = value;
    tvnRequest(&stepRequest, 0);
    executeNodeList(&executionList);
    executeNodeList(&executionList);
    for (uint32_t i = 0; i < derivEntryList.count; ++i)
        sample->data[i] = *(double *)derivEntryList.items[i];
    return *output;
}

int linearize(double *periodOut)
{
    if (!tervanInternalRequest(TERVAN_INTERNAL_LINEARIZE, 230, 0))
        return 0;

    emptyGatheredLists();
    markCandidates(1);

    confirmOrCollect(&outputRefList, isLinOutputRef, getVisitedOutput);
    confirmOrCollect(&inputRefList, isLinInputRef, getVisitedInput);
    collectAgainIfEmpty(&outputRefList, getVisitedOutput);
    collectAgainIfEmpty(&inputRefList, getVisitedInput);
    RefPoint *outputRef = outputRefList.count > 0 ? (RefPoint *)outputRefList.items[0] : nullptr;
    RefPoint *inputRef = inputRefList.count > 0 ? (RefPoint *)inputRefList.items[0] : nullptr;

    createExecutionOrderSubGraph(&executionList);
    if (outputRef)
        setHighlight(outputRef, true);
    if (inputRef)
        setHighlight(inputRef, true);
    double *y = outputRef ? referenceValue(outputRef) : nullptr;
    double *u = inputRef ? referenceValue(inputRef) : nullptr;
    markCandidates(0);

    if (stateBlockList.count == 0 && discreteBlockList.count == 0) {
        winMsg("No blocks with state in selection");
        return 0;
    }
    if (!outputRef || !y) {
        winMsg("No output reference block.");
        return 0;
    }
    if (!inputRef || !u) {
        winMsg("No input reference block.");
        return 0;
    }

    getLinPerturbation(&perturbation);
    int M = getStateDerivList(&stateEntryList, &derivEntryList, &stateBlockList, &discreteBlockList);
    uint32_t N = derivEntryList.count;
    /* The host promises 0 <= M <= N; hold it to that rather than index outside the lists. */
    uint32_t extraCount = M < 0 ? 0 : ((uint32_t)M > N ? N : (uint32_t)M);
    uint32_t n = N - extraCount;

    stateSpaceModel.A = reshape(stateSpaceModel.A, n, n);
    plusSample = reshape(plusSample, N, 0);
    minusSample = reshape(minusSample, N, 0);
    stateSpaceModel.B = reshape(stateSpaceModel.B, n, 1);
    extraQuotients = reshape(extraQuotients, extraCount, 1);
    stateSpaceModel.C = reshape(stateSpaceModel.C, 1, n);
    stateSpaceModel.D = reshape(stateSpaceModel.D, 1, 1);
    /* Without states C is 1 by 0, which reads as a vector of one element that nobody
    ** fills: it is 0, not what the heap held. */
    if (n == 0)
        stateSpaceModel.C->data[0] = 0.0;

    double u0 = *u;
    double yPlus = sampleAt(u, u0 + perturbation, plusSample, y);
    double yMinus = sampleAt(u, u0 - perturbation, minusSample, y);
    for (uint32_t i = 0; i < n; ++i)
        stateSpaceModel.B->data[i] = (plusSample->data[i] - minusSample->data[i]) / (perturbation * 2);
    for (uint32_t i = n; i < N; ++i)
        extraQuotients->data[i - n] = (plusSample->data[i] - minusSample->data[i]) / (perturbation * 2);
    stateSpaceModel.D->data[0] = (yPlus - yMinus) / (perturbation * 2);
    *u = u0;

    calcACMatrix(stateSpaceModel.A, stateSpaceModel.C, y, &executionList, &stateEntryList, &derivEntryList,
                 (int)extraCount, stateSpaceModel.B, stateSpaceModel.D, extraQuotients);
    tvnRequest(&stepRequest, 0);
    if (periodOut)
        *periodOut = samplePeriod;
    return 1;
}

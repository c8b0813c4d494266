/*
** linearize/reference_points.cpp: the input and output reference points, the marking
** of the candidate blocks, and the gathering and ordering of the blocks with state.
*/
#include <cmath>

#include "host/host.h"
#include "linearize/linearize.h"

HostList outputRefList;
HostList inputRefList;
HostList stateBlockList;
HostList discreteBlockList;
double samplePeriod;
RefPoint *(*visitedPointFunction)(HostBlock *candidate, int zero) = getVisitedOutput;

/* True from the start of a marking pass until its first block has been visited. */
static bool firstBlock;

void setHighlight(RefPoint *point, bool on)
{
    if (on)
        point->flags |= REF_FLAG_HIGHLIGHT;
    else
        point->flags &= (uint8_t)~REF_FLAG_HIGHLIGHT;
    invalidateWin(point->window);
}

void emptyRefList(HostList *list)
{
    while (RefPoint *point = (RefPoint *)removeLastMember(list))
        setHighlight(point, false);
}

static double orderKey(const HostBlock *block)
{
    /* A host record without keys sorts as key 0. */
    return block->orderKeys ? block->orderKeys[1] : 0.0;
}

/* Bubble sort, stable: neighbours swap only when their keys differ by 1 or more
** (the difference truncated toward zero is positive).  The order is the state order
** of the model. */
static void orderStateBlocks(void)
{
    HostBlock **blocks = (HostBlock **)stateBlockList.items;
    for (uint32_t pass = stateBlockList.count; pass-- > 1;) {
        for (uint32_t j = 0; j < pass; ++j) {
            if (std::trunc(orderKey(blocks[j]) - orderKey(blocks[j + 1])) > 0) {
                HostBlock *swap = blocks[j];
                blocks[j] = blocks[j + 1];
                blocks[j + 1] = swap;
            }
        }
    }
}

static void markBlock(HostBlock *block, intptr_t flag)
{
    if (!flag) {
        block->flags &= (uint8_t)~BLOCK_FLAG_CANDIDATE_MARK;
        return;
    }
    block->flags |= BLOCK_FLAG_CANDIDATE_MARK;
    switch (block->kind) {
    case BLOCK_KIND_STATE_A:
    case BLOCK_KIND_STATE_B:
    case BLOCK_KIND_STATE_C:
        addListMember(&stateBlockList, block);
        break;
    case BLOCK_KIND_SAMPLED_A:
    case BLOCK_KIND_SAMPLED_B: {
        addListMember(&discreteBlockList, block);
        const SampledBlockRecord *sampled = (const SampledBlockRecord *)block->kindRecord;
        if (sampled && (sampled->sampleFlags & SAMPLED_FLAG_IS_SAMPLED)) {
            /* A period is recorded only when the very first block visited is sampled;
            ** every later sampled block is compared with it (or with 0.0). */
            if (firstBlock)
                samplePeriod = sampled->samplePeriod;
            else if (sampled->samplePeriod != samplePeriod)
                debMsg("Attempt to analyze discrete subsystem with differing sampling rates");
        }
        break;
    }
    case BLOCK_KIND_UNIT_DELAY:
        debMsg("Praxa can't handle unit delay");
        break;
    default:
        break;
    }
    firstBlock = false;
}

static void candidateVisitor(HostBlock *candidate, intptr_t flag)
{
    operateNodeTree(candidate, markBlock, flag);
}

void emptyGatheredLists()
{
    stateBlockList.count = 0;
    discreteBlockList.count = 0;
    executionList.count = 0;
    stateEntryList.count = 0;
    derivEntryList.count = 0;
}

void markCandidates(intptr_t flag)
{
    if (!flag) {
        iterateCandidates(candidateVisitor, 0);
        return;
    }
    samplePeriod = 0.0;
    firstBlock = true;
    iterateCandidates(candidateVisitor, flag);
    orderStateBlocks();
}

void collectVisited(HostBlock *candidate, intptr_t list)
{
    if (RefPoint *point = visitedPointFunction(candidate, 0))
        addListMember((HostList *)list, point);
}

/* Called by the host for each point the user clicks in point-selection mode: the point
** becomes the output (preferred) or input reference, replacing the previous one; a click
** on a highlighted reference removes it; a point of neither kind gets a beep. */
extern "C" void selLinRefPoint(RefPoint *point)
{
    if (!point)
        return;
    bool wasHighlighted = (point->flags & REF_FLAG_HIGHLIGHT) != 0;
    emptyGatheredLists();
    markCandidates(1);

    bool isOutput = isLinOutputRef(point) != 0;
    bool isInput = isLinInputRef(point) != 0;
    if (isOutput)
        emptyRefList(&outputRefList);
    if (isInput)
        emptyRefList(&inputRefList);
    if (wasHighlighted)
        return;
    if (isOutput) {
        addListMember(&outputRefList, point);
    } else if (isInput) {
        addListMember(&inputRefList, point);
    } else {
        beep(0);
        return;
    }
    setHighlight(point, true);
}

/* Called by the host to forget both reference points (input first, then output). */
extern "C" void linResetRefPoints(void)
{
    emptyRefList(&inputRefList);
    emptyRefList(&outputRefList);
}

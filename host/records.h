/*
** host/records.h: the host records whose layout is binding.
** The plug-in reads and writes these fields at fixed offsets; every byte not
** named here belongs to the host.  Each offset is checked below.
*/
#ifndef PRAXA_HOST_RECORDS_H
#define PRAXA_HOST_RECORDS_H

#include <cstddef>
#include <cstdint>

#include "platform/winapi.h"

/* A host list of pointers; the host grows `items` as members are added. */
struct HostList {
    uint32_t capacity;
    uint32_t count;
    void **items;
};
static_assert(offsetof(HostList, capacity) == 0);
static_assert(offsetof(HostList, count) == 4);
static_assert(offsetof(HostList, items) == 8);

/* Block kind codes the plug-in knows. */
enum : uint8_t {
    BLOCK_KIND_STATE_A = 9,
    BLOCK_KIND_STATE_B = 10,
    BLOCK_KIND_STATE_C = 11,
    BLOCK_KIND_UNIT_DELAY = 23,
    BLOCK_KIND_SAMPLED_A = 82,
    BLOCK_KIND_SAMPLED_B = 83,
};
enum : uint8_t { BLOCK_FLAG_CANDIDATE_MARK = 0x01 };

/* A block of the diagram. */
struct HostBlock {
    uint8_t kind;
    uint8_t hostByte1;
    uint8_t flags;
    uint8_t hostBytes3[0x48 - 3];
    HWND window;
    uint8_t hostBytes50[0x80 - 0x50];
    double *orderKeys;          /* element 1 orders the state blocks */
    uint8_t hostBytes88[0xC8 - 0x88];
    void *kindRecord;           /* plot record, or SampledBlockRecord for kinds 82/83 */
};
static_assert(offsetof(HostBlock, kind) == 0);
static_assert(offsetof(HostBlock, flags) == 2);
static_assert(offsetof(HostBlock, window) == 0x48);
static_assert(offsetof(HostBlock, orderKeys) == 0x80);
static_assert(offsetof(HostBlock, kindRecord) == 0xC8);

/* The kind-specific record of blocks of kinds 82 and 83. */
enum : uint8_t { SAMPLED_FLAG_IS_SAMPLED = 0x02 };
struct SampledBlockRecord {
    uint8_t hostBytes0[4];
    uint8_t sampleFlags;        /* SAMPLED_FLAG_IS_SAMPLED when the block is sampled */
    uint8_t hostBytes5[0xE0 - 5];
    double samplePeriod;        /* seconds */
};
static_assert(offsetof(SampledBlockRecord, sampleFlags) == 4);
static_assert(offsetof(SampledBlockRecord, samplePeriod) == 0xE0);

/* Signal data type codes. */
enum : uint8_t {
    SIGNAL_TYPE_INT_FIRST = 3, SIGNAL_TYPE_INT_LAST = 10, SIGNAL_TYPE_INT_EXTRA = 15,
    SIGNAL_TYPE_MATRIX_A = 11, SIGNAL_TYPE_MATRIX_B = 12,
    SIGNAL_TYPE_DOUBLE = 1,     /* any other code is a floating-point scalar */
};
enum : uint8_t { SIGNAL_KIND_INDIRECT = 'G' };
enum : uint8_t { SIGNAL_FLAG_VECTOR = 0x02 };

/* Vector signal storage: 32-byte entries from offset 0x18, each starting with its double. */
enum { SIGNAL_VECTOR_FIRST = 0x18, SIGNAL_VECTOR_STRIDE = 32 };
/* Matrix signal storage: the first element (a double) at offset 0x10. */
enum { SIGNAL_MATRIX_FIRST = 0x10 };

/* A signal carried by a connection point. */
struct HostSignal {
    uint8_t kind;               /* SIGNAL_KIND_INDIRECT: resolve through getVecConnect */
    uint8_t dataType;
    uint8_t hostByte2;
    uint8_t flags;              /* SIGNAL_FLAG_VECTOR */
    uint8_t hostBytes4[0x90 - 4];
    union {
        double scalar;
        uint8_t *storage;       /* matrix or vector storage */
    } value;
};
static_assert(offsetof(HostSignal, kind) == 0);
static_assert(offsetof(HostSignal, dataType) == 1);
static_assert(offsetof(HostSignal, flags) == 3);
static_assert(offsetof(HostSignal, value) == 0x90);

/* A connection point that can serve as linearization input or output. */
enum : uint8_t { REF_FLAG_HIGHLIGHT = 0x10, REF_FLAG_INDIRECT = 0x03 };
struct RefPoint {
    uint8_t flags;
    uint8_t hostBytes1[3];
    int16_t elementIndex;       /* counted from 1 within a vector signal */
    uint8_t hostBytes6[2];
    HWND window;
    HostSignal *signal;
};
static_assert(offsetof(RefPoint, flags) == 0);
static_assert(offsetof(RefPoint, elementIndex) == 4);
static_assert(offsetof(RefPoint, window) == 8);
static_assert(offsetof(RefPoint, signal) == 0x10);

/* A plot point buffer, as answered by tervanRequest code 75. */
struct PlotPointBuffer {
    uint32_t capacity;          /* in doubles */
    uint32_t highestIndex;
    double *values;             /* galloc/grealloc storage */
};
static_assert(offsetof(PlotPointBuffer, capacity) == 0);
static_assert(offsetof(PlotPointBuffer, highestIndex) == 4);
static_assert(offsetof(PlotPointBuffer, values) == 8);

/* The simulation-step request record passed to tvnRequest.  Only the code is the
** plug-in's; it sends the host's words beyond it as zeros (32 bytes in all). */
enum : uint32_t { SIM_REQUEST_STEP = 8 };
struct SimStepRequest {
    uint32_t code;
    uint32_t hostWords[7];
};
static_assert(offsetof(SimStepRequest, code) == 0);

/* The 40-byte record that gives every plot point its parameter (frequency or gain). */
struct PlotParamInfo {
    int32_t poleCount;
    int32_t zeroCount;
    double *parameters;
    int32_t *zeroBranches;
    uint8_t hostBytes24[16];
};
static_assert(offsetof(PlotParamInfo, poleCount) == 0);
static_assert(offsetof(PlotParamInfo, zeroCount) == 4);
static_assert(offsetof(PlotParamInfo, parameters) == 8);
static_assert(offsetof(PlotParamInfo, zeroBranches) == 16);
static_assert(sizeof(PlotParamInfo) == 40);

/* One trace of a plot record (0x78 bytes). */
struct PlotTrace {
    char label[0x40];
    uint64_t words[2];          /* cleared by finishPlot */
    uint8_t hostBytes50[8];
    HostList points;            /* count = number of points; items = the doubles */
    uint8_t hostBytes68[0x78 - 0x68];
};
static_assert(offsetof(PlotTrace, words) == 0x40);
static_assert(offsetof(PlotTrace, points) == 0x58);
static_assert(sizeof(PlotTrace) == 0x78);

enum { PLOT_MAX_TRACES = 8 };

/* The plot record's kind word of root locus plots. */
enum : uint32_t { PLOT_KIND_ROOT_LOCUS = 75 };

/* Flag bits of the plot record. */
enum : uint8_t {
    PLOT_A_FIXED_SWEEP = 0x02, PLOT_A_PLUGIN = 0x04, PLOT_A_FREQUENCY = 0x20, PLOT_A_ROOT_LOCUS_CLEAR = 0x80,
    PLOT_B_LOG_X = 0x01, PLOT_B_LOG_Y = 0x02, PLOT_B_ROOT_LOCUS = 0x14, PLOT_B_FREQUENCY = 0x15,
    PLOT_C_DECIBELS = 0x04,
    PLOT_D_NYQUIST = 0x20,
};

/* The plot record a plot block points to (HostBlock.kindRecord). */
struct PlotRecord {
    uint8_t flagsA;
    uint8_t flagsB;
    uint8_t flagsC;
    uint8_t flagsD;
    uint32_t plotKind;          /* 75 for root locus plots */
    uint8_t hostBytes8[0x18 - 8];
    double sweepStart;
    double sweepStop;
    double sweepStep;
    double fixedSweepStart;
    double fixedSweepStop;
    uint8_t hostBytes40[0x108 - 0x40];
    double xMin;
    double xMax;
    uint8_t hostBytes118[0x120 - 0x118];
    double yMin;
    double yMax;
    uint8_t hostBytes130[0x394 - 0x130];
    uint32_t pointIndex;
    uint8_t hostBytes398[4];
    uint32_t pointCount;
    char title[0x508 - 0x3A0];
    char xLabel[0x670 - 0x508];
    char yLabel[0x728 - 0x670];
    PlotTrace traces[PLOT_MAX_TRACES];
    uint8_t hostBytesAE8[0xB10 - 0xAE8];
    uint8_t lastTraceIndex;     /* number of traces minus one */
    uint8_t hostBytesB11[0xBF8 - 0xB11];
    PlotParamInfo *paramInfo;
};
static_assert(offsetof(PlotRecord, flagsA) == 0x00);
static_assert(offsetof(PlotRecord, flagsB) == 0x01);
static_assert(offsetof(PlotRecord, flagsC) == 0x02);
static_assert(offsetof(PlotRecord, flagsD) == 0x03);
static_assert(offsetof(PlotRecord, plotKind) == 0x04);
static_assert(offsetof(PlotRecord, sweepStart) == 0x18);
static_assert(offsetof(PlotRecord, sweepStop) == 0x20);
static_assert(offsetof(PlotRecord, sweepStep) == 0x28);
static_assert(offsetof(PlotRecord, fixedSweepStart) == 0x30);
static_assert(offsetof(PlotRecord, fixedSweepStop) == 0x38);
static_assert(offsetof(PlotRecord, xMin) == 0x108);
static_assert(offsetof(PlotRecord, xMax) == 0x110);
static_assert(offsetof(PlotRecord, yMin) == 0x120);
static_assert(offsetof(PlotRecord, yMax) == 0x128);
static_assert(offsetof(PlotRecord, pointIndex) == 0x394);
static_assert(offsetof(PlotRecord, pointCount) == 0x39C);
static_assert(offsetof(PlotRecord, title) == 0x3A0);
static_assert(offsetof(PlotRecord, xLabel) == 0x508);
static_assert(offsetof(PlotRecord, yLabel) == 0x670);
static_assert(offsetof(PlotRecord, traces) == 0x728);
static_assert(offsetof(PlotRecord, traces) + offsetof(PlotTrace, words) == 0x768);
static_assert(offsetof(PlotRecord, traces) + offsetof(PlotTrace, points) == 0x780);
static_assert(offsetof(PlotRecord, traces) + offsetof(PlotTrace, points) + offsetof(HostList, count) == 0x784);
static_assert(offsetof(PlotRecord, traces) + offsetof(PlotTrace, points) + offsetof(HostList, items) == 0x788);
static_assert(offsetof(PlotRecord, lastTraceIndex) == 0xB10);
static_assert(offsetof(PlotRecord, paramInfo) == 0xBF8);

/* A complex number: real part, then imaginary part. */
struct Complex {
    double re;
    double im;
};
static_assert(offsetof(Complex, re) == 0 && offsetof(Complex, im) == 8 && sizeof(Complex) == 16);

/* The persistent series compensator handed to the host (request 4, command 255). */
struct Compensator {
    int32_t zeroCount;
    uint8_t padding4[4];
    Complex *zeros;             /* room for zeroCount + 1 */
    int32_t poleCount;
    uint8_t padding20[4];
    Complex *poles;             /* room for poleCount + 1 */
    double gain;
};
static_assert(offsetof(Compensator, zeroCount) == 0);
static_assert(offsetof(Compensator, zeros) == 8);
static_assert(offsetof(Compensator, poleCount) == 16);
static_assert(offsetof(Compensator, poles) == 24);
static_assert(offsetof(Compensator, gain) == 32);
static_assert(sizeof(Compensator) == 40);

#endif

/*
** hostapp/plots.cpp: the host's plot blocks and the plot services the plug-in
** imports (makePlotNode, allocOverPlotBuffers, preallocDList, setXYPlotBounds,
** showNode) and request 75.  Every plot block and all memory hung on it is the host's.
*/
#include "hostapp/plots.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <memory>

#include "host/host.h"
#include "hostapp/host_state.h"
#include "hostapp/plot_bounds.h"
#include "hostapp/plot_csv.h"
#include "hostapp/svg_plot.h"
#include "platform/driver.h"

namespace hostapp {

namespace {

/* The x and y point buffers of one trace (request 75). */
struct TraceBuffers {
    PlotPointBuffer coordinate[2] = {};
};

/* A plot block with its record and buffers. */
struct PlotBlock {
    HostBlock block{};
    PlotRecord record{};
    int x = 0, y = 0;
    char windowTag = 0;                 /* its address is the block's window handle */
    std::vector<std::unique_ptr<TraceBuffers>> buffers;
    bool shown = false;
    std::string baseName;               /* given at the first show, kept for the plot's life */
    uint64_t writtenFingerprint = 0;    /* of what the file last written shows; 0: none */
    struct {
        PlotParamInfo *info;
        double *parameters;
        int32_t *zeroBranches;
    } held{};                           /* the parameter blocks last seen on the record */

    PlotBlock(int atX, int atY) : x(atX), y(atY)
    {
        block.kind = PLOT_BLOCK_KIND;
        block.window = reinterpret_cast<HWND>(&windowTag);
        block.kindRecord = &record;
    }

    ~PlotBlock()
    {
        freeBuffers();
        for (PlotTrace &t : record.traces)
            gfree(t.points.items);
        releaseReplacedParameters();    /* takes over what hangs on the record now */
        record.paramInfo = nullptr;
        releaseReplacedParameters();    /* and frees it */
    }

    /* A parameter record and its arrays, once hung on the plot, belong to it. A later run
    ** into the same plot hangs a new record (or new arrays on the old one) in their place;
    ** the host frees the replaced ones the next time it handles the plot. */
    void releaseReplacedParameters()
    {
        PlotParamInfo *info = record.paramInfo;
        double *parameters = info ? info->parameters : nullptr;
        int32_t *zeroBranches = info ? info->zeroBranches : nullptr;
        if (held.parameters != parameters)
            gfree(held.parameters);
        if (held.zeroBranches != zeroBranches)
            gfree(held.zeroBranches);
        if (held.info != info)
            gfree(held.info);
        held = {info, parameters, zeroBranches};
    }

    void freeBuffers()
    {
        for (auto &pair : buffers)
            for (PlotPointBuffer &b : pair->coordinate)
                gfree(b.values);
        buffers.clear();
    }

    PlotView view() const
    {
        PlotView v;
        v.record = &record;
        for (const auto &pair : buffers) {
            v.xBuffers.push_back(&pair->coordinate[0]);
            v.yBuffers.push_back(&pair->coordinate[1]);
        }
        return v;
    }

    PlotBlock(const PlotBlock &) = delete;
    PlotBlock &operator=(const PlotBlock &) = delete;
};

std::vector<std::unique_ptr<PlotBlock>> &store()
{
    static std::vector<std::unique_ptr<PlotBlock>> blocks;
    return blocks;
}

/* The lookups below serve every plot service the plug-in calls; each releases what the
** plug-in replaced on the plot it finds. */
PlotBlock *handled(PlotBlock *p)
{
    p->releaseReplacedParameters();
    return p;
}

PlotBlock *findBlock(const HostBlock *block)
{
    for (auto &p : store())
        if (&p->block == block)
            return handled(p.get());
    return nullptr;
}

PlotBlock *findByRecord(const PlotRecord *record)
{
    for (auto &p : store())
        if (&p->record == record)
            return handled(p.get());
    return nullptr;
}

/* The plot whose trace slot `points` is; sets *trace. */
PlotBlock *findByTraceList(const HostList *points, int *trace)
{
    for (auto &p : store())
        for (int k = 0; k < PLOT_MAX_TRACES; ++k)
            if (&p->record.traces[k].points == points) {
                *trace = k;
                return handled(p.get());
            }
    return nullptr;
}

/* The most points one trace of a plot holds (32 MiB of doubles): a step count typed
** into a settings file or dialog must not make the host reserve gigabytes and write an
** SVG file nobody can open; beyond it nothing is reserved and the analysis draws nothing. */
const uint32_t PLOT_MAX_POINTS = 1u << 22;

/* A point count of the record as a count of doubles to reserve: the plug-in stores
** a signed step count there, so a "negative" count reserves nothing. */
uint32_t reservableCount(uint32_t pointCount)
{
    return pointCount > PLOT_MAX_POINTS ? 0 : pointCount;
}

double *newValues(uint32_t count)
{
    if (count == 0)
        return nullptr;
    double *values = (double *)galloc((uint64_t)count * sizeof(double));
    std::fill(values, values + count, NAN);   /* unwritten points are not drawn */
    return values;
}

void addTraceBuffers(PlotBlock &p, uint32_t capacity)
{
    auto pair = std::make_unique<TraceBuffers>();
    for (PlotPointBuffer &b : pair->coordinate) {
        b.capacity = capacity;
        b.highestIndex = 0;
        b.values = newValues(capacity);
    }
    p.buffers.push_back(std::move(pair));
}

/* Names given to plots since the host started (or was reset): a name once given is
** never given to another plot, so a later plot cannot overwrite an earlier one's file. */
std::vector<std::string> &namesGiven()
{
    static std::vector<std::string> names;
    return names;
}

/* The title without the session counter the plug-in appends ("Nyquist0", "Root Locus-1"),
** letters and digits kept, every other run of characters one '-': the same plot gets the
** same name whatever ran before it, and the name needs no quoting in a shell. */
std::string baseNameFor(const PlotBlock &p)
{
    std::string title = recordText(p.record.title, sizeof p.record.title);
    size_t end = title.find_last_not_of("0123456789");
    title.erase(end == std::string::npos ? 0 : end + 1);
    std::string base;
    for (char c : title) {
        if (std::isalnum((unsigned char)c) && (unsigned char)c < 0x80)
            base += c;
        else if (!base.empty() && base.back() != '-')
            base += '-';
    }
    while (!base.empty() && base.back() == '-')
        base.pop_back();
    if (base.size() > 100)
        base.resize(100);
    if (base.empty())
        base = "Plot";
    for (int n = 1;; ++n) {
        std::string name = n == 1 ? base : base + "-" + std::to_string(n);
        if (std::find(namesGiven().begin(), namesGiven().end(), name) == namesGiven().end()) {
            namesGiven().push_back(name);
            return name;
        }
    }
}

/* Mixes bytes into a running hash, a multiply-xorshift step per 8 bytes. */
uint64_t mixWords(uint64_t hash, const void *data, size_t bytes)
{
    const unsigned char *b = (const unsigned char *)data;
    for (size_t k = 0; k + 8 <= bytes; k += 8) {
        uint64_t word;
        std::memcpy(&word, b + k, 8);
        hash = (hash ^ word) * 0x9E3779B97F4A7C15ull;
        hash ^= hash >> 29;
    }
    for (size_t k = bytes - bytes % 8; k < bytes; ++k)
        hash = (hash ^ b[k]) * 0x100000001B3ull;
    return hash;
}

/* A hash of everything the picture is drawn from (the record, its trace points and
** buffers, the first gain of a root locus) and of the file's path.  The plug-in writes
** into that memory without telling the host, so a change is found by looking. */
uint64_t fingerprint(const PlotBlock &p, const std::string &path)
{
    uint64_t hash = mixWords(0xCBF29CE484222325ull, &p.record, sizeof p.record);
    for (const PlotTrace &t : p.record.traces)
        if (t.points.items)
            hash = mixWords(hash, t.points.items, sizeof(double) * (size_t)t.points.capacity);
    for (const auto &pair : p.buffers)
        for (const PlotPointBuffer &b : pair->coordinate) {
            hash = mixWords(hash, &b, sizeof b);
            if (b.values)
                hash = mixWords(hash, b.values, sizeof(double) * (size_t)b.capacity);
        }
    const PlotParamInfo *info = p.record.paramInfo;
    if (info && info->parameters)
        hash = mixWords(hash, info->parameters, sizeof(double));
    hash = mixWords(hash, path.data(), path.size());
    return hash ? hash : 1;
}

/* The other Bode plot of the same run: the plug-in titles the pair "Bode-Magnitude<n>"
** and "Bode-Phase<n>". */
const PlotRecord *companionOf(const PlotBlock &p)
{
    std::string title = recordText(p.record.title, sizeof p.record.title);
    static const std::string MAGNITUDE = "Bode-Magnitude", PHASE = "Bode-Phase";
    std::string other;
    if (title.rfind(MAGNITUDE, 0) == 0)
        other = PHASE + title.substr(MAGNITUDE.size());
    else if (title.rfind(PHASE, 0) == 0)
        other = MAGNITUDE + title.substr(PHASE.size());
    else
        return nullptr;
    for (auto it = store().rbegin(); it != store().rend(); ++it)
        if (recordText((*it)->record.title, sizeof (*it)->record.title) == other)
            return &(*it)->record;
    return nullptr;
}

/* Writes the plot's picture and, beside it, its numbers, unless the files already show
** them; says in the transcript which picture, or what could not be written. */
void writePlot(PlotBlock &p, bool note)
{
    std::string fileName = p.baseName + ".svg";
    std::string path = outputPath(fileName);
    std::string dataPath = outputPath(plotDataFileName(fileName));
    uint64_t current = fingerprint(p, path);
    std::string error;
    if (current == p.writtenFingerprint) {
        if (note)
            platform::transcriptNote("[plot] " + fileName);
        return;
    }
    p.writtenFingerprint = 0;
    PlotView view = p.view();
    view.companion = companionOf(p);
    if (!writeSvgFile(path, renderPlotSvg(view), &error)) {
        platform::transcriptNote("[plot] cannot write " + path + ": " + error);
        return;
    }
    if (!writeSvgFile(dataPath, renderPlotCsv(p.view()), &error)) {
        platform::transcriptNote("[plot] cannot write " + dataPath + ": " + error);
        return;
    }
    p.writtenFingerprint = current;
    if (note)
        platform::transcriptNote("[plot] " + fileName);
}

}

PlotPointBuffer *plotPointBuffer(PlotRecord *plot, int selector)
{
    PlotBlock *p = findByRecord(plot);
    int trace = selector >> 8, coordinate = selector & 0xFF;
    if (!p || trace < 0 || trace >= MAX_PLOT_BUFFER_TRACES || coordinate > 1)
        return nullptr;
    while ((int)p->buffers.size() <= trace)
        addTraceBuffers(*p, 0);
    return &p->buffers[(size_t)trace]->coordinate[coordinate];
}

HostBlock *createPlotBlock(int x, int y)
{
    store().push_back(std::make_unique<PlotBlock>(x, y));
    return &store().back()->block;
}

void deletePlotBlock(HostBlock *block)
{
    if (!findBlock(block))
        return;
    if (host().plugin.event)
        host().plugin.event(253, (intptr_t)block);
    auto &blocks = store();
    blocks.erase(std::remove_if(blocks.begin(), blocks.end(),
                                [&](const auto &p) { return &p->block == block; }),
                 blocks.end());
}

void clearPlotBlocks()
{
    store().clear();
    namesGiven().clear();
}

std::vector<HostBlock *> plotBlocks()
{
    std::vector<HostBlock *> blocks;
    for (auto &p : store())
        blocks.push_back(&p->block);
    return blocks;
}

bool isPlotBlock(const HostBlock *block)
{
    return findBlock(block) != nullptr;
}

std::string plotFileBaseName(const HostBlock *block)
{
    const PlotBlock *p = findBlock(block);
    return p ? p->baseName : std::string();
}

std::string plotFileName(const HostBlock *block)
{
    std::string base = plotFileBaseName(block);
    return base.empty() ? base : base + ".svg";
}

bool repaintPlotWindow(HWND window)
{
    for (auto &p : store())
        if (p->block.window == window) {
            if (p->shown)
                writePlot(*p, false);
            return true;
        }
    return false;
}

}

using namespace hostapp;

extern "C" {

HostBlock *makePlotNode(int x, int y)
{
    return createPlotBlock(x, y);
}

void allocOverPlotBuffers(HostBlock *plot, int traceCount)
{
    PlotBlock *p = findBlock(plot);
    if (!p)
        return;
    /* Room for the plot's point count in every buffer; the plug-in grows a buffer
    ** itself when it stores past the end. */
    int traces = std::clamp(traceCount, 1, MAX_PLOT_BUFFER_TRACES);
    uint32_t capacity = reservableCount(p->record.pointCount);
    p->freeBuffers();
    for (int k = 0; k < traces; ++k)
        addTraceBuffers(*p, capacity);
}

void preallocDList(HostList *tracePoints, uint32_t *pointIndex)
{
    int trace = 0;
    PlotBlock *p = findByTraceList(tracePoints, &trace);
    if (!p || pointIndex != &p->record.pointIndex)
        return;
    /* One spare element, so that a writer counting points from 1 cannot run past the end. */
    uint32_t count = reservableCount(p->record.pointCount);
    if (count == 0 && p->record.pointCount > PLOT_MAX_POINTS && p->record.pointCount <= (uint32_t)INT32_MAX)
        platform::transcriptNote("[error] Plot " + std::string(p->record.title) + ": " +
                                 std::to_string(p->record.pointCount) + " points are more than the " +
                                 std::to_string(PLOT_MAX_POINTS) + " a plot holds");
    uint32_t reserved = count ? count + 1 : 0;
    gfree(tracePoints->items);
    tracePoints->items = (void **)newValues(reserved);
    tracePoints->capacity = reserved;
    tracePoints->count = 0;
}

/* The bounds flag is not needed here: the kind of plot follows from its record. */
void setXYPlotBounds(HostBlock *plot, uint8_t, int)
{
    PlotBlock *p = findBlock(plot);
    if (p)
        setBoundsFromData(p->record, p->view());
}

void showNode(HostBlock *plot)
{
    PlotBlock *p = findBlock(plot);
    if (!p)
        return;
    p->shown = true;
    if (p->baseName.empty())
        p->baseName = baseNameFor(*p);
    writePlot(*p, true);
}

}

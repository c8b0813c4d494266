/*
** hostapp/diagram_file.cpp: reading a diagram file (JSON, format in examples/README.md)
** into the engine's model: blocks and their parameters, compound blocks, wires,
** selection, reference points and initial states.  Every refusal names the block,
** wire or entry at fault and the line of the file where it stands.
*/
#include <algorithm>
#include <cmath>
#include <sstream>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "hostapp/diagram.h"
#include "hostapp/engine.h"
#include "hostapp/host_modules.h"
#include "hostapp/host_state.h"
#include "hostapp/json_places.h"
#include "hostapp/text_file.h"

namespace hostapp {

namespace {

using nlohmann::json;

/* How deep lists and objects may nest in a diagram file: room for the deepest compound
** blocks, and a bound on the index below, whose pointers grow with the depth. */
const size_t MAX_JSON_DEPTH = 100;

/* The line of every value of a JSON text, by JSON pointer ("/blocks/2/den").  The text
** is one that parsed, so a plain scan suffices; keys are taken unescaped.  Throws
** DiagramError for nesting deeper than MAX_JSON_DEPTH and for a key given twice in one
** object (the parser would silently keep the last). */
class LineIndex {
public:
    explicit LineIndex(const std::string &text);
    /* The line of the value, else of the closest enclosing value; 0 when none is known. */
    int lineOf(std::string pointer) const;

private:
    std::unordered_map<std::string, int> lines_;
};

LineIndex::LineIndex(const std::string &text)
{
    std::string problem;
    int problemLine = 0;
    auto note = [this](const JsonPlace &place) {
        lines_.emplace(place.pointer, place.line);
        return true;
    };
    if (!walkJsonPlaces(text, MAX_JSON_DEPTH, note, problem, problemLine))
        throw DiagramError{problemLine, problem};
}

int LineIndex::lineOf(std::string pointer) const
{
    for (;;) {
        auto found = lines_.find(pointer);
        if (found != lines_.end())
            return found->second;
        size_t slash = pointer.rfind('/');
        if (slash == std::string::npos)
            return 0;
        pointer.erase(slash);
    }
}

/* Data types a block's output may be given; the codes are the ones the plug-in reads
** (3-10 and 15 integer, 11 matrix, others floating point). */
const std::pair<const char *, uint8_t> dataTypes[] = {
    {"double", SIGNAL_TYPE_DOUBLE}, {"int8", 3},  {"uint8", 4},  {"int16", 5},
    {"uint16", 6},                  {"int32", 7}, {"uint32", 8}, {"int64", 9},
    {"uint64", 10},                 {"boolean", SIGNAL_TYPE_INT_EXTRA},
    {"matrix", SIGNAL_TYPE_MATRIX_A},
};

/* Limits that keep a hostile file from exhausting memory or the stack. */
const int MAX_PORTS = 64;
const int MAX_BLOCK_STATES = 1000;
/* The whole diagram too: every linearization differentiates in each state and runs the
** selected blocks for each, so the work grows with the square of the states. */
const size_t MAX_DIAGRAM_STATES = 1000;
/* Blocks, nested ones included: each costs a few kilobytes and a share of every evaluation. */
const size_t MAX_DIAGRAM_BLOCKS = 100000;
const int MAX_NESTING = 32;

bool isContinuousStateType(BlockType type)
{
    return type == BlockType::Integrator || type == BlockType::TransferFunction || type == BlockType::StateSpace ||
           type == BlockType::Compensator;
}

bool isDiscreteType(BlockType type)
{
    return type == BlockType::DiscreteTransferFunction || type == BlockType::DiscreteStateSpace ||
           type == BlockType::UnitDelay;
}

Signal *outputSignal(Point *output)
{
    while (!output->block->isLeaf())
        output = output->connectsTo;
    return output->block->output.get();
}

Signal *inputSignal(Point *input)
{
    while (input && !input->wiredFrom)
        input = input->fedBy;
    return input ? outputSignal(input->wiredFrom) : nullptr;
}

class Loader {
public:
    Loader(const std::string &text, Diagram &diagram) : lines_(text), diagram_(diagram) {}
    void load(const json &root);

private:
    LineIndex lines_;
    Diagram &diagram_;
    double defaultSamplePeriod_ = 0.0;
    int continuousStateBlocks_ = 0;
    size_t diagramStates_ = 0;
    size_t diagramBlocks_ = 0;
    /* The blocks of each scope (the top level, or a compound's children) by id, so that
    ** wires and ids are checked in constant time however many blocks there are. */
    std::unordered_map<const void *, std::unordered_map<std::string, Block *>> scopeIds_;

    [[noreturn]] void fail(const std::string &pointer, const std::string &message) const
    {
        throw DiagramError{lines_.lineOf(pointer), message};
    }

    double number(const json &fields, const char *key, const std::string &pointer, const std::string &what) const;
    double optionalNumber(const json &fields, const char *key, double otherwise, const std::string &pointer,
                          const std::string &what) const;
    std::vector<double> numbers(const json &value, const std::string &pointer, const std::string &what) const;
    void checkOrder(size_t states, const std::string &pointer, const std::string &what) const
    {
        if (states > (size_t)MAX_BLOCK_STATES)
            fail(pointer, what + ": " + std::to_string(states) + " states are more than the " +
                              std::to_string(MAX_BLOCK_STATES) + " a block may hold; split the model into smaller blocks");
    }
    int optionalCount(const json &fields, const char *key, int otherwise, const std::string &pointer,
                      const std::string &what) const;

    void readBlocks(const json &list, const std::string &pointer, Block *parent,
                    std::vector<std::unique_ptr<Block>> &blocks);
    void readParameters(Block &block, const json &fields, const std::string &pointer);
    void readStateSpace(Block &block, const json &fields, const std::string &pointer);
    void readLookup(Block &block, const json &fields, const std::string &pointer);
    int readExpression(Block &block, const json &fields, const std::string &pointer);
    void readCompensator(Block &block, const json &fields, const std::string &pointer);
    void readCompound(Block &block, const json &fields, const std::string &pointer);
    void readWires(const json &fields, const std::string &pointer, Block *owner,
                   std::vector<std::unique_ptr<Block>> &scope);
    Point *scopePoint(std::vector<std::unique_ptr<Block>> &scope, const std::string &text, bool defaultIsInput,
                      std::string &error) const;
    void setInitial(Block &block, const json &value, const std::string &pointer) const;
    void resolveSignals();
    void readSelection(const json &root);
    Point *readReference(const json &root, const char *key);
    void refuseValuesNotFinite() const;
};

double Loader::number(const json &fields, const char *key, const std::string &pointer, const std::string &what) const
{
    if (!fields.contains(key))
        fail(pointer, what + ": missing parameter '" + key + "'; add it as \"" + key + "\": NUMBER");
    const json &value = fields[key];
    if (!value.is_number())
        fail(pointer + "/" + key, what + ": parameter '" + key + "' must be a number; write one number, such as 2.5");
    return value.get<double>();
}

double Loader::optionalNumber(const json &fields, const char *key, double otherwise, const std::string &pointer,
                              const std::string &what) const
{
    return fields.contains(key) ? number(fields, key, pointer, what) : otherwise;
}

std::vector<double> Loader::numbers(const json &value, const std::string &pointer, const std::string &what) const
{
    std::vector<double> list;
    if (value.is_number())
        return {value.get<double>()};
    if (!value.is_array())
        fail(pointer, what + " must be a list of numbers, such as [1, 2]");
    for (const json &item : value) {
        if (!item.is_number())
            fail(pointer, what + " must be a list of numbers, such as [1, 2]");
        list.push_back(item.get<double>());
    }
    return list;
}

int Loader::optionalCount(const json &fields, const char *key, int otherwise, const std::string &pointer,
                          const std::string &what) const
{
    double count = optionalNumber(fields, key, otherwise, pointer, what);
    if (count != std::floor(count) || count < 1 || count > MAX_PORTS)
        fail(pointer + "/" + key, what + ": parameter '" + key + "' must be a whole number from 1 to " +
                                      std::to_string(MAX_PORTS));
    return (int)count;
}

void Loader::load(const json &root)
{
    if (!root.is_object())
        fail("", "the file is not one JSON object; write the diagram as one object with \"blocks\" and \"wires\" "
                 "(see examples/README.md)");
    static const char *const known[] = {"blocks", "wires", "selection", "input", "output", "perturbation",
                                        "samplePeriod", "initialStates", "title", "comment"};
    for (const auto &entry : root.items())
        if (std::find_if(std::begin(known), std::end(known), [&](const char *k) { return entry.key() == k; }) ==
            std::end(known))
            fail("/" + entry.key(), "unknown entry '" + entry.key() + "'; remove it or correct its name (the entries "
                                   "are blocks, wires, selection, input, output, samplePeriod, perturbation, "
                                   "initialStates, title and comment)");

    defaultSamplePeriod_ = optionalNumber(root, "samplePeriod", 0.0, "", "the diagram");
    if (defaultSamplePeriod_ < 0)
        fail("/samplePeriod", "the diagram: 'samplePeriod' must not be negative; give 0 or a period in seconds");
    diagram_.perturbation = optionalNumber(root, "perturbation", 0.05, "", "the diagram");
    if (!(diagram_.perturbation > 0))
        fail("/perturbation", "the diagram: 'perturbation' must be positive; give a step such as 0.05");

    if (!root.contains("blocks"))
        fail("", "the diagram has no \"blocks\"; add the list of its blocks as \"blocks\"");
    readBlocks(root["blocks"], "/blocks", nullptr, diagram_.blocks);
    readWires(root, "", nullptr, diagram_.blocks);
    resolveSignals();

    if (root.contains("initialStates")) {
        const json &states = root["initialStates"];
        if (!states.is_object())
            fail("/initialStates", "'initialStates' must map block names to states, such as {\"x\": 1}");
        for (const auto &entry : states.items()) {
            std::string pointer = "/initialStates/" + entry.key();
            Block *block = findBlockByPath(diagram_, entry.key());
            if (!block)
                fail(pointer, "initialStates: no block '" + entry.key() +
                                  "'; name a block by its path, such as \"outer/inner\"");
            setInitial(*block, entry.value(), pointer);
        }
    }
    readSelection(root);
    diagram_.outputReference = readReference(root, "output");
    diagram_.inputReference = readReference(root, "input");
    orderForEvaluation(diagram_);

    forEachBlock(diagram_.blocks, [this](Block &block) {
        diagram_.blockOf[&block.record] = &block;
        for (auto *ports : {&block.inputs, &block.outputs})
            for (const auto &point : *ports)
                diagram_.pointOf[&point->record] = point.get();
    });
    executeBlocks(diagram_.evaluationOrder, diagram_.time);
    refuseValuesNotFinite();
}

/* A value that is not finite at the operating point would spoil every model of the
** diagram; the first block in evaluation order that computes one is the one at fault. */
void Loader::refuseValuesNotFinite() const
{
    auto refuse = [](const Block &block, const char *what, double value) {
        throw DiagramError{block.line, "block '" + block.path + "': its " + what + " is " +
                                           (std::isnan(value) ? "NaN" : "infinite") +
                                           " at time 0; change the initial values or parameters that feed it"};
    };
    for (const Block *block : diagram_.evaluationOrder)
        if (block->output && !std::isfinite(*block->output->slot()))
            refuse(*block, "output", *block->output->slot());
    for (const Block *block : diagram_.evaluationOrder)
        for (double next : block->next)
            if (!std::isfinite(next))
                refuse(*block, isDiscreteType(block->type) ? "next state" : "derivative", next);
}

void Loader::readBlocks(const json &list, const std::string &pointer, Block *parent,
                        std::vector<std::unique_ptr<Block>> &blocks)
{
    std::string where = parent ? " of compound block '" + parent->path + "'" : "";
    int depth = 0;
    for (Block *outer = parent; outer; outer = outer->parent)
        ++depth;
    if (depth > MAX_NESTING)
        fail(pointer, "compound blocks nest more than " + std::to_string(MAX_NESTING) + " deep" + where + "; nest them less deeply");
    if (!list.is_array())
        fail(pointer, "\"blocks\"" + where + " must be a list of blocks, such as [{\"id\": \"k\", \"type\": \"gain\", \"gain\": 2}]");
    for (size_t i = 0; i < list.size(); ++i) {
        const json &fields = list[i];
        std::string at = pointer + "/" + std::to_string(i);
        std::string ordinal = "block #" + std::to_string(i + 1) + where;
        if (!fields.is_object())
            fail(at, ordinal + " must be an object with \"id\" and \"type\"");
        if (!fields.contains("id") || !fields["id"].is_string())
            fail(at, ordinal + " has no \"id\"; give each block an \"id\" text");
        std::string id = fields["id"].get<std::string>();
        if (id.empty() || id.find_first_of("./") != std::string::npos)
            fail(at + "/id", ordinal + ": the id '" + id + "' must be a nonempty name without '.' or '/'; rename the block");
        /* Not echoed: a NUL would cut the message short. */
        if (std::any_of(id.begin(), id.end(), [](char c) { return (unsigned char)c < 0x20 || c == 0x7F; }))
            fail(at + "/id", ordinal + ": the id holds a control character; rename the block with printable characters");
        auto block = std::make_unique<Block>();
        block->id = id;
        block->path = parent ? parent->path + "/" + id : id;
        block->parent = parent;
        block->line = lines_.lineOf(at);
        block->pointer = at;
        if (!scopeIds_[&blocks].emplace(id, block.get()).second)
            fail(at + "/id", "block '" + block->path + "': the id is used twice; give each block of one level its own id");
        if (++diagramBlocks_ > MAX_DIAGRAM_BLOCKS)
            fail(at, "block '" + block->path + "': the diagram holds more than the " +
                         std::to_string(MAX_DIAGRAM_BLOCKS) + " blocks it may hold; use fewer blocks");
        if (!fields.contains("type") || !fields["type"].is_string())
            fail(at, "block '" + block->path + "' has no \"type\"; give each block a \"type\" (see examples/README.md "
                     "for the block types)");
        std::string type = fields["type"].get<std::string>();
        if (!blockTypeFromName(type, block->type))
            fail(at + "/type", "block '" + block->path + "': unknown block type '" + type +
                                   "'; use one of the block types listed in examples/README.md");
        readParameters(*block, fields, at);
        blocks.push_back(std::move(block));
    }
}

void Loader::readParameters(Block &block, const json &fields, const std::string &pointer)
{
    std::string what = "block '" + block.path + "'";
    std::vector<std::string> allowed = {"id", "type", "comment"};
    int inputs = 1, outputs = 1;
    switch (block.type) {
    case BlockType::Constant:
        block.value = number(fields, "value", pointer, what);
        inputs = 0;
        allowed.insert(allowed.end(), {"value"});
        break;
    case BlockType::Step:
        block.value = number(fields, "value", pointer, what);
        block.stepTime = optionalNumber(fields, "time", 0.0, pointer, what);
        block.initialValue = optionalNumber(fields, "initialValue", 0.0, pointer, what);
        inputs = 0;
        allowed.insert(allowed.end(), {"value", "time", "initialValue"});
        break;
    case BlockType::Gain:
        block.gain = number(fields, "gain", pointer, what);
        allowed.push_back("gain");
        break;
    case BlockType::Sum:
        block.signs = "++";
        if (fields.contains("signs")) {
            if (!fields["signs"].is_string())
                fail(pointer + "/signs", what + ": parameter 'signs' must be a text of '+' and '-', such as \"+-\"");
            block.signs = fields["signs"].get<std::string>();
        }
        if (block.signs.empty() || block.signs.size() > (size_t)MAX_PORTS ||
            block.signs.find_first_not_of("+-") != std::string::npos)
            fail(pointer + "/signs", what + ": parameter 'signs' must be a text of '+' and '-', one per input, such as \"+-\"");
        inputs = (int)block.signs.size();
        allowed.push_back("signs");
        break;
    case BlockType::Product:
    case BlockType::Min:
    case BlockType::Max:
        inputs = optionalCount(fields, "inputs", 2, pointer, what);
        allowed.push_back("inputs");
        break;
    case BlockType::Saturation:
    case BlockType::DeadZone:
        block.lower = number(fields, "lower", pointer, what);
        block.upper = number(fields, "upper", pointer, what);
        if (block.lower > block.upper)
            fail(pointer + "/lower", what + ": 'lower' is above 'upper'; give the limits as lower <= upper");
        allowed.insert(allowed.end(), {"lower", "upper"});
        break;
    case BlockType::Sin:
    case BlockType::Cos:
    case BlockType::Abs:
    case BlockType::Exp:
    case BlockType::Sqrt:
    case BlockType::Tanh:
        break;
    case BlockType::Divide:
    case BlockType::Atan2:
        inputs = 2;
        break;
    case BlockType::Power:
        block.exponent = number(fields, "exponent", pointer, what);
        allowed.push_back("exponent");
        break;
    case BlockType::Lookup:
        readLookup(block, fields, pointer);
        allowed.insert(allowed.end(), {"x", "y"});
        break;
    case BlockType::Switch:
        inputs = 3;
        block.threshold = optionalNumber(fields, "threshold", 0.0, pointer, what);
        allowed.push_back("threshold");
        break;
    case BlockType::Expression:
        inputs = readExpression(block, fields, pointer);
        allowed.insert(allowed.end(), {"inputs", "expr", "parameters"});
        break;
    case BlockType::Compensator:
        readCompensator(block, fields, pointer);
        allowed.insert(allowed.end(), {"gain", "zeros", "poles"});
        break;
    case BlockType::Integrator:
        block.linear = LinearSystem{1, {0.0}, {1.0}, {1.0}, 0.0};
        break;
    case BlockType::TransferFunction:
    case BlockType::DiscreteTransferFunction: {
        for (const char *key : {"num", "den"})
            if (!fields.contains(key))
                fail(pointer, what + ": missing parameter '" + key + "'; give \"num\" and \"den\", the coefficients "
                                     "in descending powers");
        std::vector<double> num = numbers(fields["num"], pointer + "/num", what + ": parameter 'num'");
        std::vector<double> den = numbers(fields["den"], pointer + "/den", what + ": parameter 'den'");
        checkOrder(den.empty() ? 0 : den.size() - 1, pointer + "/den", what);
        std::string error;
        if (!realizeTransferFunction(num, den, block.linear, error))
            fail(pointer, what + ": " + error);
        block.num = num;
        block.den = den;
        allowed.insert(allowed.end(), {"num", "den"});
        break;
    }
    case BlockType::StateSpace:
    case BlockType::DiscreteStateSpace:
        readStateSpace(block, fields, pointer);
        allowed.insert(allowed.end(), {"a", "b", "c", "d"});
        break;
    case BlockType::UnitDelay:
        break;
    case BlockType::Compound:
        readCompound(block, fields, pointer);
        allowed.insert(allowed.end(), {"blocks", "wires", "inputs", "outputs"});
        inputs = outputs = -1;
        break;
    case BlockType::Plot:
        inputs = optionalCount(fields, "inputs", 1, pointer, what);
        outputs = 0;
        if (fields.contains("title") && !fields["title"].is_string())
            fail(pointer + "/title", what + ": parameter 'title' must be a text; put it in quotes");
        allowed.insert(allowed.end(), {"inputs", "title"});
        break;
    }

    size_t stateCount = block.type == BlockType::UnitDelay ? 1 : (size_t)block.linear.n;
    diagramStates_ += stateCount;
    if (diagramStates_ > MAX_DIAGRAM_STATES)
        fail(pointer, what + ": the diagram's states come to " + std::to_string(diagramStates_) +
                          " with this block, more than the " + std::to_string(MAX_DIAGRAM_STATES) +
                          " a diagram may hold; use a smaller model");
    block.state.assign(stateCount, 0.0);
    block.next.assign(stateCount, 0.0);
    if (isContinuousStateType(block.type) || isDiscreteType(block.type)) {
        allowed.push_back("initial");
        if (fields.contains("initial"))
            setInitial(block, fields["initial"], pointer + "/initial");
    }
    if (isContinuousStateType(block.type)) {
        /* By default state blocks are ordered as they stand in the file. */
        block.orderKeys[0] = (double)stateCount;
        block.orderKeys[1] = optionalNumber(fields, "stateOrder", ++continuousStateBlocks_, pointer, what);
        allowed.push_back("stateOrder");
    }
    if (isDiscreteType(block.type)) {
        block.samplePeriod = optionalNumber(fields, "samplePeriod", defaultSamplePeriod_, pointer, what);
        if (block.samplePeriod < 0)
            fail(pointer + "/samplePeriod", what + ": 'samplePeriod' must not be negative");
        allowed.push_back("samplePeriod");
    }
    if (outputs > 0 && block.isLeaf()) {
        allowed.push_back("dataType");
        if (fields.contains("dataType")) {
            const json &name = fields["dataType"];
            auto found = std::find_if(std::begin(dataTypes), std::end(dataTypes),
                                      [&](const auto &type) { return name.is_string() && name == type.first; });
            if (found == std::end(dataTypes))
                fail(pointer + "/dataType", what + ": unknown dataType " + name.dump() +
                                                "; use one of double, int8 ... uint64, boolean or matrix");
            block.dataType = found->second;
        }
    }
    for (const auto &entry : fields.items())
        if (std::find(allowed.begin(), allowed.end(), entry.key()) == allowed.end())
            fail(pointer + "/" + entry.key(), what + ": a " + blockTypeName(block.type) +
                                                  " block has no parameter '" + entry.key() +
                                                  "'; remove it or correct its name (examples/README.md lists "
                                                  "each type's parameters)");

    block.record.kind = blockKindCode(block.type);
    block.record.orderKeys = block.orderKeys.data();
    if (block.type == BlockType::DiscreteTransferFunction || block.type == BlockType::DiscreteStateSpace) {
        /* A period of 0 means the block updates at every step of the simulation: not sampled. */
        if (block.samplePeriod > 0)
            block.sampledRecord.sampleFlags |= SAMPLED_FLAG_IS_SAMPLED;
        block.sampledRecord.samplePeriod = block.samplePeriod;
        block.record.kindRecord = &block.sampledRecord;
    }
    if (inputs < 0)
        return;     /* a compound block made its own ports */
    for (int k = 1; k <= inputs + outputs; ++k) {
        auto point = std::make_unique<Point>();
        point->block = &block;
        point->isInput = k <= inputs;
        point->port = point->isInput ? k : k - inputs;
        point->record.elementIndex = 1;
        point->record.window = host().mainWindow;
        (point->isInput ? block.inputs : block.outputs).push_back(std::move(point));
    }
    if (outputs > 0) {
        block.output = std::make_unique<Signal>();
        block.output->producer = &block;
        block.output->record.dataType = block.dataType;
        if (block.dataType == SIGNAL_TYPE_MATRIX_A) {
            /* A 1 by 1 matrix: the stand-in's signals carry one value. */
            block.output->matrixStorage.assign(SIGNAL_MATRIX_FIRST / sizeof(double) + 1, 0.0);
            block.output->record.value.storage = (uint8_t *)block.output->matrixStorage.data();
        }
    }
}

void Loader::readStateSpace(Block &block, const json &fields, const std::string &pointer)
{
    std::string what = "block '" + block.path + "'";
    for (const char *key : {"a", "b", "c"})
        if (!fields.contains(key))
            fail(pointer, what + ": missing parameter '" + key + "'; give \"a\", \"b\" and \"c\" (and \"d\", "
                                 "0 when left out)");
    const json &a = fields["a"];
    if (!a.is_array())
        fail(pointer + "/a", what + ": parameter 'a' must be a list of rows, such as [[0, 1], [-2, -3]]");
    checkOrder(a.size(), pointer + "/a", what);
    LinearSystem &sys = block.linear;
    sys.n = (int)a.size();
    for (size_t i = 0; i < a.size(); ++i) {
        std::vector<double> row = numbers(a[i], pointer + "/a/" + std::to_string(i), what + ": a row of 'a'");
        if (row.size() != a.size())
            fail(pointer + "/a/" + std::to_string(i),
                 what + ": 'a' must be square (" + std::to_string(a.size()) + " numbers in each row)");
        sys.a.insert(sys.a.end(), row.begin(), row.end());
    }
    sys.b = numbers(fields["b"], pointer + "/b", what + ": parameter 'b'");
    sys.c = numbers(fields["c"], pointer + "/c", what + ": parameter 'c'");
    for (const char *key : {"b", "c"})
        if ((key[0] == 'b' ? sys.b : sys.c).size() != a.size())
            fail(pointer + "/" + key, what + ": parameter '" + key + "' must hold " + std::to_string(a.size()) +
                                          " numbers, one per state");
    sys.d = optionalNumber(fields, "d", 0.0, pointer, what);
}

void Loader::readLookup(Block &block, const json &fields, const std::string &pointer)
{
    std::string what = "block '" + block.path + "'";
    for (const char *key : {"x", "y"})
        if (!fields.contains(key))
            fail(pointer, what + ": missing parameter '" + key + "' (the table's breakpoints x and values y)");
    block.tableX = numbers(fields["x"], pointer + "/x", what + ": parameter 'x'");
    block.tableY = numbers(fields["y"], pointer + "/y", what + ": parameter 'y'");
    if (block.tableX.size() < 2 || block.tableX.size() != block.tableY.size())
        fail(pointer + "/y", what + ": 'x' and 'y' must hold the same number of values, at least 2");
    for (size_t i = 1; i < block.tableX.size(); ++i)
        if (!(block.tableX[i] > block.tableX[i - 1]))
            fail(pointer + "/x", what + ": the breakpoints 'x' must increase strictly; sort them and drop repeats");
}

/* The expression's parameters and formula; returns its number of inputs. */
int Loader::readExpression(Block &block, const json &fields, const std::string &pointer)
{
    std::string what = "block '" + block.path + "'";
    int inputs = optionalCount(fields, "inputs", 1, pointer, what);
    if (!fields.contains("expr") || !fields["expr"].is_string())
        fail(pointer, what + ": missing parameter 'expr' (a formula in u1 ... uN, such as \"k*u1/(1 + u2^2)\")");
    std::vector<std::pair<std::string, double>> parameters;
    if (fields.contains("parameters")) {
        const json &list = fields["parameters"];
        if (!list.is_object())
            fail(pointer + "/parameters", what + ": 'parameters' must map names to numbers, such as {\"k\": 2.5}");
        for (const auto &entry : list.items()) {
            if (!entry.value().is_number())
                fail(pointer + "/parameters/" + entry.key(), what + ": parameter '" + entry.key() + "' must be a number; write one number, such as 2.5");
            parameters.emplace_back(entry.key(), entry.value().get<double>());
        }
    }
    std::string error;
    block.expression = compileExpressionInModule(fields["expr"].get<std::string>(), inputs, parameters, error);
    if (!block.expression)
        fail(pointer + "/expr", what + ": " + error);
    block.inputValues.assign((size_t)inputs, 0.0);
    return inputs;
}

/* A root: a number (real) or a pair [re, im]. */
std::array<double, 2> rootOf(const json &value)
{
    if (value.is_number())
        return {value.get<double>(), 0.0};
    if (value.is_array() && value.size() == 2 && value[0].is_number() && value[1].is_number())
        return {value[0].get<double>(), value[1].get<double>()};
    throw std::invalid_argument("root");
}

void Loader::readCompensator(Block &block, const json &fields, const std::string &pointer)
{
    std::string what = "block '" + block.path + "'";
    block.compensatorGain = optionalNumber(fields, "gain", 1.0, pointer, what);
    for (const char *key : {"zeros", "poles"}) {
        std::vector<std::array<double, 2>> &roots = key[0] == 'z' ? block.zeros : block.poles;
        if (!fields.contains(key))
            continue;
        const json &list = fields[key];
        if (!list.is_array())
            fail(pointer + "/" + key, what + ": '" + key + "' must be a list of roots, each a number or [re, im]");
        checkOrder(list.size(), pointer + "/" + key, what);
        for (const json &item : list) {
            try {
                roots.push_back(rootOf(item));
            } catch (const std::invalid_argument &) {
                fail(pointer + "/" + key, what + ": '" + key + "' must be a list of roots, each a number or [re, im]");
            }
        }
    }
    std::string error;
    if (!realizeCompensator(block, error))
        fail(pointer, what + ": " + error);
}

void Loader::readCompound(Block &block, const json &fields, const std::string &pointer)
{
    std::string what = "compound block '" + block.path + "'";
    if (!fields.contains("blocks"))
        fail(pointer, what + ": missing parameter 'blocks'; give the blocks inside it as \"blocks\"");
    readBlocks(fields["blocks"], pointer + "/blocks", &block, block.children);
    if (block.children.empty())
        fail(pointer + "/blocks", what + " holds no blocks; put at least one block into it");

    for (bool isInput : {true, false}) {
        const char *key = isInput ? "inputs" : "outputs";
        if (!fields.contains(key))
            continue;
        const json &list = fields[key];
        if (!list.is_array() || list.size() > (size_t)MAX_PORTS)
            fail(pointer + "/" + key, what + ": '" + key + "' must be a list of inner ports, such as [\"inner.in\"]");
        for (size_t k = 0; k < list.size(); ++k) {
            std::string at = pointer + "/" + key + "/" + std::to_string(k);
            auto port = std::make_unique<Point>();
            port->block = &block;
            port->isInput = isInput;
            port->port = (int)k + 1;
            port->record.flags = 0x01;      /* resolved through getVecConnect */
            port->record.elementIndex = 1;
            port->record.window = host().mainWindow;
            std::vector<std::string> names;
            if (list[k].is_string())
                names.push_back(list[k].get<std::string>());
            else if (isInput && list[k].is_array() && !list[k].empty() &&
                     std::all_of(list[k].begin(), list[k].end(), [](const json &n) { return n.is_string(); }))
                names = list[k].get<std::vector<std::string>>();
            else
                fail(at, what + ": " + key + " " + std::to_string(k + 1) +
                             (isInput ? " must name inner input ports" : " must name one inner output port"));
            for (const std::string &name : names) {
                std::string error;
                Point *inner = scopePoint(block.children, name, isInput, error);
                if (!inner)
                    fail(at, what + ": " + key + " " + std::to_string(k + 1) + ": " + error);
                if (inner->isInput != isInput)
                    fail(at, what + ": " + key + " " + std::to_string(k + 1) + ": '" + name + "' is an " +
                                 (isInput ? "output; name an inner input port" : "input; name an inner output port"));
                if (isInput) {
                    if (inner->fedBy)
                        fail(at, what + ": input '" + inner->name() + "' is fed twice; name each inner input in one entry only");
                    inner->fedBy = port.get();
                }
                if (!port->connectsTo)
                    port->connectsTo = inner;
            }
            (isInput ? block.inputs : block.outputs).push_back(std::move(port));
        }
    }
    readWires(fields, pointer, &block, block.children);
}

Point *Loader::scopePoint(std::vector<std::unique_ptr<Block>> &scope, const std::string &text, bool defaultIsInput,
                          std::string &error) const
{
    size_t dot = text.rfind('.');
    std::string id = text.substr(0, dot);
    auto ids = scopeIds_.find(&scope);
    if (ids != scopeIds_.end()) {
        auto found = ids->second.find(id);
        if (found != ids->second.end())
            return portOf(*found->second, dot == std::string::npos ? "" : text.substr(dot + 1), defaultIsInput, error);
    }
    error = "no block '" + id + "'";
    if (!scope.empty() && scope.front()->parent)
        error += " in '" + scope.front()->parent->path + "'";
    error += "; name a block of the same level by its id";
    return nullptr;
}

void Loader::readWires(const json &fields, const std::string &pointer, Block *owner,
                       std::vector<std::unique_ptr<Block>> &scope)
{
    if (!fields.contains("wires"))
        return;
    std::string where = owner ? " in '" + owner->path + "'" : "";
    const json &wires = fields["wires"];
    if (!wires.is_array())
        fail(pointer + "/wires", "\"wires\"" + where + " must be a list of [\"from\", \"to\"] pairs");
    for (size_t i = 0; i < wires.size(); ++i) {
        const json &wire = wires[i];
        std::string at = pointer + "/wires/" + std::to_string(i);
        if (!wire.is_array() || wire.size() != 2 || !wire[0].is_string() || !wire[1].is_string())
            fail(at, "wire #" + std::to_string(i + 1) + where + " must be a pair [\"from\", \"to\"]");
        std::string from = wire[0].get<std::string>(), to = wire[1].get<std::string>();
        std::string what = "wire '" + from + "' -> '" + to + "'" + where;
        std::string error;
        Point *source = scopePoint(scope, from, false, error);
        if (!source)
            fail(at, what + ": " + error);
        if (source->isInput)
            fail(at, what + ": '" + from + "' is an input; a wire starts at an output");
        Point *target = scopePoint(scope, to, true, error);
        if (!target)
            fail(at, what + ": " + error);
        if (!target->isInput)
            fail(at, what + ": '" + to + "' is an output; a wire ends at an input");
        if (target->wiredFrom || target->fedBy)
            fail(at, what + ": input '" + target->name() + "' already has a wire; each input takes one wire (join signals with a sum block)");
        target->wiredFrom = source;
    }
}

void Loader::setInitial(Block &block, const json &value, const std::string &pointer) const
{
    std::string what = "block '" + block.path + "'";
    if (block.state.empty())
        fail(pointer, what + " has no state to set; leave out its initial state");
    std::vector<double> states = numbers(value, pointer, what + ": the initial state");
    if (states.size() != block.state.size())
        fail(pointer, what + ": the initial state must hold " + std::to_string(block.state.size()) + " number(s)");
    block.state = states;
}

void Loader::resolveSignals()
{
    forEachBlock(diagram_.blocks, [](Block &block) {
        for (const auto &point : block.outputs)
            point->signal = outputSignal(point.get());
        for (const auto &point : block.inputs) {
            point->signal = inputSignal(point.get());
            if (!point->signal && block.isLeaf()) {
                Point *outermost = point.get();
                while (outermost->fedBy)
                    outermost = outermost->fedBy;
                throw DiagramError{outermost->block->line, "input '" + outermost->name() + "' is not connected; wire a signal to it (a constant 0 if it is not used)"};
            }
            if (point->signal && block.isLeaf()) {
                /* A block's inputs come one after another, so a block reading a signal
                ** twice would be its last reader. */
                auto &readers = point->signal->readers;
                if (readers.empty() || readers.back() != &block)
                    readers.push_back(&block);
            }
        }
        for (auto *ports : {&block.inputs, &block.outputs})
            for (const auto &point : *ports)
                point->record.signal = point->signal ? &point->signal->record : nullptr;
    });
}

void Loader::readSelection(const json &root)
{
    std::vector<std::string> ids;
    if (root.contains("selection")) {
        const json &selection = root["selection"];
        if (!selection.is_array() || selection.empty())
            fail("/selection", "'selection' must be a nonempty list of block ids (leave it out to select every block)");
        for (size_t i = 0; i < selection.size(); ++i) {
            if (!selection[i].is_string())
                fail("/selection/" + std::to_string(i), "selection: entry " + std::to_string(i + 1) + " must be a block id");
            ids.push_back(selection[i].get<std::string>());
        }
    }
    std::string error;
    size_t failed = 0;
    if (!setSelection(diagram_, ids, error, failed))
        fail("/selection/" + std::to_string(failed), error);
}

Point *Loader::readReference(const json &root, const char *key)
{
    if (!root.contains(key))
        return nullptr;
    std::string at = std::string("/") + key;
    if (!root[key].is_string())
        fail(at, std::string(key) + ": must be a point BLOCK.PORT, such as \"ctrl.in\"");
    std::string error;
    Point *point = findPoint(diagram_, root[key].get<std::string>(), error);
    if (!point)
        fail(at, std::string(key) + " point: " + error);
    return point;
}

int lineOfByte(const std::string &text, size_t byte)
{
    size_t end = std::min(byte, text.size());
    return 1 + (int)std::count(text.begin(), text.begin() + (long)end, '\n');
}

}

bool loadDiagramText(const std::string &text, const std::string &name, std::string &error)
{
    json root;
    try {
        root = json::parse(text);
    } catch (const json::parse_error &e) {
        std::string detail = e.what();
        size_t column = detail.find(", column ");
        size_t colon = column == std::string::npos ? std::string::npos : detail.find(": ", column);
        if (colon != std::string::npos)
            detail.erase(0, colon + 2);
        int line = lineOfByte(text, e.byte ? e.byte - 1 : 0);
        error = name + ":" + std::to_string(line) + ": not valid JSON: " + detail;
        return false;
    } catch (const json::out_of_range &e) {
        /* A number beyond the range of a double: the parser names it but gives no place. */
        std::string detail = e.what();
        size_t open = detail.find('\''), close = detail.rfind('\'');
        if (open == std::string::npos || open + 1 >= close) {
            error = name + ": not valid JSON: " + detail;
            return false;
        }
        std::string number = detail.substr(open + 1, close - open - 1);
        size_t at = text.find(number);
        if (number.size() > 24)
            number = number.substr(0, 20) + "...";
        error = name + (at == std::string::npos ? "" : ":" + std::to_string(lineOfByte(text, at))) +
                ": the number " + number + " is beyond the range of a double; give a smaller number";
        return false;
    } catch (const json::exception &e) {
        error = name + ": not valid JSON: " + e.what();
        return false;
    }

    auto diagram = std::make_unique<Diagram>();
    diagram->name = name;
    try {
        Loader(text, *diagram).load(root);
    } catch (const DiagramError &e) {
        error = name + (e.line > 0 ? ":" + std::to_string(e.line) : std::string()) + ": " + e.message;
        return false;
    }
    setCurrentDiagram(std::move(diagram));
    return true;
}

bool loadDiagramFile(const std::string &path, std::string &error)
{
    std::string text;
    return readTextFile(path, "diagram", DIAGRAM_FILE_LIMIT, text, error) && loadDiagramText(text, path, error);
}

}

/*
** hostapp/engine.h: the diagram engine's model, shared by the files of the engine
** (diagram_file.cpp loads it, blocks.cpp evaluates single blocks, engine.cpp orders
** and runs them, linearization_services.cpp serves the plug-in).  Not for the rest
** of the host: that uses hostapp/diagram.h.
*/
#ifndef TERVAN_ENGINE_H
#define TERVAN_ENGINE_H

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/records.h"

namespace hostapp {

struct CompiledExpression;

/* ORDER BLOCK TYPES: blockTypeNames in blocks.cpp lists the names in this order. */
enum class BlockType {
    Constant, Step, Gain, Sum, Product, Saturation, Sin, Cos, Abs,
    Divide, Exp, Sqrt, Power, Tanh, Atan2, DeadZone, Lookup, Min, Max, Switch, Expression,
    Integrator, TransferFunction, StateSpace, Compensator,
    DiscreteTransferFunction, DiscreteStateSpace, UnitDelay,
    Compound, Plot,
};

struct Block;

/* A signal: the value one block output carries to the inputs wired to it. */
struct Signal {
    HostSignal record{};                /* binding layout; the live value is in it */
    std::vector<double> matrixStorage;  /* matrix-typed signals: storage the value points to */
    Block *producer = nullptr;          /* the leaf block that computes it */
    std::vector<Block *> readers;       /* leaf blocks that read it, each once */

    /* The double the engine reads and writes: the value field itself, or the
    ** first element of a matrix signal's storage. */
    double *slot();
};

/* A connection point: one input or output port of a block. */
struct Point {
    RefPoint record{};                  /* binding layout, handed to the plug-in */
    Block *block = nullptr;
    bool isInput = false;
    int port = 0;                       /* counted from 1 */
    Point *wiredFrom = nullptr;         /* input: the output point a wire brings to it */
    Point *fedBy = nullptr;             /* input inside a compound: the compound input feeding it */
    Point *connectsTo = nullptr;        /* compound port: the inner point it stands for */
    Signal *signal = nullptr;           /* resolved when the diagram is loaded */

    std::string name() const;           /* "path.out", "path.2" */
};

/* x' = A x + B u (continuous) or x[k+1] = A x[k] + B u[k] (discrete); y = C x + D u.
** A is n x n row-major, B and C hold n values. */
struct LinearSystem {
    int n = 0;
    std::vector<double> a, b, c;
    double d = 0.0;
};

struct Block {
    HostBlock record{};                 /* binding layout, handed to the plug-in */
    BlockType type = BlockType::Constant;
    std::string id;
    std::string path;                   /* "outer/inner" for nested blocks */
    int line = 0;                       /* line of the block in the diagram file, 0 if unknown */
    Block *parent = nullptr;

    /* Parameters (those of its type). */
    double value = 0.0;                 /* constant; step: value after the step */
    double initialValue = 0.0;          /* step: value before the step */
    double stepTime = 0.0;              /* step: seconds */
    double gain = 1.0;
    double lower = 0.0, upper = 0.0;    /* saturation, dead zone */
    double exponent = 1.0;              /* power */
    double threshold = 0.0;             /* switch: u2 >= threshold passes u1, else u3 */
    std::vector<double> tableX, tableY; /* lookup: breakpoints (increasing) and values */
    std::shared_ptr<CompiledExpression> expression;
    std::vector<double> inputValues;    /* expression: scratch for the inputs */
    double compensatorGain = 1.0;       /* compensator: K (s - z1)... / (s - p1)... */
    std::vector<std::array<double, 2>> zeros, poles;
    std::string pointer;                /* JSON pointer of the block in its diagram file */
    std::string signs;                  /* sum: one '+' or '-' per input */
    LinearSystem linear;                /* integrator, transfer functions, state space */
    std::vector<double> num, den;       /* transfer functions as written: descending powers */
    double samplePeriod = 0.0;          /* discrete blocks and unit delay: seconds, 0 = every step */
    uint8_t dataType = SIGNAL_TYPE_DOUBLE;

    std::array<double, 2> orderKeys{};  /* element 1: the state ordering key */
    SampledBlockRecord sampledRecord{}; /* kind record of kinds 82 and 83 */
    std::vector<double> state;          /* held states */
    std::vector<double> next;           /* derivatives (continuous) or next states (discrete) */
    /* A large linear block's state, input and next values at its last full product, kept
    ** while a Jacobian is taken (beginLinearReuse); valid is false otherwise. */
    struct {
        bool valid = false;
        std::vector<double> state, next;
        double input = 0.0;
    } reference;

    std::vector<std::unique_ptr<Point>> inputs;
    std::vector<std::unique_ptr<Point>> outputs;
    std::unique_ptr<Signal> output;     /* leaves with an output */
    std::vector<std::unique_ptr<Block>> children;   /* compound */

    bool isLeaf() const { return type != BlockType::Compound; }
    Signal *inputSignal(int index) const { return inputs[(size_t)index]->signal; }
};

/* The input perturbation of linearization when the diagram gives none. */
inline constexpr double DEFAULT_LIN_PERTURBATION = 0.05;

struct Diagram {
    std::string name;                   /* file name, for messages */
    std::vector<std::unique_ptr<Block>> blocks;     /* top level, in file order */
    std::vector<Block *> evaluationOrder;           /* every leaf, inputs before readers */
    std::vector<Block *> selection;                 /* the candidates, top level */
    Point *inputReference = nullptr;    /* the diagram's own "input" entry */
    Point *outputReference = nullptr;   /* the diagram's own "output" entry */
    double perturbation = DEFAULT_LIN_PERTURBATION;   /* answer of getLinPerturbation */
    double time = 0.0;                  /* seconds */
    int simulationSteps = 0;            /* tvnRequest code 8 requests answered */
    std::function<void()> stepObserver; /* called at each of them */
    std::unordered_map<const HostBlock *, Block *> blockOf;
    std::unordered_map<const RefPoint *, Point *> pointOf;
};

/* Calls visit(block) for every block, each before the blocks nested in it. */
template <typename Visit>
void forEachBlock(const std::vector<std::unique_ptr<Block>> &blocks, Visit visit)
{
    for (const auto &block : blocks) {
        visit(*block);
        forEachBlock(block->children, visit);
    }
}

/* The current diagram, or null. */
Diagram *currentDiagram();
void setCurrentDiagram(std::unique_ptr<Diagram> diagram);

/* A refused diagram: thrown while loading, turned into the loader's error text. */
struct DiagramError {
    int line;                           /* 0 when no line is known */
    std::string message;
};

/* blocks.cpp: the block library. */
bool blockTypeFromName(const std::string &name, BlockType &type);
const char *blockTypeName(BlockType type);
uint8_t blockKindCode(BlockType type);
bool hasFeedthrough(const Block &block);    /* does an output depend on an input now */
void evaluateOutput(Block &block, double time);
void evaluateNext(Block &block);            /* derivatives or next states */
/* While a Jacobian is taken, a linear block of LINEAR_REUSE_ORDER states or more whose
** state and input differ from its reference in a few entries only gets its next values
** from the reference's plus those entries' columns, O(n) instead of O(n^2). The end
** drops the references of `blocks`. */
inline constexpr int LINEAR_REUSE_ORDER = 16;
void beginLinearReuse();
void endLinearReuse(const std::vector<Block *> &blocks);
/* num and den in descending powers (as MATLAB); false with a reason when den's leading
** coefficient is 0, num's degree exceeds den's, or dividing by den's leading coefficient
** overflows. */
bool realizeTransferFunction(std::vector<double> num, std::vector<double> den, LinearSystem &sys,
                             std::string &error);

/* compensator_block.cpp: block.linear from the compensator's gain, zeros and poles;
** false with a reason when a complex root lacks its conjugate, a value is not finite, or
** there are more zeros than poles. */
bool realizeCompensator(Block &block, std::string &error);

/* engine.cpp: ordering and evaluation. */
void orderForEvaluation(Diagram &diagram);  /* throws DiagramError on an algebraic loop */
void executeBlocks(const std::vector<Block *> &blocks, double time);
/* The port of a block named by the text after the '.' (empty: input 1 or output 1 as
** defaultIsInput says); null with a message when the block has no such port. */
Point *portOf(Block &block, const std::string &port, bool defaultIsInput, std::string &error);
/* "path.port" or "path" (output 1) in the whole diagram. */
Point *findPoint(Diagram &diagram, const std::string &blockDotPort, std::string &error);
/* The same in the diagram loaded; null with a message when none is loaded. */
Point *findLoadedPoint(const std::string &blockDotPort, std::string &error);
Block *findBlockByPath(Diagram &diagram, const std::string &path);
/* Makes the top-level blocks `ids` the selection (all blocks when empty); false with a
** message, and `failed` the index of the id at fault, when one is unknown or repeated. */
bool setSelection(Diagram &diagram, const std::vector<std::string> &ids, std::string &error, size_t &failed);

/* reference_view.cpp: the points the plug-in has taken (highlighted), told apart as the
** selection's input and output; null where none is taken. */
struct TakenPoints {
    Point *input = nullptr, *output = nullptr;
};
TakenPoints takenReferencePoints(Diagram &diagram);

}

#endif

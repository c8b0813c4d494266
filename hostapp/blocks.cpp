/*
** hostapp/blocks.cpp: the block library of the stand-in host: each block type's
** name, kind code, direct feedthrough, output and state update, and the state-space
** realization of transfer functions.
*/
#include <algorithm>
#include <cmath>

#include "hostapp/engine.h"
#include "hostapp/host_modules.h"

namespace hostapp {

namespace {

struct BlockTypeInfo {
    const char *name;
    uint8_t kind;
};

/* ORDER BLOCK TYPES.  Kinds 9-11 (continuous state), 82/83 (possibly sampled) and
** 23 (unit delay) are the ones the plug-in knows; the others are the engine's own. */
const BlockTypeInfo blockTypes[] = {
    {"constant", 1},
    {"step", 2},
    {"gain", 3},
    {"sum", 4},
    {"product", 5},
    {"saturation", 30},
    {"sin", 31},
    {"cos", 32},
    {"abs", 33},
    {"divide", 34},
    {"exp", 35},
    {"sqrt", 36},
    {"power", 37},
    {"tanh", 38},
    {"atan2", 39},
    {"deadZone", 42},
    {"lookup", 43},
    {"min", 44},
    {"max", 45},
    {"switch", 46},
    {"expression", 47},
    {"integrator", BLOCK_KIND_STATE_A},
    {"transferFunction", BLOCK_KIND_STATE_B},
    {"stateSpace", BLOCK_KIND_STATE_C},
    {"compensator", BLOCK_KIND_STATE_B},
    {"discreteTransferFunction", BLOCK_KIND_SAMPLED_A},
    {"discreteStateSpace", BLOCK_KIND_SAMPLED_B},
    {"unitDelay", BLOCK_KIND_UNIT_DELAY},
    {"compound", 40},
    {"plot", 41},
};
static_assert(sizeof blockTypes / sizeof blockTypes[0] == (size_t)BlockType::Plot + 1);

bool isIntegerType(uint8_t code)
{
    return (code >= SIGNAL_TYPE_INT_FIRST && code <= SIGNAL_TYPE_INT_LAST) || code == SIGNAL_TYPE_INT_EXTRA;
}

/* The stand-in keeps every value as a double; an integer-typed output is cut toward zero. */
void writeOutput(Block &block, double value)
{
    if (isIntegerType(block.dataType))
        value = std::trunc(value);
    *block.output->slot() = value;
}

double input(const Block &block, int index)
{
    return *block.inputSignal(index)->slot();
}

/* Linear interpolation in the table; the end values are held beyond its ends. */
double lookup(const Block &block, double u)
{
    const std::vector<double> &x = block.tableX, &y = block.tableY;
    if (u <= x.front())
        return y.front();
    if (u >= x.back())
        return y.back();
    size_t k = (size_t)(std::upper_bound(x.begin(), x.end(), u) - x.begin());
    double t = (u - x[k - 1]) / (x[k] - x[k - 1]);
    return y[k - 1] + t * (y[k] - y[k - 1]);
}

double deadZone(const Block &block, double u)
{
    if (u > block.upper)
        return u - block.upper;
    if (u < block.lower)
        return u - block.lower;
    return 0.0;
}

/* next = a x + b u for the n x n row-major a.  Four rows at a time, each summed in
** the order b u, a_i0 x_0, a_i1 x_1, ...: the same result to the last bit as one row
** after the other, but four independent sums keep the adder busy where a single sum
** waits for each addition before the next (the Jacobian evaluates this for every state
** perturbed, and a state-space block of order 100 made it most of a linearization). */
void linearDerivatives(int n, const double *a, const double *b, double u, const double *x, double *next)
{
    int i = 0;
    for (; i + 4 <= n; i += 4) {
        const double *r0 = a + (size_t)i * n, *r1 = r0 + n, *r2 = r1 + n, *r3 = r2 + n;
        double s0 = b[i] * u, s1 = b[i + 1] * u, s2 = b[i + 2] * u, s3 = b[i + 3] * u;
        for (int j = 0; j < n; ++j) {
            s0 += r0[j] * x[j];
            s1 += r1[j] * x[j];
            s2 += r2[j] * x[j];
            s3 += r3[j] * x[j];
        }
        next[i] = s0, next[i + 1] = s1, next[i + 2] = s2, next[i + 3] = s3;
    }
    for (; i < n; ++i) {
        const double *row = a + (size_t)i * n;
        double sum = b[i] * u;
        for (int j = 0; j < n; ++j)
            sum += row[j] * x[j];
        next[i] = sum;
    }
}

double linearOutput(const Block &block)
{
    const LinearSystem &sys = block.linear;
    double y = 0.0;
    for (int i = 0; i < sys.n; ++i)
        y += sys.c[(size_t)i] * block.state[(size_t)i];
    if (sys.d != 0.0)
        y += sys.d * input(block, 0);
    return y;
}

}

double *Signal::slot()
{
    if (!matrixStorage.empty())
        return matrixStorage.data() + SIGNAL_MATRIX_FIRST / sizeof(double);
    return &record.value.scalar;
}

bool blockTypeFromName(const std::string &name, BlockType &type)
{
    for (size_t i = 0; i < sizeof blockTypes / sizeof blockTypes[0]; ++i) {
        if (name == blockTypes[i].name) {
            type = (BlockType)i;
            return true;
        }
    }
    return false;
}

const char *blockTypeName(BlockType type)
{
    return blockTypes[(size_t)type].name;
}

uint8_t blockKindCode(BlockType type)
{
    return blockTypes[(size_t)type].kind;
}

bool hasFeedthrough(const Block &block)
{
    switch (block.type) {
    case BlockType::Constant:
    case BlockType::Step:
    case BlockType::UnitDelay:
    case BlockType::Compound:
        return false;
    case BlockType::Integrator:
    case BlockType::TransferFunction:
    case BlockType::StateSpace:
    case BlockType::Compensator:
    case BlockType::DiscreteTransferFunction:
    case BlockType::DiscreteStateSpace:
        return block.linear.d != 0.0;
    default:
        return true;
    }
}

void evaluateOutput(Block &block, double time)
{
    switch (block.type) {
    case BlockType::Constant:
        writeOutput(block, block.value);
        break;
    case BlockType::Step:
        writeOutput(block, time >= block.stepTime ? block.value : block.initialValue);
        break;
    case BlockType::Gain:
        writeOutput(block, block.gain * input(block, 0));
        break;
    case BlockType::Sum: {
        double sum = 0.0;
        for (size_t i = 0; i < block.signs.size(); ++i)
            sum += block.signs[i] == '-' ? -input(block, (int)i) : input(block, (int)i);
        writeOutput(block, sum);
        break;
    }
    case BlockType::Product: {
        double product = 1.0;
        for (size_t i = 0; i < block.inputs.size(); ++i)
            product *= input(block, (int)i);
        writeOutput(block, product);
        break;
    }
    case BlockType::Saturation:
        writeOutput(block, std::fmin(std::fmax(input(block, 0), block.lower), block.upper));
        break;
    case BlockType::Sin:
        writeOutput(block, std::sin(input(block, 0)));
        break;
    case BlockType::Cos:
        writeOutput(block, std::cos(input(block, 0)));
        break;
    case BlockType::Abs:
        writeOutput(block, std::fabs(input(block, 0)));
        break;
    case BlockType::Divide:
        writeOutput(block, input(block, 0) / input(block, 1));
        break;
    case BlockType::Exp:
        writeOutput(block, std::exp(input(block, 0)));
        break;
    case BlockType::Sqrt:
        writeOutput(block, std::sqrt(input(block, 0)));
        break;
    case BlockType::Power:
        writeOutput(block, std::pow(input(block, 0), block.exponent));
        break;
    case BlockType::Tanh:
        writeOutput(block, std::tanh(input(block, 0)));
        break;
    case BlockType::Atan2:
        writeOutput(block, std::atan2(input(block, 0), input(block, 1)));
        break;
    case BlockType::DeadZone:
        writeOutput(block, deadZone(block, input(block, 0)));
        break;
    case BlockType::Lookup:
        writeOutput(block, lookup(block, input(block, 0)));
        break;
    case BlockType::Min:
    case BlockType::Max: {
        double extreme = input(block, 0);
        for (size_t i = 1; i < block.inputs.size(); ++i)
            extreme = block.type == BlockType::Min ? std::fmin(extreme, input(block, (int)i))
                                                   : std::fmax(extreme, input(block, (int)i));
        writeOutput(block, extreme);
        break;
    }
    case BlockType::Switch:
        writeOutput(block, input(block, 1) >= block.threshold ? input(block, 0) : input(block, 2));
        break;
    case BlockType::Expression:
        for (size_t i = 0; i < block.inputs.size(); ++i)
            block.inputValues[i] = input(block, (int)i);
        writeOutput(block, evaluateExpressionInModule(*block.expression, block.inputValues.data()));
        break;
    case BlockType::Integrator:
    case BlockType::TransferFunction:
    case BlockType::StateSpace:
    case BlockType::Compensator:
    case BlockType::DiscreteTransferFunction:
    case BlockType::DiscreteStateSpace:
        writeOutput(block, linearOutput(block));
        break;
    case BlockType::UnitDelay:
        writeOutput(block, block.state[0]);
        break;
    case BlockType::Compound:
    case BlockType::Plot:
        break;
    }
}

static bool linearReuse = false;

void beginLinearReuse()
{
    linearReuse = true;
}

void endLinearReuse(const std::vector<Block *> &blocks)
{
    linearReuse = false;
    for (Block *block : blocks)
        block->reference.valid = false;
}

/* The next values of a linear block from its reference when at most MOST_CHANGED states
** (and the input) differ from it: the reference's plus each change times its column of
** a (or b). A step of the Jacobian changes one state and the inputs it reaches, so the
** reference stays the operating point. Otherwise the full product, which becomes the
** reference. The sums differ from the full product's at rounding level only. */
static void referencedDerivatives(Block &block, double u)
{
    const int MOST_CHANGED = 2;
    const LinearSystem &sys = block.linear;
    const double *x = block.state.data();
    double *next = block.next.data();
    auto &r = block.reference;
    size_t n = (size_t)sys.n;
    size_t changed[MOST_CHANGED], count = 0;
    bool near = r.valid;
    for (size_t k = 0; near && k < n; ++k)
        if (x[k] != r.state[k]) {
            if (count == MOST_CHANGED)
                near = false;
            else
                changed[count++] = k;
        }
    if (!near) {
        linearDerivatives(sys.n, sys.a.data(), sys.b.data(), u, x, next);
        r.state.assign(x, x + n);
        r.next.assign(next, next + n);
        r.input = u;
        r.valid = true;
        return;
    }
    std::copy(r.next.begin(), r.next.end(), next);
    if (u != r.input)
        for (size_t i = 0; i < n; ++i)
            next[i] += (u - r.input) * sys.b[i];
    for (size_t c = 0; c < count; ++c) {
        size_t k = changed[c];
        double change = x[k] - r.state[k];
        for (size_t i = 0; i < n; ++i)
            next[i] += change * sys.a[i * n + k];
    }
}

void evaluateNext(Block &block)
{
    switch (block.type) {
    case BlockType::Integrator:
    case BlockType::TransferFunction:
    case BlockType::StateSpace:
    case BlockType::Compensator:
    case BlockType::DiscreteTransferFunction:
    case BlockType::DiscreteStateSpace: {
        const LinearSystem &sys = block.linear;
        if (linearReuse && sys.n >= LINEAR_REUSE_ORDER)
            referencedDerivatives(block, input(block, 0));
        else
            linearDerivatives(sys.n, sys.a.data(), sys.b.data(), input(block, 0), block.state.data(),
                              block.next.data());
        break;
    }
    case BlockType::UnitDelay:
        block.next[0] = input(block, 0);
        break;
    default:
        break;
    }
}

bool realizeTransferFunction(std::vector<double> num, std::vector<double> den, LinearSystem &sys,
                             std::string &error)
{
    while (num.size() > 1 && num.front() == 0.0)
        num.erase(num.begin());
    if (den.empty() || den.front() == 0.0) {
        error = "the denominator's leading coefficient is 0; drop the leading zeros";
        return false;
    }
    if (num.empty())
        num.push_back(0.0);
    size_t n = den.size() - 1;
    if (num.size() > den.size()) {
        error = "improper transfer function: numerator degree " + std::to_string(num.size() - 1) +
                " exceeds denominator degree " + std::to_string(n) +
                "; make the denominator's degree at least the numerator's";
        return false;
    }
    /* Controllable canonical form (as MATLAB's tf2ss): the first state row holds the
    ** negated denominator, the others shift; coefficients are in descending powers. */
    double lead = den.front();
    std::vector<double> a(n + 1), b(n + 1, 0.0);
    for (size_t i = 0; i <= n; ++i)
        a[i] = den[i] / lead;
    for (size_t i = 0; i < num.size(); ++i)
        b[n + 1 - num.size() + i] = num[i] / lead;

    sys.n = (int)n;
    sys.a.assign(n * n, 0.0);
    sys.b.assign(n, 0.0);
    sys.c.assign(n, 0.0);
    sys.d = b[0];
    for (size_t j = 0; j < n; ++j)
        sys.a[j] = -a[j + 1];
    for (size_t i = 1; i < n; ++i)
        sys.a[i * n + i - 1] = 1.0;
    if (n > 0)
        sys.b[0] = 1.0;
    for (size_t i = 0; i < n; ++i)
        sys.c[i] = b[i + 1] - a[i + 1] * b[0];
    auto finite = [](double x) { return std::isfinite(x); };
    if (!std::all_of(a.begin(), a.end(), finite) || !std::all_of(b.begin(), b.end(), finite) ||
        !std::all_of(sys.c.begin(), sys.c.end(), finite)) {
        error = "the coefficients overflow when divided by the denominator's leading one; scale the numerator and denominator";
        return false;
    }
    return true;
}

}

/*
** hostapp/expression_block.cpp: the expression block's formula through muParser: the
** inputs are parser variables bound to the block's own copies of its input values, the
** parameters are constants (folded when the formula is compiled).
*/
#include "hostapp/expression_block.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include <muParser.h>

namespace hostapp {

struct CompiledExpression {
    mu::Parser parser;
    std::vector<double> inputs;     /* the parser holds their addresses: never resized after binding */
};

namespace {

bool isName(const std::string &name)
{
    if (name.empty() || !(std::isalpha((unsigned char)name[0]) || name[0] == '_'))
        return false;
    for (char c : name)
        if (!(std::isalnum((unsigned char)c) || c == '_'))
            return false;
    return true;
}

std::string inputName(int index)
{
    return "u" + std::to_string(index + 1);
}

}

std::shared_ptr<CompiledExpression> compileExpression(const std::string &text, int inputs,
                                                      const std::vector<std::pair<std::string, double>> &parameters,
                                                      std::string &error)
{
    auto compiled = std::make_shared<CompiledExpression>();
    compiled->inputs.assign((size_t)inputs, 1.0);
    std::string known = inputs == 1 ? "the input is u1" : "the inputs are u1 ... " + inputName(inputs - 1);
    try {
        for (int i = 0; i < inputs; ++i)
            compiled->parser.DefineVar(inputName(i), &compiled->inputs[(size_t)i]);
        for (size_t k = 0; k < parameters.size(); ++k) {
            const auto &[name, value] = parameters[k];
            if (!isName(name)) {
                error = "the parameter name '" + name + "' is not a name (use letters, digits and '_', "
                        "starting with a letter)";
                return nullptr;
            }
            if (name.size() >= 2 && name[0] == 'u' && std::all_of(name.begin() + 1, name.end(), ::isdigit)) {
                error = "the parameter name '" + name + "' is kept for inputs; rename the parameter";
                return nullptr;
            }
            compiled->parser.DefineConst(name, value);
            known += (k == 0 ? "; the parameters are " : ", ") + name;
        }
        compiled->parser.SetExpr(text);
        compiled->parser.Eval();    /* surfaces unknown names and syntax errors now */
    } catch (const mu::Parser::exception_type &e) {
        error = "the expression '" + text + "' does not parse: " + e.GetMsg() + " (" + known + "); correct the formula";
        return nullptr;
    }
    return compiled;
}

double evaluateExpression(CompiledExpression &expression, const double *inputs)
{
    std::copy(inputs, inputs + expression.inputs.size(), expression.inputs.begin());
    try {
        return expression.parser.Eval();
    } catch (const mu::Parser::exception_type &) {
        return std::nan("");
    }
}

}

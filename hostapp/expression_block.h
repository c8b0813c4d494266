/*
** hostapp/expression_block.h: the expression block's formula, y = f(u1 ... uN) with named
** parameters, compiled once when the diagram is loaded and evaluated by muParser.
*/
#ifndef TERVAN_EXPRESSION_BLOCK_H
#define TERVAN_EXPRESSION_BLOCK_H

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace hostapp {

struct CompiledExpression;

/* Compiles `text` over the inputs u1 ... u`inputs` and the parameters (name, value);
** null with a message saying what to change when the text does not parse, names an
** unknown variable or function, or a parameter name is not usable. */
std::shared_ptr<CompiledExpression> compileExpression(const std::string &text, int inputs,
                                                      const std::vector<std::pair<std::string, double>> &parameters,
                                                      std::string &error);

/* The formula's value at the inputs (inputs[0] is u1); NaN when the parser fails. */
double evaluateExpression(CompiledExpression &expression, const double *inputs);

}

#endif

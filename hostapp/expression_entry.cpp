/*
** hostapp/expression_entry.cpp: the C-linkage entry of libpraxa_expression.so (see
** host_modules.h).
*/
#include "hostapp/expression_block.h"
#include "hostapp/host_modules.h"

extern "C" void praxaExpressionFunctions(ExpressionModuleFunctions *functions)
{
    functions->compile = hostapp::compileExpression;
    functions->evaluate = hostapp::evaluateExpression;
}

/*
** hostapp/host_modules.h: the host's optional modules beside the executable. The web page
** of `praxa serve` (libpraxa_serve.so, with the HTTP server), the diagram picture of `draw`
** (libpraxa_draw.so, with Graphviz) and the expression block's formulas
** (libpraxa_expression.so, with muParser) are loaded only when a command or a diagram needs
** them, so the everyday commands start without those libraries. A module's calls into the
** host resolve against this executable, as the plug-in's do.
**
** Each module exports one C-linkage entry:
**   libpraxa_draw.so:  int praxaDrawDiagram(const char *fileName, char *error, size_t errorSize)
**       writes the picture of the current diagram into the output folder (fileName empty:
**       the diagram's name with .svg); 1 when written, 0 with a message in `error`.
**   libpraxa_serve.so: int praxaServeSession(const char *diagramPath, int port)
**       serves the session as a web page until stopped; returns the exit status.
**   libpraxa_expression.so: void praxaExpressionFunctions(ExpressionModuleFunctions *functions)
**       fills in the module's compileExpression and evaluateExpression (expression_block.h).
*/
#ifndef TERVAN_HOST_MODULES_H
#define TERVAN_HOST_MODULES_H

#include <cstddef>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace hostapp {
struct CompiledExpression;
}

struct ExpressionModuleFunctions {
    std::shared_ptr<hostapp::CompiledExpression> (*compile)(const std::string &text, int inputs,
                                                            const std::vector<std::pair<std::string, double>> &parameters,
                                                            std::string &error);
    double (*evaluate)(hostapp::CompiledExpression &expression, const double *inputs);
};

/* Defined by the modules, never by the executable: it only finds them with dlsym. */
extern "C" int praxaDrawDiagram(const char *fileName, char *error, size_t errorSize);
extern "C" int praxaServeSession(const char *diagramPath, int port);
extern "C" void praxaExpressionFunctions(ExpressionModuleFunctions *functions);

namespace hostapp {

/* The draw command through libpraxa_draw.so; false with a message when the module cannot
** be loaded or the picture cannot be written. */
bool drawDiagramWithModule(const std::string &fileName, std::string &error);

/* `praxa serve` through libpraxa_serve.so; a missing module is a message on standard
** error and exit status 2, as when the port cannot be had. */
int serveWithModule(const std::string &diagramPath, int port);

/* compileExpression of expression_block.h through libpraxa_expression.so; null with a
** message when the module cannot be loaded or the formula does not compile. */
std::shared_ptr<CompiledExpression> compileExpressionInModule(const std::string &text, int inputs,
                                                              const std::vector<std::pair<std::string, double>> &parameters,
                                                              std::string &error);

/* evaluateExpression of expression_block.h, for an expression compiled by the above. */
double evaluateExpressionInModule(CompiledExpression &expression, const double *inputs);

}

#endif

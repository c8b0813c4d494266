/*
** hostapp/host_modules.cpp: finding, loading and calling the host's optional modules
** (see the header for each module's entry).
*/
#include "hostapp/host_modules.h"

#include <dlfcn.h>

#include <cstdio>

#include "hostapp/plugin_loader.h"

namespace hostapp {

namespace {

/* dlopens `library` beside the executable (never closed) and finds `entryName`; null with
** a message naming the module, what needs it, the loader's reason and the remedy. */
void *moduleEntry(const char *library, const char *entryName, const std::string &command, std::string &error)
{
    std::string path = pathBesideExecutable(library);
    void *module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    void *entry = module ? dlsym(module, entryName) : nullptr;
    if (!entry) {
        const char *reason = dlerror();
        error = command + " needs the module " + path + ", which cannot be loaded (" +
                (reason ? reason : "unknown error") + "); put " + library + " of the same build beside praxa";
    }
    return entry;
}

/* Filled in once, by the first expression compiled. */
ExpressionModuleFunctions expressionFunctions;

}

bool drawDiagramWithModule(const std::string &fileName, std::string &error)
{
    auto draw = reinterpret_cast<decltype(&praxaDrawDiagram)>(moduleEntry("libpraxa_draw.so", "praxaDrawDiagram", "the draw command", error));
    if (!draw)
        return false;
    char message[1024] = "";
    if (draw(fileName.c_str(), message, sizeof message))
        return true;
    error = message;
    return false;
}

int serveWithModule(const std::string &diagramPath, int port)
{
    std::string error;
    auto serve = reinterpret_cast<decltype(&praxaServeSession)>(moduleEntry("libpraxa_serve.so", "praxaServeSession", "the serve command", error));
    if (!serve) {
        std::fprintf(stderr, "praxa: %s\n", error.c_str());
        return 2;
    }
    return serve(diagramPath.c_str(), port);
}

std::shared_ptr<CompiledExpression> compileExpressionInModule(const std::string &text, int inputs,
                                                              const std::vector<std::pair<std::string, double>> &parameters,
                                                              std::string &error)
{
    if (!expressionFunctions.compile) {
        auto entry = reinterpret_cast<decltype(&praxaExpressionFunctions)>(
            moduleEntry("libpraxa_expression.so", "praxaExpressionFunctions", "the expression block", error));
        if (!entry)
            return nullptr;
        entry(&expressionFunctions);
    }
    return expressionFunctions.compile(text, inputs, parameters, error);
}

double evaluateExpressionInModule(CompiledExpression &expression, const double *inputs)
{
    return expressionFunctions.evaluate(expression, inputs);
}

}

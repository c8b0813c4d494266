/* Temporary command line. */
#include <cstdio>
#include "hostapp/cli.h"
namespace hostapp { int runCommandLine(int, char **) { std::puts("praxa: not built yet"); return 1; } }

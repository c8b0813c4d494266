/*
** hostapp/main.cpp: the praxa command line (stand-in host). See hostapp/cli.cpp.
*/
#include "hostapp/cli.h"

int main(int argc, char **argv)
{
    return hostapp::runCommandLine(argc, argv);
}

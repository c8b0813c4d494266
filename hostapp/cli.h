/*
** hostapp/cli.h: the praxa command line.
*/
#ifndef TERVAN_CLI_H
#define TERVAN_CLI_H

namespace hostapp {

/* praxa [options] [DIAGRAM] COMMAND [command options]; returns the exit status. */
int runCommandLine(int argc, char **argv);

}

#endif

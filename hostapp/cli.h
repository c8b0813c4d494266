/*
** hostapp/cli.h: the praxa command line.
*/
#ifndef TERVAN_CLI_H
#define TERVAN_CLI_H

namespace hostapp {

/* praxa [options] [DIAGRAM] COMMAND [command options]; returns the exit status. */
int runCommandLine(int argc, char **argv);

/* Reads the command line and its script as runCommandLine does, without loading or running
** anything; -1 when they are usable, else the exit status runCommandLine would give. */
int checkCommandLine(int argc, char **argv);

}

#endif

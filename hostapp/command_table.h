/*
** hostapp/command_table.h: the praxa commands (menu items of the plug-in) and how their
** options become the dialog actions a user would take.
*/
#ifndef TERVAN_COMMAND_TABLE_H
#define TERVAN_COMMAND_TABLE_H

#include <cstdint>
#include <string>
#include <vector>

#include "platform/driver.h"

namespace hostapp {

struct CommandSpec {
    const char *name;
    uint16_t id;                /* menu item of the plug-in; HOST_COMMAND for the host's own */
    bool available;             /* false: the analysis is not in this build */
    const char *summary;
};

inline constexpr uint16_t HOST_COMMAND = 0;

const std::vector<CommandSpec> &commandTable();
const CommandSpec *findCommand(const std::string &name);

/* A command with its dialog actions, ready to run. */
struct CommandRun {
    const CommandSpec *command = nullptr;
    std::vector<platform::DialogAction> actions;
    bool saveDesign = false;    /* compensator --save: write the handed-over design into the diagram file */
    std::string file;           /* a host command's --file */
};

/* Turns a command's options (args after the command name) into dialog actions.
** false with a message for an unknown or malformed option. */
bool parseCommandOptions(const CommandSpec &command, const std::vector<std::string> &args,
                         CommandRun &run, std::string &error);

/* One dialog action written as in a script: "type 101 sys.m", "click 207", "check 1029",
** "uncheck 1029", "select 107 2", "focus 102", "cancel". */
bool parseDialogAction(const std::vector<std::string> &words, platform::DialogAction &action,
                       std::string &error);

/* The help text of the commands and their options. */
std::string commandHelp();

}

#endif

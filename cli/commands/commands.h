// SPDX-License-Identifier: Apache-2.0
//
// Every command adds itself to the command line; one file a command.
#ifndef REELDB_CLI_COMMANDS_H
#define REELDB_CLI_COMMANDS_H

#include "line/command_line.h"

namespace reeldb::cli {

void addInit(CommandLine& line);
void addProject(CommandLine& line);
void addImport(CommandLine& line);
void addDiff(CommandLine& line);
void addExport(CommandLine& line);
void addList(CommandLine& line);
void addShow(CommandLine& line);
void addCreate(CommandLine& line);
void addSet(CommandLine& line);
void addRename(CommandLine& line);
void addCopy(CommandLine& line);
void addShots(CommandLine& line);
void addWhich(CommandLine& line);
void addReelsOf(CommandLine& line);
void addDelete(CommandLine& line);
void addUndelete(CommandLine& line);
void addTypes(CommandLine& line);
void addDevices(CommandLine& line);
void addDevice(CommandLine& line);
void addLabelMap(CommandLine& line);
void addLabelMapFor(CommandLine& line);
void addFields(CommandLine& line);
void addWatch(CommandLine& line);

/// The list of devices goes by two names: a command by itself, or one of the group.
void addDeviceList(CommandLine& line, CLI::App* group, const std::string& name);

/// All of them, in the order in which help names them.
void addCommands(CommandLine& line);

} // namespace reeldb::cli

#endif

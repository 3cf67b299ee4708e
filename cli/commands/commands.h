// SPDX-License-Identifier: Apache-2.0
//
// Adds the commands to the command line. There is one file for each command, or for each noun with its verbs.
#ifndef REELDB_CLI_COMMANDS_H
#define REELDB_CLI_COMMANDS_H

#include "line/command_line.h"

namespace reeldb::cli {

void addAlias(CommandLine& line);
void addCopy(CommandLine& line);
void addCreate(CommandLine& line);
void addDelete(CommandLine& line);
void addDevice(CommandLine& line);
void addDiff(CommandLine& line);
void addExport(CommandLine& line);
void addField(CommandLine& line);
void addHistory(CommandLine& line);
void addImport(CommandLine& line);
void addInit(CommandLine& line);
void addLabelMap(CommandLine& line);
void addList(CommandLine& line);
void addListFile(CommandLine& line);
void addMerge(CommandLine& line);
void addNames(CommandLine& line);
void addProject(CommandLine& line);
void addReelsOf(CommandLine& line);
void addRedo(CommandLine& line);
void addRename(CommandLine& line);
void addReport(CommandLine& line);
void addSet(CommandLine& line);
void addShot(CommandLine& line);
void addShots(CommandLine& line);
void addShow(CommandLine& line);
void addSplit(CommandLine& line);
void addType(CommandLine& line);
void addUndelete(CommandLine& line);
void addUndo(CommandLine& line);
void addWatch(CommandLine& line);
void addWhich(CommandLine& line);

/// Adds all commands, in the order of the help text.
void addCommands(CommandLine& line);

} // namespace reeldb::cli

#endif

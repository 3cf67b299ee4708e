// SPDX-License-Identifier: Apache-2.0
#include "commands/commands.h"

namespace reeldb::cli {

void addCommands(CommandLine& line)
{
  addInit(line);
  addImport(line);
  addDiff(line);
  addExport(line);
  addList(line);
  addShow(line);
  addCreate(line);
  addSet(line);
  addRename(line);
  addAlias(line);
  addMerge(line);
  addSplit(line);
  addCopy(line);
  addShots(line);
  addWhich(line);
  addReelsOf(line);
  addReport(line);
  addDelete(line);
  addUndelete(line);
  addUndo(line);
  addRedo(line);
  addHistory(line);
  addWatch(line);
  addListFile(line);
  addShot(line);
  addNames(line);
  addProject(line);
  addDevice(line);
  addLabelMap(line);
  addType(line);
  addField(line);
  line.addHelp();
}

} // namespace reeldb::cli

// SPDX-License-Identifier: Apache-2.0
#include "model/step.h"

#include "host/codes.h"
#include "reelhost/material.h"

namespace reelhost::model {

namespace {

constexpr const char *type = "log type", *imported = "imported", *entireMedium = "entire medium", *logName = "name",
                     *reelType = "reel type", *video = "video channels", *audio = "audio channels";

/// The values of a log that are not fields.
Values membersOf(const StoredLog& log)
{
  return {{type, std::to_string(log.type)},
          {imported, std::to_string(log.imported ? 1 : 0)},
          {entireMedium, std::to_string(log.entireMedium ? 1 : 0)},
          {logName, log.name},
          {reelType, log.reelType},
          {video, std::to_string(log.videoChannels)},
          {audio, std::to_string(log.audioChannels)}};
}

void setMembers(StoredLog& log, const Values& members)
{
  log.type = std::stoi(members.at(type));
  log.imported = members.at(imported) == "1";
  log.entireMedium = members.at(entireMedium) == "1";
  log.name = members.at(logName);
  log.reelType = members.at(reelType);
  log.videoChannels = std::stoi(members.at(video));
  log.audioChannels = std::stoi(members.at(audio));
}

} // namespace

std::optional<std::string> takeSteps(StoredLog& now, const StoredLog& from, const StoredLog& to)
{
  Values fields = valuesOf(now.fields), members = membersOf(now);
  std::optional<std::string> obstacle = takeSteps(fields, valuesOf(from.fields), valuesOf(to.fields));
  if (!obstacle)
    obstacle = takeSteps(members, membersOf(from), membersOf(to));
  now.fields.assign(fields.begin(), fields.end());
  setMembers(now, members);
  return obstacle;
}

std::optional<std::string> valueIn(const StoredLog& log, const std::string& name)
{
  const std::optional<std::string> field = valueIn(valuesOf(log.fields), name);
  return field ? field : valueIn(membersOf(log), name);
}

std::string idOf(const StoredLog& log)
{
  return valueIn(valuesOf(log.fields), shotTexts.front().key).value_or("");
}

std::string nameOf(const StoredLog& log)
{
  const bool isReel = log.type == codes::reelLog;
  for (const std::string& name : {isReel ? idOf(log) : log.name, isReel ? log.name : idOf(log)})
    if (!name.empty())
      return name;
  return "log " + std::to_string(log.number);
}

std::string nameOf(const KeptList& list)
{
  return list.file.empty() ? "list " + std::to_string(list.number) : list.file;
}

} // namespace reelhost::model

// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <climits>
#include <ctime>
#include <filesystem>
#include <system_error>
#include <utility>
#include <vector>

#include <pwd.h>
#include <unistd.h>

#include "base/shell_word.h"
#include "model/settings.h"
#include "reelhost/host.h"

namespace reelhost {

namespace {

struct CommandLine {
  std::string program;
  std::vector<std::string> words;
};

CommandLine& commandLine()
{
  static CommandLine& instance = *new CommandLine;
  return instance;
}

/// Where the value in the word begins: behind "field=", "--option=" or "-o", or at the start.
std::size_t startOfValue(const std::string& word)
{
  if (const std::size_t equals = word.find('='); equals < word.find('/'))
    return equals + 1;
  return word.size() > 2 && word[0] == '-' && word[1] != '-' && word[1] != '/' ? 2 : 0;
}

/// Whether the text leads through a folder. A name with a slash in it, as of a reel, does not.
bool leadsThrough(const std::string& folder)
{
  std::error_code error;
  return folder.empty() || folder[0] == '/' || folder[0] == '~' || folder[0] == '.' ||
         std::filesystem::is_directory(folder, error);
}

/// The word without the folders of a path in it.
std::string withoutFolder(const std::string& word)
{
  const std::size_t last = word.find_last_not_of('/');
  const std::size_t slash = last == std::string::npos ? last : word.rfind('/', last);
  if (slash == std::string::npos)
    return word;
  const std::size_t start = startOfValue(word);
  if (word[0] != '-' && !leadsThrough(word.substr(start, slash - start)))
    return word;
  return word.substr(0, start) + word.substr(slash + 1, last - slash);
}

/// At most longestCommand bytes; a longer line ends in "...", without a part of a character before it.
std::string shortened(std::string line)
{
  constexpr std::string_view mark = "...";
  if (line.size() <= longestCommand)
    return line;
  std::size_t end = longestCommand - mark.size();
  while (end > 0 && (static_cast<unsigned char>(line[end]) & 0xC0) == 0x80)
    --end;
  return line.substr(0, end) + std::string(mark);
}

std::string commandText(bool withFolders)
{
  std::string line;
  for (const std::string& word : commandLine().words)
    line.append(line.empty() ? "" : " ").append(reeldb::base::shellWord(withFolders ? word : withoutFolder(word)));
  return shortened(std::move(line));
}

std::string userName()
{
  const uid_t user = ::geteuid();
  std::vector<char> space(1024);
  passwd entry = {};
  passwd* found = nullptr;
  int error = 0;
  while ((error = ::getpwuid_r(user, &entry, space.data(), space.size(), &found)) == ERANGE)
    space.resize(2 * space.size());
  return error == 0 && found ? found->pw_name : std::to_string(user);
}

std::string machineName()
{
  char name[HOST_NAME_MAX + 1] = {};
  return ::gethostname(name, sizeof name - 1) == 0 ? name : "";
}

std::string workingFolder()
{
  std::error_code error;
  return std::filesystem::current_path(error).native();
}

} // namespace

void setCommandLine(std::string program, std::vector<std::string> words)
{
  commandLine() = {std::move(program), std::move(words)};
}

Origin currentOrigin()
{
  const Facility& facility = model::facilityOrNone();
  Origin origin;
  origin.time = std::time(nullptr);
  origin.program = commandLine().program;
  origin.command = commandText(facility.keepsNames());
  if (facility.keepsNames()) {
    origin.user = userName();
    origin.machine = machineName();
    origin.folder = workingFolder();
  }
  origin.elsewhere = facility.pendingChanges();
  return origin;
}

} // namespace reelhost

// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "reelhost/display_text.h"
#include "reelhost/facility.h"

namespace reelhost {

namespace {

constexpr std::string_view suffix = ".reels";
// Room for the suffix and for the names the database puts beside the file, within the 255 bytes of a file name.
constexpr std::size_t longestName = 200;

/// What is wrong with the name; empty when it can name a file of the projects' folder.
std::string flawOf(const std::string& name)
{
  if (name.empty())
    return "it is empty";
  if (name.size() > longestName)
    return "it is longer than " + std::to_string(longestName) + " bytes";
  if (name.front() == '.')
    return "it begins with a dot";
  if (name.find('/') != std::string::npos)
    return "it holds a slash";
  if (holdsControlCharacter(name))
    return "it holds a control character";
  return {};
}

} // namespace

void Facility::requireProjectName(const std::string& name)
{
  if (const std::string flaw = flawOf(name); !flaw.empty())
    throw Error(ErrorKind::Refused, "\"" + displayText(name) + "\": no name for a project (" + flaw + ")");
}

std::filesystem::path Facility::projectFile(const std::string& name) const
{
  requireProjectName(name);
  std::filesystem::path file = projectDirectory() / (name + std::string(suffix));
  std::error_code error, homeless; // what cannot be followed, the store cannot open
  const std::filesystem::path real = std::filesystem::weakly_canonical(file, error);
  const std::filesystem::path home = std::filesystem::weakly_canonical(directory_, homeless);
  if (!error && !homeless && std::mismatch(home.begin(), home.end(), real.begin(), real.end()).first != home.end())
    throw Error(ErrorKind::Refused,
                displayText(file.native()) + ": leads out of the facility (to " + displayText(real.native()) + ")");
  return file;
}

std::vector<std::string> Facility::projectNames() const
{
  std::vector<std::string> names;
  std::error_code error;
  for (std::filesystem::directory_iterator it(projectDirectory(), error), end; !error && it != end;
       it.increment(error)) {
    const std::string file = it->path().filename().string();
    if (file.size() <= suffix.size() || file.compare(file.size() - suffix.size(), suffix.size(), suffix) != 0)
      continue;
    std::string name = file.substr(0, file.size() - suffix.size());
    if (std::error_code none; it->is_regular_file(none) && flawOf(name).empty())
      names.push_back(std::move(name));
  }
  std::sort(names.begin(), names.end());
  return names;
}

} // namespace reelhost

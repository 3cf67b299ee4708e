// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "reelhost/display_text.h"
#include "reelhost/facility.h"

namespace reelhost {

namespace {

constexpr std::string_view suffix = ".reels";
// A file name has at most 255 bytes. This leaves room for the suffix and for the endings of the files beside it.
constexpr std::size_t longestName = 200;

/// Why the name cannot be the name of a project; empty if it can.
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
    throw Error(ErrorKind::Refused, "\"" + displayText(name) + "\": not a valid project name (" + flaw + ")");
}

std::filesystem::path Facility::projectFile(const std::string& name) const
{
  requireProjectName(name);
  std::filesystem::path file = projectDirectory() / (name + std::string(suffix));
  std::error_code error, homeless; // if a link cannot be followed, the store cannot open the file
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

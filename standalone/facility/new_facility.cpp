// SPDX-License-Identifier: Apache-2.0
//
// A new facility with files to start from. People then edit them.
#include <array>
#include <cerrno>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "reelhost/display_text.h"
#include "reelhost/facility.h"
#include "store/file_error.h"

namespace reelhost {

namespace {

constexpr std::string_view facilityToml = R"(# A reeldb facility. Edited by hand; no command writes to this file.

[facility]
name = "New facility"
default_project = "main"
# The reel type of new reels in projects that do not choose one themselves.
default_reel_type = "Tape 2ch"

[texts]
# Stands before the identifier in the name of a reel's log.
reel = "Reel"

# Names of the frame rates and the codes they stand for. 25 and 50 are the PAL family; 29.97, 30, 59.94 and 60 the NTSC
# family; all others the 24 frame family.
[frame_rates]
"25" = 3
"29.97" = 4
"30" = 5
"24" = 6
"23.98" = 7
"50" = 8
"59.94" = 9
"60" = 10

# The types of reels that import makes: the first rule that fits decides. Behind them stand built-in rules for "Sound file",
# "Still", "File" and "Audio only", if devicedata/reeltype.dat has these types.
# [[type_rule]]
# type = "Tape 4ch"
# name = "BC*"

# Settings shared by all projects. The display names of reel user fields count from 0:
# reel_userfield0 = "Scene"
[system]

# Capture devices. port: "9-pin", "1394", "device-named" (reels get the device's name) or "none".
# input: "composite", "s-video", "component", "sdi", "hdmi", "1394" or "none".
# tapes: the reel types it accepts; "Live" makes it a live source.
[[device]]
number = 0
id = 1
name = "Deck 1"
port = "9-pin"
input = "sdi"
audio_inputs = 4
tapes = ["Tape 2ch", "Tape 4ch", "Audio only"]

[[device]]
number = 1
id = 2
name = "Camera 1"
port = "1394"
input = "1394"
audio_inputs = 2
tapes = ["Tape 2ch", "Live"]
)";

// Each line is the name of a type, a colon, and its parameters, separated by single blanks.
constexpr std::string_view reelTypes = "Tape 2ch:VideoChannels=1 AudioChannels=2\n"
                                       "Tape 4ch:VideoChannels=1 AudioChannels=4\n"
                                       "Tape 8ch:VideoChannels=1 AudioChannels=8\n"
                                       "Audio only:VideoChannels=0 AudioChannels=8\n"
                                       "Film 35:VideoChannels=1 AudioChannels=0\n"
                                       "Disc:VideoChannels=1 AudioChannels=8\n"
                                       "Live:VideoChannels=1 AudioChannels=2\n"
                                       "Sound file:VideoChannels=0 AudioChannels=2\n"
                                       "Still:VideoChannels=1 AudioChannels=0\n"
                                       "File:VideoChannels=1 AudioChannels=2\n";

struct Entry {
  std::string_view label;
  bool inUse;
  std::string_view source, format;
};

struct Family {
  std::string_view port9Pin, port1394, noPort; ///< names of the three maps
  std::string_view comment;
  std::string_view format; ///< of its timecode labels
};

constexpr std::array<Family, 3> families = {{
    {"pal9pin", "pal1394", "paltofd", "PAL", "25 fps"},
    {"nts9pin", "ntsc1394", "ntstofd", "NTSC", "30 fps"},
    {"24f9pin", "24f1394", "24ftofd", "24 frame", "24 fps"},
}};

std::string entryText(const Entry& entry)
{
  return "\n[[entry]]\nlabel = \"" + std::string(entry.label) + "\"\nin_use = " + (entry.inUse ? "true" : "false") +
         "\nsource = \"" + std::string(entry.source) + "\"\nformat = \"" + std::string(entry.format) + "\"\n";
}

/// A map of fourteen labels. The first two are read from @p first and @p second, unless that is "none".
std::string labelMap(const Family& family, std::string_view device, std::string_view first, std::string_view second)
{
  std::string text = "# Label map: where the timecode labels of a clip are read, " + std::string(family.comment) +
                     ", " + std::string(device) + ".\n";
  const std::array<Entry, 14> entries = {{
      {"timecode", true, first, family.format},
      {"auxiliary timecode 1", second != "none", second, family.format},
      {"auxiliary timecode 2", false, "none", family.format},
      {"auxiliary timecode 3", false, "none", family.format},
      {"auxiliary timecode 4", false, "none", family.format},
      {"auxiliary timecode 5", false, "none", family.format},
      {"sound timecode", false, "none", family.format},
      {"film timecode", false, "none", "24 fps"},
      {"key number", false, "none", "key number"},
      {"ink number", false, "none", "ink number"},
      {"35mm footage", false, "none", "35mm feet+frames"},
      {"16mm footage", false, "none", "16mm feet+frames"},
      {"frame count", false, "none", "frame count"},
      {"user bits", false, "none", "text"},
  }};
  for (const Entry& entry : entries)
    text += entryText(entry);
  return text;
}

struct NewFile {
  std::string name; ///< below the folder of the facility
  std::string content;
};

/// All files of a new facility. facility.toml comes last, so that a folder with that file is a complete facility.
std::vector<NewFile> filesOfFacility()
{
  std::vector<NewFile> files;
  files.push_back({"devicedata/reeltype.dat", std::string(reelTypes)});
  for (const Family& family : families) {
    const auto add = [&](std::string_view name, const std::string& content) {
      files.push_back({"labelmaps/" + std::string(name) + ".toml", content});
    };
    add(family.port9Pin, labelMap(family, "over a 9-pin port", "9-pin ltc", "9-pin vitc"));
    add(family.port1394, labelMap(family, "over a 1394 port", "1394", "none"));
    add(family.noPort, labelMap(family, "without a control port", "time of day", "none"));
  }
  files.push_back({"facility.toml", std::string(facilityToml)});
  return files;
}

bool isThere(const std::filesystem::path& path)
{
  std::error_code error;
  return std::filesystem::exists(std::filesystem::symlink_status(path, error));
}

} // namespace

/// The new files and folders so far, which the destructor removes unless they are kept.
class NewFacility::Made {
public:
  Made() = default;
  Made(const Made&) = delete;
  Made& operator=(const Made&) = delete;
  ~Made()
  {
    files_.clear();
    while (!kept_ && !folders_.empty()) {
      ::rmdir(folders_.back().c_str()); // fails if another process has put something there meanwhile
      folders_.pop_back();
    }
  }

  void folder(const std::filesystem::path& path)
  {
    const auto isFolder = [&path] {
      std::error_code none;
      return std::filesystem::is_directory(path, none);
    };
    if (isFolder())
      return;
    if (path.has_parent_path() && path.parent_path() != path)
      folder(path.parent_path());
    if (::mkdir(path.c_str(), 0777) == 0)
      folders_.push_back(path);
    else if (const int error = errno; !isFolder())
      throw base::FileError(path, "cannot be made", error);
  }

  void file(const std::filesystem::path& path, std::string_view content)
  {
    base::writeNewFile(path, content);
    files_.emplace_back(path);
  }

  void keep()
  {
    for (base::TemporaryFile& file : files_)
      file.keep();
    kept_ = true;
  }

private:
  std::vector<std::filesystem::path> folders_; ///< outer folders first
  std::deque<base::TemporaryFile> files_;
  bool kept_ = false;
};

NewFacility::NewFacility(const std::filesystem::path& dir) : made_(std::make_unique<Made>())
{
  if (isThere(dir / "facility.toml"))
    throw Error(ErrorKind::Refused, displayText(dir.native()) + ": is already a facility (it has a facility.toml)");
  const std::vector<NewFile> files = filesOfFacility();
  for (const NewFile& file : files)
    if (isThere(dir / file.name))
      throw Error(ErrorKind::Refused, displayText((dir / file.name).native()) + ": already exists");

  constexpr std::array folders = {"devicedata", "labelmaps", "projects"};
  for (const char* const folder : folders)
    if (std::error_code none; std::filesystem::is_symlink(dir / folder, none))
      throw Error(ErrorKind::Refused,
                  displayText((dir / folder).native()) + ": is a link (a new facility has folders of its own)");

  withHostErrors([&] {
    made_->folder(dir);
    for (const char* const folder : folders)
      made_->folder(dir / folder);
    for (const NewFile& file : files)
      made_->file(dir / file.name, file.content);
    for (const char* const folder : {"devicedata", "labelmaps", ""})
      base::syncFolder(dir / folder);
  });
}

NewFacility::~NewFacility() = default;

void NewFacility::keep()
{
  made_->keep();
}

} // namespace reelhost

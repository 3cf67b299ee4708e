// SPDX-License-Identifier: Apache-2.0
//
// Files that are not what they seem, in every place where the command reads or finds a file: links, devices, folders,
// files far too large, files that grow, names with escape sequences. The command reports an error or works correctly,
// and changes nothing outside the facility.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sstream>
#include <string_view>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>

#include "cli/command_fixture.h"
#include "reelhost/display_text.h"

namespace fs = std::filesystem;
using namespace reeldb_tests;

namespace {

constexpr std::uintmax_t hugeSize = std::uintmax_t{4} << 30;
constexpr long littleMemory = 200L * 1024;    // kilobytes; it is some ten megabytes
constexpr std::uintmax_t readWhole = 1 << 20; // of larger files the size has to do

const std::string oneShot = event(1, "A001", "V", "01:00:00:00", "01:00:01:00");
const std::string twoShots = oneShot + event(2, "B001", "V", "01:00:00:00", "01:00:01:00");
const std::string oddName = "odd\n\x1b[31m\x07\x7f\xff\xc2\x9b\xe2\x80\xae";
const std::string oddNameShown = "odd\\n\\x1b[31m\\x07\\x7f\\xff\\u009b\\u202e";

std::string bytesOf(const fs::path& file)
{
  std::ifstream in(file, std::ios::binary);
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

/// Everything in and below the folder, by name: its kind and what it holds, and when it was written if that is wanted.
std::map<std::string, std::string> everythingIn(const fs::path& folder, bool times)
{
  std::map<std::string, std::string> all;
  const auto add = [&](const fs::path& path) {
    struct stat status = {};
    ASSERT_EQ(::lstat(path.c_str(), &status), 0) << path;
    std::ostringstream entry;
    entry << std::oct << status.st_mode << std::dec;
    if (times)
      entry << ' ' << status.st_mtim.tv_sec << '.' << status.st_mtim.tv_nsec;
    if (S_ISLNK(status.st_mode))
      entry << " -> " << fs::read_symlink(path).native();
    else if (S_ISREG(status.st_mode))
      entry << ' ' << status.st_size << ' ' << (fs::file_size(path) <= readWhole ? bytesOf(path) : "");
    all[path.native()] = entry.str();
  };
  add(folder);
  for (const auto& entry : fs::recursive_directory_iterator(folder))
    add(entry.path());
  return all;
}

/// Notices that somebody opens a file.
class OpenWatch {
public:
  explicit OpenWatch(const std::string& path) : number_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
  {
    EXPECT_GE(inotify_add_watch(number_, path.c_str(), IN_OPEN), 0) << path;
  }
  ~OpenWatch() { close(number_); }
  OpenWatch(const OpenWatch&) = delete;
  OpenWatch& operator=(const OpenWatch&) = delete;
  bool opened() const
  {
    char buffer[4096];
    return read(number_, buffer, sizeof buffer) > 0;
  }

private:
  int number_;
};

/// Whether a sanitizer or valgrind takes memory beside the command's.
bool takesMemoryItself()
{
  const char* const preloaded = std::getenv("LD_PRELOAD");
  return REELDB_SANITIZED || (preloaded && std::strstr(preloaded, "vgpreload_memcheck"));
}

/// A facility, and a folder outside it that links lead to.
class HostileFiles : public FacilityTest {
protected:
  void SetUp() override
  {
    FacilityTest::SetUp();
    site_ = fs::canonical(dir_.path()).native() + "/";
    dir_.write("cut.edl", oneShot);
    output({"import", "cut.edl"});
    outside_.write("mine", "mine");
    outside_.write("cut.edl", twoShots);
  }

  std::string outside(const std::string& name) const { return (outside_.path() / name).native(); }

  /// Makes a link in the facility, in the place of what is there.
  void link(const std::string& name, const std::string& target)
  {
    fs::remove_all(path(name));
    fs::create_symlink(target, path(name));
  }

  /// Makes a sparse file of 4 GiB outside the facility. Returns false if the file system cannot hold it.
  bool makeHugeFile()
  {
    std::error_code error;
    fs::resize_file(outside_.write("huge", ""), hugeSize, error);
    return !error;
  }

  /// Runs it, and expects that it ends by itself, takes little memory, prints nothing that steers a terminal,
  /// and leaves alone what is outside.
  ProcessResult attempt(const Words& words, bool terminal = false)
  {
    SCOPED_TRACE(testing::PrintToString(words));
    ProcessSetting setting = setting_;
    setting.terminal = terminal;
    const auto before = everythingIn(outside_.path(), true);
    ProcessResult result = reeldb(words, setting);
    if (!takesMemoryItself()) {
      EXPECT_LT(result.peakKilobytes, littleMemory);
    }
    EXPECT_EQ(result.signal, 0);
    EXPECT_EQ(everythingIn(outside_.path(), true), before);
    std::istringstream lines(result.out + result.err);
    for (std::string line; std::getline(lines, line);) {
      if (terminal && !line.empty() && line.back() == '\r') // a terminal's line ends are two bytes
        line.pop_back();
      EXPECT_EQ(line, reelhost::displayText(line));
    }
    return result;
  }

  /// Attempts it, with a pipe and with a terminal, and expects this refusal, and that the facility stays as it is.
  void expectError(const Words& words, int code, const std::string& message)
  {
    SCOPED_TRACE(testing::PrintToString(words));
    const auto before = everythingIn(dir_.path(), false);
    const ProcessResult result = attempt(words);
    EXPECT_EQ(result.code, code);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "reeldb: " + message + "\n");
    EXPECT_EQ(attempt(words, true).out, "reeldb: " + message + "\r\n");
    EXPECT_EQ(everythingIn(dir_.path(), false), before);
  }

  void expectEachError(const std::vector<Words>& lines, int code, const std::string& message)
  {
    for (const Words& words : lines)
      expectError(words, code, message);
  }

  /// Attempts it, expects success and returns standard output.
  std::string answer(const Words& words)
  {
    const ProcessResult result = attempt(words);
    EXPECT_EQ(result.code, 0) << result.err;
    EXPECT_EQ(result.err, "");
    return result.out;
  }

  TempFolder outside_;
  std::string site_; ///< as messages name the facility, with a slash
};

/// Every way to have a list read.
std::vector<Words> readersOf(const std::string& file)
{
  return {{"import", file}, {"import", "--dry-run", file}, {"diff", file}, {"reels-of", "--file", file}};
}

// --- Far too large -------------------------------------------------------------------------------

class HugeFile : public HostileFiles {
protected:
  void SetUp() override
  {
    HostileFiles::SetUp();
    if (!makeHugeFile())
      GTEST_SKIP() << "the file system of the temporary folder has no files of 4 GiB";
  }
};

TEST_F(HugeFile, IsNotAList)
{
  link("list", outside("huge"));
  expectEachError(readersOf("list"), 3, "list: too large (more than 268435456 bytes)");
}

TEST_F(HugeFile, IsNotAListOfReelTypes)
{
  link("devicedata/reeltype.dat", outside("huge"));
  expectEachError({{"type", "list"}, {"list"}, {"create", "R1"}, {"project", "list"}}, 3,
                  site_ + "devicedata/reeltype.dat: too large (more than 67108864 bytes)");
}

TEST_F(HugeFile, IsNeitherAConfigurationNorAState)
{
  fs::copy_file(path("facility.toml"), path("kept"));
  link("facility.toml", outside("huge"));
  expectEachError({{"list"}, {"create", "R1"}, {"project", "list"}}, 3,
                  site_ + "facility.toml: too large (more than 1048576 bytes)");
  fs::rename(path("kept"), path("facility.toml"));
  link("state.toml", outside("huge"));
  expectEachError({{"list"}, {"field", "name", "0=Scene"}}, 3,
                  site_ + "state.toml: too large (more than 1048576 bytes); the state file is damaged and stays as it "
                          "is (move it away to start a new one)");
}

TEST_F(HugeFile, IsNotALabelMap)
{
  link("labelmaps/huge.toml", outside("huge"));
  const std::string fault = site_ + "labelmaps/huge.toml: too large (more than 1048576 bytes)";
  expectError({"label-map", "check", "huge"}, 3, fault);
  const ProcessResult result = attempt({"label-map", "list", "--json"});
  EXPECT_EQ(result.code, 3);
  const Json maps = Json::parse(result.out);
  const auto huge = std::find_if(maps.begin(), maps.end(), [](const Json& map) { return map.at("name") == "huge"; });
  ASSERT_NE(huge, maps.end());
  EXPECT_EQ(huge->at("fault"), fault);
}

TEST_F(HugeFile, IsNotAProject)
{
  fs::rename(outside("huge"), path("projects/huge.reels"));
  const std::string fault = site_ + "projects/huge.reels: not a project (not an SQLite file)";
  expectEachError({{"-p", "huge", "list"}, {"-p", "huge", "create", "R1"}, {"-p", "huge", "import", "cut.edl"}}, 3,
                  fault);
  const ProcessResult checked = attempt({"-p", "huge", "project", "check"});
  EXPECT_EQ(checked.code, 3);
  EXPECT_EQ(checked.out, "huge: " + fault + "\n");
  const ProcessResult listed = attempt({"project", "list", "--json"});
  EXPECT_EQ(listed.code, 3);
  EXPECT_EQ(Json::parse(listed.out).at(0).at("fault"), fault);
}

TEST_F(HugeFile, BehindAProjectsEndOrAsItsLogDoesNoHarm)
{
  const std::string reels = answer({"list"});
  fs::resize_file(path("projects/main.reels"), hugeSize);
  EXPECT_EQ(answer({"list"}), reels);
  EXPECT_EQ(answer({"create", "R1"}), "R1\n");
  EXPECT_EQ(answer({"project", "check"}), "main: sound\n");
  for (const char* ending : {"-wal", "-shm", "-journal"}) {
    SCOPED_TRACE(ending);
    const std::string project = std::string("p") + ending;
    answer({"project", "new", project});
    fs::resize_file(dir_.write("projects/" + project + ".reels" + ending, ""), hugeSize);
    EXPECT_EQ(answer({"-p", project, "create", "R1"}), "R1\n");
    EXPECT_EQ(answer({"-p", project, "project", "check"}), project + ": sound\n");
  }
}

TEST_F(HostileFiles, ReelTypesOfSixtyFourMebibytesAreReadAndOfOneByteMoreNot)
{
  // The type, and lines with a name of nothing and parameters of white space.
  std::string most = "a:VideoChannels=1\r\n";
  const std::string line = ":" + std::string((1 << 20) - 3, ' ') + "\r\n";
  while (most.size() + line.size() <= 64u << 20)
    most += line;
  most += line.substr(0, (64u << 20) - most.size() - 2) + "\r\n";
  ASSERT_EQ(most.size(), 64u << 20);
  dir_.write("devicedata/reeltype.dat", most);
  EXPECT_EQ(Json::parse(attempt({"type", "list", "--json"}).out).at(0).at("name"), "a");
  dir_.write("devicedata/reeltype.dat", most + "\n");
  expectError({"type", "list"}, 3, site_ + "devicedata/reeltype.dat: too large (more than 67108864 bytes)");
}

// --- Links, devices, folders ---------------------------------------------------------------------

TEST_F(HostileFiles, ListIsReadThroughALink)
{
  link("list", outside("cut.edl"));
  EXPECT_EQ(answer({"import", "list"}), "list (edl): 2 clips, 1 shot added, 1 already there\n"
                                        "  1 reel created: B001\n"
                                        "  1 reel already there\n");
  EXPECT_EQ(Json::parse(answer({"reels-of", "--file", "list", "--json"})).size(), 2u);
}

TEST_F(HostileFiles, AnythingButAFileIsNotAList)
{
  const std::vector<std::tuple<std::string, int, std::string>> targets = {
      {"/dev/zero", 3, "not a regular file (a device)"},
      {"/dev/full", 3, "not a regular file (a device)"},
      {"/dev/ptmx", 3, "not a regular file (a device)"},
      {outside("cut.edl") + "/x", 1, "cannot be opened (Not a directory)"},
      {outside("nothing"), 1, "cannot be opened (No such file or directory)"},
      {"list", 3, "cannot be opened (Too many levels of symbolic links)"}};
  for (const auto& [target, code, cause] : targets) {
    link("list", target);
    expectEachError(readersOf("list"), code, "list: " + cause);
  }
}

TEST_F(HostileFiles, AFolderIsNotAList)
{
  link("list", outside_.path().native());
  for (const Words& words : {Words{"diff", "list"}, Words{"reels-of", "--file", "list"}})
    expectError(words, 3, "list: not a regular file (a folder)");
  // An import reads the files in it.
  const ProcessResult result = attempt({"import", "list"});
  EXPECT_EQ(result.code, 3);
  EXPECT_EQ(result.err,
            "reeldb: list/mine: not a cut list, a log file or a timeline (it has no event line and no Heading or "
            "Column)\n"
            "reeldb: import: nothing imported (1 of 2 files cannot be read; --skip-unreadable imports the others)\n");
}

/// To open a device can rewind a tape or hang up a line.
TEST_F(HostileFiles, AnythingButAFileIsNotOpened)
{
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  const OpenWatch watch(path("pipe"));
  expectEachError(readersOf("pipe"), 3, "pipe: not a regular file (a named pipe)");
  const Words check = {"label-map", "check", "pal9pin"};
  const std::vector<std::pair<std::string, Words>> places = {
      {"devicedata/reeltype.dat", check}, {"facility.toml", check},
      {"labelmaps/pal9pin.toml", check},  {"state.toml", check},
      {"projects/main.reels", check},     {"out", {"export", "--csv", "-o", "out", "--force"}}};
  dir_.write("state.toml", "");
  dir_.write("out", "");
  for (const auto& [name, words] : places) {
    SCOPED_TRACE(name);
    fs::rename(path(name), path("kept"));
    link(name, path("pipe"));
    EXPECT_NE(attempt(words).code, 0);
    fs::rename(path("kept"), path(name));
    EXPECT_EQ(attempt(words).code, 0);
  }
  EXPECT_FALSE(watch.opened());
}

TEST_F(HostileFiles, AnythingButAFileIsNotAListOfReelTypes)
{
  const std::vector<std::pair<std::string, std::string>> targets = {
      {"/dev/zero", "not a regular file (a device)"},
      {outside_.path().native(), "not a regular file (a folder)"},
      {"reeltype.dat", "cannot be opened (Too many levels of symbolic links)"}};
  for (const auto& [target, cause] : targets) {
    link("devicedata/reeltype.dat", target);
    expectEachError({{"type", "list"}, {"create", "R1"}}, 3, site_ + "devicedata/reeltype.dat: " + cause);
  }
}

TEST_F(HostileFiles, AnythingButAFileIsNotAFacility)
{
  fs::rename(path("facility.toml"), path("kept"));
  const std::vector<std::tuple<std::string, int, std::string>> targets = {
      {"/dev/zero", 3, "/facility.toml: not a regular file (a device)"},
      {outside_.path().native(), 3, "/facility.toml: not a regular file (a folder)"},
      {outside("nothing"), 1, ": not a facility (facility.toml not found)"},
      {"facility.toml", 3, "/facility.toml: cannot be opened (Too many levels of symbolic links)"}};
  for (const auto& [target, code, cause] : targets) {
    link("facility.toml", target);
    expectEachError({{"-C", ".", "list"}, {"-C", ".", "create", "R1"}}, code,
                    site_.substr(0, site_.size() - 1) + cause);
  }
  fs::rename(path("kept"), outside("facility.toml"));
  link("facility.toml", outside("facility.toml"));
  EXPECT_EQ(answer({"create", "R1"}), "R1\n");
}

TEST_F(HostileFiles, AnythingButAFileIsNotALabelMap)
{
  const std::vector<std::pair<std::string, std::string>> targets = {
      {"/dev/zero", "not a regular file (a device)"},
      {outside_.path().native(), "not a regular file (a folder)"},
      {outside("nothing"), "cannot be opened (No such file or directory)"},
      {"odd.toml", "cannot be opened (Too many levels of symbolic links)"}};
  for (const auto& [target, cause] : targets) {
    link("labelmaps/odd.toml", target);
    expectError({"label-map", "check", "odd"}, 3, site_ + "labelmaps/odd.toml: " + cause);
    EXPECT_EQ(attempt({"label-map", "list"}).code, 3);
  }
}

TEST_F(HostileFiles, AnythingButAProjectIsNotTouchedThroughALink)
{
  dir_.write("cut.txt", oneShot);
  const std::vector<std::tuple<std::string, int, std::string>> targets = {
      {site_ + "devicedata", 3, site_ + "projects/odd.reels: not a project (a folder)"},
      {site_ + "cut.txt", 3, site_ + "projects/odd.reels: not a project (not an SQLite file)"},
      {outside("nothing"), 1, "odd: no such project (this facility has: main)"}};
  for (const auto& [target, code, message] : targets) {
    link("projects/odd.reels", target);
    expectEachError({{"-p", "odd", "list"}, {"-p", "odd", "create", "R1"}, {"-p", "odd", "import", "cut.edl"}}, code,
                    message);
    expectError({"project", "new", "odd"}, 1, site_ + "projects/odd.reels: already exists");
  }
}

TEST_F(HostileFiles, LinkInTheFacilityIsTheProjectItLeadsTo)
{
  link("projects/other.reels", "main.reels");
  EXPECT_EQ(answer({"-p", "other", "create", "R1"}), "R1\n");
  EXPECT_NE(answer({"list"}).find("R1"), std::string::npos);
}

TEST_F(HostileFiles, WhatLinksHaveOutsideTheFacilityIsNotOpened)
{
  fs::copy_file(path("projects/main.reels"), outside("main.reels"));
  for (const std::string& target :
       {outside("main.reels"), outside("cut.edl"), outside_.path().native(), std::string("/dev/zero")}) {
    link("projects/odd.reels", target);
    const std::string fault = site_ + "projects/odd.reels: leads out of the facility (to " + target + ")";
    expectEachError({{"-p", "odd", "list"},
                     {"-p", "odd", "create", "R1"},
                     {"-p", "odd", "import", "cut.edl"},
                     {"-p", "odd", "project", "check"},
                     {"-p", "odd", "project", "compact"},
                     {"project", "new", "odd"}},
                    1, fault);
  }
  link("projects/odd.reels", outside("main.reels"));
  const ProcessResult listed = attempt({"project", "list", "--json"});
  EXPECT_EQ(listed.code, 3);
  EXPECT_EQ(Json::parse(listed.out).at(1).at("fault"),
            site_ + "projects/odd.reels: leads out of the facility (to " + outside("main.reels") + ")");

  link("projects", outside_.path().native());
  expectEachError({{"list"}, {"create", "R1"}, {"import", "cut.edl"}}, 1,
                  site_ + "projects/main.reels: leads out of the facility (to " + outside("main.reels") + ")");
  expectError({"project", "new", "new"}, 1,
              site_ + "projects/new.reels: leads out of the facility (to " + outside("new.reels") + ")");
}

TEST_F(HostileFiles, AnythingButARegularFileIsNotAProject)
{
  const std::vector<std::pair<std::string, std::string>> kinds = {{"folder", "a folder"}, {"pipe", "a named pipe"}};
  fs::create_directory(path("projects/folder.reels"));
  ASSERT_EQ(mkfifo(path("projects/pipe.reels").c_str(), 0600), 0);
  for (const auto& [name, kind] : kinds) {
    const std::string fault = site_ + "projects/" + name + ".reels: not a project (" + kind + ")";
    expectEachError({{"-p", name, "list"}, {"-p", name, "create", "R1"}, {"-p", name, "import", "cut.edl"}}, 3, fault);
    expectError({"project", "new", name}, 1, site_ + "projects/" + name + ".reels: already exists");
  }
}

TEST_F(HostileFiles, LinkInPlaceOfAFileBesideTheProjectIsRefused)
{
  for (const char* ending : {"-wal", "-shm", "-journal"})
    for (const std::string& target : {outside("mine"), outside("nothing"), std::string("/dev/full")}) {
      const std::string name = std::string("projects/main.reels") + ending;
      link(name, target);
      expectEachError({{"list"}, {"create", "R1"}, {"import", "cut.edl"}, {"project", "compact"}}, 3,
                      site_ + "projects/main.reels: damaged (" + site_ + name + " is a symbolic link)");
      fs::remove(path(name));
      link(std::string("projects/new.reels") + ending, target);
      expectError({"project", "new", "new"}, 1,
                  site_ + "projects/new.reels" + ending + ": left over from another project (move it away first)");
      fs::remove(path(std::string("projects/new.reels") + ending));
    }
}

TEST_F(HostileFiles, LinkInPlaceOfAStateFileIsNotWrittenThrough)
{
  const std::string name = "state.toml";
  outside_.write(name, "[system]\nreel_userfield1 = \"Take\"\n");
  link(name, outside("nothing"));
  expectError({"field", "name", "0=Scene"}, 1, site_ + name + ": cannot be opened (No such file or directory)");
  fs::remove(path(name));
  for (const std::string& target : {outside("mine"), outside("nothing"), std::string("/dev/full")}) {
    link("state.lock", target);
    expectError({"field", "name", "0=Scene"}, 3,
                site_ + "state.lock: cannot be opened (Too many levels of symbolic links)");
    fs::remove(path("state.lock"));
    link(".state.toml.new", target);
    EXPECT_EQ(Json::parse(answer({"field", "name", "0=Scene", "--json"})).at(0).at("name"), "Scene");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(path(name))));
    fs::remove(path(name));
    fs::remove(path("state.lock"));
  }
  // The values behind the link are kept; the file that holds them from now on is the facility's own.
  link(name, outside(name));
  const Json fields = Json::parse(answer({"field", "name", "0=Scene", "--json"}));
  EXPECT_EQ(fields.at(0).at("name"), "Scene");
  EXPECT_EQ(fields.at(1).at("name"), "Take");
}

TEST_F(HostileFiles, ExportWritesThroughALinkOnlyIntoAFileAndOnlyByForce)
{
  for (const char* device : {"/dev/full", "/dev/zero"}) {
    expectError({"export", "--edl", "-o", device}, 1, std::string(device) + ": not a regular file (a device)");
    link("out", device);
    expectError({"export", "--edl", "-o", "out", "--force"}, 1, "out: not a regular file (a device)");
  }
  link("out", outside_.path().native());
  expectError({"export", "--edl", "-o", "out"}, 1, "out: not a regular file (a folder)");
  expectError({"export", "--edl", "-o", "out", "--force"}, 1, "out: not a regular file (a folder)");
  link("out", outside("mine"));
  expectError({"export", "--edl", "-o", "out"}, 1, "out: already exists (--force replaces it)");
}

TEST_F(HostileFiles, ExportLeavesALinkThatLeadsToNoFile)
{
  for (const std::string& target : {outside("nothing"), outside("nothing/deeper"), std::string("out")}) {
    link("out", target);
    expectError({"export", "--edl", "-o", "out"}, 1, "out: a link that leads to no file");
    expectError({"export", "--edl", "-o", "out", "--force"}, 1, "out: a link that leads to no file");
  }
}

TEST_F(HostileFiles, FacilityIsMadeInTheFolderThatALinkNames)
{
  TempFolder place;
  link("new", place.path().native());
  EXPECT_EQ(attempt({"init", "new"}).code, 0);
  EXPECT_TRUE(fs::is_symlink(path("new")));
  EXPECT_TRUE(fs::exists(place.path() / "facility.toml"));
  EXPECT_EQ(answer({"-C", "new", "create", "R1"}), "R1\n");
}

TEST_F(HostileFiles, FacilityIsMadeNowhereElse)
{
  for (const std::string& target :
       {outside("mine"), outside("nothing"), std::string("/dev/full"), std::string("new")}) {
    link("new", target);
    expectError({"init", "new"}, 3, "new: cannot be made (File exists)");
    expectError({"init", "new/deeper"}, 3, "new: cannot be made (File exists)");
  }
  expectError({"init", outside("mine")}, 3, outside("mine") + ": cannot be made (File exists)");
  fs::remove(path("new"));
  for (const char* name : {"devicedata", "labelmaps", "projects"}) {
    fs::create_directory(path("new"));
    for (const std::string& target : {outside("nothing"), outside_.path().native(), std::string(".")}) {
      link(std::string("new/") + name, target);
      expectError({"init", "new"}, 1,
                  std::string("new/") + name + ": is a link (a new facility has folders of its own)");
    }
    fs::remove_all(path("new"));
  }
  for (const char* name : {"devicedata/reeltype.dat", "labelmaps/pal9pin.toml"})
    for (const std::string& target : {outside("mine"), outside("nothing")}) {
      const std::string file = std::string("new/") + name;
      fs::create_directories(fs::path(path(file)).parent_path());
      link(file, target);
      expectError({"init", "new"}, 1, file + ": already exists");
      fs::remove_all(path("new"));
    }
}

// --- Names ---------------------------------------------------------------------------------------

TEST_F(HostileFiles, NameThatCannotBeAProjectsMakesAndFindsNone)
{
  dir_.write("stray.reels", readFile("projects/main.reels"));
  const std::vector<std::tuple<std::string, std::string, std::string>> names = {
      {"../stray", "../stray", "it begins with a dot"},
      {"..", "..", "it begins with a dot"},
      {".", ".", "it begins with a dot"},
      {"a/../../stray", "a/../../stray", "it holds a slash"},
      {site_ + "stray", site_ + "stray", "it holds a slash"},
      {std::string(300, 'n'), std::string(300, 'n'), "it is longer than 200 bytes"},
      {"a\nb", "a\\nb", "it holds a control character"},
      {"a\x1b[2J", "a\\x1b[2J", "it holds a control character"},
      {"a\x7f", "a\\x7f", "it holds a control character"},
      {"a\xc2\x9b", "a\\u009b", "it holds a control character"}};
  for (const auto& [name, shown, why] : names) {
    const std::string message = "\"" + shown + "\": not a valid project name (" + why + ")";
    expectEachError({{"-p", name, "list"}, {"-p", name, "create", "R1"}, {"-p", name, "project", "check"}}, 1, message);
    expectError({"project", "new", name}, why == "it holds a control character" ? 2 : 1, message);
  }
}

TEST_F(HostileFiles, NameThatLeadsOutOfTheLabelMapsIsNotALabelMap)
{
  dir_.write("stray.toml", readFile("labelmaps/pal9pin.toml"));
  const std::string known = ": no such label map (this facility has: 24f1394, 24f9pin, 24ftofd, nts9pin, ntsc1394, "
                            "ntstofd, pal1394, pal9pin, paltofd)";
  const std::vector<std::pair<std::string, std::string>> names = {{"../stray", "../stray"},
                                                                  {"../labelmaps/pal9pin", "../labelmaps/pal9pin"},
                                                                  {"/dev/null", "/dev/null"},
                                                                  {"..", ".."},
                                                                  {"", ""},
                                                                  {std::string(300, 'n'), std::string(79, 'n') + "…"},
                                                                  {"a\nb", "a\\nb"},
                                                                  {"a\x1b[2J\xff", "a\\x1b[2J\\xff"}};
  for (const auto& [name, shown] : names)
    expectError({"label-map", "check", name}, 1, "\"" + shown + "\"" + known);
}

TEST_F(HostileFiles, OddNameOfAListIsShownWithEscapesEverywhere)
{
  dir_.write(oddName, twoShots + event(3, "BL", "V", "00:00:00:00", "00:00:01:00") +
                          "004  C\x1b[31m  V  C  01:00:99:00 01:00:01:00 01:00:00:00 01:00:01:00\n");
  for (const Words& words : {Words{"diff", "--gone", oddName}, Words{"reels-of", "--file", oddName},
                             Words{"import", "--dry-run", oddName}, Words{"import", oddName}, Words{"diff", oddName}})
    for (const bool terminal : {false, true}) {
      const ProcessResult result = attempt(words, terminal);
      EXPECT_EQ(result.code, 4) << result.err;
      EXPECT_NE((result.out + result.err).find(oddNameShown), std::string::npos) << result.out << result.err;
    }
  EXPECT_EQ(reelIds(), (Words{"A001", "B001"}));
  EXPECT_EQ(answer({"export", "--json", "-o", oddName + "2"}), oddNameShown + "2: 2 shots\n");
  EXPECT_EQ(readFile(oddName + "2"), answer({"export", "--json"}));
  expectError({"export", "--edl", "-o", oddName}, 1, oddNameShown + ": already exists (--force replaces it)");
}

TEST_F(HostileFiles, OddNameOfALabelMapIsShownWithEscapesEverywhere)
{
  fs::copy_file(path("labelmaps/pal9pin.toml"), path("labelmaps/" + oddName + ".toml"));
  dir_.write("labelmaps/" + oddName + "bad.toml", "\x1b = 1\n");
  for (const bool terminal : {false, true}) {
    EXPECT_EQ(attempt({"label-map", "check", oddName}, terminal).out.rfind(oddNameShown + ": fits", 0), 0u);
    EXPECT_EQ(attempt({"label-map", "check", oddName + "bad"}, terminal).code, 3);
    const ProcessResult result = attempt({"label-map", "list"}, terminal);
    EXPECT_EQ(result.code, 3);
    EXPECT_NE(result.out.find(oddNameShown + "bad"), std::string::npos) << result.out;
  }
}

TEST_F(HostileFiles, OddNameOfTheFacilityIsShownWithEscapesInEveryFault)
{
  ASSERT_EQ(attempt({"init", oddName}).code, 0);
  const std::string shown = site_ + oddNameShown + "/";
  const auto faultOf = [&](const std::string& file, const std::string& bytes, const Words& words) {
    const std::string good = readFile(oddName + "/" + file);
    dir_.write(oddName + "/" + file, bytes);
    Words line = {"-C", oddName};
    line.insert(line.end(), words.begin(), words.end());
    const ProcessResult result = attempt(line);
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(attempt(line, true).code, 3);
    dir_.write(oddName + "/" + file, good);
    return result.err.substr(0, 8 + shown.size() + file.size());
  };
  const std::vector<std::tuple<std::string, std::string, Words>> faults = {
      {"facility.toml", "\x1b\xff\n", {"list"}},
      {"facility.toml", "[\"\\u001b\\u009b\"]\n", {"list"}},
      {"devicedata/reeltype.dat", std::string(3000, '\x1b') + "\n", {"type", "list"}},
      {"labelmaps/pal9pin.toml", "entry = \"\\u001b\"", {"label-map", "check", "pal9pin"}},
      {"projects/main.reels", "\x1b", {"create", "R1"}}};
  for (const auto& [file, bytes, words] : faults)
    EXPECT_EQ(faultOf(file, bytes, words), "reeldb: " + shown + file);
}

TEST_F(HostileFiles, NamesOfReelTypesNeverReachATerminalAsTheyAre)
{
  dir_.write("devicedata/reeltype.dat", oddName.substr(4) + ":VideoChannels=\x1b\n\x1b]0;x\x07\nA\x9b:x\x1b=1\n");
  for (const Words& words : {Words{"type", "list"}, Words{"type", "list", "--json"}, Words{"list"},
                             Words{"create", "R1", "--type", "A\x9b"}, Words{"create", "R2", "--type", oddName}})
    for (const bool terminal : {false, true})
      EXPECT_NE((attempt(words, terminal).out + attempt(words).err).find("x1b"), std::string::npos);
}

// --- A list that grows ---------------------------------------------------------------------------

/// Appends a text to a file, a little at a time and without regard to lines, until it ends or is stopped.
class Appender {
public:
  Appender(const std::string& file, std::string_view text) : thread_([this, file, text] { append(file, text); }) {}
  ~Appender()
  {
    stop_ = true;
    thread_.join();
  }
  Appender(const Appender&) = delete;
  Appender& operator=(const Appender&) = delete;

private:
  void append(const std::string& file, std::string_view text)
  {
    // An import of a list twice as long takes four times as long: a slow program gets no longer list.
    const std::chrono::milliseconds pause(takesMemoryItself() ? 20 : 1);
    const int number = open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    while (!text.empty() && !stop_) {
      const ssize_t count = write(number, text.data(), std::min<std::size_t>(37, text.size()));
      text.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
      std::this_thread::sleep_for(pause);
    }
    close(number);
  }

  std::atomic<bool> stop_ = false;
  std::thread thread_; // last: it uses the others
};

TEST_F(HostileFiles, ListThatGrowsWhileItIsReadIsReportedForItsStart)
{
  constexpr std::size_t most = 20000;
  std::string list;
  Words lines, reels;
  for (std::size_t i = 0; i < most; ++i) {
    reels.push_back(numbered("T", 100000 + i));
    lines.push_back(event(static_cast<int>(i + 1), reels.back(), "V", "01:00:00:00", "01:00:01:00"));
    list += lines.back();
  }
  output({"project", "new", "live"});
  const std::string file = dir_.write("live.edl", list.substr(0, lines[0].size()));
  const Words import = {"-p", "live", "import", "--json", "live.edl"};
  std::size_t known = 0, grown = 0;
  {
    const Appender appender(file, std::string_view(list).substr(lines[0].size()));
    for (int round = 0; round < 8; ++round) {
      SCOPED_TRACE(round);
      const ProcessResult result = attempt(import);
      const Json report = Json::parse(result.out).at("files").at(0);
      const std::size_t count = report.at("clips");
      ASSERT_LE(known, count);
      ASSERT_LT(count, most);
      EXPECT_EQ(report.at("created"), Words(reels.begin() + static_cast<std::ptrdiff_t>(known),
                                            reels.begin() + static_cast<std::ptrdiff_t>(count)));
      EXPECT_EQ(report.at("matched"), Words(reels.begin(), reels.begin() + static_cast<std::ptrdiff_t>(known)));
      EXPECT_EQ(report.at("shots_added"), count - known);
      // An incomplete line is reported as far as it was written.
      const Json& rejected = report.at("rejected");
      EXPECT_EQ(result.code, rejected.empty() ? 0 : 4);
      ASSERT_LE(rejected.size(), 1u);
      if (!rejected.empty()) {
        EXPECT_EQ(rejected.at(0).at("line"), count + 1);
        EXPECT_EQ(lines[count].rfind(rejected.at(0).at("text"), 0), 0u);
      }
      EXPECT_EQ(answer({"-p", "live", "project", "check"}), "live: sound\n");
      grown += count > known;
      known = count;
    }
  }
  EXPECT_GT(grown, 3u) << "it hardly grew";
  const std::string text = readFile("live.edl");
  const std::size_t whole = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  dir_.write("live.edl", list.substr(0, text.rfind('\n') + 1));
  EXPECT_EQ(Json::parse(answer(import)).at("files").at(0).at("clips"), whole);
  const Json stored = Json::parse(answer({"-p", "live", "list", "--json"}));
  ASSERT_EQ(stored.size(), whole);
  for (std::size_t i = 0; i < whole; ++i) {
    EXPECT_EQ(stored.at(i).at("id"), reels[i]);
    EXPECT_EQ(stored.at(i).at("shots"), 1);
  }
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
#include "standalone/store/support.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <fcntl.h>
#include <signal.h>
#include <sqlite3.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace store_tests {

namespace fs = std::filesystem;
using namespace reelhost;

TempMount::TempMount(const std::string& options)
{
  mounted_ = ::mount("none", folder_.path().c_str(), "tmpfs", 0, options.c_str()) == 0;
}

TempMount::~TempMount()
{
  if (mounted_)
    ::umount2(folder_.path().c_str(), MNT_DETACH);
}

bool TempMount::makeReadOnly()
{
  return ::mount("none", folder_.path().c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr) == 0;
}

std::string bytesOf(const fs::path& file)
{
  std::ifstream in(file, std::ios::binary);
  EXPECT_TRUE(in.is_open()) << file;
  return std::string(std::istreambuf_iterator<char>(in), {});
}

void writeBytes(const fs::path& file, std::string_view bytes)
{
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  EXPECT_TRUE(out.flush().good()) << file;
}

std::int64_t modificationTime(const fs::path& file)
{
  struct stat status = {};
  EXPECT_EQ(::stat(file.c_str(), &status), 0) << file;
  return static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec;
}

std::vector<std::string> namesIn(const fs::path& folder)
{
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder))
    names.push_back(entry.path().filename().native());
  std::sort(names.begin(), names.end());
  return names;
}

std::string runSql(const fs::path& file, const std::string& sql)
{
  sqlite3* database = nullptr;
  std::string answer;
  EXPECT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
  sqlite3_busy_timeout(database, 10000);
  char* message = nullptr;
  const int code = sqlite3_exec(
      database, sql.c_str(),
      [](void* out, int, char** values, char**) {
        *static_cast<std::string*>(out) = values[0] ? values[0] : "NULL";
        return 0;
      },
      &answer, &message);
  EXPECT_EQ(code, SQLITE_OK) << sql << ": " << (message ? message : "");
  sqlite3_free(message);
  sqlite3_close(database);
  return answer;
}

ProjectInfo exampleInfo()
{
  ProjectInfo info;
  info.name = "Film \xC3\xA9";
  for (std::size_t i = 0; i < info.uuid.size(); ++i)
    info.uuid[i] = static_cast<unsigned char>(i * 17); // starts with a zero byte
  info.frameRate = 3;
  info.outputFrameRate = 8;
  return info;
}

StoredLog exampleLog(std::int64_t number, int type)
{
  const std::string n = std::to_string(number);
  StoredLog log;
  log.number = number;
  for (std::size_t i = 0; i < 8; ++i)
    log.uuid[i] = static_cast<unsigned char>(number >> (8 * i));
  log.tag = static_cast<std::uint16_t>(number);
  log.type = type;
  log.imported = number % 2 == 0;
  log.entireMedium = number % 3 == 0;
  log.name = "name " + n;
  log.videoChannels = static_cast<int>(number % 5);
  log.audioChannels = static_cast<int>(number % 7);
  log.reelType = "type " + n;
  log.fields = {{"reelid", "R" + n}};
  if (type == 9)
    log.fields.insert(log.fields.end(), {{"reel_available_flag", "1"}, {"reel_userfield0", "Scene " + n}});
  else
    log.fields.insert(log.fields.end(), {{"source_file", "clip" + n + ".mov"}, {"source_in", "01:00:00:00"}});
  return log;
}

std::string exampleListBytes(std::int64_t number)
{
  return "TITLE: " + std::to_string(number) + std::string("\0\xFF", 2) + std::string(5000, 'e');
}

KeptList exampleList(std::int64_t number, const std::vector<std::int64_t>& shots)
{
  const std::string n = std::to_string(number);
  KeptList list;
  list.number = number;
  list.digest = digestOf(exampleListBytes(number));
  list.file = "list" + n + ".edl";
  list.title = "TITLE " + n;
  list.format = "edl";
  int line = 2;
  for (const std::int64_t shot : shots) {
    const std::string s = std::to_string(shot);
    ListEvent& event = list.events.emplace_back();
    event.shot = shot;
    event.line = line += 3;
    event.clip = {"R" + s,
                  "clip " + s,
                  "file" + s + ".mov",
                  "01:00:00:00",
                  "01:00:01:00",
                  "10:00:00:00",
                  "10:00:01:00",
                  "VA1",
                  "other\nnames",
                  1,
                  2,
                  "29.97",
                  shot % 2 == 0,
                  "own R" + s,
                  shot % 2 == 1,
                  "id" + s,
                  {}, // what other lists call a source is kept with its shot
                  {},
                  "roll " + s,
                  "own R" + s};
    event.number = "00" + s;
    event.part = 2;
    event.reelText = "R" + s + "_";
    event.reelField = 32;
    event.transition = "D";
    event.duration = "024";
    event.speed = "-024.0";
    event.speedTimecode = "01:00:00:00";
    event.sourceIds = "umid\t1\nsource table\t2";
  }
  list.eventCount = static_cast<std::int64_t>(list.events.size());
  return list;
}

Changes listChanges(std::vector<KeptList> lists)
{
  Changes changes;
  for (const KeptList& list : lists)
    changes.listBytes[digestOf(exampleListBytes(list.number))] = exampleListBytes(list.number);
  changes.lists = std::move(lists);
  return changes;
}

std::string describe(const StoredLog& log)
{
  std::string out = std::to_string(log.number) + " " + log.kind + " tag " + std::to_string(log.tag) + " uuid ";
  for (const unsigned char byte : log.uuid)
    out += std::to_string(byte) + ".";
  out += " type " + std::to_string(log.type) + (log.imported ? " imported" : "") + (log.entireMedium ? " entire" : "");
  out += " name '" + log.name + "' " + std::to_string(log.videoChannels) + "v" + std::to_string(log.audioChannels) +
         "a reel type '" + log.reelType + "'";
  for (const auto& [key, value] : log.fields)
    out += "\n  " + key + "='" + value + "'";
  return out;
}

namespace {

template <class Read>
auto inUse(Store& store, Read read)
{
  store.begin(Access::Read, muchPatience);
  auto result = read();
  store.end();
  return result;
}

} // namespace

std::vector<std::string> reelsOf(Store& store)
{
  return inUse(store, [&] {
    std::vector<std::string> out;
    store.readReels([&](StoredLog&& log) { out.push_back(describe(log)); });
    return out;
  });
}

std::vector<std::string> othersOf(Store& store)
{
  return inUse(store, [&] {
    std::vector<std::string> out;
    store.readOthers([&](StoredLog&& log) { out.push_back(describe(log)); });
    return out;
  });
}

std::vector<KeptList> listsOf(Store& store)
{
  return inUse(store, [&] {
    std::vector<KeptList> lists;
    store.lists()->readListHeads([&](KeptList&& list) { lists.push_back(std::move(list)); });
    for (KeptList& list : lists)
      list.events = store.lists()->eventsOf(list.number);
    return lists;
  });
}

std::vector<std::int64_t> numbersOf(Store& store)
{
  return inUse(store, [&] {
    std::vector<std::int64_t> out;
    store.readReels([&](StoredLog&& log) { out.push_back(log.number); });
    store.readOthers([&](StoredLog&& log) { out.push_back(log.number); });
    return out;
  });
}

namespace {

template <class Read>
auto inHistory(Store& store, Read read)
{
  store.begin(Access::Read, muchPatience);
  auto result = read(*store.history());
  store.end();
  return result;
}

} // namespace

Inverse inverseOfLastDeletion(Store& store)
{
  return inHistory(store, [](History& history) {
    Inverse inverse;
    inverse.revision = lastDeletion(history);
    if (inverse.revision != 0)
      for (LogChange& change : history.changesOf(inverse.revision).logs)
        if (isRestorable(change))
          inverse.logs.push_back(std::move(*change.before));
    return inverse;
  });
}

std::vector<StoredLog> deletedLogsOf(Store& store)
{
  return inverseOfLastDeletion(store).logs;
}

std::vector<Revision> revisionsOf(Store& store)
{
  return inHistory(store, [](History& history) {
    std::vector<Revision> revisions;
    history.readRevisions([&](Revision&& revision) {
      revisions.insert(revisions.begin(), std::move(revision));
      return true;
    });
    return revisions;
  });
}

RevisionChanges changesOf(Store& store, std::int64_t revision)
{
  return inHistory(store, [&](History& history) { return history.changesOf(revision); });
}

std::int64_t trashCountOf(Store& store)
{
  return inHistory(store, [](History& history) { return history.trashCount(); });
}

void store(Store& store, const Changes& changes)
{
  store.begin(Access::Write, muchPatience);
  store.commit(changes);
}

Changes logChanges(std::vector<StoredLog> logs)
{
  Changes changes;
  changes.logs = std::move(logs);
  return changes;
}

std::string errorOf(const std::function<void()>& work)
{
  static const char* const kinds[] = {"NotFound", "Refused", "ReadOnly", "Busy", "Unreadable", "Io"};
  try {
    work();
  } catch (const Error& error) {
    return std::string(kinds[static_cast<int>(error.kind())]) + ": " + error.what();
  }
  return "nothing";
}

Child::Child(const std::function<void()>& work)
{
  int done[2], release[2];
  if (::pipe2(done, O_CLOEXEC) != 0 || ::pipe2(release, O_CLOEXEC) != 0)
    throw std::runtime_error("no pipe");
  pid_ = ::fork();
  if (pid_ < 0)
    throw std::runtime_error("no process");
  if (pid_ == 0) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // a test that crashes leaves nobody behind
    ::close(done[0]);
    ::close(release[1]);
    int status = 0;
    try {
      work();
    } catch (const std::exception& error) {
      std::fprintf(stderr, "child: %s\n", error.what());
      status = 1;
    }
    char byte = 0;
    if (::write(done[1], "d", 1) != 1 || ::read(release[0], &byte, 1) != 1)
      status = 2;
    ::_exit(status);
  }
  ::close(done[1]);
  done_ = done[0];
  keep_ = release[0]; // open here too, so that writing to a dead child is no broken pipe
  release_ = release[1];
}

Child::~Child()
{
  kill();
  ::close(done_);
  ::close(release_);
  ::close(keep_);
}

void Child::waitUntilDone()
{
  char byte = 0;
  EXPECT_EQ(::read(done_, &byte, 1), 1) << "the other process ended early";
}

int Child::waitForExit()
{
  // A byte, not the end of the pipe: other children may have inherited it. A child that was killed reads no more.
  [[maybe_unused]] const ssize_t written = ::write(release_, "r", 1);
  int status = 0;
  ::waitpid(pid_, &status, 0);
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void Child::kill()
{
  if (pid_ < 0)
    return;
  ::kill(pid_, SIGKILL);
  int status = 0;
  ::waitpid(pid_, &status, 0);
  pid_ = -1;
}

void storeAndDie(const fs::path& file, const Changes& changes)
{
  Child writer([&] {
    const auto project = makeSqliteStore(file);
    store(*project, changes);
    ::raise(SIGKILL);
  });
  EXPECT_EQ(writer.waitForExit(), -1);
  EXPECT_GT(fs::file_size(file.native() + "-wal"), 0u);
}

} // namespace store_tests

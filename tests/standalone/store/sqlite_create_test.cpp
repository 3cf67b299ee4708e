// SPDX-License-Identifier: Apache-2.0
#include <memory>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;
namespace fs = std::filesystem;

class SqliteCreate : public testing::Test {
protected:
  fs::path file() const { return folder_ / "new.reels"; }
  fs::path folder() const { return folder_.path(); }
  std::string createError() const
  {
    return errorOf([&] { createSqliteProject(file(), exampleInfo(), {}); });
  }

private:
  TempFolder folder_;
};

TEST_F(SqliteCreate, MakesOneFileAtRestInWriteAheadMode)
{
  createSqliteProject(file(), exampleInfo(), {{"k", "v"}});
  EXPECT_EQ(namesIn(folder()), std::vector<std::string>{"new.reels"});
  const std::string bytes = bytesOf(file());
  EXPECT_EQ(bytes.substr(0, 15), "SQLite format 3");
  EXPECT_EQ(bytes.substr(18, 2), "\x02\x02"); // write-ahead log for writing and reading
  EXPECT_EQ(bytes.substr(60, 4), std::string("\0\0\0\2", 4));
  EXPECT_EQ(bytes.substr(68, 4), "REEL");
  struct stat status = {};
  ASSERT_EQ(::stat(file().c_str(), &status), 0);
  EXPECT_EQ(status.st_nlink, 1u);
}

TEST_F(SqliteCreate, ContentIsThereFromTheStartAndHasNoHistory)
{
  Changes content;
  content.logs = {exampleLog(2, 9), exampleLog(7, 1)};
  createSqliteProject(file(), exampleInfo(), {{"k", "v"}}, content);
  const auto store = makeSqliteStore(file());
  EXPECT_EQ(numbersOf(*store), (std::vector<std::int64_t>{2, 7}));
  store->begin(Access::Write, {});
  EXPECT_EQ(store->options(), (KeyValues{{"k", "v"}}));
  EXPECT_EQ(store->nextNumber(), 8);
  int revisions = 0;
  store->history()->readRevisions([&](Revision&&) { return ++revisions > 0; });
  EXPECT_EQ(revisions, 0);
  Changes next;
  next.deleted = {2};
  store->commit(next);
  store->begin(Access::Read, {});
  EXPECT_EQ(lastDeletion(*store->history()), 1);
  store->end();
  EXPECT_EQ(store->check(), std::vector<std::string>{});
}

TEST_F(SqliteCreate, AnUnusedProjectIsFilledAsOneRevisionAndKeepsItsName)
{
  createSqliteProject(file(), exampleInfo(), {{"mine", "v"}});
  ProjectInfo other = exampleInfo();
  other.name = "other";
  other.uuid[0] ^= 1U;
  other.frameRate += 1;
  other.outputFrameRate += 2;
  Changes content;
  content.logs = {exampleLog(2, 9), exampleLog(7, 1)};
  content.origin.command = "import";
  fillSqliteProject(file(), other, {{"theirs", "w"}}, content);
  const auto store = makeSqliteStore(file());
  store->begin(Access::Read, {});
  EXPECT_EQ(store->info().name, exampleInfo().name);
  EXPECT_EQ(store->info().uuid, other.uuid);
  EXPECT_EQ(store->info().frameRate, other.frameRate);
  EXPECT_EQ(store->info().outputFrameRate, other.outputFrameRate);
  EXPECT_EQ(store->options(), (KeyValues{{"theirs", "w"}}));
  EXPECT_EQ(numbersOf(*store), (std::vector<std::int64_t>{2, 7}));
  std::vector<std::string> commands;
  store->history()->readRevisions([&](Revision&& revision) {
    commands.push_back(revision.origin.command);
    return true;
  });
  EXPECT_EQ(commands, std::vector<std::string>{"import"});
  store->end();
  EXPECT_EQ(store->check(), std::vector<std::string>{});
}

TEST_F(SqliteCreate, AProjectThatHadALogIsNotFilled)
{
  Changes content;
  content.logs = {exampleLog(1, 9)};
  createSqliteProject(file(), exampleInfo(), {}, content);
  const auto store = makeSqliteStore(file());
  store->begin(Access::Write, {});
  Changes next;
  next.deleted = {1};
  store->commit(next);
  EXPECT_EQ(errorOf([&] {
              fillSqliteProject(file(), exampleInfo(), {{"k", "v"}}, content);
            }),
            "Refused: " + file().native() + ": has had reels, shots or lists");
  store->begin(Access::Read, {});
  EXPECT_EQ(store->options(), KeyValues{});
}

TEST_F(SqliteCreate, FollowsTheUmask)
{
  const mode_t before = ::umask(027);
  createSqliteProject(file(), exampleInfo(), {});
  ::umask(before);
  struct stat status = {};
  ASSERT_EQ(::stat(file().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777, 0640u);
}

TEST_F(SqliteCreate, WhatIsThereIsRefusedAndStays)
{
  writeBytes(file(), "mine");
  EXPECT_EQ(createError(), "Refused: " + file().native() + ": already exists");
  EXPECT_EQ(bytesOf(file()), "mine");
  fs::remove(file());
  fs::create_directory(file());
  EXPECT_EQ(createError(), "Refused: " + file().native() + ": already exists");
  fs::remove(file());
  fs::create_symlink(folder() / "nowhere", file());
  EXPECT_EQ(createError(), "Refused: " + file().native() + ": already exists");
  EXPECT_EQ(namesIn(folder()), std::vector<std::string>{"new.reels"});
}

TEST_F(SqliteCreate, LeftoversOfAnEarlierProjectAreRefused)
{
  for (const char* ending : {"-wal", "-shm", "-journal"}) {
    const fs::path left = file().native() + ending;
    writeBytes(left, "old");
    EXPECT_EQ(createError(), "Refused: " + left.native() + ": left over from another project (move it away first)");
    EXPECT_EQ(namesIn(folder()), std::vector<std::string>{left.filename().native()});
    fs::remove(left);
  }
}

TEST_F(SqliteCreate, MissingFolderIsAnError)
{
  const fs::path path = folder() / "none" / "new.reels";
  EXPECT_EQ(errorOf([&] { createSqliteProject(path, exampleInfo(), {}); }),
            "Io: " + path.native() + ": cannot be made (No such file or directory)");
}

TEST_F(SqliteCreate, NameThatIsTooLongForTheSystemIsAnError)
{
  const fs::path path = folder() / std::string(250, 'n');
  EXPECT_EQ(errorOf([&] { createSqliteProject(path, exampleInfo(), {}); }),
            "Io: " + path.native() + ": cannot be made (File name too long)");
  EXPECT_EQ(namesIn(folder()), std::vector<std::string>{});
}

TEST_F(SqliteCreate, RelativeAndOddNamesWork)
{
  const fs::path before = fs::current_path();
  fs::current_path(folder());
  const fs::path odd = "file:odd %41?mode=memory#x '\".reels";
  createSqliteProject(odd, exampleInfo(), {});
  const auto project = makeSqliteStore(odd);
  store(*project, logChanges({exampleLog(1, 9)}));
  EXPECT_EQ(numbersOf(*project), std::vector<std::int64_t>{1});
  fs::current_path(before);
  EXPECT_TRUE(fs::exists(folder() / odd));
}

TEST_F(SqliteCreate, TwoAtOnceMakeOneProject)
{
  std::vector<std::unique_ptr<Child>> children;
  for (int i = 0; i < 4; ++i)
    children.push_back(std::make_unique<Child>([&] { createSqliteProject(file(), exampleInfo(), {}); }));
  int made = 0;
  for (const auto& child : children)
    made += child->waitForExit() == 0 ? 1 : 0;
  EXPECT_EQ(made, 1);
  EXPECT_EQ(namesIn(folder()), std::vector<std::string>{"new.reels"});
  EXPECT_EQ(makeSqliteStore(file())->check(), std::vector<std::string>{});
}

} // namespace

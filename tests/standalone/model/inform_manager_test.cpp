// SPDX-License-Identifier: Apache-2.0
//
// The notifications of clients after commits of other processes, and their order.
#include <optional>

#include "host/events.h"
#include "reelhost/inform_manager.h"
#include "standalone/model/elsewhere.h"
#include "support/library_fixture.h"
#include "support/temp_folder.h"

namespace reeldb_tests {

namespace {

using reelhost::Access;
using reelhost::Changes;
using reelhost::informOfChangesFromElsewhere;
using reelhost::StoredLog;
using State = reelhost::ForeignChanges::State;

/// Records what the host reports of logs and of the project, in the list that the clients write to.
class RecordingHostListener final : public ProjectListener {
public:
  explicit RecordingHostListener(Heard& heard) : heard_(heard) {}
  void handleLogsModification(const CookieVec& logs) override
  {
    heard_.push_back("modified " + std::to_string(logs.count()));
  }
  void handleLogModification(const Cookie&, const EditModification& modification) override
  {
    heard_.push_back("modification " + std::to_string(modification.type()));
  }
  void handleLogsDeletion(const CookieVec& logs, LightweightString<char>) override
  {
    heard_.push_back("deleted " + std::to_string(logs.count()));
  }
  void handleProjectEntry() override { heard_.push_back("entry"); }
  void handleProjectExit() override { heard_.push_back("exit"); }

private:
  Heard& heard_;
};

class ChangesFromElsewhere : public LibraryTest {
protected:
  void SetUp() override
  {
    LibraryTest::SetUp();
    reelhost::ProjectInfo info;
    info.name = "SHARED";
    info.uuid.fill(7);
    reelhost::createSqliteProject(file_, info, {{"reeldb_defaultType", ""}}); // the library would set it
    elsewhere_.emplace(file_);
    reelhost::openProject(reelhost::makeSqliteStore(file_), Access::Write);
    reelhost::idle();
    for (std::int64_t number = 1; number <= 3; ++number)
      elsewhere_->commitLogs({log(number, 9, "R" + std::to_string(number))});
    informOfChangesFromElsewhere(manager());
    heard_.clear();
  }

  static StoredLog log(std::int64_t number, int type, const std::string& id, const std::string& bin = {})
  {
    StoredLog log;
    log.number = number;
    log.uuid.fill(static_cast<unsigned char>(number));
    log.type = type;
    log.fields = {{"reelid", id}};
    if (!bin.empty())
      log.fields.emplace_back(TR_BIN_NAME, bin);
    return log;
  }
  Heard heardOf(const std::function<void()>& commits)
  {
    reelhost::idle();
    commits();
    heard_.clear();
    informOfChangesFromElsewhere(manager());
    return heard_;
  }

  TempFolder folder_;
  const std::filesystem::path file_ = folder_.path() / "shared.reels";
  std::optional<Elsewhere> elsewhere_;
  Heard heard_;
};

} // namespace

TEST_F(ChangesFromElsewhere, FieldsAreReportedReelByReelInTheOrderOfTheProject)
{
  RecordingHostListener host(heard_);
  RecordingClient client(heard_, {}, "R2");
  EXPECT_EQ(heardOf([this] {
              elsewhere_->commitLogs({log(3, 9, "R3", "a")});
              elsewhere_->commitLogs({log(2, 9, "R2", "b"), log(3, 9, "R3", "c")});
            }),
            (Heard{"modified 2", "our()", "some(R2)", "some(R3)"}));
}

TEST_F(ChangesFromElsewhere, OneNewReelIsReportedByItsName)
{
  RecordingHostListener host(heard_);
  RecordingClient client(heard_);
  EXPECT_EQ(heardOf([this] {
              elsewhere_->commitLogs({log(4, 9, "R4"), log(1, 9, "R1", "a")});
            }),
            (Heard{"modified 2", "dbC(R4)", "some(R1)"}));
}

TEST_F(ChangesFromElsewhere, OtherChangesOfTheSetAreReportedOnceWithoutAName)
{
  RecordingHostListener host(heard_);
  RecordingClient client(heard_);
  EXPECT_EQ(heardOf([this] {
              elsewhere_->commitLogs({log(4, 9, "R4"), log(5, 9, "R5")});
            }),
            (Heard{"modified 2", "dbC()"}));
  EXPECT_EQ(heardOf([this] { elsewhere_->commitLogs({log(4, 9, "R7")}); }), (Heard{"modified 1", "dbC()"}));
  EXPECT_EQ(heardOf([this] { elsewhere_->remove({4}); }), (Heard{"deleted 1", "dbC()"}));
  EXPECT_EQ(heardOf([this] {
              elsewhere_->commitLogs({log(4, 9, "R4"), log(2, 9, "R2", "x")});
              elsewhere_->remove({5});
            }),
            (Heard{"modified 2", "deleted 1", "dbC()", "some(R2)"}));
}

TEST_F(ChangesFromElsewhere, ShotsAndOptionsAreReportedToNoClient)
{
  RecordingHostListener host(heard_);
  RecordingClient client(heard_);
  EXPECT_EQ(heardOf([this] { elsewhere_->commitLogs({log(4, 1, "R1"), log(5, 1, "R1")}); }), Heard{"modified 2"});
  EXPECT_EQ(heardOf([this] { elsewhere_->remove({4}); }), Heard{"deleted 1"});
  EXPECT_EQ(heardOf([this] {
              Changes changes;
              changes.options = {{reelhost::frameRateOption, "5"}};
              elsewhere_->commit(changes);
            }),
            Heard{});
  EXPECT_EQ(reelhost::projectInfo().frameRate, 5);
}

TEST_F(ChangesFromElsewhere, ClientsFindTheWholeChange)
{
  RecordingClient client(heard_);
  const auto expectWhole = [this](const std::string&) {
    EXPECT_EQ(text(manager().getReelInfo("R4").reelId()), "R4");
    EXPECT_EQ(text(manager().getReelInfo("R3").reelId()), "");
    EXPECT_STREQ(manager().getReelInfo("R1").binName().c_str(), "a");
    EXPECT_STREQ(manager().getReelInfo("R2").binName().c_str(), "b");
    EXPECT_EQ(manager().reelList.count(), 3);
  };
  client.onDbChanged = expectWhole;
  client.onSome = expectWhole;
  heardOf([this] {
    elsewhere_->commitLogs({log(1, 9, "R1", "a"), log(2, 9, "R2", "b"), log(4, 9, "R4")});
    elsewhere_->remove({3});
  });
  EXPECT_EQ(heard_, (Heard{"dbC()", "some(R1)", "some(R2)"}));
}

TEST_F(ChangesFromElsewhere, NothingIsAppliedWhileNotificationsAreHeld)
{
  RecordingClient client(heard_);
  reelhost::idle();
  elsewhere_->commitLogs({log(1, 9, "R1", "a")});
  ++manager().notifyHoldCount;
  EXPECT_EQ(informOfChangesFromElsewhere(manager()).state, State::Later);
  EXPECT_STREQ(manager().getReelInfo("R1").binName().c_str(), "");
  --manager().notifyHoldCount;
  EXPECT_EQ(informOfChangesFromElsewhere(manager()).state, State::Applied);
  EXPECT_EQ(heard_, Heard{"some(R1)"});
}

TEST_F(ChangesFromElsewhere, MarksOfReelsInUseStay)
{
  manager().reelInUse("R1", true);
  heardOf([this] {
    elsewhere_->commitLogs({log(1, 9, "R1", "a"), log(4, 9, "R4")});
    elsewhere_->remove({2});
  });
  EXPECT_TRUE(manager().reelInUse("R1"));
}

TEST_F(ChangesFromElsewhere, EachStateIsReportedOnce)
{
  RecordingClient client(heard_);
  EXPECT_EQ(heardOf([this] { elsewhere_->commitLogs({log(1, 9, "R1", "a")}); }), Heard{"some(R1)"});
  EXPECT_EQ(heardOf([] {}), Heard{});
  EXPECT_EQ(heardOf([this] { elsewhere_->commitLogs({log(1, 9, "R1", "a")}); }), Heard{}); // as it was
}

} // namespace reeldb_tests

// SPDX-License-Identifier: Apache-2.0
#include "app/state.h"

#include <functional>

#include "app/export.h"
#include "app/history.h"
#include "app/import.h"
#include "app/json/json.h"
#include "app/list_files.h"
#include "app/projects.h"
#include "app/reels.h"
#include "reelhost/host.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

class State : public reeldb_tests::AppTest {
protected:
  static app::ProjectState read(const std::string& project = "main")
  {
    app::Session session(project, app::Access::Read);
    return app::readState(session);
  }
  static std::string exported(const std::string& project)
  {
    app::Session session(project, app::Access::Read);
    app::ProjectContent content = app::readContent(session);
    content.project = "main";
    content.state = app::readState(session);
    return app::jsonText(content);
  }
  /// The error when the project is made from the state of "main" with this change. No project must be left.
  static std::string errorWith(const std::function<void(app::ProjectState&)>& change)
  {
    app::ProjectState state = read();
    change(state);
    const app::Error error = errorOf([&] { app::makeProjectFrom(state, "copy"); });
    EXPECT_EQ(error.kind(), app::ErrorKind::Unreadable);
    EXPECT_EQ(app::projectNames(), std::vector<std::string>{"main"});
    return error.what();
  }
};

TEST_F(State, AProjectMadeFromItHasTheSameState)
{
  import({"A001", "B002"});
  EXPECT_EQ(app::makeProjectFrom(app::fromJson<app::ProjectState>(exported("main")), "copy"), "25");
  EXPECT_EQ(exported("copy"), exported("main"));
  EXPECT_EQ(read("copy").logs.size(), 4u);
  app::Session session("copy", app::Access::Read);
  EXPECT_TRUE(app::readHistory(session, {}).commits.empty());
}

TEST_F(State, TextsAndKeysOfAnyBytesComeBack)
{
  {
    app::Session session("main", app::Access::Write);
    reelhost::StoredLog log;
    log.type = 9;
    log.entireMedium = true;
    log.name = "K\xdcSTE";
    log.reelType = "\x9b";
    log.fields = {{"reelid", "\xff\xfe"}, {"plain", "\xc3\x9c \xe2\x80\xae"}, {"\xf0key", "\x01"}, {"\xf1key", "\xf2"}};
    reelhost::addLog(log);
    session.commit();
  }
  const std::string text = exported("main");
  EXPECT_NE(text.find("\"name\": {\n        \"bytes\": \"S9xTVEU=\"\n      }"), std::string::npos) << text;
  EXPECT_NE(text.find("\"keys_in_bytes\": ["), std::string::npos) << text;
  app::makeProjectFrom(app::fromJson<app::ProjectState>(text), "copy");
  EXPECT_EQ(exported("copy"), text);
  const app::ProjectState copy = read("copy");
  ASSERT_EQ(copy.logs.size(), 1u);
  EXPECT_EQ(copy.logs[0].name, "K\xdcSTE");
  EXPECT_EQ(copy.logs[0].keys, read().logs[0].keys);
  EXPECT_EQ(copy.logs[0].keys.size(), 4u);
}

TEST_F(State, WhatTheProjectWasGivenLaterIsPartOfIt)
{
  {
    app::Session session("main", app::Access::Write);
    app::changeRate(session, "29.97");
  }
  EXPECT_EQ(app::makeProjectFrom(read(), "copy"), "29.97");
  EXPECT_EQ(exported("copy"), exported("main"));
}

TEST_F(State, ListsComeBackWithTheirBytesAndAllTheirEvents)
{
  folder_.write("cut.edl",
                "TITLE: K\xdcSTE\n001  BL       V     C        00:00:00:00 00:00:00:00 10:00:00:00 10:00:00:00\n"
                "001  A001     V     D    024 01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n"
                "M2   A001     -025.0                01:00:00:00\n"
                "002  A001     V     C        01:00:00:00 01:00:01:00 10:00:01:00 10:00:02:00\n"
                ">>> SOURCE A001 A001 4919975f.793b8d33\n");
  {
    app::Session session("main", app::Access::Write);
    app::importLists(session, {app::readListFile((folder_.path() / "cut.edl").native())}, false);
  }
  const std::string text = exported("main");
  app::makeProjectFrom(app::fromJson<app::ProjectState>(text), "copy");
  EXPECT_EQ(exported("copy"), text);
  const app::ProjectState copy = read("copy");
  ASSERT_EQ(copy.lists.size(), 1u);
  const app::ListState& list = copy.lists[0];
  EXPECT_EQ(list.number, 1);
  EXPECT_EQ(list.file, "cut.edl");
  EXPECT_EQ(list.title, "K\u00DCSTE");
  EXPECT_EQ(list.content.substr(0, 12), "TITLE: K\xdcSTE");
  ASSERT_EQ(list.events.size(), 3u);
  EXPECT_EQ(list.events[0].shot, 0);
  EXPECT_EQ(list.events[0].clip.special, "black");
  EXPECT_GT(list.events[1].shot, 0);
  EXPECT_EQ(list.events[2].shot, list.events[1].shot); // one shot, used twice
  const lists::Event& dissolve = list.events[1].clip.event;
  EXPECT_EQ(dissolve.part, 2);
  EXPECT_EQ(dissolve.transition, "D");
  EXPECT_EQ(dissolve.duration, "024");
  EXPECT_EQ(dissolve.speed, (lists::Speed{"-025.0", "01:00:00:00"}));
  EXPECT_EQ(dissolve.sourceIds, (std::vector<lists::SourceId>{{"source table", "4919975f.793b8d33"}}));
  EXPECT_EQ(list.events[2].clip.recordOut, "10:00:02:00");
  EXPECT_EQ(app::checkProject("copy").problems, std::vector<std::string>{});
}

TEST_F(State, AListThatNoProjectCanHaveIsRefused)
{
  import({"A001"});
  const auto list = [](auto change) { return [change](app::ProjectState& state) { change(state.lists.at(0)); }; };
  EXPECT_EQ(errorWith(list([](app::ListState& state) { state.number = 0; })),
            "list 0: its number is not between 1 and 9007199254740991");
  EXPECT_EQ(errorWith([](app::ProjectState& state) { state.lists.push_back(state.lists.at(0)); }),
            "list 1: its number is not above that of the list before it");
  EXPECT_EQ(errorWith(list([](app::ListState& state) { state.events.at(0).shot = 99; })),
            "list 1: an event names log 99, which does not exist");
  EXPECT_EQ(errorWith(list([](app::ListState& state) { state.events.at(0).clip.event.part = 0; })),
            "list 1: an event has a line, a part or channels that no list has");
  EXPECT_EQ(errorWith(list([](app::ListState& state) { state.events.at(0).clip.event.reelField = 2147483648U; })),
            "list 1: an event has a reel field of 2147483648 characters, more than 2147483647");
  EXPECT_EQ(errorWith(list([](app::ListState& state) { state.events.at(0).shot = 2; })),
            "list 1: an event names log 2, which is a reel");
  EXPECT_EQ(errorWith(list([](app::ListState& state) { state.events.push_back(state.events.at(0)); })),
            "list 1: two events of line 2 have the same shot");
  EXPECT_EQ(errorWith(list([](app::ListState& state) { state.events.at(0).clip.aliases = {std::string(1, '\0')}; })),
            "list 1: a text holds a byte 0");
}

TEST_F(State, AStateThatNoProjectCanHaveIsRefused)
{
  import({"A001"});
  const auto log = [](auto change) { return [change](app::ProjectState& state) { change(state.logs.at(1)); }; };
  EXPECT_EQ(errorWith([](app::ProjectState& state) { state.id = "xyz"; }),
            "project: \"xyz\" is not an id (32 digits, 0 to 9 and a to f)");
  EXPECT_EQ(errorWith([](app::ProjectState& state) { state.frameRateCode = -2; }),
            "project: frame_rate_code -2: not between -1 and 2147483647");
  EXPECT_EQ(errorWith([](app::ProjectState& state) {
              state.options = {{"a", "1"}, {"a", "2"}};
            }),
            "options: key \"a\": given twice");
  EXPECT_EQ(errorWith([](app::ProjectState& state) {
              state.options = {{"a", std::string(1, '\0')}};
            }),
            "options: a text holds a byte 0");
  EXPECT_EQ(errorWith([](app::ProjectState& state) { state.logs.at(1).number = state.logs.at(0).number; }),
            "log 1: its number is not above that of the log before it");
  EXPECT_EQ(errorWith([](app::ProjectState& state) { state.logs.at(1).id = state.logs.at(0).id; }),
            "log 2: another log has its id, tag and kind");
  EXPECT_EQ(errorWith(log([](app::LogState& state) { state.number = 0; })),
            "log 0: its number is not between 1 and 99999999");
  EXPECT_EQ(errorWith(log([](app::LogState& state) { state.number = 100'000'000; })),
            "log 100000000: its number is not between 1 and 99999999");
  EXPECT_EQ(errorWith(log([](app::LogState& state) { state.kind = "I"; })), "log 2: \"I\" is not a kind of log");
  EXPECT_EQ(errorWith(log([](app::LogState& state) { state.kind = "EE"; })), "log 2: \"EE\" is not a kind of log");
  EXPECT_EQ(errorWith(log([](app::LogState& state) { state.id[3] = 'G'; })).substr(0, 7), "log 2: ");
  EXPECT_EQ(errorWith(log([](app::LogState& state) { state.tag = 65536; })),
            "log 2: tag 65536: not between 0 and 65535");
  EXPECT_EQ(errorWith(log([](app::LogState& state) { state.audioChannels = -1; })),
            "log 2: audio_channels -1: not between 0 and 65535");
  EXPECT_EQ(errorWith(log([](app::LogState& state) { state.keys.emplace_back("reelid", "x"); })),
            "log 2: key \"reelid\": given twice");
  EXPECT_EQ(errorWith(log([](app::LogState& state) { state.name = std::string("a\0b", 3); })),
            "log 2: a text holds a byte 0");
}

TEST_F(State, AnUnusedProjectTakesTheStateInOneRevision)
{
  import({"A001", "B002"});
  const std::string text = exported("main");
  const app::ListFile file = app::readListFile(folder_.write("main.json", text));
  ASSERT_TRUE(app::isState(file));
  app::makeProject("copy", "50");
  const std::string before = exported("copy");
  const app::ImportReport plan = app::importState("copy", file, true);
  EXPECT_FALSE(plan.stored);
  EXPECT_EQ(exported("copy"), before);
  const app::ImportReport report = app::importState("copy", file, false);
  EXPECT_TRUE(report.stored);
  ASSERT_EQ(report.lists.size(), 1u);
  EXPECT_EQ(report.lists[0].created, (std::vector<std::string>{"A001", "B002"}));
  EXPECT_EQ(report.lists[0].shotsAdded, 2u);
  EXPECT_EQ(exported("copy"), text);
  {
    app::Session session("copy", app::Access::Write);
    EXPECT_EQ(app::readHistory(session, {}).commits.size(), 1u);
    reelhost::takeBack(1);
    session.commit();
    EXPECT_EQ(app::listReels(session).size(), 0u);
  }
  const app::Error error = errorOf([&] { app::importState("copy", file, false); });
  EXPECT_EQ(error.kind(), app::ErrorKind::Refused);
  EXPECT_STREQ(error.what(), "copy: has had reels, shots or lists, and the file is a whole project (reeldb project new "
                             "NAME --from FILE makes a project of it)");
}

TEST_F(State, AnUnusedProjectStaysWithoutAStateThatNoProjectCanHave)
{
  import({"A001"});
  std::string text = exported("main");
  text.replace(text.find("\"state_version\": 1"), 18, "\"state_version\": 2");
  app::makeProject("copy", "25");
  const std::string before = exported("copy");
  const app::ListFile file = app::readListFile(folder_.write("main.json", text));
  const app::Error error = errorOf([&] { app::importState("copy", file, false); });
  EXPECT_EQ(error.kind(), app::ErrorKind::Unreadable);
  EXPECT_EQ(std::string(error.what()).substr(folder_.path().native().size() + 1),
            "main.json: JSON: not of the expected form (its state_version is 2, not 1)");
  EXPECT_EQ(exported("copy"), before);
}

TEST_F(State, AProjectThatIsThereIsNotReplaced)
{
  const app::Error error = errorOf([] { app::makeProjectFrom(read(), "main"); });
  EXPECT_EQ(error.kind(), app::ErrorKind::Refused);
}

TEST_F(State, AFileThatIsNotAStateIsReported)
{
  const auto error = [&](const std::string& text) {
    folder_.write("state.json", text);
    const app::Error found = errorOf([&] { app::readStateFile((folder_.path() / "state.json").native()); });
    EXPECT_EQ(found.kind(), app::ErrorKind::Unreadable);
    const std::string what = found.what();
    return what.substr(what.find("state.json: ") + 12);
  };
  EXPECT_EQ(error("{").substr(0, 61), "JSON: not of the expected form (parse error at line 1, column");
  EXPECT_EQ(error("{}"),
            "JSON: not of the expected form (it has no state; reeldb export --json without --reels writes one)");
  EXPECT_EQ(error(R"({"state_version": 2})"), "JSON: not of the expected form (its state_version is 2, not 1)");
  EXPECT_EQ(error(R"({"state_version": 1, "project_id": "", "frame_rate_code": 1.5})"),
            "JSON: not of the expected form (frame_rate_code is not a whole number)");
  EXPECT_EQ(error(R"({"state_version": 1, "project_id": "", "frame_rate_code": 1, "output_frame_rate_code": 1,
                      "options": {"a": {"bytes": "Zg"}}})"),
            "JSON: not of the expected form (\"Zg\" is not base64)");
  EXPECT_EQ(error(R"({"state_version": 1, "project_id": "", "frame_rate_code": 1, "output_frame_rate_code": 1,
                      "options": {}, "logs": 5})"),
            "JSON: not of the expected form (number where an array has to be)");
}

} // namespace

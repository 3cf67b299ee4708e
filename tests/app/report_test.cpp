// SPDX-License-Identifier: Apache-2.0
#include "app/report.h"

#include <chrono>

#include "app/import.h"
#include "app/list_files.h"
#include "app/reel_fields.h"
#include "reelhost/host.h"
#include "tests/app/app_fixture.h"

using namespace reeldb;

namespace {

using Texts = std::vector<std::string>;

class Report : public reeldb_tests::AppTest {
protected:
  void importList(const std::string& name, const std::vector<std::string>& reels) const
  {
    const app::ListFile file = app::readListFile(cutList(name, reels));
    app::Session session({}, app::Access::Write);
    app::importLists(session, {file}, false);
  }
  static void set(const std::string& reel, const std::string& field, const std::string& value)
  {
    app::Session session({}, app::Access::Write);
    app::changeReel(session, reel, {{field, value}}, {});
  }
  /// Stores a shot of a reel that has no record, as a program without the library may do.
  static void storeShotOf(const std::string& reel)
  {
    const auto store = reelhost::makeSqliteStore(reelhost::facility().projectFile("main"));
    store->begin(reelhost::Access::Write, std::chrono::seconds(1));
    reelhost::StoredLog log;
    log.number = store->nextNumber();
    log.uuid.fill(static_cast<unsigned char>(0x40 + log.number));
    log.type = 1;
    log.fields = {{"reelid", reel}};
    reelhost::Changes changes;
    changes.logs = {log};
    store->commit(changes);
  }
  static app::ReelReport report(const std::optional<std::string>& list = {})
  {
    app::Session session({}, app::Access::Read);
    return app::readReport(session, list);
  }
  /// "B002 unavailable Shelf 1": each reel, its state and its shelf.
  static Texts states(const app::ReelReport& report)
  {
    Texts texts;
    for (const app::ReportedReel& reel : report.reels)
      texts.push_back(reel.need.id + " " + reel.need.state() + " " + (reel.need.reel ? reel.need.reel->bin : ""));
    return texts;
  }
};

TEST_F(Report, ReelsAreInTheOrderOfStateShelfAndName)
{
  importList("a.edl", {"B002", "b001", "A001", "C001", "D001", "LONGNAMED_1"});
  set("B002", "bin", "Shelf 2");
  set("A001", "bin", "shelf 2");
  set("C001", "bin", "Shelf 10");
  set("D001", "available", "no");
  storeShotOf("MISSING");
  storeShotOf("LONGNAME"); // as a list with eight characters cuts a reel that is there
  // This program was loaded before there was a facility, so it has no catalogue of types.
  EXPECT_EQ(states(report()), (Texts{"MISSING missing ", "LONGNAME perhaps ", "D001 unavailable, unknown type ",
                                     "C001 unknown type Shelf 10", "A001 unknown type shelf 2",
                                     "B002 unknown type Shelf 2", "b001 unknown type ", "LONGNAMED_1 unknown type "}));
}

TEST_F(Report, OfAProjectHasReelsWithoutShotsAndTheListsOfOthers)
{
  importList("a.edl", {"A001", "B002", "A001"});
  importList("b.edl", {"A001"});
  {
    app::Session session({}, app::Access::Write);
    app::createReel(session, "UNUSED", {});
  }
  const app::ReelReport all = report();
  EXPECT_EQ(all.project, "main");
  EXPECT_EQ(all.rate, "25");
  EXPECT_FALSE(all.list);
  ASSERT_EQ(all.reels.size(), 3u);
  ASSERT_EQ(all.reels[0].uses.size(), 2u);
  EXPECT_EQ(all.reels[0].uses[0].list.file, "a.edl");
  EXPECT_EQ(all.reels[0].uses[0].events, 2u);
  EXPECT_EQ(all.reels[0].uses[1].list.file, "b.edl");
  EXPECT_EQ(all.reels[0].uses[1].events, 1u);
  EXPECT_EQ(all.reels[2].need.id, "UNUSED");
  EXPECT_EQ(all.reels[2].need.shots, 0);
  EXPECT_TRUE(all.reels[2].uses.empty());
}

TEST_F(Report, OfAListHasItsReelsAlone)
{
  importList("a.edl", {"A001", "B002"});
  importList("b.edl", {"B002", "B002"});
  const app::ReelReport one = report("b.edl");
  ASSERT_TRUE(one.list);
  EXPECT_EQ(one.list->number, 2);
  ASSERT_EQ(one.reels.size(), 1u);
  EXPECT_EQ(one.reels[0].need.id, "B002");
  EXPECT_EQ(one.reels[0].need.shots, 2);
  ASSERT_EQ(one.reels[0].uses.size(), 1u);
  EXPECT_EQ(one.reels[0].uses[0].list.number, 2);
  EXPECT_EQ(errorOf([] { report("nosuch.edl"); }).kind(), app::ErrorKind::NotFound);
}

TEST_F(Report, ClipNamesOfAUseAreEachNamedOnce)
{
  const std::string times = "01:00:00:00 01:00:01:00 10:00:00:00 10:00:01:00\n* FROM CLIP NAME: ";
  const std::string path = folder_.write("clips.edl", "001  A001     V     C        " + times +
                                                          "WIDE\n"
                                                          "002  A001     V     C        " +
                                                          times +
                                                          "CLOSE\n"
                                                          "003  A001     A     C        " +
                                                          times + "WIDE\n");
  {
    app::Session session({}, app::Access::Write);
    app::importLists(session, {app::readListFile(path)}, false);
  }
  EXPECT_EQ(report().reels.at(0).uses.at(0).clips, (Texts{"WIDE", "CLOSE"}));
}

TEST(ReportHtml, NamesAreTextAndNothingIsLoadedOrRun)
{
  app::ReelReport report;
  report.project = "<b>&\"x\"";
  report.rate = "25";
  report.time = "2026-11-22T13:38:48Z";
  app::Need need;
  need.id = "<script>alert(1)</script>\x1B[31m\xE2\x80\xAE";
  need.reel.emplace().bin = "</caption>";
  report.reels.push_back({need, {{{1, "a.edl", "<i>", "edl", 1}, 1, {"<img src=x>"}}}});
  const std::string html = app::reportHtml(report);
  EXPECT_NE(html.find("<h1>Reels of <bdi>project &lt;b&gt;&amp;&quot;x&quot;</bdi></h1>\n"
                      "<p>25 fps, 2026-11-22 13:38 UTC</p>\n<p>1 reel, 1 ready</p>\n"),
            std::string::npos)
      << html;
  EXPECT_NE(html.find("<bdi>&lt;script&gt;alert(1)&lt;/script&gt;\\x1b[31m\\u202e</bdi>"), std::string::npos) << html;
  EXPECT_NE(html.find("<caption><bdi>Shelf: &lt;/caption&gt;</bdi></caption>"), std::string::npos) << html;
  EXPECT_NE(html.find("<bdi>&lt;img src=x&gt;</bdi>"), std::string::npos) << html;
  for (const char* const loads : {"<script", "<img", "<link", "<i>", "<b>", "src=\"", "href=", "url(", "@import",
                                  "on"
                                  "click"})
    EXPECT_EQ(html.find(loads), std::string::npos) << loads;
}

TEST(ReportHtml, EachStateHasASectionAndEachShelfATable)
{
  app::ReelReport report;
  const auto add = [&](const std::string& id, const std::string& trouble, const std::string& shelf) {
    app::Need need;
    need.id = id;
    if (trouble != "missing")
      need.reel.emplace().bin = shelf;
    if (!trouble.empty())
      need.troubles = {trouble};
    report.reels.push_back({need, {}});
  };
  add("M1", "missing", "");
  add("U1", "unavailable", "1");
  add("R1", "", "1");
  add("R2", "", "2");
  add("R3", "", "");
  const std::string html = app::reportHtml(report);
  std::size_t at = 0;
  for (const char* const next :
       {"3 ready", "<h2>Missing: 1 reel</h2>", "No record in the project", "<th scope=\"col\">Perhaps</th>", ">M1<",
        "<h2>Unavailable: 1 reel</h2>", "Shelf: 1", ">U1<", "<h2>Ready: 3 reels</h2>", "Shelf: 1", ">R1<", "Shelf: 2",
        ">R2<", "No shelf", ">R3<"}) {
    at = html.find(next, at);
    ASSERT_NE(at, std::string::npos) << next << "\n" << html;
  }
  EXPECT_EQ(html.find("Where they are used"), std::string::npos);
  EXPECT_EQ(html.find("Last device"), std::string::npos); // no reel has one
  EXPECT_NE(html.find("thead { display: table-header-group; }"), std::string::npos);
}

} // namespace

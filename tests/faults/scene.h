// SPDX-License-Identifier: Apache-2.0
//
// The surroundings in which operations run while something fails: a project with content, and clients.
#ifndef REELDB_TESTS_FAULTS_SCENE_H
#define REELDB_TESTS_FAULTS_SCENE_H

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "CreateNewReelAction.h"
#include "faults/listening.h"
#include "faults/scenario.h"
#include "support/library_fixture.h"
#include "support/temp_folder.h"

namespace reeldb_tests {

using Text = LightweightString<char>;
using Wide = LightweightString<wchar_t>;

/// The project and everything that belongs to it, the manager included. It is new for each run, so that runs do not
/// affect each other. It also contains the operation's arguments and results, which are made before a fault is armed,
/// so that they need no memory that could be refused instead of the operation's.
class Scene : public LibraryTest {
public:
  using LibraryTest::addLog;
  using LibraryTest::configText;
  using LibraryTest::journal;
  using LibraryTest::manager;
  using LibraryTest::script;

  // --- The project -------------------------------------------------------------------------------
  // Reels: R1 (type F2), cam (Live) and its case twin CAM (F2), R2 (a type nobody knows), R3 (no
  // type, last used on the device Deck), one without an identifier. Shots: three of R1, one of them spelt r1, one of
  // cam, one of no reel. Devices: 1 Deck, 2 Cam, 3 Feed.
  void set(const Scenario& scenario, int hold);
  void again(); ///< clears the results and the notifications
  void clear(); ///< removes everything

  // What a scenario can prepare
  void enterWithoutDefaultType();    ///< the same project, whose options name no default type
  void importClip(const char* reel); ///< adds a clip of a reel; `rec` is its log, of which nobody was notified yet
  void gather(int clients);          ///< adds this number of clients
  void setDefaultType(const char* type);
  void onAnotherThread(); ///< makes the operation seem to come from a worker thread
  Cookie log(const std::string& name) const { return logs_.at(name); }

  // --- Arguments of the operation ----------------------------------------------------------------
  Text id, value;
  Wide wide;
  int number = 0;
  ReelDbRec rec; ///< the record of the log that the scenario is about
  CookieVec selection;
  CookieSet logSet;
  IdStamp stamp;
  std::optional<CreateNewReelAction> action;
  reelhost::Script& hostScript = reelhost::Script::the(); ///< for use without making the host watched
  Text typeFile;                                          ///< path of a type file with all kinds of records

  // --- Results of the operation ------------------------------------------------------------------
  std::variant<std::monostate, bool, int, Text, Wide, Cookie, CookieVec> answer;
  int intOut = 0;
  Text textOut;
  strp_field fieldOut;
  std::vector<Text> ids;
  StringList list;
  std::optional<ReelDbClient> made;
  std::optional<ReelTypeManager> otherTypes;
  std::string described() const; ///< all results as text

  // --- Clients: the first has no reel of interest, the second follows R1 -------------------------
  std::optional<Listening> anyReel, followsR1;
  std::vector<std::unique_ptr<ReelDbClient>> crowd; ///< more clients, which do nothing
  std::vector<std::string> heard() const { return anyReel->heard(); }
  void forgetHeard();

  /// The visible state of the project, one entry per value: "R1: reelid" and so on.
  using State = std::map<std::string, std::string>;
  State state();
  std::string nameOf(const Cookie& log) const;                            ///< the name of a log in this scene
  static std::string difference(const State& before, const State& after); ///< one line per value that differs
  std::string reelList();                                                 ///< the manager's, as names in their order
  std::string reelsOfTheDatabase();                                       ///< likewise

  std::function<bool()> faultHappened; ///< called when the host reports a change

protected:
  Scene();
  ~Scene() override;

private:
  static void forgetManager();
  void addLogs();
  void clearAnswers();
  std::vector<Cookie> allLogs() const;
  std::string withNames(std::string lines) const; ///< each Cookie written as the name of its log

  TempFolder folder_;
  reelhost::Facility facility_;
  std::map<std::string, Cookie> logs_; ///< the logs by their names in this scene
  void (*fill_)(Scene&) = nullptr;
  std::optional<ReportWatch> firstWatch_, lastWatch_;
};

} // namespace reeldb_tests

#endif

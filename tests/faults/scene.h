// SPDX-License-Identifier: Apache-2.0
//
// What the operations are run on while something fails: a well-filled project, and clients that listen.
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

/// The project and all that belongs to it, made anew for each run: nothing of one run is left to the next, the manager
/// included. What the operation is given and what it answers lies here too, ready before a fault is armed: neither
/// asks for memory that could be refused in the operation's place.
class Scene : public LibraryTest {
public:
  using LibraryTest::addLog;
  using LibraryTest::configText;
  using LibraryTest::journal;
  using LibraryTest::manager;
  using LibraryTest::script;

  // --- What there is -----------------------------------------------------------------------------
  // Reels: R1 (type F2), cam (Live) and its case twin CAM (F2), R2 (a type nobody knows), R3 (no
  // type, last used on the device Deck), one without an identifier. Shots: three of R1, one of them spelt r1, one of
  // cam, one of no reel. Devices: 1 Deck, 2 Cam, 3 Feed.
  void set(const Scenario& scenario, int hold);
  void again(); ///< forgets what was answered and heard
  void clear(); ///< takes everything away again

  // What a scenario may arrange
  void enterWithoutDefaultType();    ///< the same project, whose options name no default type
  void importClip(const char* reel); ///< of a reel; `rec` is its log, nobody was told of it yet
  void gather(int clients);          ///< so many further clients
  void setDefaultType(const char* type);
  void onAnotherThread(); ///< the operation is taken to come from another thread than the main one
  Cookie log(const std::string& name) const { return logs_.at(name); }

  // --- What the operation is given ---------------------------------------------------------------
  Text id, value;
  Wide wide;
  int number = 0;
  ReelDbRec rec; ///< the record of the log that the scenario is about
  CookieVec selection;
  CookieSet logSet;
  IdStamp stamp;
  std::optional<CreateNewReelAction> action;
  reelhost::Script& hostScript = reelhost::Script::the(); ///< to be asked without being watched from then on
  Text typeFile;                                          ///< path of a type file with all kinds of records

  // --- What it answers ---------------------------------------------------------------------------
  std::variant<std::monostate, bool, int, Text, Wide, Cookie, CookieVec> answer;
  int intOut = 0;
  Text textOut;
  strp_field fieldOut;
  std::vector<Text> ids;
  StringList list;
  std::optional<ReelDbClient> made;
  std::optional<ReelTypeManager> otherTypes;
  std::string described() const; ///< all of it, as text

  // --- Who listens: one that follows no reel, one that follows R1 --------------------------------
  std::optional<Listening> anyReel, followsR1;
  std::vector<std::unique_ptr<ReelDbClient>> crowd; ///< further ones, who do nothing
  std::vector<std::string> heard() const { return anyReel->heard(); }
  void forgetHeard();

  /// All that can be seen of the project, one entry a value: "R1: reelid" and the like.
  using State = std::map<std::string, std::string>;
  State state();
  std::string nameOf(const Cookie& log) const;                            ///< what this scene calls a log
  static std::string difference(const State& before, const State& after); ///< a line for each value that differs
  std::string reelList();                                                 ///< the manager's, as names in their order
  std::string reelsOfTheDatabase();                                       ///< likewise

  std::function<bool()> faultHappened; ///< asked when the host reports a change

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
  std::map<std::string, Cookie> logs_; ///< by what this scene calls them
  void (*fill_)(Scene&) = nullptr;
  std::optional<ReportWatch> firstWatch_, lastWatch_;
};

} // namespace reeldb_tests

#endif

// SPDX-License-Identifier: Apache-2.0
//
// Takes a sequence of operations from a fuzzer's bytes and runs each twice: on the library with the standalone host,
// and on the model. Compares the results, the notifications of clients, the prints and the state.
#ifndef REELDB_FUZZ_MANAGER_DRIVER_H
#define REELDB_FUZZ_MANAGER_DRIVER_H

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "ReelDbManager.h"
#include "models/world.h"
#include "support/bytes.h"
#include "support/check.h"

namespace reeldb_fuzz {

class Listener;

class Driver {
public:
  explicit Driver(Bytes bytes);
  ~Driver();
  Driver(const Driver&) = delete;
  Driver& operator=(const Driver&) = delete;

  /// Runs all operations. Throws Broken, with all operations so far, if the two differ.
  void run();

private:
  friend class Listener;
  struct Operation {
    const char* name;
    void (Driver::*carryOut)();
  };
  static const std::vector<Operation>& operations();

  // --- Operations that change reels by way of the manager: reels.cpp -----------------------------
  void createReel();
  void createReelOffThread();
  void renameReel();
  void copyReel();
  void checkLiveMedia();
  void checkLiveMediaOffThread();
  void setDefaultType();
  void markInUse();
  void nameUserField();
  void modifyLog();
  void informListChanged();
  void informRecordChanged();
  void enterAgain();

  // --- Operations on one record: records.cpp -----------------------------------------------------
  void setTypeName();
  void setFlag();
  void setLabelMapping();
  void setBinName();
  void setUserField();
  void setLastDevice();
  void setId();
  void updateChannels();
  void storeInt();
  void storeText();
  void storeField();
  void readValues();

  // --- Questions: questions.cpp ------------------------------------------------------------------
  void lookUp();
  void list();
  void listForDevice();
  void askUserFieldName();
  void sortOutReels();
  void askReferenced();
  void addShots();
  void askDoomed();
  void askType();
  void compareAll();

  // --- What the host does: host_events.cpp -------------------------------------------------------
  void import();
  void addLog();
  void eraseLogs();
  void commit();
  void undelete();
  void runDeferred();
  void enterProject();
  void leaveProject();
  void loseDatabase();
  void changeHold();
  void addType();
  void addClient();
  void endClient();
  void registerClient();
  void deRegisterClient();
  void follow();

  // --- What the operations share -----------------------------------------------------------------
  /// Writes down the arguments of the operation, for the message when it goes wrong.
  template <class... Arguments>
  void with(const Arguments&... arguments)
  {
    ((trace_.back() += (trace_.back().back() == '(' ? "" : ", ") + shown(arguments)), ...);
  }
  /// Throws Broken, with all operations so far, if the two differ in @p what.
  template <class Got, class Wanted, class... What>
  void same(const Got& got, const Wanted& wanted, const What&... what) const
  {
    if (!(got == wanted))
      requireEqual(got, wanted, traced().c_str(), what...);
  }
  std::string traced() const;
  void compareStep();
  void compareRecord(Number log);
  void compareStored();
  void open(const std::string& project, bool withDefaultType);

  std::string anyText();
  Number anyLog();
  Numbers someLogs();
  int anyClient(); ///< 0: there is no client
  int newListener(const ModelClient& client);

  Cookie cookie(Number log) const;
  ReelDbRec record(Number log) const { return ReelDbRec(cookie(log)); }
  Number number(const Cookie& log) const; ///< -1: of another project
  CookieVec cookies(const Numbers& logs) const;
  Numbers numbers(const CookieVec& logs) const;
  static std::string text(const LightweightString<char>& t) { return t.c_str(); }
  static Texts texts(const std::vector<LightweightString<char>>& list);
  static Texts texts(const StringList& list);

  Bytes bytes_;
  ReelDbManager& manager_;
  World world_;
  std::map<int, std::unique_ptr<Listener>> listeners_;
  int lastListener_ = 0;
  Texts heard_;
  Texts trace_;
};

/// A client with a habit.
class Listener : public ReelDbClient {
public:
  Listener(Driver& driver, int number, const ModelClient& as);
  void reelDbChanged(LightweightString<char> id) override;
  void ourReelDbRecChanged() override;
  void someReelDbRecChanged(LightweightString<char> id) override;

private:
  void note(const std::string& what);

  Driver& driver_;
  const int number_;
  ModelClient as_;
};

} // namespace reeldb_fuzz

#endif

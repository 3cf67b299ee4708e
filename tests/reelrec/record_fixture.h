// SPDX-License-Identifier: Apache-2.0
//
// Reel records on the standalone host: host calls and client calls in one order, and the ways a call can fail.
#ifndef REELDB_TESTS_REELREC_RECORD_FIXTURE_H
#define REELDB_TESTS_REELREC_RECORD_FIXTURE_H

#include <algorithm>

#include "ReelDbRec.h"
#include "support/library_fixture.h"

namespace reeldb_tests {

using Steps = std::vector<std::string>;

/// A reel, and a client that is notified of every reel. The test sets the client's handlers.
class RecordTest : public LibraryTest {
protected:
  RecordTest() : client(heard) {}

  /// The steps of @p action, in order: host calls as "operation(arguments)" without their results, and between them the
  /// notifications of the client.
  Steps stepsOf(const std::function<void()>& action)
  {
    struct Mark {
      std::size_t calls;
      std::string what;
    };
    std::vector<Mark> marks;
    const auto outer = client.onSome;
    client.onSome = [&](const std::string& id) {
      marks.push_back({journal().calls().size(), "some(" + id + ")"});
      if (outer)
        outer(id);
    };
    journal().record(true);
    action();
    const std::vector<reelhost::Call> calls = journal().calls();
    journal().record(false);
    client.onSome = outer;

    Steps steps;
    auto mark = marks.begin();
    for (std::size_t i = 0; i <= calls.size(); ++i) {
      for (; mark != marks.end() && mark->calls == i; ++mark)
        steps.push_back(mark->what);
      if (i < calls.size())
        steps.push_back(calls[i].operation + "(" + calls[i].arguments + ")");
    }
    return steps;
  }

  static std::string quoted(const std::string& text) { return "\"" + text + "\""; }

  // The host calls of a record, as stepsOf shows them.
  static std::string open(const Cookie& log) { return "EditPtr::i_open(" + text(log) + ", 0)"; }
  static std::string close(const Cookie& log) { return "EditPtr::i_close(" + text(log) + ")"; }
  static std::string closeUnopened() { return "EditPtr::i_close()"; }
  static std::string inInt(const std::string& key) { return "configb::in(" + quoted(key) + ", int&)"; }
  static std::string inField(const std::string& key) { return "configb::in(" + quoted(key) + ", strp_field&)"; }
  static std::string inText(const std::string& key) { return "configb::in(" + quoted(key) + ", char*)"; }
  static std::string set(const std::string& key, const std::string& value)
  {
    return "configb::set(" + quoted(key) + ", " + quoted(value) + ", null)";
  }
  static std::string setField(const std::string& key, const std::string& value)
  {
    return "configb::set(" + quoted(key) + ", " + quoted(value) + ")";
  }
  static std::string dirty(const Cookie& log) { return "Edit::setDirty(" + text(log) + ", true)"; }
  static std::string update(const Cookie& log) { return "EditManager::updateProjdbRec(" + text(log) + ")"; }
  static std::string setReelId(const Cookie& log, const std::string& id)
  {
    return "Edit::set_reelid(" + text(log) + ", 0, " + quoted(id) + ")";
  }
  static std::string setReelType(const Cookie& log, const std::string& type)
  {
    return "Edit::reelType(" + text(log) + ", " + quoted(type) + ")";
  }
  static std::string count(const Cookie& log, int type)
  {
    return "Edit::getNumChans(" + text(log) + ", " + std::to_string(type) + ")";
  }
  static std::string addChannel(const Cookie& log, int type)
  {
    return "Edit::addChan(" + text(log) + ", " + std::to_string(type) + ", null, false, 0, false, -1.0)";
  }
  static std::string some(const std::string& id) { return "some(" + id + ")"; }

  // Groups of these calls.
  static Steps readId(const Cookie& log) { return {open(log), inField("reelid"), close(log)}; }
  static Steps readInt(const Cookie& log, const std::string& key) { return {open(log), inInt(key), close(log)}; }
  static Steps readText(const Cookie& log, const std::string& key) { return {open(log), inText(key), close(log)}; }
  static Steps write(const Cookie& log, const std::string& key, const std::string& value)
  {
    return {open(log), set(key, value), dirty(log), close(log)};
  }
  static Steps failedOpen(const Cookie& log) { return {open(log), closeUnopened()}; }
  /// Reading the type from the row.
  static Steps readType(const Cookie& log)
  {
    return {"EditManager::getProjdb()",
            "ODBViewRep::ODBViewRep()",
            "ODBViewRep::displayRecordsAt([" + text(log) + "], 0)",
            "ODBViewRep::numRows()",
            "ODBViewRep::cellText(0, \"Reel Type\")",
            "ODBView::~ODBView()"};
  }
  /// Adjusting the channels to a type of the catalogue.
  static Steps channelsByType(const Cookie& log, const Steps& adds)
  {
    return joined({{open(log)}, readType(log), readType(log), readType(log), completed(log, adds)});
  }
  /// The same with the last device of this name; its number is -1 if it is not configured.
  static Steps channelsByDevice(const Cookie& log, const std::string& name, int number, const Steps& adds)
  {
    const std::string configured = quoted(number < 0 ? "" : name);
    return joined(
        {{open(log)},
         readType(log),
         readText(log, "reel_last_device"),
         {"theConfigurationManager()", "ExtDeviceConfigurationManager::findConfigForName(" + quoted(name) + ")",
          "theConfigurationManager()", "ExtDeviceConfigurationManager::getConfig(" + std::to_string(number) + ")",
          "ExtDeviceConfig::getNumConnectedAudioInputs(" + configured + ")",
          "ExtDeviceConfig::getInputType(" + configured + ")"},
         completed(log, adds)});
  }
  static Steps joined(std::initializer_list<Steps> parts)
  {
    Steps all;
    for (const Steps& part : parts)
      all.insert(all.end(), part.begin(), part.end());
    return all;
  }

  Heard heard;
  RecordingClient client;

private:
  /// Counting, adding what is missing, closing.
  static Steps completed(const Cookie& log, const Steps& adds)
  {
    Steps steps = joined({{count(log, 2), count(log, 1)}, adds});
    if (!adds.empty())
      steps.push_back(update(log));
    steps.push_back(close(log));
    return steps;
  }
};

} // namespace reeldb_tests

#endif

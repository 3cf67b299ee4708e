// SPDX-License-Identifier: Apache-2.0
//
// The one place where the library opens and closes logs. A log is closed on every path, exceptions included, and also
// when it did not open: the host expects one close for each open.
#ifndef REELDB_REELREC_OPEN_LOG_H
#define REELDB_REELREC_OPEN_LOG_H

#include "host/codes.h"
#include "host/edit.h"

namespace reeldb {

/// Closes a handle when it ends. Made before the open, so that an open that throws is closed as well.
class LogCloser {
public:
  explicit LogCloser(EditPtr& handle) : handle_(handle) {}
  ~LogCloser() { handle_.i_close(); }
  LogCloser(const LogCloser&) = delete;
  LogCloser& operator=(const LogCloser&) = delete;

private:
  EditPtr& handle_;
};

/// A log held open for as long as this lives. False when the log did not open.
class OpenLog {
public:
  explicit OpenLog(const Cookie& log) : closer_(handle_) { handle_.i_open(log, codes::openAsUsual); }
  /// Takes hold of a log that is open already.
  explicit OpenLog(Edit* edit) : closer_(handle_) { handle_ = edit; }

  explicit operator bool() const { return handle_.get() != nullptr; }
  Edit* operator->() const { return handle_.get(); }

private:
  EditPtr handle_;
  LogCloser closer_;
};

/// Adds one channel at the end of the log.
inline void addChannel(const OpenLog& log, EditChanType type)
{
  log->addChan(type, Zr::Ptr<Cel>(), false, EditChanSubType(0), false, -1.0);
}

/// The reel identifier of a log as its attribute shows it; empty when unset or when the log does not open.
inline LightweightString<char> reelAttribute(const Cookie& log)
{
  EditInfo info(log, codes::openAsUsual);
  const LogCloser closer(info);
  return info.getAttrib(codes::reelIdAttribute);
}

} // namespace reeldb

#endif

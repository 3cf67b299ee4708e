// SPDX-License-Identifier: Apache-2.0
//
// The only place where the library opens and closes logs. A log is closed on every path, exceptions included, and even
// if it could not be opened: the host expects one close for each open.
#ifndef REELDB_REELREC_OPEN_LOG_H
#define REELDB_REELREC_OPEN_LOG_H

#include "host/codes.h"
#include "host/edit.h"

namespace reeldb {

/// Closes a handle in its destructor. It is constructed before the open, so an open that throws is closed as well.
class LogCloser {
public:
  explicit LogCloser(EditPtr& handle) : handle_(handle) {}
  ~LogCloser() { handle_.i_close(); }
  LogCloser(const LogCloser&) = delete;
  LogCloser& operator=(const LogCloser&) = delete;

private:
  EditPtr& handle_;
};

/// Holds a log open while it lives. False if the log could not be opened.
class OpenLog {
public:
  explicit OpenLog(const Cookie& log) : closer_(handle_) { handle_.i_open(log, codes::openAsUsual); }
  /// One more opening of a log that is open already.
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

/// The reel identifier in a log's attribute; empty if it is not set or the log cannot be opened.
inline LightweightString<char> reelAttribute(const Cookie& log)
{
  EditInfo info(log, codes::openAsUsual);
  const LogCloser closer(info);
  return info.getAttrib(codes::reelIdAttribute);
}

} // namespace reeldb

#endif

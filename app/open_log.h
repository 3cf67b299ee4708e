// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_CLI_OPEN_LOG_H
#define REELDB_CLI_OPEN_LOG_H

#include "host/edit.h"

namespace reeldb::cli {

/// A log, open for as long as this lives; false when it could not be opened.
class OpenLog {
public:
  explicit OpenLog(const Cookie& log) { edit_.i_open(log, eEditOpenBehaviour(0)); }
  ~OpenLog() { edit_.i_close(); }
  OpenLog(const OpenLog&) = delete;
  OpenLog& operator=(const OpenLog&) = delete;
  explicit operator bool() const { return edit_.get() != nullptr; }
  Edit* operator->() const { return edit_.get(); }

private:
  EditPtr edit_;
};

} // namespace reeldb::cli

#endif

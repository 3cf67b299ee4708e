// SPDX-License-Identifier: Apache-2.0
//
// For the sources of this room.
#ifndef REELDB_APP_NOTICE_H
#define REELDB_APP_NOTICE_H

#include <string>

namespace reeldb::app {

/// Sends the message to the sink of noticesTo.
void notice(const std::string& message);

} // namespace reeldb::app

#endif

// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_MODEL_ATTRIBUTE_INDEX_H
#define REELHOST_MODEL_ATTRIBUTE_INDEX_H

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "model/log.h"

namespace reelhost::model {

/// The logs other than reel logs by their reel identifier, ignoring ASCII case; each group is ordered by number. Logs
/// with an empty identifier are not in it.
class AttributeIndex {
public:
  void refresh(Log& log); ///< moves the log to its group; to be called after each change of id or type
  void take(Log& log);    ///< removes the log, if it is in the index
  const std::vector<Log*>& find(std::string_view id) const;

private:
  std::unordered_map<std::string, std::vector<Log*>> logs_; ///< no group is empty
};

} // namespace reelhost::model

#endif

// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_MODEL_ATTRIBUTE_INDEX_H
#define REELHOST_MODEL_ATTRIBUTE_INDEX_H

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "model/log.h"

namespace reelhost::model {

/// The logs other than reel logs by their reel identifier, without regard to ASCII case, each group by number.
/// Identifiers that are empty are not in it.
class AttributeIndex {
public:
  void refresh(Log& log); ///< puts the log where it now belongs; to be called after each change of id or type
  void take(Log& log);    ///< takes the log out, if it is in
  const std::vector<Log*>& find(std::string_view id) const;

private:
  std::unordered_map<std::string, std::vector<Log*>> logs_; ///< a group stays when it has become empty
};

} // namespace reelhost::model

#endif

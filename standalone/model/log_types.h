// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_MODEL_LOG_TYPES_H
#define REELHOST_MODEL_LOG_TYPES_H

#include <cstring>

#include "host/codes.h"
#include "model/log.h"

namespace reelhost::model {

// The texts of the row's "Type" and their log types. A log of any other type has the empty text.

inline const char* textOf(int type)
{
  return type == codes::reelLog ? "Reel" : type == codes::materialLog ? "Material" : "";
}

inline int logTypeOf(const char* text)
{
  return std::strcmp(text, "Reel") == 0       ? int{codes::reelLog}
         : std::strcmp(text, "Material") == 0 ? int{codes::materialLog}
                                              : 0;
}

} // namespace reelhost::model

#endif

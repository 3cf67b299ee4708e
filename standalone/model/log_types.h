// SPDX-License-Identifier: Apache-2.0
#ifndef REELHOST_MODEL_LOG_TYPES_H
#define REELHOST_MODEL_LOG_TYPES_H

#include <cstring>

#include "model/log.h"

namespace reelhost::model {

// The texts of the row's "Type" and the log types they stand for. A log that is neither has the empty text.

inline const char* textOf(int type)
{
  return type == reelType ? "Reel" : type == materialType ? "Material" : "";
}

inline int logTypeOf(const char* text)
{
  return std::strcmp(text, "Reel") == 0 ? reelType : std::strcmp(text, "Material") == 0 ? materialType : 0;
}

} // namespace reelhost::model

#endif

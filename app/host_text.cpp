// SPDX-License-Identifier: Apache-2.0
#include "app/host_text.h"

namespace reeldb::cli {

std::string folded(std::string s)
{
  for (char& c : s)
    if (c >= 'A' && c <= 'Z')
      c = static_cast<char>(c - 'A' + 'a');
  return s;
}

} // namespace reeldb::cli

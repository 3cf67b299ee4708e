// SPDX-License-Identifier: Apache-2.0
#include "app/plain_text.h"

#include <fmt/format.h>

#include "line/failure.h"
#include "reelhost/display_text.h"

namespace reeldb::cli {

void requirePlainText(const std::string& text, std::string_view fact)
{
  if (const std::string_view flaw = reelhost::textFlaw(text); !flaw.empty())
    throw Failure(usage, fmt::format("{} ({})", fact, flaw));
}

} // namespace reeldb::cli

// SPDX-License-Identifier: Apache-2.0
#include "line/assignment.h"

#include <fmt/format.h>

#include "text/display_text.h"
#include "line/failure.h"
#include "app/field_limit.h"
#include "app/plain_text.h"

namespace reeldb::cli {

Assignment parseAssignment(const std::string& argument)
{
  const std::size_t equals = argument.find('=');
  if (equals == std::string::npos || equals == 0)
    throw Failure(usage, fmt::format("\"{}\": not of the form field=value", shortText(argument)));
  Assignment result{argument.substr(0, equals), argument.substr(equals + 1)};
  requirePlainText(result.value,
                   fmt::format("{}: \"{}\" cannot be stored", shortText(result.field), shortText(result.value)));
  if (result.value.size() > longestField)
    throw Failure(refused, fmt::format("{}: value too long (it has {} bytes, {} are the most)", shortText(result.field),
                                       result.value.size(), longestField));
  return result;
}

} // namespace reeldb::cli

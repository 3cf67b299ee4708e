// SPDX-License-Identifier: Apache-2.0
#include "line/assignment.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "app/error.h"
#include "base/text_width.h"

namespace reeldb::cli {

app::Assignment parseAssignment(const std::string& argument, std::string_view form)
{
  const std::size_t equals = argument.find('=');
  if (equals == std::string::npos || equals == 0)
    throw app::Error(app::ErrorKind::Invalid,
                     fmt::format("\"{}\": not of the form {}", base::shortText(argument), form));
  return {argument.substr(0, equals), argument.substr(equals + 1)};
}

std::vector<app::Assignment> parseAssignments(const std::vector<std::string>& arguments, std::string_view form)
{
  std::vector<app::Assignment> assignments;
  std::transform(arguments.begin(), arguments.end(), std::back_inserter(assignments),
                 [form](const std::string& argument) { return parseAssignment(argument, form); });
  return assignments;
}

} // namespace reeldb::cli

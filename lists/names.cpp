// SPDX-License-Identifier: Apache-2.0
#include "lists/names.h"

#include <algorithm>

#include "base/ascii.h"
#include "lists/text.h"

namespace reeldb::lists {

std::string_view placeholderReason(std::string_view reelText)
{
  if (base::sameName(reelText, "BL") || base::sameName(reelText, "BLACK"))
    return "black";
  if (base::sameName(reelText, "BARS"))
    return "colour bars";
  if (base::sameName(reelText, "GEN"))
    return "generated";
  return {};
}

std::string_view specialReason(std::string_view identifier)
{
  const std::string_view reason = placeholderReason(identifier);
  if (reason.empty() && identifier.find('*') != std::string_view::npos)
    return "a star denotes internally generated material";
  return reason;
}

std::size_t paddedField(std::size_t column)
{
  const auto field = std::lower_bound(paddedReelFields.begin(), paddedReelFields.end(), column);
  return column == 0 || field == paddedReelFields.end() ? 0 : *field;
}

bool fillsField(const Event& event)
{
  return event.reelField > 0 && length(event.reelText) >= event.reelField;
}

bool isAuxiliary(std::string_view name)
{
  return base::sameName(name, "AX");
}

} // namespace reeldb::lists

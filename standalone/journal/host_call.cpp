// SPDX-License-Identifier: Apache-2.0
#include "journal/host_call.h"

namespace reelhost {

std::string threwWhat()
{
  const std::type_info* const type = abi::__cxa_current_exception_type();
  if (!type)
    return "threw";
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(type->name(), nullptr, nullptr, &status),
                                                         &std::free);
  return std::string("threw ") + (status == 0 && name ? name.get() : type->name());
}

} // namespace reelhost

// SPDX-License-Identifier: Apache-2.0
#include "host_check/signature.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace host_check {

namespace {

bool endsIn(std::string_view text, std::string_view end)
{
  return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::string_view withoutQualifiers(std::string_view signature)
{
  for (bool found = true; found;) {
    found = false;
    for (const std::string_view qualifier : {" const", " volatile", " &", " &&"})
      if (endsIn(signature, qualifier)) {
        signature.remove_suffix(qualifier.size());
        found = true;
      }
  }
  return signature;
}

/// The part before the parenthesis that matches the one at the end.
std::string_view withoutParameters(std::string_view signature)
{
  int depth = 0;
  for (std::size_t i = signature.size(); i-- > 0;) {
    if (signature[i] == ')')
      ++depth;
    else if (signature[i] == '(' && --depth == 0)
      return signature.substr(0, i);
  }
  return signature;
}

/// The part after the last blank outside of brackets. Text after the word "operator" belongs to the name.
std::string_view withoutResult(std::string_view name)
{
  const std::size_t end = std::min(name.find("operator"), name.size());
  int depth = 0;
  for (std::size_t i = end; i-- > 0;) {
    if (name[i] == '>' || name[i] == ')')
      ++depth;
    else if (name[i] == '<' || name[i] == '(')
      --depth;
    else if (name[i] == ' ' && depth == 0)
      return name.substr(i + 1);
  }
  return name;
}

} // namespace

std::string demangled(const std::string& symbol)
{
  int status = 0;
  const std::unique_ptr<char, decltype(&std::free)> text(abi::__cxa_demangle(symbol.c_str(), nullptr, nullptr, &status),
                                                         &std::free);
  return status == 0 && text ? text.get() : symbol;
}

std::string qualifiedName(std::string_view signature)
{
  const std::string_view plain = withoutQualifiers(signature);
  if (!endsIn(plain, ")")) // data, or "typeinfo for ..."
    return std::string(signature);
  return std::string(withoutResult(withoutParameters(plain)));
}

} // namespace host_check

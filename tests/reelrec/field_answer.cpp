// SPDX-License-Identifier: Apache-2.0
//
// The program's own configb::in(key, strp_field&) replaces the host's, and calls it unless a test has set a result.
#include "reelrec/field_answer.h"

#include <optional>

#include "host/config.h"
#include "support/hosts_own.h"

namespace reeldb_tests {
namespace {

struct Answer {
  int status;
  const char* text;
};
std::optional<Answer> answer;

} // namespace

FieldAnswer::FieldAnswer(int status, const char* text)
{
  answer = {status, text};
}

FieldAnswer::~FieldAnswer()
{
  answer.reset();
}

} // namespace reeldb_tests

int configb::in(const char* key, strp_field& value) const
{
  using reeldb_tests::answer;
  if (answer) {
    if (answer->text)
      value.set(answer->text);
    return answer->status;
  }
  static const auto hostsIn =
      reeldb_tests::hostsOwn<int(const configb*, const char*, strp_field&)>("_ZNK7configb2inEPKcR10strp_field");
  return hostsIn(this, key, value);
}

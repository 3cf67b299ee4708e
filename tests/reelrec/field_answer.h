// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_TESTS_REELREC_FIELD_ANSWER_H
#define REELDB_TESTS_REELREC_FIELD_ANSWER_H

namespace reeldb_tests {

/// While it lives, configb::in(key, strp_field&) returns this status and stores this text in the field; with null it
/// leaves the field unchanged. One at a time.
class FieldAnswer {
public:
  FieldAnswer(int status, const char* text);
  ~FieldAnswer();
  FieldAnswer(const FieldAnswer&) = delete;
  FieldAnswer& operator=(const FieldAnswer&) = delete;
};

} // namespace reeldb_tests

#endif

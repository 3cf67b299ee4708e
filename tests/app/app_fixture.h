// SPDX-License-Identifier: Apache-2.0
//
// A facility with the project "main", for operations that are called as a face calls them.
#ifndef REELDB_TESTS_APP_APP_FIXTURE_H
#define REELDB_TESTS_APP_APP_FIXTURE_H

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "app/error.h"
#include "app/session.h"
#include "support/temp_folder.h"

namespace reeldb_tests {

class AppTest : public testing::Test {
protected:
  void SetUp() override;

  /// Writes a cut list with an event for each reel; returns its path.
  std::string cutList(const std::string& name, const std::vector<std::string>& reels) const;
  /// Imports such a list.
  void import(const std::vector<std::string>& reels) const;
  std::vector<std::string> reelIds() const;

  /// The error that the work throws; fails when it throws none.
  static reeldb::app::Error errorOf(const std::function<void()>& work);

  TempFolder folder_;
};

} // namespace reeldb_tests

#endif

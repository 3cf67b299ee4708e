// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_TESTS_REELDB_REEL_LIST_FIXTURE_H
#define REELDB_TESTS_REELDB_REEL_LIST_FIXTURE_H

#include <string>
#include <vector>

#include "support/library_fixture.h"

namespace reeldb_tests {

/// For operations that walk the reel list.
class ReelListTest : public LibraryTest {
protected:
  /// Makes the manager the only holder of the reel list, so that its memory is released when the list is replaced.
  void holdReelListOnlyInTheManager()
  {
    CookieVec copy;
    for (const Cookie& reel : manager().reelList)
      copy.add(reel);
    script().maskSearchResult = copy;
    manager().buildReelList();
    script().maskSearchResult.reset();
  }

  /// Rebuilds the reel list with the same number of invalid Cookies. The memory of the previous list is reused, so that
  /// code that still reads there does not find the reels.
  void replaceReelList()
  {
    const int count = manager().reelList.count();
    script().maskSearchResult = invalidCookies(count);
    manager().buildReelList();
    for (int i = 0; i < 4; ++i)
      otherUse_.push_back(invalidCookies(count));
  }

  static std::string numbered(std::string text, int n)
  {
    text += std::to_string(n);
    return text;
  }

private:
  static CookieVec invalidCookies(int count)
  {
    CookieVec cookies;
    for (int i = 0; i < count; ++i)
      cookies.add(Cookie());
    return cookies;
  }

  std::vector<CookieVec> otherUse_;
};

} // namespace reeldb_tests

#endif

// SPDX-License-Identifier: Apache-2.0
//
// The examples, damaged in 2,000 ways that are the same in every run: reading must end with a list that accounts for
// every line, or with the error that it is not a list.
#include <cstdint>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include <utf8.h>

#include "lists/list.h"
#include "lists/text.h"
#include "lists/timecode.h"
#include "support.h"

using namespace reeldb::lists;
using namespace reeldb::lists::test;

namespace {

constexpr int rounds = 2000;

class Damage {
public:
  explicit Damage(std::uint32_t seed) : random_(seed) {}

  std::string operator()(std::string text)
  {
    const std::size_t times = 1 + below(8);
    for (std::size_t i = 0; i < times && !text.empty(); ++i)
      once(text);
    return text;
  }

private:
  /// Not std::uniform_int_distribution: that differs between standard libraries.
  std::size_t below(std::size_t limit) { return random_() % limit; }

  void once(std::string& text)
  {
    static const std::string telling("\0\t\n\r\x1A *:;.,/>|\x80\xC2\xFF"
                                     "09AVX",
                                     22);
    const std::size_t at = below(text.size());
    const std::size_t size = 1 + below(60);
    switch (below(7)) {
    case 0:
      text[at] = static_cast<char>(random_() & 0xFF);
      break;
    case 1:
      text[at] = telling[below(telling.size())];
      break;
    case 2:
      text.insert(at, 1 + below(200), telling[below(telling.size())]);
      break;
    case 3:
      text.erase(at, size);
      break;
    case 4:
      text.insert(below(text.size()), std::string(text, at, size));
      break;
    case 5:
      text.resize(at);
      break;
    default:
      std::swap(text[at], text[below(text.size())]);
      break;
    }
  }

  std::mt19937 random_;
};

void expectShowable(const std::string& text, const std::string& reason)
{
  ASSERT_FALSE(reason.empty());
  for (const std::string* each : {&text, &reason}) {
    ASSERT_TRUE(utf8::is_valid(each->begin(), each->end()));
    ASSERT_EQ(firstControl(*each), "");
  }
}

void expectSound(const List& list)
{
  EXPECT_EQ(accountedLines(list), list.tally.lines);
  for (const Clip& clip : list.clips) {
    ASSERT_FALSE(clip.reel.empty());
    for (const std::string* name : {&clip.reel, &clip.clipName, &clip.sourceFile}) {
      ASSERT_LE(name->size(), nameBytes);
      ASSERT_EQ(clean(*name), *name) << "tabs or outer blanks";
      ASSERT_EQ(firstControl(*name), "");
      ASSERT_TRUE(utf8::is_valid(name->begin(), name->end()));
    }
    for (const std::string* time : {&clip.sourceIn, &clip.sourceOut, &clip.recordIn, &clip.recordOut})
      ASSERT_TRUE(time->empty() || isFrameNumber(*time) || timecodeFault(*time).empty()) << *time;
    ASSERT_EQ(isFrameNumber(clip.sourceIn), isFrameNumber(clip.sourceOut));
    ASSERT_FALSE(isFrameNumber(clip.recordIn) || isFrameNumber(clip.recordOut));
    ASSERT_EQ(clip.reel.find('*'), std::string::npos);
    ASSERT_GE(clip.line, 1);
    ASSERT_LE(clip.line, list.tally.lines);
  }
  for (const Rejected& rejected : list.rejected)
    expectShowable(rejected.text, rejected.reason);
  for (const Warning& warning : list.warnings)
    expectShowable(warning.text, warning.reason);
  for (const Special& special : list.specials) {
    expectShowable(special.text, special.reason);
    ASSERT_EQ(static_cast<std::size_t>(special.count), special.lines.size());
  }
}

class Mutation : public testing::TestWithParam<const char*> {};

TEST_P(Mutation, NoDamageCrashesOrLosesALine)
{
  const std::string example = fileBytes(std::string(REELDB_EXAMPLES) + "/" + GetParam());
  ASSERT_FALSE(example.empty());
  int lists = 0;
  for (int round = 0; round < rounds; ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    const std::string damaged = Damage(static_cast<std::uint32_t>(round))(example);
    try {
      expectSound(read(damaged));
      ++lists;
    } catch (const Error& error) {
      EXPECT_STRNE(error.what(), "");
    }
    if (HasFailure())
      break;
  }
  EXPECT_GT(lists, rounds / 2) << "most damage leaves a list";
}

INSTANTIATE_TEST_SUITE_P(Examples, Mutation, testing::Values("cut-list.edl", "camera-log.ale", "latin1-bars.edl"),
                         [](const auto& instance) {
                           const std::string name = instance.param;
                           return name.substr(0, name.find_first_of("-."));
                         });

} // namespace

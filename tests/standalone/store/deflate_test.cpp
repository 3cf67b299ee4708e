// SPDX-License-Identifier: Apache-2.0
#include "store/deflate.h"

#include <random>

#include <gtest/gtest.h>

#include "reelhost/lists.h"

namespace {

using namespace reelhost;

std::string randomBytes(std::size_t count)
{
  std::mt19937 random(1);
  std::string bytes(count, '\0');
  for (char& byte : bytes)
    byte = static_cast<char>(random());
  return bytes;
}

TEST(Deflate, BytesComeBackWhateverTheirSizeAndContent)
{
  for (const std::string& bytes : {std::string(), std::string(1, '\0'), std::string(16384, 'a'),
                                   std::string(1'000'000, '\xFF'), randomBytes(16384), randomBytes(300'000)}) {
    const std::optional<std::string> back = inflated(deflated(bytes));
    ASSERT_TRUE(back.has_value()) << bytes.size();
    EXPECT_TRUE(*back == bytes) << bytes.size();
  }
}

TEST(Deflate, RepeatedTextBecomesMuchSmaller)
{
  EXPECT_LT(deflated(std::string(100'000, 'x')).size(), 1000u);
}

TEST(Deflate, BytesThatAreNotWholeOrNotDeflatedAreRefused)
{
  const std::string whole = deflated(randomBytes(50'000));
  for (std::size_t size = 0; size < whole.size(); size += size < 20 ? 1 : 997)
    EXPECT_FALSE(inflated(whole.substr(0, size)).has_value()) << size;
  EXPECT_FALSE(inflated(whole + "x").has_value());
  EXPECT_FALSE(inflated("text").has_value());
  std::string changed = whole;
  changed[whole.size() / 2] = static_cast<char>(changed[whole.size() / 2] ^ 1);
  EXPECT_FALSE(inflated(changed).has_value());
}

TEST(Deflate, MoreThanTheLargestSizeIsRefused)
{
  for (const std::size_t size : {100u, 100'000u}) {
    const std::string stored = deflated(std::string(size, 'x'));
    EXPECT_TRUE(inflated(stored, size).has_value());
    EXPECT_FALSE(inflated(stored, size - 1).has_value());
  }
}

TEST(Deflate, DigestIsThatOfTheStandard)
{
  const auto hex = [](const Digest& digest) {
    std::string text;
    for (const unsigned char byte : digest)
      for (const int half : {byte >> 4, byte & 15})
        text += "0123456789abcdef"[half];
    return text;
  };
  EXPECT_EQ(hex(digestOf("")), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
  EXPECT_EQ(hex(digestOf("abc")), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
}

} // namespace

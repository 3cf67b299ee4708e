// SPDX-License-Identifier: Apache-2.0
#include "base/base64.h"

#include <string>

#include <gtest/gtest.h>

using namespace reeldb::base;

namespace {

TEST(Base64, TheExamplesOfTheStandard)
{
  const char* const examples[][2] = {{"", ""},
                                     {"f", "Zg=="},
                                     {"fo", "Zm8="},
                                     {"foo", "Zm9v"},
                                     {"foob", "Zm9vYg=="},
                                     {"fooba", "Zm9vYmE="},
                                     {"foobar", "Zm9vYmFy"}};
  for (const auto& [bytes, text] : examples) {
    EXPECT_EQ(toBase64(bytes), text);
    EXPECT_EQ(fromBase64(text), bytes);
  }
}

TEST(Base64, EveryByteComesBackAtEveryPlace)
{
  for (int byte = 0; byte < 256; ++byte)
    for (std::size_t place = 0; place < 5; ++place) {
      std::string bytes(5, 'x');
      bytes[place] = static_cast<char>(byte);
      EXPECT_EQ(fromBase64(toBase64(bytes)), bytes);
    }
  EXPECT_EQ(toBase64("\xff\xfb\xf0"), "//vw");
}

TEST(Base64, OtherTextsAreRefused)
{
  for (const char* text :
       {"Zg", "Zg=", "Zg===", "Zh==", "Zm9", "Zm9=", "Zm9v\n", " Zm9v", "Zm-v", "=", "====", "Zm=v", "Zg==Zg=="})
    EXPECT_EQ(fromBase64(text), std::nullopt) << text;
}

} // namespace

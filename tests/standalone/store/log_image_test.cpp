// SPDX-License-Identifier: Apache-2.0
#include "store/log_image.h"

#include <gtest/gtest.h>

#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using namespace store_tests;

TEST(LogImage, LogComesBackFromItsImage)
{
  StoredLog log = exampleLog(7, 9);
  log.tag = 65535;
  log.kind = '\xFF';
  log.videoChannels = -5;
  log.fields = {{"reelid", "\xFF\n"}, {"", "x"}, {"zz", ""}};
  const std::optional<StoredLog> back = logFrom(7, imageOf(log));
  ASSERT_TRUE(back.has_value());
  EXPECT_EQ(describe(*back), describe(log));
}

TEST(LogImage, OrderOfTheFieldsMakesNoDifference)
{
  StoredLog one = exampleLog(1, 9), other = one;
  one.fields = {{"a", "1"}, {"reelid", "R"}, {"b", "2"}};
  other.fields = {{"b", "2"}, {"reelid", "R"}, {"a", "1"}};
  EXPECT_EQ(imageOf(one), imageOf(other));
}

TEST(LogImage, ReadsAsTheDocumentSays)
{
  StoredLog log;
  log.uuid.fill('u');
  log.kind = 'E';
  log.tag = 3;
  log.type = 9;
  log.entireMedium = true;
  log.name = "Reel R";
  log.reelType = "Tape";
  log.videoChannels = 1;
  log.audioChannels = 2;
  log.fields = {{"k", "v"}, {"reelid", "R"}};
  EXPECT_EQ(imageOf(log),
            std::string(16, 'u') + std::string("E\0003\0009\0000\0001\0Reel R\0Tape\0001\0002\0reelid\0R\0k\0v\0", 39));
}

TEST(LogImage, TextEndsAtItsFirstNul)
{
  StoredLog log = exampleLog(1, 9);
  log.name = std::string("a\0b", 3);
  EXPECT_EQ(logFrom(1, imageOf(log))->name, "a");
}

TEST(LogImage, ShorterImageIsRefusedUnlessWholeFieldsAreMissing)
{
  StoredLog log = exampleLog(1, 9);
  log.fields = {{"key", "value"}};
  const std::string image = imageOf(log);
  for (std::size_t size = 0; size < image.size(); ++size) {
    const bool isWithoutField = image.substr(size) == std::string("key\0value\0", 10);
    EXPECT_EQ(logFrom(1, std::string_view(image).substr(0, size)).has_value(), isWithoutField) << size;
  }
}

TEST(LogImage, NumbersThatNoLogHasMakeNoImage)
{
  const std::string uuid(16, 'u');
  const auto isImage = [&](const char* kind, const char* tag, const char* type, const char* imported) {
    std::string image = uuid;
    for (const char* text : {kind, tag, type, imported, "0", "name", "type", "1", "2"})
      image.append(text).push_back('\0');
    return logFrom(1, image).has_value();
  };
  EXPECT_TRUE(isImage("E", "65535", "-1", "1"));
  EXPECT_FALSE(isImage("I", "0", "9", "0"));
  EXPECT_FALSE(isImage("", "0", "9", "0"));
  EXPECT_FALSE(isImage("EE", "0", "9", "0"));
  EXPECT_FALSE(isImage("E", "65536", "9", "0"));
  EXPECT_FALSE(isImage("E", "-1", "9", "0"));
  EXPECT_FALSE(isImage("E", "", "9", "0"));
  EXPECT_FALSE(isImage("E", "0", "9x", "0"));
  EXPECT_FALSE(isImage("E", "0", "99999999999", "0"));
  EXPECT_FALSE(isImage("E", "0", "9", "2"));
}

TEST(LogImage, OptionsComeBackFromTheirImage)
{
  const KeyValues options = {{"a", ""}, {"b", "2"}};
  EXPECT_EQ(valuesFrom(imageOf(options)), options);
  EXPECT_EQ(valuesFrom(""), KeyValues{});
  EXPECT_FALSE(valuesFrom(std::string_view("a\0b", 3)));
}

} // namespace

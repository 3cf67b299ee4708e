// SPDX-License-Identifier: Apache-2.0
#include "store/list_image.h"

#include <limits>

#include <gtest/gtest.h>

#include "standalone/store/support.h"
#include "store/deflate.h"

namespace {

using namespace reelhost;
using namespace store_tests;
using namespace std::string_literals;

TEST(ListImage, ListComesBackFromItsImage)
{
  KeptList list = exampleList(7, {3, 3, 900, 4});
  list.title = "\xFF\n";
  list.events[1].clip.name.clear();
  const std::optional<KeptList> back = listFrom(7, imageOf(list));
  ASSERT_TRUE(back.has_value());
  EXPECT_EQ(*back, list);
}

TEST(ListImage, EventsThatSayNothingComeBack)
{
  std::vector<ListEvent> events(100);
  events[40].special = "black";
  EXPECT_EQ(eventsFrom(packed(events)), events);
}

TEST(ListImage, ListWithoutEventsComesBack)
{
  const KeptList list = exampleList(1, {});
  EXPECT_EQ(listFrom(1, imageOf(list)), list);
}

TEST(ListImage, NumbersOfAnySizeComeBack)
{
  std::vector<ListEvent> events(3);
  events[0].shot = std::numeric_limits<std::int64_t>::max() / 2;
  events[1].shot = 1;
  events[1].line = std::numeric_limits<int>::max();
  events[2].shot = 2;
  events[2].clip.audioChannels = -1;
  EXPECT_EQ(eventsFrom(packed(events)), events);
}

TEST(ListImage, EventsReadAsTheDocumentSays)
{
  std::vector<ListEvent> events(2);
  events[0].shot = 5;
  events[0].line = 3;
  events[0].clip.reel = "A1";
  events[1].shot = 7;
  events[1].line = 4;
  events[1].clip.reel = "B1";
  events[1].clip.name = "n";
  events[1].clip.dropFrame = true;
  EXPECT_EQ(inflated(packed(events)),
            "2\0shot\0005\0002\0line\0003\0001\0drop_frame\0\0001\0reelid\0A1\0B1\0name\0\0n\0"s);
}

TEST(ListImage, ImageBeginsWithTheDigestAndTheNames)
{
  const KeptList list = exampleList(1, {1});
  const std::string image = imageOf(list);
  EXPECT_EQ(image.substr(0, 32), std::string(list.digest.begin(), list.digest.end()));
  EXPECT_EQ(image.substr(32, 19), "list1.edl\0TITLE 1\0e"s);
}

TEST(ListImage, WhatIsNotAnImageIsRefused)
{
  const KeptList list = exampleList(1, {1, 2});
  const std::string image = imageOf(list);
  for (std::size_t size = 0; size < image.size(); ++size)
    EXPECT_FALSE(listFrom(1, std::string_view(image).substr(0, size)).has_value()) << size;
  for (const std::string& text :
       {""s, "x\0"s, "-1\0"s, "2\0shot\0001\0"s, "1\0shot\0x\0"s, "1\0shot\0001"s, "1\0colour\0red\0"s,
        "9999999999\0shot\0001\0"s, "1\0line\0002147483648\0"s, "1\0part\0002147483647\0"s,
        "1\0part\0009223372036854775807\0"s, "1\0reel_field\0-2147483649\0"s, "1\0video\0004294967296\0"s,
        "1\0drop_frame\0002\0"s, "1\0shot\0009223372036854775807\0"s, "2\0shot\0009223372036854775807\0001\0"s,
        "2\0line\0002147483647\0001\0"s, "5000000\0shot\0"s + std::string(5'000'000, '\0')})
    EXPECT_FALSE(eventsFrom(deflated(text)).has_value()) << text.substr(0, 40);
  EXPECT_FALSE(eventsFrom("text").has_value());
}

} // namespace

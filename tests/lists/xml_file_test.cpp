// SPDX-License-Identifier: Apache-2.0
#include "lists/xml_file.h"

#include <string>

#include <gtest/gtest.h>

#include "lists/list.h"
#include "lists/timeline.h"
#include "lists/xml_root.h"

using namespace reeldb::lists;

namespace {

std::string errorOf(std::string_view text)
{
  try {
    const XmlFile file(text, "xmeml");
  } catch (const Error& error) {
    return error.what();
  }
  return {};
}

TEST(XmlFile, CountsLinesOfEveryEnd)
{
  for (const std::string end : {"\n", "\r\n", "\r"}) {
    const std::string text =
        "<?xml version='1.0'?>" + end + "<a>" + end + " <b> &#65;&amp;" + end + "</b><c/></a>" + end;
    const XmlFile file(text, "xmeml");
    EXPECT_EQ(file.lineOf(file.root()), 2);
    EXPECT_EQ(file.lineOf(file.root().child("b")), 3);
    EXPECT_EQ(file.lineOf(file.root().child("c")), 4);
    EXPECT_EQ(childText(file.root(), "b"), "A&");
  }
}

TEST(XmlFile, ResolvesNoEntityOfTheFile)
{
  const std::string text = "<!DOCTYPE a [<!ENTITY x 'xx'><!ENTITY y '&x;&x;'>"
                           "<!ENTITY f SYSTEM 'file:///etc/hostname'>]><a><b>&x;&y;&f;</b></a>";
  const XmlFile file(text, "xmeml");
  EXPECT_EQ(childText(file.root(), "b"), "&x;&y;&f;");
}

TEST(XmlFile, RefusesDamagedFilesWithTheLine)
{
  EXPECT_EQ(errorOf("<a>\n<b></b>\n<c"), "damaged xmeml in line 3 (the file is cut short)");
  EXPECT_EQ(errorOf("<a>\n</b>\n</a>").substr(0, 24), "damaged xmeml in line 2 ");
  EXPECT_EQ(errorOf(std::string_view("<a>\n<b>\0</b></a>", 16)), "damaged xmeml in line 2 (a NUL byte)");
}

TEST(XmlFile, RefusesMoreLevelsThanItsLimit)
{
  const auto nested = [](int levels) {
    std::string text, ends;
    for (int i = 0; i < levels; ++i) {
      text += "<a>";
      ends += "</a>";
    }
    return text + ends;
  };
  EXPECT_EQ(errorOf(nested(mostLevels)), "");
  EXPECT_EQ(errorOf(nested(mostLevels + 1)), "xmeml with more than 512 levels in line 1");
  EXPECT_EQ(errorOf(nested(100'000)), "xmeml with more than 512 levels in line 1");
}

TEST(RootName, IsTheFirstElement)
{
  EXPECT_EQ(rootName("<?xml version='1.0'?>\n<!-- <x> -->\n<!DOCTYPE y [<!ENTITY z 'a>b'>]>\n<xmeml version='5'>"),
            "xmeml");
  EXPECT_EQ(rootName("<!DOCTYPE a [<!-- it's ] --><!ENTITY b ']>'><?c d?>]><xmeml>"), "xmeml");
  EXPECT_EQ(rootName("<!DOCTYPE a [<!ENTITY b ']>"), "");
  EXPECT_EQ(rootName("<!DOCTYPE a SYSTEM \"b>c\"><xmeml>"), "xmeml");
  EXPECT_EQ(rootName("<fcpxml>"), "fcpxml");
  EXPECT_EQ(rootName("<?xml"), "");
  EXPECT_EQ(rootName("TITLE: <xmeml>"), "");
  EXPECT_EQ(rootName(""), "");
}

} // namespace

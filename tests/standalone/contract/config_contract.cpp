// SPDX-License-Identifier: Apache-2.0
#include <cstring>
#include <string>

#include "host/config.h"
#include "host_fixture.h"

namespace {

HOST_CONTRACT(Config);

TEST_P(Config, AnAbsentKeyIsNullAndLeavesTheOutArgumentsAlone)
{
  PROMISE("host/config.h", "null if the key is absent.");
  const configb block;
  char buffer[codes::textBufferSize] = {};
  int number = 7;
  strp_field field;
  field.set("old");
  EXPECT_EQ(block.in("missing"), nullptr);
  EXPECT_NE(block.in("missing", buffer), 0);
  EXPECT_NE(block.in("missing", number), 0);
  EXPECT_NE(block.in("missing", field), 0);
  EXPECT_EQ(number, 7);
  EXPECT_STREQ(field.text(), "old");
}

TEST_P(Config, APresentKeyIsReadInEveryForm)
{
  PROMISE("host/config.h", "if the key is there, the first form of `in` returns non-null, and the others return 0.");
  configb block;
  block.set("reel_available_flag", "1", nullptr);
  char buffer[codes::textBufferSize] = {};
  int number = 0;
  strp_field field;
  EXPECT_STREQ(block.in("reel_available_flag"), "1");
  EXPECT_EQ(block.in("reel_available_flag", buffer), 0);
  EXPECT_STREQ(buffer, "1");
  EXPECT_EQ(block.in("reel_available_flag", number), 0);
  EXPECT_EQ(number, 1);
  EXPECT_EQ(block.in("reel_available_flag", field), 0);
  EXPECT_STREQ(field.text(), "1");
}

TEST_P(Config, AKeyWithTheEmptyTextIsPresent)
{
  PROMISE("host/config.h", "The empty key is a key, and a key may have the empty text.");
  configb block;
  block.set("reeldb_defaultType", "", nullptr);
  char buffer[codes::textBufferSize] = {};
  int number = 7;
  ASSERT_NE(block.in("reeldb_defaultType"), nullptr);
  EXPECT_STREQ(block.in("reeldb_defaultType"), "");
  EXPECT_EQ(block.in("reeldb_defaultType", buffer), 0);
  EXPECT_STREQ(buffer, "");
  EXPECT_EQ(block.in("reeldb_defaultType", number), 0);
  EXPECT_EQ(number, 0);
}

TEST_P(Config, ANewTextTakesThePlaceOfTheOld)
{
  PROMISE("host/config.h", "A block of keys with one text per key");
  configb block;
  block.set("key", "first", nullptr);
  block.set("other", "x", nullptr);
  block.set("key", "second", nullptr);
  EXPECT_STREQ(block.in("key"), "second");
  EXPECT_STREQ(block.in("other"), "x");
}

TEST_P(Config, KeysAreTakenLetterForLetterAndMayBeEmpty)
{
  PROMISE("host/config.h", "keys are matched with their letter case");
  configb block;
  block.set("Key", "a", nullptr);
  block.set("", "b", nullptr);
  EXPECT_EQ(block.in("key"), nullptr);
  EXPECT_STREQ(block.in(""), "b");
}

TEST_P(Config, ATextMayBeSetFromAField)
{
  PROMISE("host/config.h", "likewise; the field holds a text");
  configb block;
  strp_field field;
  field.set("tape");
  block.set("key", field);
  field.set("other");
  EXPECT_STREQ(block.in("key"), "tape");
}

TEST_P(Config, ATextMayBeSetFromTheBlockItself)
{
  PROMISE("host/config.h", "@p value may be a text of this block");
  configb block;
  block.set("a", "text", nullptr);
  block.set("a", block.in("a") + 1, nullptr);
  EXPECT_STREQ(block.in("a"), "ext");
}

TEST_P(Config, ANullTextIsTheEmptyText)
{
  PROMISE("host/config.h", "null is the empty text, and the key is then there.");
  configb block;
  block.set("new", nullptr, nullptr);
  block.set("key", "text", nullptr);
  block.set("key", nullptr, nullptr);
  EXPECT_STREQ(block.in("new"), "");
  EXPECT_STREQ(block.in("key"), "");
}

TEST_P(Config, AFieldSetToNullHoldsNoText)
{
  PROMISE("host/config.h", "copies the text, which may be this field's text; null removes the text");
  strp_field field;
  EXPECT_EQ(field.text(), nullptr);
  field.set("reel");
  field.set(field.text() + 1);
  EXPECT_STREQ(field.text(), "eel");
  field.set(nullptr);
  EXPECT_EQ(field.text(), nullptr);
  field.set("");
  EXPECT_STREQ(field.text(), "");
}

TEST_P(Config, ACopyOfAFieldHasATextOfItsOwn)
{
  PROMISE("host/config.h", "Each copy has its own text.");
  strp_field field;
  field.set("one");
  strp_field copy(field), assigned;
  assigned = field;
  field.set("two");
  EXPECT_STREQ(copy.text(), "one");
  EXPECT_STREQ(assigned.text(), "one");
}

TEST_P(Config, ALongTextIsCutToTheBuffer)
{
  PROMISE("host/config.h", "Writes at most codes::textBufferSize bytes, NUL included; a longer text is cut.");
  configb block;
  const std::string text(3000, 'x');
  block.set("long", text.c_str(), nullptr);
  char buffer[codes::textBufferSize + 1] = {};
  buffer[codes::textBufferSize] = '!';
  EXPECT_EQ(block.in("long", buffer), 0);
  EXPECT_EQ(std::strlen(buffer), codes::longestText);
  EXPECT_EQ(buffer[codes::textBufferSize], '!');
  EXPECT_STREQ(block.in("long"), text.c_str());
}

TEST_P(Config, TextThatIsNotANumberReadsAsItsDigits)
{
  PROMISE("host/config.h", "@p value is the text read as decimal, 0 without digits.");
  configb block;
  block.set("words", "yes", nullptr);
  block.set("mixed", "-12abc", nullptr);
  int number = 7;
  EXPECT_EQ(block.in("words", number), 0);
  EXPECT_EQ(number, 0);
  EXPECT_EQ(block.in("mixed", number), 0);
  EXPECT_EQ(number, -12);
}

TEST_P(Config, ASettingOfTheHostThatIsNotThereIsTheDefault)
{
  PROMISE("host/config.h", "or @p defaultValue itself if the key is absent.");
  EXPECT_STREQ(config_string("no_setting_of_this_name", "default"), "default");
  EXPECT_STREQ(config_string("no_setting_of_this_name", ""), "");
}

TEST_P(Config, TheFolderOfDeviceDataEndsInASeparator)
{
  PROMISE("host/config.h", "The path ends in a separator");
  const LightweightString<wchar_t> folder = getDeviceDataDirectory(codes::deviceData);
  ASSERT_FALSE(folder.empty());
  EXPECT_EQ(folder.c_str()[folder.length() - 1], L'/');
}

TEST_P(Config, SystemSettingsAreKeptAndTheEmptyTextRemovesThem)
{
  PROMISE("host/config.h", "Sets the text of the key at once; the empty text removes the key.");
  SystemCfg& config = SystemCfg::theConfig();
  EXPECT_TRUE(config.get("reel_userfield0").empty());
  config.set("reel_userfield0", "Scene");
  EXPECT_STREQ(config.get("reel_userfield0").c_str(), "Scene");
  EXPECT_TRUE(config.get("reel_userfield1").empty());
  config.set("reel_userfield0", "");
  EXPECT_TRUE(config.get("reel_userfield0").empty());
}

} // namespace

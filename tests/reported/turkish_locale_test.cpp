// SPDX-License-Identifier: Apache-2.0
//
// Reported: a program that called setlocale(LC_ALL, "tr_TR.UTF-8") did not find the reel "LIVE1" as "live1" any more,
// and in a Latin-1 locale it found "CAF\xC9" as "caf\xE9". The library compares identifiers by the letter cases of
// LC_CTYPE, and the host left the program's locale in effect. Since then reelhost::startUp gives the main thread the
// locale C.UTF-8.
//
// The locales are made for the test.
#include <langinfo.h>
#include <locale.h>

#include <cstdlib>

#include "support/library_fixture.h"
#include "support/temp_folder.h"

namespace reeldb_tests {

namespace {

class Locale : public LibraryTest {
protected:
  ~Locale() override
  {
    setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
  }

  /// Makes a locale from the system's sources and sets it for the process. Returns false if there are no sources.
  bool set(const std::string& language, const std::string& charset)
  {
    if (!std::filesystem::exists("/usr/share/i18n/locales/" + language))
      return false;
    const std::string name = language + "." + charset;
    const std::string command =
        "localedef -i " + language + " -f " + charset + " '" + (folder_.path() / name).string() + "'";
    EXPECT_EQ(std::system(command.c_str()), 0) << command;
    setenv("LOCPATH", folder_.path().c_str(), 1);
    EXPECT_NE(setlocale(LC_ALL, name.c_str()), nullptr) << name;
    return true;
  }

  /// The result of the lookup without the locale that the host gave the thread.
  bool existsUnpinned(const char* id)
  {
    const locale_t pinned = uselocale(LC_GLOBAL_LOCALE);
    const bool exists = manager().doesReelExist(id);
    uselocale(pinned);
    return exists;
  }

  TempFolder folder_;
};

// A sanitizer puts a strcasecmp of its own in place of the system's.
#if defined __SANITIZE_ADDRESS__ || defined __SANITIZE_THREAD__
constexpr bool lettersFollowTheLocale = false;
#else
constexpr bool lettersFollowTheLocale = true;
#endif

#define SET_LOCALE_OR_SKIP(language, charset)                                                                          \
  if (!lettersFollowTheLocale)                                                                                         \
    GTEST_SKIP() << "the sanitizer compares letters in no locale";                                                     \
  if (!set(language, charset))                                                                                         \
  GTEST_SKIP() << "the sources of the locale " language " are not installed (package locales)"

} // namespace

TEST_F(Locale, TurkishLettersChangeNothing)
{
  SET_LOCALE_OR_SKIP("tr_TR", "UTF-8");
  addReel("LIVE1");
  const Cookie shot = addShot("live1");
  EXPECT_FALSE(existsUnpinned("live1")) << "the locale does not have these letter cases";
  EXPECT_TRUE(manager().doesReelExist("live1"));
  manager().changeReelId("Live1", "R2");
  EXPECT_EQ(configText(shot, "reelid"), "R2");
}

TEST_F(Locale, LettersOfLatin1StayTwo)
{
  SET_LOCALE_OR_SKIP("de_DE", "ISO-8859-1");
  addReel("\xE9");
  EXPECT_TRUE(existsUnpinned("\xC9")) << "the locale does not have these letter cases";
  EXPECT_FALSE(manager().doesReelExist("\xC9"));
  EXPECT_TRUE(manager().doesReelExist("\xE9"));
}

TEST_F(Locale, CharactersAreThoseOfUtf8)
{
  EXPECT_STREQ(nl_langinfo(CODESET), "UTF-8");
}

} // namespace reeldb_tests

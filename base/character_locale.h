// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_BASE_CHARACTER_LOCALE_H
#define REELDB_BASE_CHARACTER_LOCALE_H

#include <locale.h>

namespace reeldb::base {

/// Widths, letters and their cases are a matter of the character set alone, and the process stays in the "C" locale, on
/// which the comparison of identifiers rests. So the locale is switched to UTF-8 for as long as this lives, and for
/// this thread only.
class CharacterLocale {
public:
  CharacterLocale() : before_(locale() ? uselocale(locale()) : locale_t()) {}
  ~CharacterLocale()
  {
    if (before_)
      uselocale(before_);
  }
  CharacterLocale(const CharacterLocale&) = delete;
  CharacterLocale& operator=(const CharacterLocale&) = delete;

private:
  static locale_t locale()
  {
    static const locale_t made = newlocale(LC_CTYPE_MASK, "C.UTF-8", locale_t());
    return made;
  }
  locale_t before_;
};

} // namespace reeldb::base

#endif

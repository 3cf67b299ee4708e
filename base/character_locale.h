// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_BASE_CHARACTER_LOCALE_H
#define REELDB_BASE_CHARACTER_LOCALE_H

#include <locale.h>

namespace reeldb::base {

/// Switches this thread to a UTF-8 locale while the object lives. The widths of characters, and which of them are
/// letters, depend only on the character set. The process itself stays in the "C" locale, because the comparison of
/// identifiers relies on it.
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

// SPDX-License-Identifier: Apache-2.0
#include <locale.h>

#include "MainThread.h"
#include "host/action.h"
#include "host/codes.h"
#include "reelhost/host.h"

// Weak, so that this host also loads without the library.
extern int glib_pid __attribute__((weak)); // NOLINT(readability-redundant-declaration): adds the attribute

namespace {

/// The library compares identifiers by the letter cases of LC_CTYPE. With a Turkish locale "live1" would not find
/// "LIVE1". A locale of the thread stays in effect whatever locale the program sets for the process. C.UTF-8 treats
/// bytes as "C" does.
void pinLetterCases()
{
  static const locale_t pinned = [] {
    const locale_t others = duplocale(LC_GLOBAL_LOCALE);
    const locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", others);
    return utf8 ? utf8 : newlocale(LC_CTYPE_MASK, "C", others);
  }();
  if (pinned)
    uselocale(pinned);
}

} // namespace

void reelhost::startUp()
{
  pinLetterCases();
  const int id = co_pid() & codes::threadMask;
  if (&glib_pid)
    glib_pid = id;
}

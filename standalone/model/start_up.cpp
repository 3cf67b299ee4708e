// SPDX-License-Identifier: Apache-2.0
#include <locale.h>

#include "MainThread.h"
#include "host/action.h"
#include "host/codes.h"
#include "reelhost/host.h"

// Weak, so that this host loads also where the library is not.
extern int glib_pid __attribute__((weak));

namespace {

/// The library compares identifiers by the letter cases of LC_CTYPE. A locale of the thread outlives what the program
/// makes of the process's: Turkish would keep "live1" from finding "LIVE1". In C.UTF-8 bytes have the cases of "C".
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

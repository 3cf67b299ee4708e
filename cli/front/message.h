// SPDX-License-Identifier: Apache-2.0
//
// What the front says: one line on standard error, "reeldb: subject: fact".
#ifndef REELDB_FRONT_MESSAGE_H
#define REELDB_FRONT_MESSAGE_H

#include <stdio.h>

/// The exit codes of the command that the front gives itself; module/exit_code.h has them all.
enum { exit_refused = 1, exit_usage = 2, exit_unreadable = 3 };

/// Why there is no facility to work with. An empty refusal has the code 0.
struct refusal {
  int code;
  char* text; ///< without "reeldb: " and line end; to be freed. Null without memory.
};

/// Fills the refusal. printf-style.
void refuse(struct refusal* refusal, int code, const char* format, ...) __attribute__((format(printf, 3, 4)));

/// Prints the message with every control character escaped: paths and arguments may hold any byte.
void print_message(FILE* to, const char* text);

#endif

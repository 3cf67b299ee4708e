// SPDX-License-Identifier: Apache-2.0
//
// What the front has to say. The module says it, once it is loaded: it knows how to write what may hold any byte.
#ifndef REELDB_FRONT_MESSAGE_H
#define REELDB_FRONT_MESSAGE_H

#include <stddef.h>

/// The exit codes of the command that the front gives itself; line/exit_code.h has them all.
enum { exit_refused = 1, exit_usage = 2, exit_unreadable = 3 };

/// Why there is no facility to work with. An empty refusal has the code 0.
struct refusal {
  int code;
  char* text; ///< without "reeldb: " and line end; to be freed. Null without memory.
};

/// Fills the refusal. printf-style.
void refuse(struct refusal* refusal, int code, const char* format, ...) __attribute__((format(printf, 3, 4)));

/// What is odd about the facility, but keeps nobody from working with it.
struct remarks {
  size_t count;
  char** texts; ///< like those of refusals; each to be freed
};

/// Adds a remark; without memory it is left out. printf-style.
void remark(struct remarks* remarks, const char* format, ...) __attribute__((format(printf, 2, 3)));
void free_remarks(struct remarks* remarks);

/// Prints a message of a front without its module on standard error: "reeldb: " and the text, of which every byte that
/// is not printable ASCII is escaped.
void print_message(const char* text);

#endif

/* SPDX-License-Identifier: Apache-2.0
 *
 * Where the front enters the module. C and C++. */
#ifndef REELDB_MODULE_ENTRY_H
#define REELDB_MODULE_ENTRY_H

#ifdef __cplusplus
extern "C" {
#endif

typedef int reeldb_main_function(int argc, char** argv);
typedef int reeldb_needs_facility_function(int argc, char** argv);
typedef void reeldb_complain_function(const char* message);

/** Runs the command line; the facility is the one in the environment variable REELDB_FACILITY. Answers the exit code.
 */
reeldb_main_function reeldb_main;

/** Whether the line is well formed and its command works on a facility. Says nothing and does nothing. */
reeldb_needs_facility_function reeldb_needs_facility;

/** Prints what may follow on the line, whose last word is being typed: a line "words", "files" or "folders", which says
 * where the words come from that may stand there, and then those that reeldb knows, each with a tab and its
 * description. Says nothing of what is wrong. Answers the exit code. */
reeldb_main_function reeldb_complete;

/** Writes "reeldb: " and the message, made fit for a terminal, to standard error. */
reeldb_complain_function reeldb_complain;

#ifdef __cplusplus
}
#endif

#endif

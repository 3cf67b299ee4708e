/* SPDX-License-Identifier: Apache-2.0
 *
 * Where the program enters the module. C and C++. */
#ifndef REELDB_CLI_ENTRY_H
#define REELDB_CLI_ENTRY_H

#ifdef __cplusplus
extern "C" {
#endif

typedef int reeldb_main_function(int argc, char** argv);

/** Runs the command line; the facility is the one in the environment variable REELDB_FACILITY. Returns the exit code.
 */
reeldb_main_function reeldb_main;

/** Prints what may follow on the line, whose last word is being typed: a line "words", "files" or "folders", which says
 * where the words come from that may stand there, and then those that reeldb knows, each with a tab and its
 * description. Reports nothing that is wrong. Returns the exit code. */
reeldb_main_function reeldb_complete;

#ifdef __cplusplus
}
#endif

#endif

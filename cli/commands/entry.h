/* SPDX-License-Identifier: Apache-2.0
 *
 * The entry points of the module, for C and C++. */
#ifndef REELDB_CLI_ENTRY_H
#define REELDB_CLI_ENTRY_H

#ifdef __cplusplus
extern "C" {
#endif

typedef int reeldb_main_function(int argc, char** argv);

/** Runs the command line with the facility of the environment variable REELDB_FACILITY. Returns the exit code.
 */
reeldb_main_function reeldb_main;

/** Prints the completions of the line's last word: first a line "words", "files" or "folders" for the source of the
 * completions, then the words that reeldb knows, each with a tab and its description. Reports no errors. Returns the
 * exit code. */
reeldb_main_function reeldb_complete;

#ifdef __cplusplus
}
#endif

#endif

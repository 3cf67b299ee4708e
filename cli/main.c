// SPDX-License-Identifier: Apache-2.0
//
// The program. It sets the facility in the environment, because the library reads it while it is loaded. Then it loads
// one module with the commands, the library and the host, as an application loads its modules. It is written in C and
// links none of them, so that the library's operator new becomes the process's.
#define _GNU_SOURCE
#include <dlfcn.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "commands/entry.h"

enum { exit_unreadable = 3 };

/// Writes the message to standard error in ASCII only, because the module with displayText may not be loaded.
static void print_message(const char* text)
{
  fputs("reeldb: ", stderr);
  for (const unsigned char* c = (const unsigned char*)text; *c; ++c)
    fprintf(stderr, *c < 0x20 || *c > 0x7E ? "\\x%02x" : "%c", *c);
  fputc('\n', stderr);
}

static bool starts_with(const char* text, const char* start)
{
  return strncmp(text, start, strlen(start)) == 0;
}

/// The folder of the first -C on the line; null without -C. The module reads the line again and reports its errors.
static const char* asked_facility(int argc, char** argv)
{
  for (int i = 1; i < argc && strcmp(argv[i], "--") != 0; ++i) {
    const char* const argument = argv[i];
    const bool has_next = i + 1 < argc;
    if (strcmp(argument, "-C") == 0 || strcmp(argument, "--facility") == 0)
      return has_next ? argv[i + 1] : NULL;
    if (starts_with(argument, "--facility="))
      return argument + strlen("--facility=");
    if (starts_with(argument, "-C"))
      return argument + (argument[2] == '=' ? 3 : 2);
    if ((strcmp(argument, "-p") == 0 || strcmp(argument, "--project") == 0) && has_next)
      ++i; // a project may be called -C
  }
  return NULL;
}

/// Whether the line only shows a text or makes a facility. Such a line gets no facility, because the library would read
/// it and print warnings about its reel types.
static bool needs_no_facility(int argc, char** argv)
{
  const char* command = NULL;
  for (int i = 1; i < argc && strcmp(argv[i], "--") != 0; ++i) {
    const char* const argument = argv[i];
    if (strcmp(argument, "-h") == 0 || strcmp(argument, "--help") == 0 || strcmp(argument, "--version") == 0)
      return true;
    if (strcmp(argument, "-C") == 0 || strcmp(argument, "--facility") == 0 || strcmp(argument, "-p") == 0 ||
        strcmp(argument, "--project") == 0)
      ++i; // its value
    else if (argument[0] != '-' && !command)
      command = argument;
  }
  return !command || strcmp(command, "init") == 0 || strcmp(command, "help") == 0;
}

/// The nearest folder with a facility.toml, from the working folder upwards; null if there is none. To be freed.
static char* nearest_facility(void)
{
  char* folder = getcwd(NULL, 0);
  while (folder) {
    char* file = NULL;
    struct stat status;
    const bool found =
        asprintf(&file, "%s/facility.toml", folder) >= 0 && stat(file, &status) == 0 && S_ISREG(status.st_mode);
    free(file);
    if (found)
      return folder;
    char* const slash = strrchr(folder, '/');
    if (!slash || !slash[1])
      break;
    slash[slash == folder] = '\0';
  }
  free(folder);
  return NULL;
}

/// Sets the facility for the host: @p asked, else the one of the environment, else the nearest.
static void choose_facility(int argc, char** argv)
{
  const char* const asked = asked_facility(argc, argv);
  const char* const given = getenv("REELDB_FACILITY");
  if (asked) {
    setenv("REELDB_FACILITY", asked, 1);
  } else if (!given || !*given) {
    char* nearest = nearest_facility();
    if (nearest)
      setenv("REELDB_FACILITY", nearest, 1);
    else
      unsetenv("REELDB_FACILITY");
    free(nearest);
  }
}

/// Loads the module from one of three places, relative to the program's folder: the build tree, the same folder, the
/// installed tree. Null, after a message, if that fails.
static void* load_module(void)
{
  static const char* const places[] = {"../lib", ".", REELDB_MODULE_FOLDER};
  char program[4096];
  const ssize_t length = readlink("/proc/self/exe", program, sizeof program - 1);
  if (length < 0) {
    print_message("/proc/self/exe: cannot be read, so the command's module cannot be found");
    return NULL;
  }
  program[length] = '\0';
  *strrchr(program, '/') = '\0';
  char path[sizeof program + 256];
  for (size_t i = 0; i < sizeof places / sizeof *places; ++i) {
    snprintf(path, sizeof path, "%s/%s/libreelcli.so", program, places[i]);
    if (access(path, F_OK) != 0)
      continue;
    // Global, so that the library's operator new becomes the process's, as in a program that links the library.
    void* const module = dlopen(path, RTLD_NOW | RTLD_GLOBAL);
    if (!module)
      print_message(dlerror());
    return module;
  }
  snprintf(path, sizeof path, "%s: libreelcli.so not found (looked in %s, %s and %s from there)", program, places[0],
           places[1], places[2]);
  print_message(path);
  return NULL;
}

int main(int argc, char** argv)
{
  // For completion, a shell runs the line typed so far, with this variable in the environment.
  const char* const typed = getenv("REELDB_COMPLETE");
  const bool is_typed = typed && *typed;
  if (!is_typed && needs_no_facility(argc, argv))
    unsetenv("REELDB_FACILITY");
  else
    choose_facility(argc, argv);
  void* const module = load_module();
  if (!module)
    return exit_unreadable;
  reeldb_main_function* run = NULL;
  *(void**)&run = dlsym(module, is_typed ? "reeldb_complete" : "reeldb_main"); // C allows only this conversion
  if (!run) {
    print_message("libreelcli.so: does not belong to this program (entry point missing)");
    return exit_unreadable;
  }
  return run(argc, argv);
}

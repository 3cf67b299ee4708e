// SPDX-License-Identifier: Apache-2.0
#define _GNU_SOURCE
#include "module.h"

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "message.h"

// From the program's folder: the build tree, the same folder, the installed tree.
static const char* const places[] = {"../lib", ".", REELDB_MODULE_FOLDER};

static char* path_in(const char* program, const char* place)
{
  char* path = NULL;
  return asprintf(&path, "%s/%s/libreelcli.so", program, place) < 0 ? NULL : path;
}

static char* program_folder(void)
{
  char* path = realpath("/proc/self/exe", NULL);
  char* slash = path ? strrchr(path, '/') : NULL;
  if (slash)
    *slash = '\0';
  return path;
}

static void* open_module(const char* folder)
{
  for (size_t i = 0; i < sizeof places / sizeof *places; ++i) {
    char* path = path_in(folder, places[i]);
    if (path && access(path, F_OK) == 0) {
      // Global: the library's operator new is the process's, as in a program that is linked to it.
      void* handle = dlopen(path, RTLD_NOW | RTLD_GLOBAL);
      if (!handle)
        print_message(dlerror());
      free(path);
      return handle;
    }
    free(path);
  }
  char* text = NULL;
  if (asprintf(&text, "%s: libreelcli.so not found (looked in %s, %s and %s from there)", folder, places[0], places[1],
               places[2]) >= 0)
    print_message(text);
  free(text);
  return NULL;
}

bool load_module(struct module* module)
{
  char* folder = program_folder();
  if (!folder) {
    print_message("/proc/self/exe: cannot be read, so the command's module cannot be found");
    return false;
  }
  void* handle = open_module(folder);
  free(folder);
  if (!handle)
    return false;
  // The way to a function from dlsym that C allows.
  *(void**)&module->run = dlsym(handle, "reeldb_main");
  *(void**)&module->complete = dlsym(handle, "reeldb_complete");
  *(void**)&module->needs_facility = dlsym(handle, "reeldb_needs_facility");
  *(void**)&module->complain = dlsym(handle, "reeldb_complain");
  if (!module->run || !module->complete || !module->needs_facility || !module->complain) {
    print_message("libreelcli.so: does not belong to this program (entry point missing)");
    return false;
  }
  return true;
}

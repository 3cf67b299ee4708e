// SPDX-License-Identifier: Apache-2.0
//
// The command's front. The library reads the facility while it is loaded and ends the process over some faults in it,
// so the facility is found and looked at first, in plain C; then one module brings in commands, library and host.
#define _GNU_SOURCE
#include <stdio.h>
#include <stdlib.h>

#include "arguments.h"
#include "facility.h"
#include "message.h"
#include "module.h"
#include "type_file.h"

/// Points the library to the facility, or to none.
static void choose_facility(const struct arguments* arguments, struct refusal* refusal)
{
  char* facility = arguments->without_facility ? NULL : find_facility(arguments->facility, refusal);
  if (facility && check_type_file(facility, refusal))
    setenv("REELDB_FACILITY", facility, 1);
  else
    unsetenv("REELDB_FACILITY");
  free(facility);
}

int main(int argc, char** argv)
{
  struct arguments arguments;
  if (!read_arguments(argc, argv, &arguments)) {
    free_arguments(&arguments);
    return exit_usage;
  }
  struct refusal refusal = {0};
  struct module module;
  int code = exit_unreadable;
  choose_facility(&arguments, &refusal);
  if (load_module(&module)) {
    // A line that makes no sense is told before a facility that is not there.
    if (refusal.code != 0 && module.needs_facility(arguments.count, arguments.values)) {
      print_message(stderr, refusal.text ? refusal.text : "out of memory");
      code = refusal.code;
    } else {
      code = module.run(arguments.count, arguments.values);
    }
  }
  free(refusal.text);
  free_arguments(&arguments);
  return code;
}

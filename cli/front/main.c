// SPDX-License-Identifier: Apache-2.0
//
// The command's front. The library reads the facility while it is loaded and ends the process over some faults in it,
// so the facility is found and looked at first, in plain C; then one module brings in commands, library and host.
#define _GNU_SOURCE
#include <stdbool.h>
#include <stdlib.h>

#include "arguments.h"
#include "facility.h"
#include "message.h"
#include "module.h"
#include "type_file.h"

/// Points the library to the facility, or to none.
static void choose_facility(const struct arguments* arguments, struct refusal* refusal, struct remarks* remarks)
{
  char* facility = arguments->without_facility ? NULL : find_facility(arguments->facility, refusal);
  if (facility && check_type_file(facility, refusal, remarks))
    setenv("REELDB_FACILITY", facility, 1);
  else
    unsetenv("REELDB_FACILITY");
  free(facility);
}

/// Runs the line, unless the facility it needs was refused. Answers the exit code.
static int run(const struct module* module, const struct arguments* arguments, const struct refusal* refusal,
               const struct remarks* remarks)
{
  // A line that makes no sense is told before a facility that is not there.
  const bool talks = refusal->code != 0 || remarks->count > 0;
  if (talks && module->needs_facility(arguments->count, arguments->values)) {
    if (refusal->code != 0) {
      module->complain(refusal->text ? refusal->text : "out of memory");
      return refusal->code;
    }
    for (size_t i = 0; i < remarks->count; ++i)
      module->complain(remarks->texts[i]);
  }
  return module->run(arguments->count, arguments->values);
}

/// Shells ask what may follow on a line by running it so far, with this in the environment.
static bool is_being_typed(void)
{
  const char* set = getenv("REELDB_COMPLETE");
  return set && *set;
}

int main(int argc, char** argv)
{
  const bool is_typed = is_being_typed();
  struct arguments arguments;
  if (!read_arguments(argc, argv, &arguments) && !is_typed) {
    free_arguments(&arguments);
    return exit_usage;
  }
  if (is_typed)
    arguments.without_facility = false; // what follows may be a name out of it
  struct refusal refusal = {0};
  struct remarks remarks = {0};
  struct module module;
  choose_facility(&arguments, &refusal, &remarks);
  int code = exit_unreadable;
  if (load_module(&module))
    code = is_typed ? module.complete(argc, argv) : run(&module, &arguments, &refusal, &remarks);
  free(refusal.text);
  free_remarks(&remarks);
  free_arguments(&arguments);
  return code;
}

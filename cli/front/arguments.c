// SPDX-License-Identifier: Apache-2.0
#define _GNU_SOURCE
#include "arguments.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "message.h"

static bool starts_with(const char* text, const char* start)
{
  return strncmp(text, start, strlen(start)) == 0;
}

/// Whether the argument chooses the facility; *value is its value, or null when that is the next argument.
static bool names_facility(const char* argument, const char** value)
{
  *value = NULL;
  if (strcmp(argument, "-C") == 0 || strcmp(argument, "--facility") == 0)
    return true;
  if (starts_with(argument, "--facility="))
    *value = argument + strlen("--facility=");
  else if (starts_with(argument, "-C="))
    *value = argument + strlen("-C=");
  else if (starts_with(argument, "-C"))
    *value = argument + strlen("-C");
  return *value != NULL;
}

static bool takes_value(const char* argument)
{
  return strcmp(argument, "-p") == 0 || strcmp(argument, "--project") == 0;
}

static bool asks_for_text(const char* argument)
{
  return strcmp(argument, "-h") == 0 || strcmp(argument, "--help") == 0 || strcmp(argument, "--version") == 0;
}

static bool put_facility_first(struct arguments* arguments)
{
  char* option = NULL;
  if (asprintf(&option, "--facility=%s", arguments->facility) < 0)
    return false;
  arguments->values[1] = option;
  return true;
}

bool read_arguments(int argc, char** argv, struct arguments* arguments)
{
  *arguments = (struct arguments){0};
  // One place more than given, for the facility, and one for the null.
  arguments->values = calloc((size_t)argc + 3, sizeof(char*));
  if (!arguments->values) {
    print_message("out of memory");
    return false;
  }
  arguments->values[0] = argc > 0 ? argv[0] : (char*)"reeldb";
  int kept = 2;
  const char* word = NULL;
  int i = 1;
  for (; i < argc && strcmp(argv[i], "--") != 0; ++i) {
    const char* value = NULL;
    if (names_facility(argv[i], &value)) {
      if (!value && i + 1 < argc)
        value = argv[++i];
      if (arguments->facility) {
        print_message("-C: given more than once (-C DIR names the facility)");
        return false;
      }
      if (!value || !*value) {
        print_message("-C: no folder given (-C DIR names the facility)");
        return false;
      }
      arguments->facility = value;
      continue;
    }
    arguments->values[kept++] = argv[i];
    if (asks_for_text(argv[i]))
      arguments->without_facility = true;
    if (takes_value(argv[i]) && i + 1 < argc)
      arguments->values[kept++] = argv[++i];
    else if (!word && argv[i][0] != '-')
      word = argv[i];
  }
  for (; i < argc; ++i)
    arguments->values[kept++] = argv[i];
  if (!word || strcmp(word, "init") == 0)
    arguments->without_facility = true;
  if (arguments->facility) {
    if (!put_facility_first(arguments)) {
      print_message("out of memory");
      return false;
    }
  } else {
    memmove(arguments->values + 1, arguments->values + 2, (size_t)(kept - 1) * sizeof(char*));
    --kept;
  }
  arguments->count = kept;
  return true;
}

void free_arguments(struct arguments* arguments)
{
  if (arguments->facility && arguments->values)
    free(arguments->values[1]);
  free(arguments->values);
  *arguments = (struct arguments){0};
}

// SPDX-License-Identifier: Apache-2.0
#define _GNU_SOURCE
#include "type_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

// The library trims a field in a buffer of this size and forms its warning in another; both with the terminator.
static const size_t bufferSize = 2048;
static const char* const warning = "ReelTypeList Warning: %s: no parameters. Line %lu\n";

/// One record as far as it has been read: "name:parameters", with anything after a second colon passed over.
struct record {
  unsigned long line;
  size_t name;       ///< bytes of the name field
  size_t trimmed[2]; ///< bytes of name and parameters after their leading white space
  int field;         ///< 0 name, 1 parameters, 2 the rest
  bool has_more;     ///< whether anything follows the first colon
  bool ended;        ///< at a NUL: the library's texts end there
};

static bool is_white(int c)
{
  return c == ' ' || (c >= '\t' && c <= '\r');
}

static void add_byte(struct record* record, int c)
{
  if (record->ended)
    return;
  if (c == '\0') {
    record->ended = true;
    return;
  }
  if (record->field > 0)
    record->has_more = true;
  if (c == ':' && record->field < 2) {
    ++record->field;
    return;
  }
  if (record->field == 0)
    ++record->name;
  if (record->field < 2 && (record->trimmed[record->field] > 0 || !is_white(c)))
    ++record->trimmed[record->field];
}

/// What is wrong with the record, for the refusal; null when nothing is.
static const char* fault(const struct record* record)
{
  if (record->has_more) {
    if (record->trimmed[0] >= bufferSize)
      return "the name is longer than 2047 bytes";
    if (record->trimmed[1] >= bufferSize)
      return "the parameters are longer than 2047 bytes";
    return NULL;
  }
  // Without parameters the library warns, and names the record as it stands. An empty record is passed over.
  if (record->name == 0 && record->field == 0)
    return NULL;
  const int fixed = snprintf(NULL, 0, warning, "", record->line);
  if (fixed < 0 || (size_t)fixed + record->name >= bufferSize)
    return "the record has no parameters and is too long for the warning of that";
  return NULL;
}

static bool check_records(FILE* file, const char* path, struct refusal* refusal)
{
  struct record record = {.line = 1};
  int c;
  do {
    c = getc(file);
    if (c != EOF && c != '\r' && c != '\n') {
      add_byte(&record, c);
      continue;
    }
    const char* found = fault(&record);
    if (found) {
      refuse(refusal, exit_unreadable, "%s:%lu: %s", path, record.line, found);
      return false;
    }
    // A CR directly followed by LF is one line end.
    if (c == '\r') {
      const int next = getc(file);
      if (next != '\n')
        ungetc(next, file);
    }
    record = (struct record){.line = record.line + 1};
  } while (c != EOF);
  if (ferror(file)) {
    refuse(refusal, exit_unreadable, "%s: cannot be read (%s)", path, strerror(errno));
    return false;
  }
  return true;
}

bool check_type_file(const char* facility, struct refusal* refusal)
{
  char* path = NULL;
  if (asprintf(&path, "%s%sdevicedata/reeltype.dat", facility, strcmp(facility, "/") == 0 ? "" : "/") < 0) {
    refuse(refusal, exit_unreadable, "out of memory");
    return false;
  }
  bool good = false;
  struct stat status;
  // Opened without waiting: a pipe of that name must not hold the command up.
  const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) {
    good = errno == ENOENT || errno == ENOTDIR;
    if (!good)
      refuse(refusal, exit_unreadable, "%s: cannot be read (%s)", path, strerror(errno));
  } else if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
    refuse(refusal, exit_unreadable, "%s: cannot be read (no regular file)", path);
    close(descriptor);
  } else {
    FILE* file = fdopen(descriptor, "r");
    if (file) {
      good = check_records(file, path, refusal);
      fclose(file);
    } else {
      refuse(refusal, exit_unreadable, "%s: cannot be read (%s)", path, strerror(errno));
      close(descriptor);
    }
  }
  free(path);
  return good;
}

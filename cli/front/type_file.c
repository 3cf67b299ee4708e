// SPDX-License-Identifier: Apache-2.0
#define _GNU_SOURCE
#include "type_file.h"

#include <errno.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

// The library trims a field in a buffer of this size and forms its warning in another; both with the terminator.
#define BUFFER_SIZE 2048u
// Bytes. More than a million types fit; a file beyond it lists none, and the library would take it into memory.
static const size_t largestSize = (size_t)64 << 20;
// As many channels as a reel can tell of.
static const long mostChannels = 65535;
static const char* const warning = "ReelTypeList Warning: %s: no parameters. Line %lu\n";

/// One record as far as it has been read: "name:parameters", with anything after a second colon passed over.
struct record {
  unsigned long line;
  size_t name;                  ///< bytes of the name field
  size_t trimmed[2];            ///< bytes of name and parameters after their leading white space
  int field;                    ///< 0 name, 1 parameters, 2 the rest
  bool has_more;                ///< whether anything follows the first colon
  char parameters[BUFFER_SIZE]; ///< as many of the trimmed bytes as fit, with a terminator
  bool ended;                   ///< at a NUL: the library's texts end there
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
  if (record->field < 2 && (record->trimmed[record->field] > 0 || !is_white(c))) {
    const size_t place = record->trimmed[record->field]++;
    if (record->field == 1 && place < sizeof record->parameters - 1)
      record->parameters[place] = (char)c;
  }
}

/// What is wrong with the record, for the refusal; null when nothing is.
static const char* fault(const struct record* record)
{
  if (record->has_more) {
    if (record->trimmed[0] >= BUFFER_SIZE)
      return "the name is longer than 2047 bytes";
    if (record->trimmed[1] >= BUFFER_SIZE)
      return "the parameters are longer than 2047 bytes";
    return NULL;
  }
  // Without parameters the library warns, and names the record as it stands. An empty record is passed over.
  if (record->name == 0 && record->field == 0)
    return NULL;
  const int fixed = snprintf(NULL, 0, warning, "", record->line);
  if (fixed < 0 || (size_t)fixed + record->name >= BUFFER_SIZE)
    return "the record has no parameters and is too long for the warning of that";
  return NULL;
}

/// The value that the library finds for the parameter: that of the first token whose text contains the name, case
/// aside, and that has one. Null when there is none. The tokens are ended by terminators, of which the last is @p end.
static const char* value_of(const char* name, const char* tokens, const char* end)
{
  for (; tokens < end; tokens += strlen(tokens) + 1) {
    const char* equals = strchr(tokens, '=');
    if (equals && equals[1] && strcasestr(tokens, name))
      return equals + 1;
  }
  return NULL;
}

/// Whether a token names the parameter: with blanks around the "=" the number is in another.
static bool is_named(const char* name, const char* tokens, const char* end)
{
  for (; tokens < end; tokens += strlen(tokens) + 1)
    if (strcasestr(tokens, name))
      return true;
  return false;
}

/// Remarks on a number of channels that is none, or that no reel can have. The library takes a number up to its first
/// other character, as an int, and reads of the channels of a reel the low 16 bits.
static void check_count(const char* name, const char* value, const char* path, unsigned long line,
                        struct remarks* remarks)
{
  const int length = (int)strcspn(value, "=");
  char* end = NULL;
  const long number = strtol(value, &end, 10);
  const int taken = (int)number;
  if (end == value || end < value + length)
    remark(remarks, "%s:%lu: %s: \"%.*s\" is no number (taken as %d)", path, line, name, length, value, taken);
  else if (number < 0)
    remark(remarks, "%s:%lu: %s: %.*s is no number of channels (none are added)", path, line, name, length, value);
  else if (number > mostChannels)
    remark(remarks, "%s:%lu: %s: %.*s are too many (%ld are the most; a reel would seem to have %d)", path, line, name,
           length, value, mostChannels, taken < 0 ? 0 : (int)(taken & mostChannels));
}

static void check_counts(struct record* record, const char* path, struct remarks* remarks)
{
  if (!record->has_more)
    return;
  char* const text = record->parameters;
  size_t length = strlen(text);
  while (length > 0 && is_white((unsigned char)text[length - 1]))
    text[--length] = '\0';
  for (size_t i = 0; i < length; ++i)
    if (text[i] == ' ')
      text[i] = '\0';
  static const char* const names[] = {"VideoChannels", "AudioChannels"};
  for (size_t i = 0; i < sizeof names / sizeof *names; ++i) {
    const char* value = value_of(names[i], text, text + length);
    if (value)
      check_count(names[i], value, path, record->line, remarks);
    else if (is_named(names[i], text, text + length))
      remark(remarks, "%s:%lu: %s: no number (it follows the \"=\" at once; none are added)", path, record->line,
             names[i]);
  }
}

static bool check_records(FILE* file, const char* path, struct refusal* refusal, struct remarks* remarks)
{
  struct record record = {.line = 1};
  size_t size = 0;
  int c = EOF;
  do {
    const int previous = c;
    c = getc(file);
    if (c != EOF && ++size > largestSize) {
      refuse(refusal, exit_unreadable, "%s: too large (more than %zu bytes)", path, largestSize);
      return false;
    }
    // A CR directly followed by LF is one line end.
    if (c == '\n' && previous == '\r')
      continue;
    if (c != EOF && c != '\r' && c != '\n') {
      add_byte(&record, c);
      continue;
    }
    const char* found = fault(&record);
    if (found) {
      refuse(refusal, exit_unreadable, "%s:%lu: %s", path, record.line, found);
      return false;
    }
    check_counts(&record, path, remarks);
    record = (struct record){.line = record.line + 1};
  } while (c != EOF);
  if (ferror(file)) {
    refuse(refusal, exit_unreadable, "%s: cannot be read (%s)", path, strerror(errno));
    return false;
  }
  return true;
}

bool check_type_file(const char* facility, struct refusal* refusal, struct remarks* remarks)
{
  char* path = NULL;
  if (asprintf(&path, "%s%sdevicedata/reeltype.dat", facility, strcmp(facility, "/") == 0 ? "" : "/") < 0) {
    refuse(refusal, exit_unreadable, "out of memory");
    return false;
  }
  bool good = false;
  struct stat status;
  // Opening alone can do something to a device, so the look comes first; O_NONBLOCK because it may have changed since.
  if (stat(path, &status) != 0) {
    good = errno == ENOENT || errno == ENOTDIR;
    if (!good)
      refuse(refusal, exit_unreadable, "%s: cannot be read (%s)", path, strerror(errno));
  } else if (!S_ISREG(status.st_mode)) {
    refuse(refusal, exit_unreadable, "%s: cannot be read (no regular file)", path);
  } else {
    const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    FILE* file = descriptor < 0 ? NULL : fdopen(descriptor, "r");
    if (file) {
      good = check_records(file, path, refusal, remarks);
      fclose(file);
    } else {
      refuse(refusal, exit_unreadable, "%s: cannot be read (%s)", path, strerror(errno));
      if (descriptor >= 0)
        close(descriptor);
    }
  }
  free(path);
  return good;
}

// SPDX-License-Identifier: Apache-2.0
#define _GNU_SOURCE
#include "facility.h"

#include <errno.h>
#include <limits.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

static const char* const fileName = "facility.toml";

static char* file_in(const char* folder)
{
  char* path = NULL;
  const bool slash = *folder && folder[strlen(folder) - 1] == '/';
  return asprintf(&path, "%s%s%s", folder, slash ? "" : "/", fileName) < 0 ? NULL : path;
}

/// Whether the folder has a facility.toml that is a regular file. Otherwise errno says why, 0 for another kind of file.
static bool has_facility_file(const char* folder)
{
  struct stat status;
  char* path = file_in(folder);
  const bool found = path && stat(path, &status) == 0;
  const int error = errno;
  free(path);
  errno = found ? 0 : error;
  return found && S_ISREG(status.st_mode);
}

static char* refuse_folder(struct refusal* refusal, const char* folder, int error)
{
  if (error == 0)
    refuse(refusal, exit_unreadable, "%s: no facility (%s is no regular file)", folder, fileName);
  else if (error == ENOENT)
    refuse(refusal, exit_refused, "%s: no facility (%s not found)", folder, fileName);
  else
    refuse(refusal, error == ENOTDIR ? exit_refused : exit_unreadable, "%s: no facility (%s)", folder, strerror(error));
  return NULL;
}

/// The given folder, checked.
static char* chosen(const char* folder, struct refusal* refusal)
{
  struct stat status;
  if (stat(folder, &status) != 0 && errno == ENOENT) {
    refuse(refusal, exit_refused, "%s: no facility (no such folder)", folder);
    return NULL;
  }
  if (!has_facility_file(folder))
    return refuse_folder(refusal, folder, errno);
  char* path = realpath(folder, NULL);
  if (!path)
    return refuse_folder(refusal, folder, errno);
  char* file = file_in(path);
  const bool readable = file && access(file, R_OK) == 0;
  const int error = errno;
  if (!readable) {
    refuse(refusal, exit_unreadable, "%s: cannot be read (%s)", file ? file : path, strerror(error));
    free(path);
    path = NULL;
  }
  free(file);
  return path;
}

/// The nearest folder from the working folder upwards.
static char* nearest(struct refusal* refusal)
{
  char* working = getcwd(NULL, 0);
  if (!working) {
    refuse(refusal, exit_refused, "no facility (the working folder cannot be told: %s)", strerror(errno));
    return NULL;
  }
  char* folder = strdup(working);
  while (folder && !has_facility_file(folder)) {
    char* slash = strrchr(folder, '/');
    if (!slash || (slash == folder && !slash[1])) {
      free(folder);
      folder = NULL;
    } else {
      slash[slash == folder ? 1 : 0] = '\0';
    }
  }
  if (!folder)
    refuse(refusal, exit_refused,
           "%s: no facility (%s not found here or above; reeldb init makes one, -C DIR or REELDB_FACILITY names one)",
           working, fileName);
  free(working);
  char* result = folder ? chosen(folder, refusal) : NULL;
  free(folder);
  return result;
}

char* find_facility(const char* given, struct refusal* refusal)
{
  if (!given)
    given = getenv("REELDB_FACILITY");
  return given && *given ? chosen(given, refusal) : nearest(refusal);
}

// SPDX-License-Identifier: Apache-2.0
#define _GNU_SOURCE
#include "message.h"

#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>

void refuse(struct refusal* refusal, int code, const char* format, ...)
{
  va_list arguments;
  free(refusal->text);
  va_start(arguments, format);
  if (vasprintf(&refusal->text, format, arguments) < 0)
    refusal->text = NULL;
  va_end(arguments);
  refusal->code = code;
}

void remark(struct remarks* remarks, const char* format, ...)
{
  char** texts = realloc(remarks->texts, (remarks->count + 1) * sizeof *texts);
  if (!texts)
    return;
  remarks->texts = texts;
  va_list arguments;
  va_start(arguments, format);
  if (vasprintf(&texts[remarks->count], format, arguments) >= 0)
    ++remarks->count;
  va_end(arguments);
}

void free_remarks(struct remarks* remarks)
{
  for (size_t i = 0; i < remarks->count; ++i)
    free(remarks->texts[i]);
  free(remarks->texts);
  *remarks = (struct remarks){0};
}

void print_message(const char* text)
{
  fputs("reeldb: ", stderr);
  for (const unsigned char* c = (const unsigned char*)text; *c; ++c)
    fprintf(stderr, *c < 0x20 || *c > 0x7E ? "\\x%02x" : "%c", *c);
  fputc('\n', stderr);
}

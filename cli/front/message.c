// SPDX-License-Identifier: Apache-2.0
#define _GNU_SOURCE
#include "message.h"

#include <stdarg.h>
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

void print_message(FILE* to, const char* text)
{
  fputs("reeldb: ", to);
  for (const unsigned char* c = (const unsigned char*)text; *c; ++c) {
    // C2 80 to C2 9F are the UTF-8 forms of the C1 controls.
    if (*c == 0xC2 && c[1] >= 0x80 && c[1] <= 0x9F) {
      fprintf(to, "\\x%02x\\x%02x", c[0], c[1]);
      ++c;
    } else if (*c < 0x20 || *c == 0x7F) {
      fprintf(to, "\\x%02x", *c);
    } else {
      fputc(*c, to);
    }
  }
  fputc('\n', to);
}

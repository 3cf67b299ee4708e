// SPDX-License-Identifier: Apache-2.0
// Each program and shared library of a coverage build has a copy of this, and a copy of the counters' runtime: a process
// that aborts writes the counters of all of them.
#include <signal.h>
#include <stddef.h>

int __llvm_profile_write_file(void);

static void (*previous)(int) = NULL;

static void flush(int number)
{
  __llvm_profile_write_file();
  if (previous != SIG_DFL && previous != SIG_IGN && previous != SIG_ERR)
    previous(number);
}

__attribute__((constructor)) static void install(void)
{
  previous = signal(SIGABRT, flush);
}

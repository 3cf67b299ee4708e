// SPDX-License-Identifier: Apache-2.0
//
// For a program that defines a function of the host's itself: the library calls that one, and it may have the host's
// own do the work.
#ifndef REELDB_TESTS_SUPPORT_HOSTS_OWN_H
#define REELDB_TESTS_SUPPORT_HOSTS_OWN_H

#include <dlfcn.h>

namespace reeldb_tests {

/// The host's own function of this mangled name. Of a member function the object comes first.
template <class Function>
Function* hostsOwn(const char* symbol)
{
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, symbol));
}

} // namespace reeldb_tests

#endif

// SPDX-License-Identifier: Apache-2.0
#include "support/own_host.h"

#include <cstdarg>
#include <cstdio>

#include <dlfcn.h>

#include "MainThread.h"
#include "host/action.h"
#include "host/device.h"
#include "host/projdb.h"
#include "host/text.h"

namespace reeldb_fuzz {

OwnHost& ownHost()
{
  static OwnHost instance;
  return instance;
}

} // namespace reeldb_fuzz

using reeldb_fuzz::ownHost;

int vorn_printf(const char* format, ...)
{
  std::va_list arguments, again;
  va_start(arguments, format);
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, arguments);
  std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, again);
  va_end(again);
  va_end(arguments);
  ownHost().printed.push_back(std::move(text));
  return length;
}

int co_pid()
{
  return ownHost().offMainThread ? glib_pid + 1 : glib_pid;
}

projdb* EditManager::getProjdb()
{
  using Function = projdb* (*)();
  static const auto hosts = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "_ZN11EditManager9getProjdbEv"));
  return ownHost().databaseIsGone ? nullptr : hosts();
}

void resetDevices()
{
  ++ownHost().deviceResets;
}

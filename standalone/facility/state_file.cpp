// SPDX-License-Identifier: Apache-2.0
#include "facility/state_file.h"

#include <cerrno>
#include <charconv>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utf8.h>

#include "facility/toml_file.h"
#include "reelhost/display_text.h"
#include "store/file_error.h"

namespace reelhost {

namespace {

/// Keeps other processes from merging while this object lives.
class MergeLock {
public:
  MergeLock(const std::filesystem::path& file, std::chrono::milliseconds busyTimeout)
      : fd_(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0666))
  {
    if (!fd_.valid())
      throw hostError(base::FileError(file, "cannot be opened", errno));
    const auto last = std::chrono::steady_clock::now() + busyTimeout;
    while (::flock(fd_.get(), LOCK_EX | LOCK_NB) != 0) {
      if (errno != EWOULDBLOCK && errno != EINTR)
        throw hostError(base::FileError(file, "cannot be locked", errno));
      if (std::chrono::steady_clock::now() >= last)
        throw Error(ErrorKind::Busy, displayText(file.native()) + ": held by another process");
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  }

private:
  base::FileDescriptor fd_;
};

// A text is written as a text. TOML holds UTF-8 only, so any other bytes are written as an array of numbers.

void put(toml::table& table, const std::string& key, const std::string& value)
{
  if (utf8::is_valid(value)) {
    table.insert_or_assign(key, value);
    return;
  }
  toml::array bytes;
  for (const char c : value)
    bytes.push_back(static_cast<std::int64_t>(static_cast<unsigned char>(c)));
  table.insert_or_assign(key, std::move(bytes));
}

std::string valueOf(const TomlTable& table, const std::string& key)
{
  if (!table.isArray(key))
    return *table.anyText(key);
  std::string bytes;
  for (const std::int64_t byte : table.numbers(key, 1, 255))
    bytes.push_back(static_cast<char>(byte));
  return bytes;
}

unsigned deviceId(const TomlTable& table, const std::string& key)
{
  unsigned id = 0;
  const char* const last = key.data() + key.size();
  const auto [stop, error] = std::from_chars(key.data(), last, id);
  if (error != std::errc() || stop != last || id == 0)
    table.fail(key, "not a device identity");
  return id;
}

std::string written(const State& state)
{
  toml::table system, lastReel;
  for (const auto& [key, value] : state.system)
    put(system, key, value);
  for (const auto& [id, reel] : state.lastReel)
    put(lastReel, std::to_string(id), reel);
  toml::table all;
  if (!system.empty())
    all.insert("system", std::move(system));
  if (!lastReel.empty())
    all.insert("last_reel", std::move(lastReel));
  std::ostringstream out;
  // All texts have the same kind of quotes, which allows any text.
  out << "# Written by reeldb. Its values override those of facility.toml. Do not edit it while a command runs.\n\n"
      << toml::toml_formatter(all, toml::format_flags::allow_unicode_strings) << "\n";
  return out.str();
}

bool isThere(const std::filesystem::path& path)
{
  struct stat status = {};
  return ::lstat(path.c_str(), &status) == 0;
}

} // namespace

State merged(State state, const State& changes, const std::map<std::string, std::string>& configured)
{
  for (const auto& [key, value] : changes.system)
    state.system[key] = value;
  for (const auto& [id, reel] : changes.lastReel)
    state.lastReel[id] = reel;
  std::erase_if(state.system, [&](const auto& setting) {
    const auto& [key, value] = setting;
    const auto hidden = configured.find(key);
    return value.empty() && (hidden == configured.end() || hidden->second.empty());
  });
  std::erase_if(state.lastReel, [](const auto& device) { return device.second.empty(); });
  return state;
}

State StateFile::read() const
{
  if (!isThere(file()))
    return {};
  try {
    const TomlFile toml(file());
    const TomlTable root(toml, toml.root(), "");
    root.allowOnly({"system", "last_reel"});
    State state;
    if (const auto table = root.table("system"))
      for (const std::string& key : table->keys())
        state.system[key] = valueOf(*table, key);
    if (const auto table = root.table("last_reel"))
      for (const std::string& key : table->keys())
        state.lastReel[deviceId(*table, key)] = valueOf(*table, key);
    return state;
  } catch (const Error& error) {
    if (error.kind() != ErrorKind::Unreadable)
      throw;
    throw Error(error.kind(), std::string(error.what()) +
                                  "; the state file is damaged and stays as it is (move it away to start a new one)");
  }
}

State StateFile::merge(const State& changes, std::chrono::milliseconds busyTimeout) const
{
  for (const auto& [key, value] : changes.system)
    if (!utf8::is_valid(key))
      throw Error(ErrorKind::Refused,
                  displayText(file().native()) + ": \"" + displayText(key) + "\" is not a valid key (not UTF-8)");
  const MergeLock lock(facility_ / "state.lock", busyTimeout);
  const State old = read();
  State state = merged(old, changes, configured_);
  const std::string after = written(state);
  if (after == written(old) && isThere(file()))
    return state;
  TomlFile::requireReadable(file(), after);
  withHostErrors([&] {
    // Because of the lock, no other process uses the name of the new file.
    base::replaceFile(file(), after, base::IfThere::ReplaceLink, facility_ / ".state.toml.new");
  });
  return state;
}

} // namespace reelhost

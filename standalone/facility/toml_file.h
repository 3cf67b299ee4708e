// SPDX-License-Identifier: Apache-2.0
//
// Reads TOML files strictly: an unknown key, or a value of the wrong type, is an Error with the file, the line and the
// key.
#ifndef REELHOST_FACILITY_TOML_FILE_H
#define REELHOST_FACILITY_TOML_FILE_H

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <toml++/toml.h>
#include <vector>

namespace reelhost {

/// One TOML file, parsed.
class TomlFile {
public:
  /// In bytes, enough for thousands of devices. A larger file is not a configuration and is not read into memory.
  static constexpr std::size_t largestSize = 1 << 20;

  /// Throws Error: NotFound, Unreadable ("FILE:LINE: not valid TOML (why)"), Io.
  explicit TomlFile(std::filesystem::path path);

  /// Throws Error (Refused) if @p content, which is to be written to @p path, would be too large to be read again.
  static void requireReadable(const std::filesystem::path& path, std::string_view content);

  const std::filesystem::path& path() const { return path_; }
  const toml::table& root() const { return root_; }

  /// Throws Error (Unreadable): "FILE:LINE: FACT".
  [[noreturn]] void fail(const toml::node& at, const std::string& fact) const;

private:
  std::filesystem::path path_;
  toml::table root_;
};

/// One table of a file. Each reader throws Error (Unreadable) if the key has another type.
class TomlTable {
public:
  TomlTable(const TomlFile& file, const toml::table& table, std::string name);

  /// Throws Error (Unreadable) for the first key that is not one of these.
  void allowOnly(std::initializer_list<std::string_view> keys) const;

  std::optional<std::string> text(std::string_view key) const;    ///< UTF-8 without control characters
  std::optional<std::string> anyText(std::string_view key) const; ///< control characters allowed
  std::optional<std::int64_t> number(std::string_view key, std::int64_t least, std::int64_t most) const;
  std::vector<std::int64_t> numbers(std::string_view key, std::int64_t least, std::int64_t most) const;
  std::optional<bool> flag(std::string_view key) const;
  std::vector<std::string> texts(std::string_view key) const; ///< each as in text(); empty if the key is absent
  std::optional<TomlTable> table(std::string_view key) const;
  std::vector<TomlTable> tables(std::string_view key) const; ///< the tables of [[key]], if any

  std::vector<std::string> keys() const; ///< in the order of the file
  bool isArray(std::string_view key) const;
  [[noreturn]] void
  fail(std::string_view key,
       const std::string& fact) const; ///< names the line of the key; without the key, the line of the table
  [[noreturn]] void fail(const std::string& fact) const; ///< names the table's line

private:
  std::int64_t numberOf(std::string_view key, const toml::node& node, std::int64_t least, std::int64_t most) const;
  const std::string& textOf(std::string_view key, const toml::node& node) const;
  const std::string& checkedText(std::string_view key, const toml::node& node) const;
  std::string nameOf(std::string_view key) const;

  const TomlFile& file_;
  const toml::table& table_;
  std::string name_; ///< as in messages; empty for the file itself
};

} // namespace reelhost

#endif

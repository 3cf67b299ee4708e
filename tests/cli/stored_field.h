// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_TESTS_CLI_STORED_FIELD_H
#define REELDB_TESTS_CLI_STORED_FIELD_H

#include <filesystem>
#include <string>

namespace reeldb_tests {

/// Gives a field of the reel and its shots another text, as another program may: the command itself would not take
/// every text. Throws when no log of the project bears the identifier.
void setStored(const std::filesystem::path& project, const std::string& id, const std::string& key,
               const std::string& text);

/// The same with the identifier itself.
void respell(const std::filesystem::path& project, const std::string& from, const std::string& to);

} // namespace reeldb_tests

#endif

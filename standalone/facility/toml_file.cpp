// SPDX-License-Identifier: Apache-2.0
#include "facility/toml_file.h"

#include <algorithm>

#include "reelhost/display_text.h"
#include "reelhost/error.h"
#include "store/file_error.h"

namespace reelhost {

namespace {

// Every dot in a key can nest a table in another, and the parser destroys nested tables recursively: some thirty
// thousand levels overflow a stack of 8 MiB. No real file has a third of that.
constexpr std::ptrdiff_t mostDots = 10'000;

bool hasTooManyDots(std::string_view content)
{
  return std::count(content.begin(), content.end(), '.') > mostDots;
}

std::string typeWord(const toml::node& node)
{
  switch (node.type()) {
  case toml::node_type::table:
    return "a table";
  case toml::node_type::array:
    return "an array";
  case toml::node_type::string:
    return "a text";
  case toml::node_type::integer:
    return "a whole number";
  case toml::node_type::floating_point:
    return "a decimal number";
  case toml::node_type::boolean:
    return "true or false";
  case toml::node_type::date:
  case toml::node_type::time:
  case toml::node_type::date_time:
    return "a date or time";
  case toml::node_type::none:
    break;
  }
  return "nothing";
}

} // namespace

TomlFile::TomlFile(std::filesystem::path path) : path_(std::move(path))
{
  const std::string bytes = withHostErrors([this] { return base::readRegularFile(path_, largestSize); });
  if (hasTooManyDots(bytes))
    throw Error(ErrorKind::Unreadable, displayText(path_.native()) + ": too many dots (more than " +
                                           std::to_string(mostDots) + "; keys cannot be nested that deep)");
  try {
    root_ = toml::parse(std::string_view(bytes));
  } catch (const toml::parse_error& e) {
    throw Error(ErrorKind::Unreadable, displayText(path_.native()) + ":" + std::to_string(e.source().begin.line) +
                                           ": not valid TOML (" + displayText(e.description()) + ")");
  }
}

void TomlFile::requireReadable(const std::filesystem::path& path, std::string_view content)
{
  if (content.size() > largestSize || hasTooManyDots(content))
    throw Error(ErrorKind::Refused, displayText(path.native()) + ": would become too large to be read again (" +
                                        std::to_string(content.size()) + " bytes)");
}

void TomlFile::fail(const toml::node& at, const std::string& fact) const
{
  const auto line = at.source().begin.line;
  throw Error(ErrorKind::Unreadable,
              displayText(path_.native()) + ":" + std::to_string(line > 0 ? line : 1) + ": " + fact);
}

TomlTable::TomlTable(const TomlFile& file, const toml::table& table, std::string name)
    : file_(file), table_(table), name_(std::move(name))
{
}

void TomlTable::allowOnly(std::initializer_list<std::string_view> keys) const
{
  for (const std::string& key : this->keys()) {
    if (std::find(keys.begin(), keys.end(), key) != keys.end())
      continue;
    std::string known;
    for (const std::string_view k : keys)
      known += (known.empty() ? "" : ", ") + std::string(k);
    fail(key, "unknown key (known: " + known + ")");
  }
}

std::optional<std::string> TomlTable::text(std::string_view key) const
{
  const toml::node* const node = table_.get(key);
  if (!node)
    return {};
  return checkedText(key, *node);
}

std::optional<std::string> TomlTable::anyText(std::string_view key) const
{
  const toml::node* const node = table_.get(key);
  if (!node)
    return {};
  return textOf(key, *node);
}

std::optional<std::int64_t> TomlTable::number(std::string_view key, std::int64_t least, std::int64_t most) const
{
  const toml::node* const node = table_.get(key);
  if (!node)
    return {};
  return numberOf(key, *node, least, most);
}

std::vector<std::int64_t> TomlTable::numbers(std::string_view key, std::int64_t least, std::int64_t most) const
{
  std::vector<std::int64_t> result;
  if (const toml::array* const array = table_.get_as<toml::array>(key))
    for (const toml::node& element : *array)
      result.push_back(numberOf(key, element, least, most));
  return result;
}

std::optional<bool> TomlTable::flag(std::string_view key) const
{
  const toml::node* const node = table_.get(key);
  if (!node)
    return {};
  if (!node->is_boolean())
    file_.fail(*node, nameOf(key) + ": true or false is needed (this is " + typeWord(*node) + ")");
  return node->as_boolean()->get();
}

std::vector<std::string> TomlTable::texts(std::string_view key) const
{
  const toml::node* const node = table_.get(key);
  if (!node)
    return {};
  if (!node->is_array())
    file_.fail(*node, nameOf(key) + ": an array of texts is needed (this is " + typeWord(*node) + ")");
  std::vector<std::string> result;
  for (const toml::node& element : *node->as_array())
    result.push_back(checkedText(key, element));
  return result;
}

std::optional<TomlTable> TomlTable::table(std::string_view key) const
{
  const toml::node* const node = table_.get(key);
  if (!node)
    return {};
  if (!node->is_table())
    file_.fail(*node, nameOf(key) + ": a table is needed (this is " + typeWord(*node) + ")");
  return TomlTable(file_, *node->as_table(), nameOf(key));
}

std::vector<TomlTable> TomlTable::tables(std::string_view key) const
{
  const toml::node* const node = table_.get(key);
  if (!node)
    return {};
  std::vector<TomlTable> result;
  if (const toml::array* const array = node->as_array())
    for (const toml::node& element : *array) {
      if (!element.is_table())
        file_.fail(element, nameOf(key) + ": a table is needed (this is " + typeWord(element) + ")");
      result.emplace_back(file_, *element.as_table(), nameOf(key));
    }
  else
    file_.fail(*node, nameOf(key) + ": tables [[" + nameOf(key) + "]] are needed (this is " + typeWord(*node) + ")");
  return result;
}

std::vector<std::string> TomlTable::keys() const
{
  std::vector<std::pair<toml::source_position, std::string>> found;
  for (const auto& [key, node] : table_)
    found.emplace_back(node.source().begin, key.str());
  std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  std::vector<std::string> result;
  result.reserve(found.size());
  for (auto& [position, key] : found)
    result.push_back(std::move(key));
  return result;
}

bool TomlTable::isArray(std::string_view key) const
{
  return table_.get_as<toml::array>(key) != nullptr;
}

void TomlTable::fail(std::string_view key, const std::string& fact) const
{
  const toml::node* const node = table_.get(key);
  file_.fail(node ? *node : table_, nameOf(key) + ": " + fact);
}

void TomlTable::fail(const std::string& fact) const
{
  file_.fail(table_, name_.empty() ? fact : name_ + ": " + fact);
}

std::int64_t TomlTable::numberOf(std::string_view key, const toml::node& node, std::int64_t least,
                                 std::int64_t most) const
{
  if (!node.is_integer())
    file_.fail(node, nameOf(key) + ": a whole number is needed (this is " + typeWord(node) + ")");
  const std::int64_t value = node.as_integer()->get();
  if (value < least || value > most)
    file_.fail(node, nameOf(key) + ": " + std::to_string(value) + " is out of range (" + std::to_string(least) +
                         " to " + std::to_string(most) + ")");
  return value;
}

const std::string& TomlTable::textOf(std::string_view key, const toml::node& node) const
{
  if (!node.is_string())
    file_.fail(node, nameOf(key) + ": a text is needed (this is " + typeWord(node) + ")");
  return node.as_string()->get();
}

const std::string& TomlTable::checkedText(std::string_view key, const toml::node& node) const
{
  const std::string& value = textOf(key, node);
  if (holdsControlCharacter(value))
    file_.fail(node, nameOf(key) + ": \"" + displayText(value) + "\" holds a control character");
  return value;
}

std::string TomlTable::nameOf(std::string_view key) const
{
  return (name_.empty() ? "" : name_ + ".") + displayText(key);
}

} // namespace reelhost

// SPDX-License-Identifier: Apache-2.0
//
// The function describe(io, result) names the keys of a result. Writer and Reader both use it, so they agree. For the
// sources of this folder.
#ifndef REELDB_APP_JSON_IO_H
#define REELDB_APP_JSON_IO_H

#include <concepts>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include <fmt/format.h>
#include <nlohmann/json.hpp>
#include <utf8.h>

#include "base/base64.h"

namespace reeldb::app::json {

/// Objects keep the order in which their keys were set.
using Value = nlohmann::ordered_json;

/// T or const T: a description is used for reading and for writing.
template <class R, class T>
concept Like = std::same_as<std::remove_const_t<R>, T>;

template <class T>
inline constexpr bool isVector = false;
template <class T>
inline constexpr bool isVector<std::vector<T>> = true;

template <class T>
Value write(const T& value);
template <class T>
void read(const Value& json, T& value);

inline Value bytesJson(const std::string& text)
{
  if (utf8::is_valid(text))
    return text;
  return {{"bytes", base::toBase64(text)}};
}

/// Throws std::invalid_argument, or nlohmann's exceptions.
inline std::string bytesFrom(const Value& json)
{
  if (!json.is_object())
    return json.get<std::string>();
  const auto& text = json.at("bytes").get_ref<const std::string&>();
  if (auto bytes = base::fromBase64(text))
    return *std::move(bytes);
  throw std::invalid_argument("\"" + text.substr(0, 40) + "\" is not base64");
}

/// Sets the keys of an object.
class Writer {
public:
  static constexpr bool writes = true;
  explicit Writer(Value& json) : json_(json) {}

  template <class T>
  void operator()(const char* key, const T& value)
  {
    json_[key] = write(value);
  }
  /// Sets the key only if there is a value.
  template <class T>
  void optional(const char* key, const std::optional<T>& value)
  {
    if (value)
      json_[key] = write(*value);
  }
  /// Sets the key only if the text is not empty.
  void optional(const char* key, const std::string& text)
  {
    if (!text.empty())
      json_[key] = text;
  }
  /// Sets the key to a text of any bytes: one that is not UTF-8 becomes {"bytes": "<base64>"}.
  void bytes(const char* key, const std::string& text) { json_[key] = bytesJson(text); }
  Value& json() { return json_; }

private:
  Value& json_;
};

/// Reads the keys of an object. Throws nlohmann's exceptions.
class Reader {
public:
  static constexpr bool writes = false;
  explicit Reader(const Value& json) : json_(json) {}

  template <class T>
  void operator()(const char* key, T& value)
  {
    read(json_.at(key), value);
  }
  template <class T>
  void optional(const char* key, std::optional<T>& value)
  {
    if (json_.contains(key))
      read(json_.at(key), value.emplace());
  }
  void optional(const char* key, std::string& text)
  {
    if (json_.contains(key))
      text = json_.at(key).get<std::string>();
  }
  void bytes(const char* key, std::string& text) { text = bytesFrom(json_.at(key)); }
  const Value& json() const { return json_; }

private:
  const Value& json_;
};

template <class T>
Value write(const T& value)
{
  if constexpr (isVector<T>) {
    Value json = Value::array();
    for (const auto& element : value)
      json.push_back(write(element));
    return json;
  } else if constexpr (std::is_arithmetic_v<T> || std::is_same_v<T, std::string>) {
    return value;
  } else {
    Value json = Value::object();
    Writer writer(json);
    describe(writer, value);
    return json;
  }
}

template <class T>
void read(const Value& json, T& value)
{
  if constexpr (isVector<T>) {
    if (!json.is_array())
      throw std::invalid_argument(fmt::format("{} where an array has to be", json.type_name()));
    for (const Value& element : json.get_ref<const Value::array_t&>())
      read(element, value.emplace_back());
  } else if constexpr (std::is_arithmetic_v<T> || std::is_same_v<T, std::string>) {
    value = json.get<T>();
  } else {
    Reader reader(json);
    describe(reader, value);
  }
}

} // namespace reeldb::app::json

#endif

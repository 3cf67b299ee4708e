// SPDX-License-Identifier: Apache-2.0
//
// The definition of fromJson, for every result. The commands read no result but the state of a project, so the code
// that reads the others is compiled only where it is used.
#ifndef REELDB_APP_JSON_FROM_JSON_H
#define REELDB_APP_JSON_FROM_JSON_H

#include <exception>
#include <new>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "app/error.h"
#include "app/json/descriptions.h"
#include "app/json/json.h"

namespace reeldb::app {

template <class T>
T fromJson(std::string_view text)
{
  try {
    T result;
    json::read(Value::parse(text), result);
    return result;
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const Value::exception& error) { // "[the name of the fault] what is wrong"
    const std::string_view what = error.what();
    const std::size_t name = what.find("] ");
    throw Error(ErrorKind::Unreadable,
                fmt::format("JSON: not of the expected form ({})", name == what.npos ? what : what.substr(name + 2)));
  } catch (const std::exception& error) { // such as a user field whose key is not a number
    throw Error(ErrorKind::Unreadable, fmt::format("JSON: not of the expected form ({})", error.what()));
  }
}

} // namespace reeldb::app

#endif

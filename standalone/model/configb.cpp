// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "host/codes.h"
#include "host/config.h"
#include "journal/host_call.h"
#include "model/config_block.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::Script;
using reelhost::Word;

struct configb::Impl {
  reelhost::model::ConfigBlock block;
};

namespace reelhost::model {

ConfigBlock& blockOf(const configb& config)
{
  return config.impl()->block;
}

} // namespace reelhost::model

namespace {

constexpr int success = 0, absent = 1;

/// The result of an operation with an out-argument: its status and the value that it wrote, if any.
template <class T>
struct Read {
  int status = absent;
  std::optional<T> written = std::nullopt;
};

template <class T>
std::string describe(const Read<T>& read)
{
  std::string text = reelhost::describe(read.status);
  if (read.written)
    text.append(" ").append(reelhost::describe(*read.written));
  return text;
}

/// Copies as much of the text as fits, and a terminator.
const char* copyTo(char* buffer, const char* text)
{
  const std::size_t length = std::min(std::strlen(text), codes::longestText);
  std::memcpy(buffer, text, length);
  buffer[length] = '\0';
  return buffer;
}

const char* textOf(const configb& config, const char* key)
{
  const auto* const text = reelhost::model::blockOf(config).find(key);
  return text ? text->c_str() : nullptr;
}

template <class Answers>
const typename Answers::mapped_type* answerFor(const Answers& answers, const char* key)
{
  const auto found = answers.find(key ? key : "");
  return found == answers.end() ? nullptr : &found->second;
}

} // namespace

configb::configb() : impl_(new Impl) {}

configb::~configb()
{
  delete impl_;
}

const char* configb::in(const char* key) const
{
  return hostCall(
      "configb::in", [&] { return describeAll(key); }, [&] { return textOf(*this, key); });
}

int configb::in(const char* key, char* buffer) const
{
  using Outcome = Read<const char*>;
  const auto real = [&] {
    const char* const text = textOf(*this, key);
    return text ? Outcome{success, copyTo(buffer, text)} : Outcome();
  };
  const auto answer = [&]() -> std::optional<Outcome> {
    Script& script = Script::the();
    script.configBufferWasZero &= std::all_of(buffer, buffer + codes::textBufferSize, [](char c) { return c == '\0'; });
    const Script::TextAnswer* const scripted = answerFor(script.configText, key);
    if (!scripted)
      return std::nullopt;
    Outcome outcome{scripted->status};
    if (scripted->text)
      outcome.written = copyTo(buffer, scripted->text->c_str());
    return outcome;
  };
  return hostCall(
             "configb::in", [&] { return describeAll(key, Word{"char*"}); }, real, answer)
      .status;
}

int configb::in(const char* key, int& value) const
{
  using Outcome = Read<int>;
  const auto real = [&] {
    const char* const text = textOf(*this, key);
    return text ? Outcome{success, value = static_cast<int>(std::strtol(text, nullptr, 10))} : Outcome();
  };
  const auto answer = [&]() -> std::optional<Outcome> {
    const Script::IntAnswer* const scripted = answerFor(Script::the().configInt, key);
    if (!scripted)
      return std::nullopt;
    Outcome outcome{scripted->status};
    if (scripted->value)
      outcome.written = value = *scripted->value;
    return outcome;
  };
  return hostCall(
             "configb::in", [&] { return describeAll(key, Word{"int&"}); }, real, answer)
      .status;
}

int configb::in(const char* key, strp_field& value) const
{
  using Outcome = Read<const char*>;
  const auto real = [&] {
    const char* const text = textOf(*this, key);
    if (!text)
      return Outcome();
    value.set(text);
    return Outcome{success, value.text()};
  };
  return hostCall(
             "configb::in", [&] { return describeAll(key, Word{"strp_field&"}); }, real)
      .status;
}

void configb::set(const char* key, const char* value, const char* third)
{
  hostCall(
      "configb::set", [&] { return describeAll(key, value, third); },
      [&] { reelhost::model::blockOf(*this).set(key, value); });
}

void configb::set(const char* key, const strp_field& value)
{
  hostCall(
      "configb::set", [&] { return describeAll(key, value); },
      [&] { reelhost::model::blockOf(*this).set(key, value.text()); });
}

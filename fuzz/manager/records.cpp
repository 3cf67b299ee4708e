// SPDX-License-Identifier: Apache-2.0
//
// Operations on one record.
#include "host/text.h"
#include "manager/driver.h"
#include "manager/vocabulary.h"
#include "models/reel_types.h"

namespace reeldb_fuzz {

void Driver::setTypeName()
{
  const Number log = anyLog();
  const std::string type = anyText();
  with(log, type);
  record(log).typeName(type.c_str());
  world_.setTypeName(log, type);
}

void Driver::setFlag()
{
  const Number log = anyLog();
  const bool available = bytes_.flag(), value = bytes_.flag();
  with(log, available, value);
  if (available)
    record(log).reelAvailable(value);
  else
    record(log).recInhibit(value);
  world_.setFlag(log, available ? "reel_available_flag" : "record_inhibit_flag", value);
}

void Driver::setLabelMapping()
{
  const Number log = anyLog();
  const std::string name = anyText();
  with(log, name);
  record(log).labelMapping(name.c_str());
  world_.setText(log, "reel_labelmapping", name, "unknown");
}

void Driver::setBinName()
{
  const Number log = anyLog();
  const std::string name = anyText();
  with(log, name);
  record(log).binName(name.c_str());
  world_.setText(log, "profile_bin_name", name, "default");
}

void Driver::setUserField()
{
  const Number log = anyLog();
  const int field = anyUserField(bytes_);
  const std::string value = anyText();
  with(log, field, value);
  record(log).userField(field, value.c_str());
  world_.setText(log, "reel_userfield" + std::to_string(field), value);
}

void Driver::setLastDevice()
{
  const Number log = anyLog();
  const std::string name = anyDeviceName(bytes_);
  with(log, name);
  record(log).lastDevice(fromUTF8(name.c_str()));
  world_.setLastDevice(log, name);
}

void Driver::setId()
{
  const Number log = anyLog();
  const std::string id = anyText();
  with(log, id);
  record(log).reelId(id.c_str());
  world_.setId(log, id);
}

void Driver::updateChannels()
{
  const Number log = anyLog();
  with(log);
  record(log).updateNumChansInReel();
  world_.updateChannels(log);
}

void Driver::storeInt()
{
  const Number log = anyLog();
  const std::string key = anyKey(bytes_);
  const int value = static_cast<int>(bytes_.byte() << 24 | bytes_.byte());
  with(log, key, value);
  record(log).setIntValInEdit(key.c_str(), value);
  world_.store(log, key, std::to_string(value));
}

void Driver::storeText()
{
  const Number log = anyLog();
  const std::string key = anyKey(bytes_), value = anyText();
  with(log, key, value);
  record(log).setStringValInEdit(key.c_str(), value.c_str());
  world_.store(log, key, value);
}

void Driver::storeField()
{
  const Number log = anyLog();
  const std::string key = anyKey(bytes_), value = anyText();
  with(log, key, value);
  record(log).setStrpFieldValInEdit(key.c_str(), value.c_str());
  world_.store(log, key, value);
}

/// The three readers. Without the key, a text becomes empty, and a number and a field stay unchanged. Without the log,
/// all three stay unchanged.
void Driver::readValues()
{
  const Number log = anyLog();
  const std::string key = anyKey(bytes_);
  with(log, key);
  const ModelLog* const there = world_.find(log);
  const bool found = there && there->fields.count(key) != 0;
  const std::string stored = world_.text(log, key);

  int number = 77;
  same(record(log).getIntValFromEdit(key.c_str(), number), found, "whether a number was read");
  same(number, found ? leadingNumber(stored) : 77, "number read");
  LightweightString<char> string = "old";
  same(record(log).getStringValFromEdit(key.c_str(), string), found, "whether a text was read");
  same(text(string), there ? stored : "old", "text read");
  strp_field field;
  field.set("old");
  same(record(log).getStrpFieldValFromEdit(key.c_str(), field), found, "whether a field was read");
  same(std::string(field.text() ? field.text() : ""), found ? stored : "old", "field read");
}

} // namespace reeldb_fuzz

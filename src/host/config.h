// SPDX-License-Identifier: Apache-2.0
//
// Stored settings: the configuration block of a log, the project options, the system configuration.
#ifndef REELDB_HOST_CONFIG_H
#define REELDB_HOST_CONFIG_H

#include "lwstring.h"

/// A text field, or no text at all.
class strp_field {
public:
  strp_field(); ///< without text
  strp_field(const strp_field&);
  strp_field& operator=(const strp_field&);
  ~strp_field();
  void set(const char*);
  const char* text() const; ///< null when the field holds no text

private:
  char* text_;
};

/// A block of keys with a text each. Mind the two meanings of the result: the first form answers non-null when the key
/// is there, the others answer 0.
class configb {
public:
  configb();
  ~configb();
  configb(const configb&) = delete;
  configb& operator=(const configb&) = delete;
  const char* in(const char* key) const;       ///< the text; null when the key is absent. Valid until the next set.
  int in(const char* key, char* buffer) const; ///< 0 on success; writes at most 2,048 bytes, NUL included
  int in(const char* key, int& value) const;   ///< 0 on success; @p value is left alone when the key is absent
  int in(const char* key, strp_field& value) const; ///< 0 on success; @p value is left alone when the key is absent
  void set(const char* key, const char* value, const char* third); ///< @p third is always null
  void set(const char* key, const strp_field& value);

private:
  struct Impl;
  Impl* impl_;
};

/// A value of the host's own configuration, or @p defaultValue. Callable while libraries are being loaded; the text
/// stays valid until the process ends.
const char* config_string(const char* key, const char* defaultValue);

/// The system-wide settings that all projects share.
class SystemCfg {
public:
  static SystemCfg& theConfig();
  LightweightString<char> get(const LightweightString<char>& key) const; ///< empty when nothing is stored
  void set(const LightweightString<char>& key, const LightweightString<char>& value);
};

class iSettings {
public:
  enum eType : int {};
};

/// The folder of device data files, ending in a separator. Callable while libraries are being loaded.
LightweightString<wchar_t> getDeviceDataDirectory(iSettings::eType);

#endif

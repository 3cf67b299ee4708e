// SPDX-License-Identifier: Apache-2.0
/// @file
/// Stored settings: the configuration block of a log, the project options, the system configuration.
/// Keys and texts are bytes; keys are matched with their letter case. Main thread only; functions marked "callable
/// while loading" are also called on the loading thread.
/// Where a comment says what an argument is "called with", the library passes nothing else, and a host may ignore the
/// argument.
#ifndef REELDB_HOST_CONFIG_H
#define REELDB_HOST_CONFIG_H

#include "lwstring.h"

// Also in a host that is compiled with -fvisibility=hidden.
#pragma GCC visibility push(default)

/// A text field that may hold no text. Each copy has its own text. Throws std::bad_alloc when there is no memory; the
/// field then keeps its text.
class strp_field {
public:
  strp_field(); ///< without text
  strp_field(const strp_field&);
  strp_field& operator=(const strp_field&);
  ~strp_field();
  void set(const char*);    ///< copies the text, which may be this field's text; null removes the text
  const char* text() const; ///< null when the field holds no text; valid until the next change of the field

private:
  char* text_;
};

/// A block of keys with one text per key: the configuration of a log or of a project. The empty key is a key, and a key
/// may have the empty text. Note the two meanings of a result: if the key is there, the first form of `in` returns
/// non-null, and the others return 0.
class configb {
public:
  configb();
  ~configb();                       ///< invalidates every text that `in` has returned
  configb(const configb&) = delete; ///< a block belongs to one log or project
  configb& operator=(const configb&) = delete;
  const char* in(const char* key) const; ///< the text; null if the key is absent. Valid until the next set.
  /// Returns 0 on success. Writes at most codes::textBufferSize bytes, NUL included; a longer text is cut. @p buffer
  /// has that size, and the caller zeroes it. It is unchanged if the key is absent.
  int in(const char* key, char* buffer) const;
  /// Returns 0 on success: @p value is the text read as decimal, 0 without digits. Unchanged if the key is absent.
  int in(const char* key, int& value) const;
  int in(const char* key,
         strp_field& value) const; ///< returns 0 on success; @p value is unchanged if the key is absent
  /// Sets the text of the key. @p value may be a text of this block; null is the empty text, and the key is then
  /// there. Every opening of the log sees the change at once. @p third is always null.
  void set(const char* key, const char* value, const char* third);
  void set(const char* key, const strp_field& value); ///< likewise; the field holds a text

  struct Impl;                         ///< the host defines it
  Impl* impl() const { return impl_; } ///< for the host, which saves and loads the keys

private:
  Impl* impl_;
};

/// The text of @p key in the host's own configuration, or @p defaultValue itself if the key is absent. Null only if
/// @p defaultValue is null. The text stays valid until the process ends. Callable while loading, when possibly no
/// constructor of the host has run. The library reads "default_reel_type" once, while it is loaded, so the host returns
/// the same text then as later.
const char* config_string(const char* key, const char* defaultValue);

/// The system-wide settings that all projects share.
class SystemCfg {
public:
  static SystemCfg& theConfig();                                         ///< always the same; never destroyed
  LightweightString<char> get(const LightweightString<char>& key) const; ///< empty if nothing is stored
  /// Sets the text of the key at once; the empty text removes the key. The host decides when it writes to the disk.
  void set(const LightweightString<char>& key, const LightweightString<char>& value);
};

/// Identifies settings of the host by number.
class iSettings {
public:
  /// Which settings. The library passes only codes::deviceData.
  enum eType : int {};
};

/// The folder of device data files. The path ends in a separator; the folder need not exist. Called with
/// codes::deviceData. Callable while loading.
LightweightString<wchar_t> getDeviceDataDirectory(iSettings::eType);

#pragma GCC visibility pop

#endif

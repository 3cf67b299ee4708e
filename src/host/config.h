// SPDX-License-Identifier: Apache-2.0
/// @file
/// Stored settings: the configuration block of a log, the project options, the system configuration.
/// Keys and texts are bytes; keys are matched letter for letter. The library calls all of it on the main thread, and
/// what is said to be callable then also on the thread that loads it.
#ifndef REELDB_HOST_CONFIG_H
#define REELDB_HOST_CONFIG_H

#include "lwstring.h"

/// A text field, or no text at all. Copies have a text of their own. Throws std::bad_alloc when there is no memory; the
/// field then keeps what it had.
class strp_field {
public:
  strp_field(); ///< without text
  strp_field(const strp_field&);
  strp_field& operator=(const strp_field&);
  ~strp_field();
  void set(const char*);    ///< copies the text, which may be the field's own; null: no text
  const char* text() const; ///< null when the field holds no text; valid until the next change of the field

private:
  char* text_;
};

/// A block of keys with a text each, the configuration of a log or of a project. A key may be empty, and a key with the
/// empty text is there. Mind the two meanings of the result: the first form of `in` answers non-null when the key is
/// there, the others answer 0.
class configb {
public:
  configb();
  ~configb();                       ///< ends the texts that `in` has answered
  configb(const configb&) = delete; ///< not copied: it belongs to one log or project
  configb& operator=(const configb&) = delete;
  const char* in(const char* key) const; ///< the text; null when the key is absent. Valid until the next set.
  /// 0 on success. Writes at most codes::textBufferSize bytes, NUL included: what is longer is cut. @p buffer has that
  /// size and comes zeroed; it is left alone when the key is absent.
  int in(const char* key, char* buffer) const;
  /// 0 on success: @p value is the text read as decimal, 0 without digits. Left alone when the key is absent.
  int in(const char* key, int& value) const;
  int in(const char* key, strp_field& value) const; ///< 0 on success; @p value is left alone when the key is absent
  /// Gives the key the text, which may be one of this block; every opening of the log sees it at once. @p third is
  /// always null.
  void set(const char* key, const char* value, const char* third);
  void set(const char* key, const strp_field& value); ///< the same, from a field that holds a text

private:
  struct Impl;
  Impl* impl_;
};

/// The text of @p key in the host's own configuration; @p defaultValue itself when there is none, so null only if that
/// is. Callable while libraries are being loaded; the text stays valid until the process ends.
const char* config_string(const char* key, const char* defaultValue);

/// The system-wide settings that all projects share.
class SystemCfg {
public:
  static SystemCfg& theConfig();                                         ///< the one there is, until the process ends
  LightweightString<char> get(const LightweightString<char>& key) const; ///< empty when nothing is stored
  /// Gives the key the text, at once; empty: nothing is stored. When it reaches the disk is the host's business.
  void set(const LightweightString<char>& key, const LightweightString<char>& value);
};

/// Names the settings of the host by number.
class iSettings {
public:
  /// Which settings. The library asks for codes::deviceData alone.
  enum eType : int {};
};

/// The folder of device data files, ending in a separator; it need not exist. The library asks with codes::deviceData.
/// Callable while libraries are being loaded.
LightweightString<wchar_t> getDeviceDataDirectory(iSettings::eType);

#endif

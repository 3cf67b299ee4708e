// SPDX-License-Identifier: Apache-2.0
/// @file
/// One reel, and the keys of its fields in its log.
#ifndef REELDB_REC_H
#define REELDB_REC_H

#include "ReelDbExport.h"
#include "host/config.h"
#include "host/cookie.h"
#include "host/lwstring.h"

/// The keys of a reel's fields in the configuration block of its log. All values are text. Programs may change the
/// pointers: every access reads them again. A null pointer means the empty key.
extern REELDB_EXPORT const char* TR_REEL_ID;             ///< "reelid": the identifier
extern REELDB_EXPORT const char* TR_REC_INHIBIT_FLAG;    ///< "record_inhibit_flag": "1" or "0"
extern REELDB_EXPORT const char* TR_REEL_AVAILABLE_FLAG; ///< "reel_available_flag": "1" or "0"
extern REELDB_EXPORT const char* TR_USER_FIELD_BASE;     ///< "reel_userfield": followed by the field's number
extern REELDB_EXPORT const char* TR_LABEL_MAPPING;       ///< "reel_labelmapping": name of a label map
extern REELDB_EXPORT const char* TR_BIN_NAME;            ///< "profile_bin_name": name of a bin
extern REELDB_EXPORT const char* TR_LAST_DEVICE;         ///< "reel_last_device": display name, UTF-8
extern REELDB_EXPORT const char* TR_REEL_TYPE_NAME; ///< "reel_type": for other modules; the library does not use it
extern REELDB_EXPORT const char* TR_REEL_LENGTH;    ///< "reel_length": for other modules; the library does not use it

/// One reel: the Cookie of its log and nothing else. Copies are cheap and name the same reel. An empty record names no
/// reel.
///
/// Every call opens the log and closes it again; nothing is cached between calls. A log that cannot be opened reads as
/// empty and is not written; only typeName() still returns the type of its database row. Exceptions of the host pass
/// through unchanged, with every log closed. Main thread only.
class REELDB_EXPORT ReelDbRec : public Cookie {
public:
  ReelDbRec();       ///< an empty record
  ReelDbRec(Cookie); ///< does not check that the log is a reel; implicit by design

  /// @name Typed access
  /// Getters return true if the log could be opened and has the key. Setters write the value and mark the log dirty.
  /// They neither compare it with the old value nor notify clients. A key without text is the empty key.
  /// @{

  /// Reads decimal text. @p out is unchanged if the log cannot be opened. Otherwise it has the value that the host's
  /// configuration block left in it; the block does not change it if the key is absent.
  bool getIntValFromEdit(LightweightString<char> key, int& out);
  void setIntValInEdit(LightweightString<char> key, int value);               ///< stores decimal text
  bool getStrpFieldValFromEdit(LightweightString<char> key, strp_field& out); ///< likewise, for a text of any length
  void setStrpFieldValInEdit(LightweightString<char> key, LightweightString<char> value);
  /// Reads at most 2,047 bytes. If the key is absent, @p out becomes empty; if the log cannot be opened, @p out is
  /// unchanged.
  bool getStringValFromEdit(LightweightString<char> key, LightweightString<char>& out);
  void setStringValInEdit(LightweightString<char> key, LightweightString<char> value);

  /// @}
  /// @name Attributes
  /// A setter does nothing if its value equals, byte for byte, the value that the getter returns. Otherwise it writes
  /// and calls ReelDbManager::informReelDbRecChanged with the reel's identifier, unless stated otherwise. Texts are
  /// bytes, UTF-8 by convention. At most 2,047 bytes of a text in the log's configuration block are read.
  /// @{

  LightweightString<char> reelId();
  /// Stores the identifier and updates the database row. Notifies no client. To rename a reel, call
  /// ReelDbManager::changeReelId.
  void reelId(LightweightString<char> id);

  bool recInhibit();             ///< whether recording on this reel is inhibited
  void recInhibit(bool inhibit); ///< stores "1" or "0"

  bool reelAvailable();               ///< whether the reel is at hand
  void reelAvailable(bool available); ///< stores "1" or "0"

  LightweightString<char> userField(int n); ///< user field @p n, counted from 0; any number is allowed
  void userField(int n, LightweightString<char> value);

  LightweightString<char> labelMapping(); ///< name of a label map; empty also if the stored text is exactly "unknown"
  void labelMapping(LightweightString<char> name); ///< the name is not checked

  LightweightString<char> binName();          ///< name of a bin; empty also if the stored text is exactly "default"
  void binName(LightweightString<char> name); ///< the name is not checked

  LightweightString<wchar_t> lastDevice(); ///< the display name of the device the reel was last used on
  /// Stores the name as UTF-8, notifies the clients, then calls updateNumChansInReel.
  void lastDevice(const LightweightString<wchar_t>& name);

  LightweightString<char> typeName(); ///< the reel type as the database row shows it; empty without a database
  /// Passes the name to Edit::reelType and marks the log dirty. Calls updateNumChansInReel, then notifies the clients,
  /// even if the log could not be opened. The type need not be in the catalogue.
  void typeName(LightweightString<char> name);

  /// Adds the missing audio channels, then the missing video channels. The reel's type gives the numbers. If the reel
  /// has no type or an unknown one, its last device gives them: one audio channel per audio input, and one video
  /// channel if there is a video input. Never removes a channel. Updates the database row if it added any. Notifies no
  /// client.
  void updateNumChansInReel();

  /// @}
};

#endif

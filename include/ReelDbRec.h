// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_REC_H
#define REELDB_REC_H

#include "ReelDbExport.h"
#include "host/config.h"
#include "host/cookie.h"
#include "host/lwstring.h"

/// The keys of a reel's fields in the configuration block of its log. All values are text. The pointers may be changed:
/// every access reads them anew, and a null pointer stands for the empty key.
extern REELDB_EXPORT const char* TR_REEL_ID;             ///< "reelid": the identifier
extern REELDB_EXPORT const char* TR_REC_INHIBIT_FLAG;    ///< "record_inhibit_flag": "1" or "0"
extern REELDB_EXPORT const char* TR_REEL_AVAILABLE_FLAG; ///< "reel_available_flag": "1" or "0"
extern REELDB_EXPORT const char* TR_USER_FIELD_BASE;     ///< "reel_userfield": followed by the field's number
extern REELDB_EXPORT const char* TR_LABEL_MAPPING;       ///< "reel_labelmapping": name of a label map
extern REELDB_EXPORT const char* TR_BIN_NAME;            ///< "profile_bin_name": name of a bin
extern REELDB_EXPORT const char* TR_LAST_DEVICE;         ///< "reel_last_device": display name, UTF-8
extern REELDB_EXPORT const char* TR_REEL_TYPE_NAME; ///< "reel_type": for other modules; the library does not use it
extern REELDB_EXPORT const char* TR_REEL_LENGTH;    ///< "reel_length": for other modules; the library does not use it

/// One reel: the Cookie of its log and nothing else. Copies are cheap and name the same reel; an empty record names
/// none.
///
/// Every call opens the log and closes it again, nothing is kept between calls. A log that cannot be opened reads as
/// empty and is not written. Exceptions of the host pass unchanged, with every log closed. Main thread only.
class REELDB_EXPORT ReelDbRec : public Cookie {
public:
  ReelDbRec();       ///< an empty record, bound to no log
  ReelDbRec(Cookie); ///< the record of this log

  // --- Typed access -------------------------------------------------------------------------------------------------
  // Getters answer whether the log opened and the key was there. Setters write, mark the log dirty, and neither compare
  // with the old value nor tell anybody.

  /// @p out keeps its value when the log does not open; otherwise it is what the host's configuration block left in it.
  bool getIntValFromEdit(LightweightString<char> key, int& out);
  void setIntValInEdit(LightweightString<char> key, int value); ///< stores decimal text
  bool getStrpFieldValFromEdit(LightweightString<char> key, strp_field& out);
  void setStrpFieldValInEdit(LightweightString<char> key, LightweightString<char> value);
  /// Reads at most 2,047 bytes. A missing key empties @p out; a log that does not open leaves it alone.
  bool getStringValFromEdit(LightweightString<char> key, LightweightString<char>& out);
  void setStringValInEdit(LightweightString<char> key, LightweightString<char> value);

  // --- Attributes ---------------------------------------------------------------------------------------------------
  // A setter whose value equals what its getter reads does nothing. Otherwise it writes and calls
  // ReelDbManager::informReelDbRecChanged with the reel's identifier, unless stated otherwise.

  LightweightString<char> reelId(); ///< at most 2,047 bytes
  /// Stores the identifier and refreshes the database row; tells nobody. ReelDbManager::changeReelId renames a reel.
  void reelId(LightweightString<char> id);

  bool recInhibit(); ///< whether recording on this reel is inhibited
  void recInhibit(bool inhibit);

  bool reelAvailable(); ///< whether the reel is at hand
  void reelAvailable(bool available);

  LightweightString<char> userField(int n); ///< user field @p n, counted from 0; any number forms a key
  void userField(int n, LightweightString<char> value);

  LightweightString<char> labelMapping(); ///< empty also when the stored text is exactly "unknown"
  void labelMapping(LightweightString<char> name);

  LightweightString<char> binName(); ///< empty also when the stored text is exactly "default"
  void binName(LightweightString<char> name);

  LightweightString<wchar_t> lastDevice(); ///< the display name of the device the reel was last used on
  /// Tells the clients, then brings the channels into line with updateNumChansInReel.
  void lastDevice(const LightweightString<wchar_t>& name);

  LightweightString<char> typeName(); ///< the reel type as the database row shows it; empty without a database
  /// Brings the channels into line, then tells the clients, also when the log did not open.
  void typeName(LightweightString<char> name);

  /// Adds the audio and then the video channels that the reel's type asks for and the log lacks; a reel without a known
  /// type asks its last device. Channels are never removed.
  void updateNumChansInReel();
};

#endif

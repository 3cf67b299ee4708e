// SPDX-License-Identifier: Apache-2.0
/// @file
/// One reel, and the keys under which its log keeps what is known of it.
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
  ReelDbRec(Cookie); ///< the record of this log, whatever it is; implicit by design

  /// @name Typed access
  /// Getters answer whether the log opened and the key was there. Setters write, mark the log dirty, and neither
  /// compare with the old value nor tell anybody. A key without text is the empty key.
  /// @{

  /// Reads decimal text. @p out keeps its value when the log does not open; otherwise it is what the host's
  /// configuration block left in it: its value, when the key is absent.
  bool getIntValFromEdit(LightweightString<char> key, int& out);
  void setIntValInEdit(LightweightString<char> key, int value);               ///< stores decimal text
  bool getStrpFieldValFromEdit(LightweightString<char> key, strp_field& out); ///< likewise, the text at any length
  void setStrpFieldValInEdit(LightweightString<char> key, LightweightString<char> value); ///< stores the text as it is
  /// Reads at most 2,047 bytes. A missing key empties @p out; a log that does not open leaves it alone.
  bool getStringValFromEdit(LightweightString<char> key, LightweightString<char>& out);
  void setStringValInEdit(LightweightString<char> key, LightweightString<char> value); ///< stores the text as it is

  /// @}
  /// @name Attributes
  /// A setter whose value equals what its getter reads, byte for byte, does nothing. Otherwise it writes and calls
  /// ReelDbManager::informReelDbRecChanged with the reel's identifier, unless stated otherwise. Texts are bytes, UTF-8
  /// by convention; of a text in the log's configuration block, at most 2,047 are read.
  /// @{

  LightweightString<char> reelId();
  /// Stores the identifier and refreshes the database row; tells nobody. ReelDbManager::changeReelId renames a reel.
  void reelId(LightweightString<char> id);

  bool recInhibit();             ///< whether recording on this reel is inhibited
  void recInhibit(bool inhibit); ///< stores "1" or "0"

  bool reelAvailable();               ///< whether the reel is at hand
  void reelAvailable(bool available); ///< stores "1" or "0"

  LightweightString<char> userField(int n);             ///< user field @p n, counted from 0; any number forms a key
  void userField(int n, LightweightString<char> value); ///< stores the text as it is

  LightweightString<char> labelMapping(); ///< name of a label map; empty also when the stored text is exactly "unknown"
  void labelMapping(LightweightString<char> name); ///< stores the name, untested

  LightweightString<char> binName();          ///< name of a bin; empty also when the stored text is exactly "default"
  void binName(LightweightString<char> name); ///< stores the name, untested

  LightweightString<wchar_t> lastDevice(); ///< the display name of the device the reel was last used on
  /// Stores the name as UTF-8, tells the clients, then brings the channels into line with updateNumChansInReel.
  void lastDevice(const LightweightString<wchar_t>& name);

  LightweightString<char> typeName(); ///< the reel type as the database row shows it; empty without a database
  /// Hands the name to Edit::reelType and marks the log dirty; brings the channels into line, then tells the clients,
  /// also when the log did not open. The type need not be in the catalogue.
  void typeName(LightweightString<char> name);

  /// Adds the audio and then the video channels that the reel's type asks for and the log lacks; a reel without a known
  /// type asks its last device: its audio inputs, and one video channel if it has a video input. Channels are never
  /// removed. Refreshes the database row if any was added; tells nobody.
  void updateNumChansInReel();

  /// @}
};

#endif

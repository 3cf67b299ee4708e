// SPDX-License-Identifier: Apache-2.0
/// @file
/// The reel types of the installation and how many channels each has.
#ifndef REELDB_TYPE_MANAGER_H
#define REELDB_TYPE_MANAGER_H

#include "ReelDbExport.h"
#include "host/containers.h"
#include "host/lwstring.h"

/// One reel type. A channel count that the type does not give is 0.
struct ReelType {
  LightweightString<char> name; ///< bytes, UTF-8 by convention
  int numVideoChans;            ///< value of the parameter "VideoChannels"; may be negative
  int numAudioChans;            ///< value of the parameter "AudioChannels"; may be negative
};

/// The reel types of the installation: a keyed list from type name to parameter string, in the order of the file
/// "reeltype.dat". The file is read while the library is loaded; the list only grows. docs/formats/reeltype.md
/// describes the file.
///
/// A query for a name that is not in the list adds the name for good, with an empty parameter string. Only
/// rep()->find() does not add it. Main thread only.
class REELDB_EXPORT ReelTypeManager : public AssocList {
public:
  /// Reads "reeltype.dat" from the host's device data directory. If there is no such file, the catalogue is empty.
  ReelTypeManager();
  ~ReelTypeManager();                               ///< discards all entries, also for other holders of the list's body
  ReelTypeManager(const ReelTypeManager&) = delete; ///< there is one catalogue
  ReelTypeManager& operator=(const ReelTypeManager&) = delete;

  /// Appends every type name, the empty one too. Neither clears nor sorts the list, which owns its new elements.
  void getAllReelTypes(StringList& list);
  /// The type at this position. An index past the end gives the type of the empty name, and adds that name
  /// without parameters if it is not defined.
  ReelType type(const unsigned& index);
  /// The type of this name, which is not trimmed. An unknown name gives a type without channels, and is added.
  ReelType type(const LightweightString<char>& name);

  /// Finds the first parameter token that contains @p paramName, in any letter case, and carries a value. True if there
  /// is one: @p value is then set, and untouched otherwise. Values are decimal; a value without digits is 0.
  /// @p typeName is not trimmed.
  bool getReelParam(LightweightString<char> typeName, LightweightString<char> paramName, int& value);
  int numVideoChans(LightweightString<char> typeName); ///< "VideoChannels" of the type as getReelParam finds it, else 0
  int numAudioChans(LightweightString<char> typeName); ///< "AudioChannels", likewise

  /// Reads the file at @p path (UTF-8) and adds the types that it defines. A file that cannot be opened changes
  /// nothing. A record without parameters prints a warning. A field over 2,047 bytes aborts the process.
  void load(LightweightString<char> path);
  /// Trims both texts with chopSpaces and stores @p params as the parameter string of @p name. A name that is already
  /// in the list keeps its position.
  void add(LightweightString<char> name, LightweightString<char> params);
  /// The text without leading and trailing white space. Aborts the process if more than 2,047 bytes follow the leading
  /// white space.
  LightweightString<char> chopSpaces(LightweightString<char> text);
  /// True if @p token carries a value for @p paramName: it contains the name, in any letter case and anywhere, and a
  /// "=" or a blank that something follows. @p value is then set, and untouched otherwise.
  bool parseParamToken(LightweightString<char> token, LightweightString<char> paramName, int& value);
  void errMsg(const char* text); ///< writes the text to the host's debug output, unchanged
};

/// The catalogue itself, for programs that were linked to it. theReelTypeManager() returns its address.
extern REELDB_EXPORT ReelTypeManager theReelTypeManager_;

/// The catalogue. It exists from the loading of the library to its unloading. Never null; not to be deleted.
REELDB_EXPORT ReelTypeManager* theReelTypeManager();

#endif

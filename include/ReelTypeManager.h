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
  int numVideoChans;            ///< as the parameter "VideoChannels" says, be it negative
  int numAudioChans;            ///< likewise, "AudioChannels"
};

/// The reel types of the installation: a keyed list from type name to parameter string, in the order of the file
/// "reeltype.dat". It is read while the library is loaded and only grows. docs/formats/reeltype.md describes the file.
///
/// Asking for a parameter of a name that is not listed adds the name, for good, with an empty parameter string; only
/// rep()->find() asks without adding. Main thread only.
class REELDB_EXPORT ReelTypeManager : public AssocList {
public:
  ReelTypeManager();  ///< reads "reeltype.dat" from the host's device data directory; a missing file is an empty
                      ///< catalogue
  ~ReelTypeManager(); ///< discards all entries, for whoever still shares the list, too
  ReelTypeManager(const ReelTypeManager&) = delete; ///< not copied: there is one catalogue
  ReelTypeManager& operator=(const ReelTypeManager&) = delete;

  /// Appends every type name, the empty one too; clears nothing and sorts nothing. The list owns what it gets.
  void getAllReelTypes(StringList& list);
  /// By position; beyond the end: the empty name without channels, which is then listed.
  ReelType type(const unsigned& index);
  ReelType type(const LightweightString<char>& name); ///< by name, as given; unknown: without channels, and then listed

  /// True, with @p value set, when the first parameter token that contains @p paramName (in any case) and carries a
  /// value is found; @p value is untouched otherwise. A value is decimal; one without digits is 0. @p typeName is used
  /// as given, untrimmed.
  bool getReelParam(LightweightString<char> typeName, LightweightString<char> paramName, int& value);
  int numVideoChans(LightweightString<char> typeName); ///< "VideoChannels" of the type as getReelParam finds it, else 0
  int numAudioChans(LightweightString<char> typeName); ///< "AudioChannels" likewise

  /// Reads the file at @p path (UTF-8) and adds what it defines. A file that cannot be opened changes nothing; a record
  /// without parameters prints a warning. A field over 2,047 bytes aborts the process.
  void load(LightweightString<char> path);
  /// Trims both as chopSpaces does and stores @p params as the parameter string of @p name, which keeps its place if it
  /// is there already.
  void add(LightweightString<char> name, LightweightString<char> params);
  /// The text without leading and trailing white space; aborts when more than 2,047 bytes follow the leading space.
  LightweightString<char> chopSpaces(LightweightString<char> text);
  /// True, with @p value set, when @p token carries a value for @p paramName: when it contains the name, in any case
  /// and anywhere, and a "=" or a blank with something behind it. @p value is untouched otherwise.
  bool parseParamToken(LightweightString<char> token, LightweightString<char> paramName, int& value);
  void errMsg(const char* text); ///< writes the text to the host's debug output, as it is
};

/// The catalogue itself; for programs that were linked to it. theReelTypeManager() answers its address.
extern REELDB_EXPORT ReelTypeManager theReelTypeManager_;

/// The one catalogue; it exists from the loading of the library to its unloading. Never null, not to be deleted.
REELDB_EXPORT ReelTypeManager* theReelTypeManager();

#endif

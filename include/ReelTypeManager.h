// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_TYPE_MANAGER_H
#define REELDB_TYPE_MANAGER_H

#include "ReelDbExport.h"
#include "host/containers.h"
#include "host/lwstring.h"

/// One reel type. A channel count that the type does not give is 0.
struct ReelType {
  LightweightString<char> name;
  int numVideoChans;
  int numAudioChans;
};

/// The reel types of the installation: a keyed list from type name to parameter string, in the order of the file
/// "reeltype.dat". It is read while the library is loaded and only grows. docs/formats/reeltype.md describes the file.
///
/// Asking for a parameter of a name that is not listed adds the name, for good, with an empty parameter string; only
/// rep()->find() asks without adding. Main thread only.
class REELDB_EXPORT ReelTypeManager : public AssocList {
public:
  ReelTypeManager(); ///< reads "reeltype.dat" from the host's device data directory; a missing file is an empty
                     ///< catalogue
  ~ReelTypeManager();
  ReelTypeManager(const ReelTypeManager&) = delete;
  ReelTypeManager& operator=(const ReelTypeManager&) = delete;

  void getAllReelTypes(StringList& list); ///< appends every type name; clears nothing and sorts nothing
  /// By position; beyond the end: the empty name without channels, which is then listed.
  ReelType type(const unsigned& index);
  ReelType type(const LightweightString<char>& name);

  /// True, with @p value set, when the first parameter token that contains @p paramName (in any case) and carries a
  /// value is found; @p value is untouched otherwise. @p typeName is used as given, untrimmed.
  bool getReelParam(LightweightString<char> typeName, LightweightString<char> paramName, int& value);
  int numVideoChans(LightweightString<char> typeName); ///< "VideoChannels" of the type, else 0
  int numAudioChans(LightweightString<char> typeName); ///< "AudioChannels" of the type, else 0

  /// Reads the file at @p path (UTF-8) and adds what it defines. A file that cannot be opened changes nothing; a record
  /// without parameters prints a warning. A field over 2,047 bytes aborts the process.
  void load(LightweightString<char> path);
  /// Trims both and stores @p params as the parameter string of @p name, which keeps its place if it is there already.
  void add(LightweightString<char> name, LightweightString<char> params);
  /// The text without leading and trailing white space; aborts when more than 2,047 bytes follow the leading space.
  LightweightString<char> chopSpaces(LightweightString<char> text);
  /// True, with @p value set, when @p token carries a value for @p paramName.
  bool parseParamToken(LightweightString<char> token, LightweightString<char> paramName, int& value);
  void errMsg(const char* text); ///< writes the text to the host's debug output
};

extern REELDB_EXPORT ReelTypeManager theReelTypeManager_;

/// The one catalogue; it exists from the loading of the library to its unloading.
REELDB_EXPORT ReelTypeManager* theReelTypeManager();

#endif

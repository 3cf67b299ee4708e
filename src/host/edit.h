// SPDX-License-Identifier: Apache-2.0
/// @file
/// Edits: the objects behind the logs of a project, and the handles that open and close them. Main thread only.
/// codes.h names the values of the enumerations. Where a comment says what an argument is "called with", the library
/// passes nothing else, and a host may ignore the argument.
#ifndef REELDB_HOST_EDIT_H
#define REELDB_HOST_EDIT_H

#include <cstdint>

#include "config.h"
#include "cookie.h"
#include "lwstring.h"
#include "refcount.h"

// Also in a host that is compiled with -fvisibility=hidden.
#pragma GCC visibility push(default)

/// How a log is opened.
enum eEditOpenBehaviour : int {};
/// What was done to a log.
enum EditModificationType : int {};
/// What a channel carries.
enum EditChanType : int {};
/// The kind of a channel within its type. The library passes only 0.
enum EditChanSubType : int {};
/// What a log stands for.
enum eLogType : int {};

/// The content of a channel; the library passes only null.
class Cel : public Zr::InternalRefCount {};

/// Attributes of logs, for searches.
namespace LogAttributes {
/// One attribute of a log.
enum eLogAttribute : int {};

/// The attributes and values that a search requires.
class Map {
public:
  Map();
  Map(const Map&);
  Map& operator=(const Map&);
  ~Map();
  /// Adds a required attribute value. A search for the empty identifier finds nothing.
  void add(eLogAttribute, LightweightString<char> value);

  struct Impl;                         ///< the host defines it
  Impl* impl() const { return impl_; } ///< for the host, which searches by it

private:
  Impl* impl_;
};
} // namespace LogAttributes

/// One open log. All openings of one log share one Edit. A change takes effect at once, in every opening and in the
/// database, and is stored whether or not the log is marked dirty. The host owns the Edit; it ends with the last
/// i_close or with its EditModifier, whichever is later. The caller that opened it never deletes it.
class Edit {
public:
  configb& config();           ///< valid while the log is open
  eLogType getLogType() const; ///< the type that redetermineLogType set, or the stored one
  /// The log type for the text of a row's field "Type". Empty or unknown text does not give codes::reelLog.
  static eLogType getLogTypeFromString(const LightweightString<char>&);
  bool isImported() const; ///< whether the log was imported
  /// Gets the reel identifier; one that was set to "" is the empty text. @p out is unchanged if the log has no
  /// identifier. Called as (field, 0, -1).
  void get_reelid(strp_field& out, int, int) const;
  /// Stores the reel identifier: codes::reelIdAttribute and the key "reelid" of config() are the same value. Called as
  /// (0, id); @p id is never null.
  void set_reelid(int slot, const char* id);
  void setName(const LightweightString<wchar_t>&, bool); ///< sets the display name; called with false
  void set_entire_medium(int);                           ///< 1: the log represents the whole medium; called with 1
  void make_original(bool, bool);                        ///< called as (false, false) for a log that becomes a reel
  /// Classifies the log by its values; a search for reels then finds it if it is a reel. It is one after
  /// set_entire_medium(1) and make_original(false, false), and never without set_entire_medium(1). The host decides
  /// how it classifies other logs.
  void redetermineLogType();
  /// Sets the modification that the EditModifier reports when it ends. Called with true.
  void setChangeDescription(EditModificationType, bool);
  void setDirty(bool);                           ///< true: the log needs saving
  void reelType(const LightweightString<char>&); ///< the reel type; the column "Reel Type" shows it at once
  int getNumChans(EditChanType) const;           ///< the number of channels, in the bits of codes::channelCountMask
  /// Adds one channel at the end. Called as (type, null, false, 0, false, -1.0).
  void addChan(EditChanType, Zr::Ptr<Cel>, bool, EditChanSubType, bool, double);
  const Zr::UUID& uuid() const; ///< the log's Cookie consists of this and the next two
  std::uint16_t cookieTag() const;
  char cookieKind() const; ///< the Cookie's kind: any letter except 'I'

  struct Impl;
  Impl* impl;
};

/// A handle to an open log. The destructor does not close it: pair every i_open with an i_close, even if the log could
/// not be opened. Nested openings of one log are allowed.
class EditPtr {
public:
  EditPtr();
  ~EditPtr();
  EditPtr(const EditPtr&) = delete; ///< each opening is closed once
  EditPtr& operator=(const EditPtr&) = delete;
  /// Opens the log. get() is null afterwards if the log cannot be opened: there is no such log, no project is open, or
  /// the Cookie is invalid. Does not throw in these cases. REQUIRES: the handle is empty.
  void i_open(const Cookie&, eEditOpenBehaviour);
  void i_close(); ///< never throws; does nothing on an empty handle
  /// One more opening of a log that is open already; null: no opening. REQUIRES: the handle is empty.
  EditPtr& operator=(Edit*);
  Edit* get() const;        ///< the open log, or null
  Edit* operator->() const; ///< REQUIRES: the handle is not empty
  explicit operator bool() const;

protected:
  Edit* edit_;
};

/// A log opened for reading its attributes; closed with i_close like any other.
class EditInfo : public EditPtr {
public:
  EditInfo(const Cookie&, eEditOpenBehaviour); ///< calls i_open
  /// The attribute's text; empty if it is not set or the log is not open.
  LightweightString<char> getAttrib(LogAttributes::eLogAttribute) const;
};

/// Holds a new log open for change. The host commits the change when the EditModifier ends; the log is in the project
/// before that.
class EditModifier {
public:
  explicit EditModifier(Edit*); ///< null: the log could not be created
  /// Ends the change and reports to the listeners what setChangeDescription set; without that call it reports nothing.
  /// Never throws, even if a listener does.
  ~EditModifier();
  EditModifier(const EditModifier&) = delete; ///< a change ends once
  EditModifier& operator=(const EditModifier&) = delete;
  Edit* get() const; ///< null if the log could not be created

private:
  Edit* edit_;
};

#pragma GCC visibility pop

#endif

// SPDX-License-Identifier: Apache-2.0
/// @file
/// Edits: the objects behind the logs of a project, and the handles that open and close them. Main thread only.
/// codes.h names the values of the enumerations.
#ifndef REELDB_HOST_EDIT_H
#define REELDB_HOST_EDIT_H

#include <cstdint>

#include "config.h"
#include "cookie.h"
#include "lwstring.h"
#include "refcount.h"

/// How a log is opened.
enum eEditOpenBehaviour : int {};
/// What was done to a log.
enum EditModificationType : int {};
/// What a channel carries.
enum EditChanType : int {};
/// What kind of channel of its type it is. The library passes 0 alone.
enum EditChanSubType : int {};
/// What a log stands for.
enum eLogType : int {};

/// The content of a channel; the library only passes null in its place.
class Cel : public Zr::InternalRefCount {};

/// What a search may ask of logs.
namespace LogAttributes {
/// One attribute of a log.
enum eLogAttribute : int {};

/// The attributes and values a search asks for.
class Map {
public:
  Map();
  Map(const Map&);
  Map& operator=(const Map&);
  ~Map();
  /// Asks for logs whose attribute has this value, too. A search for the empty identifier answers nothing.
  void add(eLogAttribute, LightweightString<char> value);

private:
  struct Impl;
  Impl* impl_;
};
} // namespace LogAttributes

/// One log, opened. All openings of one log share one Edit. A change takes effect at once, in every opening and in the
/// database, and is stored whether or not the log is marked dirty. Belongs to the host and goes with the last i_close:
/// it is never deleted by who opened it.
class Edit {
public:
  configb& config();           ///< the log's configuration block, valid as long as the log is open
  eLogType getLogType() const; ///< what redetermineLogType found, or what was stored
  /// The type that a row's field "Type" names; what names none, the empty text too, is no reel.
  static eLogType getLogTypeFromString(const LightweightString<char>&);
  bool isImported() const; ///< whether the log came in from elsewhere
  /// The reel identifier; @p out is left alone when there is none. Called as (field, 0, -1).
  void get_reelid(strp_field& out, int, int) const;
  /// Stores the reel identifier: codes::reelIdAttribute and the key "reelid" of config() are the same value. Called as
  /// (0, id), @p id never null.
  void set_reelid(int slot, const char* id);
  void setName(const LightweightString<wchar_t>&, bool); ///< the log's display name; called with false
  void set_entire_medium(int);                           ///< whether the log stands for the whole medium; called with 1
  void make_original(bool, bool);                        ///< called as (false, false) for a log that is to be a reel
  void redetermineLogType(); ///< classifies the log by what was set; from then on a search for reels finds one
  /// What the EditModifier reports of this log when it ends. Called with true.
  void setChangeDescription(EditModificationType, bool);
  void setDirty(bool);                           ///< the log needs saving
  void reelType(const LightweightString<char>&); ///< the reel type; the column "Reel Type" shows it at once
  int getNumChans(EditChanType) const;           ///< how many channels of the type; only codes::channelCountMask counts
  /// Adds one channel at the end. Called as (type, null, false, 0, false, -1.0).
  void addChan(EditChanType, Zr::Ptr<Cel>, bool, EditChanSubType, bool, double);
  const Zr::UUID& uuid() const; ///< with the next two: what the log's Cookie is made of
  std::uint16_t cookieTag() const;
  char cookieKind() const; ///< the Cookie's kind, not 'I'

  struct Impl;
  Impl* impl;
};

/// A handle on an open log. It does not close by itself: every i_open is paired with an i_close, also when the log did
/// not open. Nested openings of one log are allowed.
class EditPtr {
public:
  EditPtr();
  ~EditPtr();
  EditPtr(const EditPtr&) = delete; ///< not copied: each opening is closed once
  EditPtr& operator=(const EditPtr&) = delete;
  /// Opens the log. Afterwards get() is null when it cannot be opened: there is no such log, no project is open, the
  /// Cookie is invalid. Throws nothing for that.
  void i_open(const Cookie&, eEditOpenBehaviour);
  void i_close();            ///< never throws; does nothing on an empty handle
  EditPtr& operator=(Edit*); ///< takes hold of a log that is open already: one more opening; null: none
  Edit* get() const;         ///< the open log, or null
  Edit* operator->() const;  ///< the open log; not of an empty handle
  explicit operator bool() const;

protected:
  Edit* edit_;
};

/// A log opened for reading its attributes; closed with i_close like any other.
class EditInfo : public EditPtr {
public:
  EditInfo(const Cookie&, eEditOpenBehaviour); ///< opens as i_open does
  /// The attribute's text; empty when unset or not open.
  LightweightString<char> getAttrib(LogAttributes::eLogAttribute) const;
};

/// Holds a new log open for change; the host commits the change when this ends. The log is in the project before that.
class EditModifier {
public:
  explicit EditModifier(Edit*); ///< null: no log could be made
  /// Ends the change and reports it to the listeners, as setChangeDescription said; nothing when nothing was said.
  /// Never throws, whatever they do.
  ~EditModifier();
  EditModifier(const EditModifier&) = delete; ///< not copied: a change ends once
  EditModifier& operator=(const EditModifier&) = delete;
  Edit* get() const; ///< null when no log could be made

private:
  Edit* edit_;
};

#endif

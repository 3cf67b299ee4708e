// SPDX-License-Identifier: Apache-2.0
//
// Edits: the objects behind the logs of a project, and the handles that open and close them. Main thread only.
#ifndef REELDB_HOST_EDIT_H
#define REELDB_HOST_EDIT_H

#include <cstdint>

#include "config.h"
#include "cookie.h"
#include "lwstring.h"
#include "refcount.h"

enum eEditOpenBehaviour : int {};   ///< 0: the default way to open a log
enum EditModificationType : int {}; ///< 59: a log was made or imported
enum EditChanType : int {};         ///< 1 video, 2 audio
enum EditChanSubType : int {};
enum eLogType : int {}; ///< 1 a material log, 9 a reel log

class Cel : public Zr::InternalRefCount {};

namespace LogAttributes {
enum eLogAttribute : int {}; ///< 20: the reel identifier

/// The attributes and values a search asks for.
class Map {
public:
  Map();
  Map(const Map&);
  Map& operator=(const Map&);
  ~Map();
  void add(eLogAttribute, LightweightString<char> value);

private:
  struct Impl;
  Impl* impl_;
};
} // namespace LogAttributes

/// One log, opened. All openings of one log share one Edit. A change takes effect at once.
class Edit {
public:
  configb& config(); ///< the log's configuration block
  eLogType getLogType() const;
  static eLogType getLogTypeFromString(const LightweightString<char>&);
  bool isImported() const;
  void get_reelid(strp_field& out, int, int) const; ///< called as (field, 0, -1)
  void set_reelid(int slot, const char* id);        ///< called as (0, id); the same value as attribute 20
  void setName(const LightweightString<wchar_t>&, bool);
  void set_entire_medium(int);
  void make_original(bool, bool);
  void redetermineLogType(); ///< classifies the log by what was set; from then on a search finds it
  void setChangeDescription(EditModificationType, bool);
  void setDirty(bool); ///< the log needs saving
  void reelType(const LightweightString<char>&);
  int getNumChans(EditChanType) const; ///< the low 16 bits count
  void addChan(EditChanType, Zr::Ptr<Cel>, bool, EditChanSubType, bool, double);
  const Zr::UUID& uuid() const; ///< with the next two: what the log's Cookie is made of
  std::uint16_t cookieTag() const;
  char cookieKind() const;

  struct Impl;
  Impl* impl; ///< the host's business
};

/// A handle on an open log. It does not close by itself: every i_open is paired with an i_close, also when the log did
/// not open. Nested openings of one log are allowed.
class EditPtr {
public:
  EditPtr();
  ~EditPtr();
  EditPtr(const EditPtr&) = delete;
  EditPtr& operator=(const EditPtr&) = delete;
  void i_open(const Cookie&, eEditOpenBehaviour); ///< afterwards get() is null when the log cannot be opened
  void i_close();                                 ///< never throws; does nothing on an empty handle
  EditPtr& operator=(Edit*);                      ///< takes hold of a log that is open already
  Edit* get() const;
  Edit* operator->() const;
  explicit operator bool() const;

protected:
  Edit* edit_;
};

/// A log opened for reading its attributes; closed with i_close like any other.
class EditInfo : public EditPtr {
public:
  EditInfo(const Cookie&, eEditOpenBehaviour);
  LightweightString<char> getAttrib(LogAttributes::eLogAttribute) const; ///< empty when unset or not open
};

/// Holds a new log open for change; the host commits the change when this ends.
class EditModifier {
public:
  explicit EditModifier(Edit*);
  ~EditModifier(); ///< never throws
  EditModifier(const EditModifier&) = delete;
  EditModifier& operator=(const EditModifier&) = delete;
  Edit* get() const; ///< null when no log could be made

private:
  Edit* edit_;
};

#endif

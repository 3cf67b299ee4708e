// SPDX-License-Identifier: Apache-2.0
/// @file
/// The project database: its rows, its searches, its views. Main thread only.
#ifndef REELDB_HOST_PROJDB_H
#define REELDB_HOST_PROJDB_H

#include <cstdint>
#include <vector>

#include "cookie.h"
#include "edit.h"

/// The tables behind a database; the library only hands them to a view.
class oledb;

/// One row: the fields of a log as the database holds them. Belongs to the database and is valid until that changes.
class dbrecord {
public:
  /// The text of the column that projdb::findField names; null when the row has no such field. Valid until the database
  /// changes.
  const char* get_field(unsigned short column) const;
  struct Impl;
  Impl* impl;
};

/// The database of the open project.
class projdb {
public:
  /// What an attribute search asks for: two numbers that select the kinds of logs, and the attributes.
  class SearchCriteria {
  public:
    SearchCriteria(); ///< both numbers 0, no attribute
    /// Called with codes::shotSearchFirst and codes::shotSearchSecond: every log that is no reel log.
    int first, second;
    LogAttributes::Map attributes; ///< which all have to be there
  };
  /// Called with codes::reelSearchMask and codes::reelSearchMaskOff: exactly the reel logs, in the order of the
  /// database, which stays: new ones come at the end.
  CookieVec search(unsigned, unsigned);
  /// The logs that may have these attributes, ASCII letters without regard to case. Near matches are allowed, the
  /// caller compares again; none may be missing, and nothing is found for an empty value.
  CookieVec search(const SearchCriteria&);
  dbrecord* operator[](const Cookie&);              ///< null when the Cookie has no row
  unsigned short findField(const char* name) const; ///< the column of a field, such as "Type", for get_field
  oledb* database();                                ///< for views; never null
  struct Impl;
  Impl* impl;
};

/// The shared body of a view.
class ODBViewRep : public Zr::InternalRefCount {
public:
  explicit ODBViewRep(oledb*); ///< shows nothing; the database is borrowed
  ~ODBViewRep() override;      ///< ends the texts that it has answered
  /// Shows the rows of these logs from @p position on, in place of what it showed there; logs without a row are passed
  /// over. Called with 0.
  void displayRecordsAt(const std::vector<Cookie>&, int position);
  int numRows() const;
  /// The text of the column with this name, such as "Reel Type". Null when there is no such row or column. Valid while
  /// the view shows the row, also when the log changes.
  const char* cellText(int row, const char* column) const;

private:
  struct Impl;
  Impl* impl_;
};

/// A view on some rows of the database.
class ODBView {
public:
  explicit ODBView(ODBViewRep*); ///< shares the body, which is not null
  ~ODBView();
  ODBViewRep* operator->() const;

private:
  Zr::Ptr<ODBViewRep> rep_;
};

/// The logs of the current project, and its options.
class EditManager {
public:
  static projdb* getProjdb();                 ///< null when no database is open; not to be kept
  static void updateProjdbRec(const Cookie&); ///< writes a changed log's fields to its row; an unknown log is ignored
  static EditModifier makeNewEdit(const Cookie&); ///< called with Cookie(): a new, empty log, held open; or no Edit
  static configb& ProjOpts(); ///< the options of the current project; without one, empty and forgetful
};

/// The current project, the same each time it is opened; invalid when there is none.
Cookie get_project_cookie();

/// The file name of a log, each has another; empty for an unknown one. Called with a default Cookie as second argument.
LightweightString<wchar_t> getFilenameForCookie(const Cookie&, Cookie);

#endif

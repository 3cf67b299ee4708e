// SPDX-License-Identifier: Apache-2.0
/// @file
/// The project database: rows, searches and views. Main thread only.
/// Where a comment says what an argument is "called with", the library passes nothing else, and a host may ignore the
/// argument.
#ifndef REELDB_HOST_PROJDB_H
#define REELDB_HOST_PROJDB_H

#include <cstdint>
#include <vector>

#include "cookie.h"
#include "edit.h"

// Also in a host that is compiled with -fvisibility=hidden.
#pragma GCC visibility push(default)

/// The tables of a database; the library only passes them to a view.
class oledb;

/// One row: the fields of a log in the database. The database owns it; it is valid until the database changes.
class dbrecord {
public:
  /// The text of the column, a number from projdb::findField. Null if the row has no such field. Valid until the
  /// database changes.
  const char* get_field(unsigned short column) const;
  struct Impl;
  Impl* impl;
};

/// The database of the open project.
class projdb {
public:
  /// The criteria of an attribute search: two numbers that select the kinds of logs, and the attributes.
  class SearchCriteria {
  public:
    SearchCriteria(); ///< both numbers 0, no attribute
    /// The library passes codes::shotSearchFirst and codes::shotSearchSecond: every log that is not a reel log.
    int first, second;
    LogAttributes::Map attributes; ///< all of them must match
  };
  /// Called with codes::reelSearchMask and codes::reelSearchMaskOff. Returns exactly the reel logs, in database order.
  /// This order is stable: new logs come at the end.
  CookieVec search(unsigned, unsigned);
  /// The logs that may have these attributes; the case of ASCII letters is ignored. The result may contain near
  /// matches, because the caller compares again. No match may be missing. An empty value finds nothing. Other numbers,
  /// other attributes and criteria without attributes do not occur.
  CookieVec search(const SearchCriteria&);
  dbrecord* operator[](const Cookie&); ///< null if the Cookie has no row
  /// The column of a field, such as "Type", for get_field. If the name is unknown: a number for which get_field
  /// returns null.
  unsigned short findField(const char* name) const;
  oledb* database(); ///< for views; never null
  struct Impl;
  Impl* impl;
};

/// The shared body of a view.
class ODBViewRep : public Zr::InternalRefCount {
public:
  explicit ODBViewRep(oledb*); ///< shows nothing; the database is borrowed
  ~ODBViewRep() override;      ///< invalidates every text that cellText has returned
  /// Shows the rows of these logs from @p position on and replaces all rows from there. Logs without a row are skipped.
  /// Called with 0.
  void displayRecordsAt(const std::vector<Cookie>&, int position);
  int numRows() const;
  /// The text of the column with this name, such as "Reel Type". Null if there is no such row or column. Valid while
  /// the view shows the row, even if the log changes.
  const char* cellText(int row, const char* column) const;

private:
  struct Impl;
  Impl* impl_;
};

/// A view of some rows of the database.
class ODBView {
public:
  explicit ODBView(ODBViewRep*); ///< shares the body, which must not be null
  ~ODBView();
  ODBViewRep* operator->() const;

private:
  Zr::Ptr<ODBViewRep> rep_;
};

/// The logs of the current project, and its options.
class EditManager {
public:
  static projdb* getProjdb();                 ///< null if no database is open; callers must not keep it
  static void updateProjdbRec(const Cookie&); ///< writes a changed log's fields to its row; an unknown log is ignored
  /// Creates an empty log and holds it open; its Edit is null if that fails. Called with Cookie().
  static EditModifier makeNewEdit(const Cookie&);
  /// The current project's options. Without a project, an empty block each time: what was set in it is gone at the next
  /// call.
  static configb& ProjOpts();
};

/// The current project. A project has the same Cookie each time it is opened. Invalid without a project.
Cookie get_project_cookie();

/// The file name of a log, unique among logs; empty for an unknown log. Called with Cookie() as second argument.
LightweightString<wchar_t> getFilenameForCookie(const Cookie&, Cookie);

#pragma GCC visibility pop

#endif

// SPDX-License-Identifier: Apache-2.0
//
// The project database: its rows, its searches, its views. Main thread only.
#ifndef REELDB_HOST_PROJDB_H
#define REELDB_HOST_PROJDB_H

#include <cstdint>
#include <vector>

#include "cookie.h"
#include "edit.h"

class oledb;

/// One row: the fields of a log as the database holds them.
class dbrecord {
public:
  const char* get_field(unsigned short column) const; ///< null when the row has no such field
  struct Impl;
  Impl* impl;
};

class projdb {
public:
  /// What an attribute search asks for: two numbers that select the kinds of logs, and the attributes.
  class SearchCriteria {
  public:
    SearchCriteria();
    int first, second;
    LogAttributes::Map attributes;
  };
  /// Called as (0x10040, 0xFFFEEF9F): exactly the reel logs, in the order of the database.
  CookieVec search(unsigned, unsigned);
  /// The logs that may have these attributes; near matches are allowed, the caller compares again.
  CookieVec search(const SearchCriteria&);
  dbrecord* operator[](const Cookie&);              ///< null when the Cookie has no row
  unsigned short findField(const char* name) const; ///< the column of a field, such as "Type"
  oledb* database();                                ///< for views
  struct Impl;
  Impl* impl;
};

class ODBViewRep : public Zr::InternalRefCount {
public:
  explicit ODBViewRep(oledb*);
  ~ODBViewRep() override;
  void displayRecordsAt(const std::vector<Cookie>&, int position);
  int numRows() const;
  const char* cellText(int row, const char* column) const; ///< the text or null; valid while the view shows the row

private:
  struct Impl;
  Impl* impl_;
};

/// A view on some rows of the database.
class ODBView {
public:
  explicit ODBView(ODBViewRep*);
  ~ODBView();
  ODBViewRep* operator->() const;

private:
  Zr::Ptr<ODBViewRep> rep_;
};

class EditManager {
public:
  static projdb* getProjdb();                     ///< null when no database is open
  static void updateProjdbRec(const Cookie&);     ///< writes a changed log's fields to its row
  static EditModifier makeNewEdit(const Cookie&); ///< called with Cookie(): a new, empty log, held open
  static configb& ProjOpts();                     ///< the options of the current project
};

/// The current project; invalid when there is none.
Cookie get_project_cookie();

/// The file name of a log; called with a default Cookie as second argument.
LightweightString<wchar_t> getFilenameForCookie(const Cookie&, Cookie);

#endif

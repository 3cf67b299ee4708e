// SPDX-License-Identifier: Apache-2.0
//
// An import without reeldb, for comparison: reads "reel<TAB>clip" lines and stores the shots and their reels in an
// SQLite file, in one transaction, with an index that ignores case. by_hand_import LIST DATABASE
#include <sqlite3.h>

#include <cstdio>
#include <fstream>
#include <string>

namespace {

void check(int status, sqlite3* db)
{
  if (status != SQLITE_OK && status != SQLITE_DONE && status != SQLITE_ROW) {
    std::fprintf(stderr, "by_hand_import: %s\n", sqlite3_errmsg(db));
    std::exit(1);
  }
}

} // namespace

int main(int argc, char** argv)
{
  if (argc != 3)
    return std::fprintf(stderr, "usage: by_hand_import LIST DATABASE\n"), 2;
  sqlite3* db = nullptr;
  check(sqlite3_open(argv[2], &db), db);
  check(sqlite3_exec(db,
                     "PRAGMA journal_mode=WAL; PRAGMA synchronous=FULL;"
                     "CREATE TABLE reels(id INTEGER PRIMARY KEY, reel TEXT NOT NULL, available INTEGER, type TEXT);"
                     "CREATE UNIQUE INDEX reels_by_name ON reels(reel COLLATE NOCASE);"
                     "CREATE TABLE shots(id INTEGER PRIMARY KEY, reel TEXT, clip TEXT, source_in TEXT, source_out TEXT,"
                     " tracks TEXT);"
                     "CREATE INDEX shots_by_reel ON shots(reel COLLATE NOCASE);"
                     "BEGIN",
                     nullptr, nullptr, nullptr),
        db);
  sqlite3_stmt* reel = nullptr;
  sqlite3_stmt* shot = nullptr;
  check(
      sqlite3_prepare_v2(db, "INSERT OR IGNORE INTO reels(reel, available, type) VALUES(?, 1, '')", -1, &reel, nullptr),
      db);
  check(sqlite3_prepare_v2(db,
                           "INSERT INTO shots(reel, clip, source_in, source_out, tracks) "
                           "VALUES(?, ?, '01:00:00:00', '01:00:05:00', 'V')",
                           -1, &shot, nullptr),
        db);
  std::ifstream in(argv[1]);
  for (std::string line; std::getline(in, line);) {
    const std::size_t tab = line.find('\t');
    const std::string name = line.substr(0, tab);
    const std::string clip = line.substr(tab + 1);
    for (sqlite3_stmt* statement : {reel, shot}) {
      check(sqlite3_bind_text(statement, 1, name.c_str(), -1, SQLITE_TRANSIENT), db);
      if (statement == shot)
        check(sqlite3_bind_text(statement, 2, clip.c_str(), -1, SQLITE_TRANSIENT), db);
      check(sqlite3_step(statement), db);
      sqlite3_reset(statement);
    }
  }
  sqlite3_finalize(reel);
  sqlite3_finalize(shot);
  check(sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr), db);
  check(sqlite3_close(db), db);
  return 0;
}

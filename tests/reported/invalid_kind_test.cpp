// SPDX-License-Identifier: Apache-2.0
//
// Reported: with a log of kind 'I' in the project, createNewReel of a name that exists returned an empty record, and
// what was written into that record was stored in the log of kind 'I'. Kind 'I' is that of the invalid Cookie, so the
// host found this log when it was asked for none. Since then an invalid Cookie opens nothing, and a store takes such a
// log for damage.
#include <chrono>

#include "support/library_fixture.h"

namespace reeldb_tests {
namespace {

using InvalidKind = LibraryTest;

TEST_F(InvalidKind, RecordOfARefusedCreationWritesIntoNoLog)
{
  reelhost::StoredLog stray;
  stray.number = 1;
  stray.kind = 'I';
  stray.type = codes::reelLog;
  stray.fields = {{"reelid", "STRAY"}};
  reelhost::StoredLog taken = stray;
  taken.number = 2;
  taken.kind = 'R';
  taken.tag = 2;
  taken.fields = {{"reelid", "A001"}};
  reelhost::Changes changes;
  changes.logs = {stray, taken};
  auto store = reelhost::makeMemoryStore({}, {{"reeldb_defaultType", ""}});
  store->begin(reelhost::Access::Write, std::chrono::milliseconds(0));
  store->commit(changes);
  reelhost::openProject(std::move(store), reelhost::Access::Write);
  manager().buildReelList();

  ReelDbRec refused = manager().createNewReel("A001", -1);
  refused.binName("Shelf 4");
  EXPECT_FALSE(manager().doesReelExist(refused.reelId()));
  EXPECT_EQ(text(refused.binName()), "");
  EXPECT_EQ(text(manager().getReelInfo("A001").binName()), "");
  EXPECT_EQ(text(manager().getReelInfo("STRAY").binName()), "");
}

} // namespace
} // namespace reeldb_tests

// SPDX-License-Identifier: Apache-2.0
#include "store/file_error.h"

#include <gtest/gtest.h>

#include "standalone/store/support.h"

namespace {

using namespace reelhost;
using store_tests::errorOf;

TEST(HostError, EachFaultHasItsKindAndTheTextStays)
{
  using base::FileFault;
  const std::pair<FileFault, const char*> kinds[] = {{FileFault::NotFound, "NotFound"},
                                                     {FileFault::Exists, "Refused"},
                                                     {FileFault::NotRegular, "Unreadable"},
                                                     {FileFault::TooLarge, "Unreadable"},
                                                     {FileFault::System, "Io"}};
  for (const auto& [fault, kind] : kinds)
    EXPECT_EQ(errorOf([fault = fault] { throw hostError(base::FileError(fault, "a\nb", "fact", "cause")); }),
              std::string(kind) + ": a\\nb: fact (cause)");
}

TEST(WithHostErrors, FileErrorBecomesAnErrorOfTheHost)
{
  EXPECT_EQ(errorOf([] { withHostErrors([] { throw base::FileError("f", "cannot be read", EIO); }); }),
            "Io: f: cannot be read (Input/output error)");
}

TEST(WithHostErrors, ResultsAndOtherExceptionsPass)
{
  EXPECT_EQ(withHostErrors([] { return 7; }), 7);
  EXPECT_THROW(withHostErrors([] { throw 7; }), int);
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
#include "host_check/stubs.h"

#include <gtest/gtest.h>

#include <stdexcept>

using host_check::stubsFor;

namespace {

bool holds(const std::string& text, const std::string& part)
{
  return text.find(part) != std::string::npos;
}

} // namespace

TEST(Stubs, WhereNothingIsUnmetThereIsNoSource)
{
  EXPECT_EQ(stubsFor({}), "");
}

TEST(Stubs, AnUnmetMemberBringsItsClassAndNoOther)
{
  const std::string stubs = stubsFor({{"_ZN4Edit8setDirtyEb", {}}});
  EXPECT_TRUE(holds(stubs, "#include \"host/edit.h\"")) << stubs;
  EXPECT_TRUE(holds(stubs, "void Edit::setDirty(bool)")) << stubs;
  EXPECT_TRUE(holds(stubs, "bool Edit::isImported() const")) << stubs;
  EXPECT_FALSE(holds(stubs, "EditPtr")) << stubs;
}

TEST(Stubs, AClassWithinAClassIsASubjectOfItsOwn)
{
  const std::string stubs = stubsFor({{"_ZN6projdb14SearchCriteriaC1Ev", {}}});
  EXPECT_TRUE(holds(stubs, "projdb::SearchCriteria::SearchCriteria()")) << stubs;
  EXPECT_FALSE(holds(stubs, "projdb::findField")) << stubs;
}

TEST(Stubs, TypeInformationAndThunksBelongToTheirClass)
{
  for (const char* const symbol : {"_ZTI7iObject", "_ZTv0_n24_N7iObjectD1Ev"})
    EXPECT_TRUE(holds(stubsFor({{symbol, {}}}), "iObject::~iObject()")) << symbol;
}

TEST(Stubs, OperatorsAndTemplatesAreFound)
{
  for (const char* const symbol : {"_ZN17LightweightStringIcEC1Ev", "_ZpLR17LightweightStringIcEi"})
    EXPECT_TRUE(holds(stubsFor({{symbol, {}}}), "template class LightweightString<char>;")) << symbol;
}

TEST(Stubs, ASymbolWithoutAStubIsAnError)
{
  EXPECT_THROW(stubsFor({{"_ZN5Other4thatEv", {}}}), std::logic_error);
}

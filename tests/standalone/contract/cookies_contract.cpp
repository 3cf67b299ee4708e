// SPDX-License-Identifier: Apache-2.0
#include <string>

#include "host/cookie.h"
#include "host_fixture.h"

namespace {

HOST_CONTRACT(Cookies);

Cookie named(const char* text)
{
  return Cookie(text, false);
}

Cookie numbered(unsigned char number)
{
  Zr::UUID uuid;
  uuid.bytes[15] = number;
  return Cookie(uuid, 7, 'E');
}

std::string text(const Cookie& cookie)
{
  return cookie.asString(false).c_str();
}

TEST_P(Cookies, ADefaultOneIsInvalid)
{
  PROMISE("host/cookie.h", "invalid: kind 'I', all other bytes zero");
  EXPECT_FALSE(Cookie().valid());
  EXPECT_EQ(Cookie().kind(), 'I');
}

TEST_P(Cookies, AllInvalidOnesAreEqual)
{
  PROMISE("host/cookie.h", "restores the state of Cookie()");
  Cookie once = numbered(1);
  once.invalidate();
  EXPECT_EQ(once.kind(), 'I');
  EXPECT_EQ(once.compare(Cookie()), 0);
}

TEST_P(Cookies, ThePlaceholderProjectHasAText)
{
  PROMISE("host/cookie.h", "In every host, \"P0001000\" is a text form, too, of kind 'P': the placeholder project, "
                           "whose text form is \"P0001000\" again.");
  const Cookie placeholder = named("P0001000");
  EXPECT_TRUE(placeholder.valid());
  EXPECT_EQ(placeholder.kind(), 'P');
  EXPECT_EQ(text(placeholder), "P0001000");
  EXPECT_EQ(placeholder.compare(named("P0001000")), 0);
  EXPECT_NE(placeholder.compare(named("P0001001")), 0);
}

TEST_P(Cookies, TheTextFormComesBack)
{
  PROMISE("host/cookie.h",
          "The text form: ASCII, starting with the kind. Cookie(text, false) gives this Cookie again.");
  for (const Cookie& cookie : {named("P0001000"), numbered(0), numbered(255)}) {
    EXPECT_EQ(text(cookie)[0], cookie.kind());
    EXPECT_EQ(named(text(cookie).c_str()).compare(cookie), 0) << text(cookie);
  }
}

TEST_P(Cookies, ACookieIsItsUuidItsTagAndItsKind)
{
  PROMISE("host/cookie.h", "0 when equal, else the sign of an order; two invalid Cookies are equal");
  Zr::UUID uuid;
  uuid.bytes[0] = 1;
  const Cookie cookie(uuid, 7, 'E');
  EXPECT_EQ(cookie.compare(Cookie(uuid, 7, 'E')), 0);
  EXPECT_NE(cookie.compare(Cookie(uuid, 8, 'E')), 0);
  EXPECT_NE(cookie.compare(Cookie(uuid, 7, 'P')), 0);
  EXPECT_NE(cookie.compare(Cookie(Zr::UUID(), 7, 'E')), 0);
}

TEST_P(Cookies, AnyOtherTextGivesAnInvalidOne)
{
  PROMISE("host/cookie.h", "Any other text, and null, gives an invalid Cookie.");
  for (const char* const other : {static_cast<const char*>(nullptr), "", "I", "no Cookie", "E{", "Reel A001"})
    EXPECT_FALSE(named(other).valid()) << (other ? other : "null");
}

TEST_P(Cookies, OneOfKindIIsTheInvalidOne)
{
  PROMISE("host/cookie.h", "Kind 'I' gives the same Cookie as Cookie().");
  Zr::UUID uuid;
  uuid.bytes[0] = 1;
  EXPECT_FALSE(Cookie(uuid, 7, 'I').valid());
  EXPECT_EQ(Cookie(uuid, 7, 'I').compare(Cookie()), 0);
}

TEST_P(Cookies, CopiesOfASetShareTheirBody)
{
  PROMISE("host/cookie.h", "Copies share the body, so a change to one copy changes all.");
  CookieSet set;
  const CookieSet copy(set);
  set.insert(numbered(1));
  EXPECT_EQ(copy->count(), 1);
}

TEST_P(Cookies, AnAssignedVectorKeepsItsCookies)
{
  PROMISE("host/cookie.h", "Copies share the storage; a change detaches it first, so no other copy sees it.");
  CookieVec first, second;
  first.add(numbered(1));
  second.add(numbered(2));
  second = first;
  first.clear();
  first.add(numbered(3));
  ASSERT_EQ(second.count(), 1);
  EXPECT_EQ(second[0].compare(numbered(1)), 0);
}

TEST_P(Cookies, AChangeOfOneVectorIsSeenByNoOther)
{
  PROMISE("host/cookie.h", "Copies share the storage; a change detaches it first, so no other copy sees it.");
  CookieVec first;
  first.add(numbered(1));
  first.add(numbered(2));
  CookieVec second(first);
  second.add(numbered(3));
  EXPECT_EQ(first.count(), 2);
  first.add(numbered(4));
  EXPECT_EQ(second[2].compare(numbered(3)), 0);
  first.remove(numbered(1));
  EXPECT_EQ(second[0].compare(numbered(1)), 0);
  EXPECT_EQ(first[0].compare(numbered(2)), 0);
  second.clear();
  EXPECT_TRUE(second.empty());
  EXPECT_EQ(first.count(), 2);
  EXPECT_EQ(first.end() - first.begin(), 2);
}

TEST_P(Cookies, RemovingTakesTheFirstEqualOne)
{
  PROMISE("host/cookie.h", "removes the first equal Cookie, if any");
  CookieVec cookies;
  cookies.add(numbered(1));
  cookies.add(numbered(2));
  cookies.add(numbered(1));
  cookies.remove(numbered(1));
  ASSERT_EQ(cookies.count(), 2);
  EXPECT_EQ(cookies[0].compare(numbered(2)), 0);
  EXPECT_EQ(cookies[1].compare(numbered(1)), 0);
  cookies.remove(numbered(9));
  EXPECT_EQ(cookies.count(), 2);
}

TEST_P(Cookies, AnElementMayBeAddedToItsOwnVector)
{
  PROMISE("host/cookie.h", "at the end; it may be one of this vector");
  CookieVec cookies;
  for (unsigned char i = 0; i < 100; ++i)
    cookies.add(numbered(i));
  for (int i = 0; i < 100; ++i)
    cookies.add(cookies[0]);
  ASSERT_EQ(cookies.count(), 200);
  EXPECT_EQ(cookies[199].compare(numbered(0)), 0);
}

TEST_P(Cookies, ASetHoldsEachOnceInTheOrderTheyCame)
{
  PROMISE("host/cookie.h", "at the end; does nothing if an equal Cookie is there");
  CookieSet set;
  set.insert(numbered(2));
  set.insert(numbered(1));
  set.insert(numbered(2));
  ASSERT_EQ(set->count(), 2);
  EXPECT_EQ((*set)[0].compare(numbered(2)), 0);
  EXPECT_EQ((*set)[1].compare(numbered(1)), 0);
}

TEST_P(Cookies, ADeviceStampIsValidUnlessZero)
{
  PROMISE("host/cookie.h", "whether the value is not 0; the device need not exist");
  EXPECT_FALSE(IdStamp().valid());
  EXPECT_FALSE(IdStamp(0).valid());
  const IdStamp stamp(5);
  EXPECT_TRUE(stamp.valid());
  EXPECT_TRUE(IdStamp(stamp).valid());
  IdStamp assigned;
  assigned = stamp;
  EXPECT_EQ(assigned.value(), 5u);
}

} // namespace

// SPDX-License-Identifier: Apache-2.0
#include "host_check/signature.h"

#include <gtest/gtest.h>

using host_check::demangled;
using host_check::qualifiedName;

TEST(Signature, AMangledNameIsWrittenAsInTheSource)
{
  EXPECT_EQ(demangled("_ZN4Edit8setDirtyEb"), "Edit::setDirty(bool)");
  EXPECT_EQ(demangled("_ZNK7configb2inEPKcRi"), "configb::in(char const*, int&) const");
}

TEST(Signature, WhatIsNotMangledStaysAsItIs)
{
  EXPECT_EQ(demangled("malloc"), "malloc");
  EXPECT_EQ(demangled("_Znonsense"), "_Znonsense");
  EXPECT_EQ(demangled(""), "");
}

TEST(Signature, TheNameIsWhatIsLeftWithoutParametersAndConst)
{
  EXPECT_EQ(qualifiedName("co_pid()"), "co_pid");
  EXPECT_EQ(qualifiedName("Edit::setDirty(bool)"), "Edit::setDirty");
  EXPECT_EQ(qualifiedName("configb::in(char const*, int&) const"), "configb::in");
  EXPECT_EQ(qualifiedName("A::f() const &"), "A::f");
  EXPECT_EQ(qualifiedName("A::f() volatile &&"), "A::f");
}

TEST(Signature, ParametersMayHaveParenthesesOfTheirOwn)
{
  EXPECT_EQ(qualifiedName("f(void (*)(int, char (&)[2]))"), "f");
  EXPECT_EQ(qualifiedName("g<(Kind)3>(int)"), "g<(Kind)3>");
  EXPECT_EQ(qualifiedName("(anonymous namespace)::h(int)"), "(anonymous namespace)::h");
}

TEST(Signature, OperatorsKeepTheirNames)
{
  EXPECT_EQ(qualifiedName("operator>>(ByteStream&, GrowString&)"), "operator>>");
  EXPECT_EQ(qualifiedName("projdb::operator[](Cookie const&)"), "projdb::operator[]");
  EXPECT_EQ(qualifiedName("A::operator()(int)"), "A::operator()");
  EXPECT_EQ(qualifiedName("GrowString::operator char const*() const"), "GrowString::operator char const*");
}

TEST(Signature, ResultThatATemplateNamesIsNotPartOfTheName)
{
  EXPECT_EQ(qualifiedName("LightweightString<char> operator+<char>(LightweightString<char> const&)"),
            "operator+<char>");
  EXPECT_EQ(qualifiedName("std::map<int, long> make<int, long>(int)"), "make<int, long>");
}

TEST(Signature, AnythingButAFunctionIsAllName)
{
  EXPECT_EQ(qualifiedName("typeinfo for ArrayRec"), "typeinfo for ArrayRec");
  EXPECT_EQ(qualifiedName("glib_pid"), "glib_pid");
}

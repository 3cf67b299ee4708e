// SPDX-License-Identifier: Apache-2.0
#include "host_check/report.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

using host_check::asJson;
using host_check::asList;
using host_check::asText;
using host_check::Report;

namespace {

Report withUnmet()
{
  Report report;
  report.library = "lib/libreeldb.so.14";
  report.hosts = {"libh.so"};
  report.asked = 10;
  report.unmet = {{"_Z6co_pidv", {}}, {"_ZNK4Edit10isImportedEv", {"_ZN4Edit10isImportedEv"}}};
  report.notLookedAt = {"libh.so needs libv.so"};
  return report;
}

} // namespace

TEST(Report, WhereNothingIsUnmetItIsOneLine)
{
  Report report;
  report.library = "libreeldb.so.14";
  report.asked = 203;
  report.notLookedAt = {"libh.so needs libv.so"}; // of no interest when all is there
  EXPECT_EQ(asText(report), "libreeldb.so.14: all 203 symbols that it needs from a host are there\n");
}

TEST(Report, WhatIsMissingComesBeforeWhatIsDifferent)
{
  EXPECT_EQ(asText(withUnmet()), "lib/libreeldb.so.14: needs 10 symbols from a host, and 2 of them are not there\n"
                                 "missing:\n"
                                 "  co_pid()\n"
                                 "found only with other parameters:\n"
                                 "  Edit::isImported() const\n"
                                 "      found: Edit::isImported()\n"
                                 "not checked: libh.so needs libv.so (name it, too, if it is a part of the host)\n");
}

TEST(Report, AListIsWhatIsUnmetLineByLine)
{
  EXPECT_EQ(asList(withUnmet()), "co_pid()\nEdit::isImported() const\n");
}

TEST(Report, OneIsOne)
{
  Report report = withUnmet();
  report.unmet.pop_back();
  EXPECT_EQ(asText(report).substr(0, 76),
            "lib/libreeldb.so.14: needs 10 symbols from a host, and 1 of them is not there\n");
}

TEST(Report, SymbolsThatReadAlikeAreShownBesideTheirSignature)
{
  Report report = withUnmet();
  report.unmet = {{"_ZN6CookieC2Ev", {"_ZN6CookieC1Ev"}}};
  EXPECT_NE(asText(report).find("  Cookie::Cookie() [_ZN6CookieC2Ev]\n"
                                "      found: Cookie::Cookie() [_ZN6CookieC1Ev]\n"),
            std::string::npos);
}

TEST(Report, AsJsonItHoldsTheSame)
{
  const auto json = nlohmann::json::parse(asJson(withUnmet()));
  EXPECT_EQ(json["library"], "lib/libreeldb.so.14");
  EXPECT_EQ(json["hosts"], nlohmann::json({"libh.so"}));
  EXPECT_EQ(json["asked"], 10);
  ASSERT_EQ(json["unmet"].size(), 2u);
  EXPECT_EQ(json["unmet"][0]["symbol"], "_Z6co_pidv");
  EXPECT_EQ(json["unmet"][0]["signature"], "co_pid()");
  EXPECT_EQ(json["unmet"][0]["others"], nlohmann::json::array());
  EXPECT_EQ(json["unmet"][1]["others"][0]["signature"], "Edit::isImported()");
  EXPECT_EQ(json["notLookedAt"], nlohmann::json({"libh.so needs libv.so"}));
}

TEST(Report, PathThatIsNotUtf8DoesNotSpoilTheJson)
{
  Report report = withUnmet();
  report.hosts = {"lib\xFF.so"};
  EXPECT_EQ(nlohmann::json::parse(asJson(report))["hosts"][0], "lib\uFFFD.so");
}

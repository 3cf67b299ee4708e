// SPDX-License-Identifier: Apache-2.0
#include "host_check/dynamic_symbols.h"
#include "host_check/signature.h"

#include <gtest/gtest.h>

#include <elf.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "support/temp_folder.h"

namespace fs = std::filesystem;
using host_check::DynamicSymbols;
using host_check::readDynamicSymbols;

namespace {

std::string bytesOf(const fs::path& file)
{
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class DynamicSymbolsTest : public ::testing::Test {
protected:
  fs::path write(const std::string& bytes) const { return folder_.write("lib.so", bytes); }

  /// What is wrong with a file of these bytes, without its name; empty when it is read.
  std::string refusal(const std::string& bytes) const
  {
    const fs::path file = write(bytes);
    try {
      readDynamicSymbols(file);
    } catch (const std::runtime_error& e) {
      const std::string text = e.what();
      EXPECT_EQ(text.rfind(file.string() + ": ", 0), 0u) << text;
      return text.substr(file.string().size() + 2);
    }
    return {};
  }

  const reeldb_tests::TempFolder folder_;
};

/// Where the table of sections begins: all that is read lies before it or in it.
std::size_t sectionsIn(const std::string& library)
{
  Elf64_Ehdr header;
  std::memcpy(&header, library.data(), sizeof header);
  return header.e_shoff;
}

bool holds(const std::vector<std::string>& list, const std::string& begin)
{
  return std::any_of(list.begin(), list.end(), [&](const std::string& text) { return text.rfind(begin, 0) == 0; });
}

} // namespace

TEST_F(DynamicSymbolsTest, OfTheReelDatabaseAreItsImportsFromAHostAndItsExports)
{
  const DynamicSymbols symbols = readDynamicSymbols(REELDB_LIBRARY);
  EXPECT_EQ(symbols.asked.count("_Z6co_pidv"), 1u);
  EXPECT_EQ(symbols.asked.count("_ZTI8ArrayRec"), 1u);
  EXPECT_EQ(symbols.asked.count("glib_pid"), 0u); // its own
  EXPECT_EQ(symbols.asked.count("strlen"), 0u);   // the runtime's
  EXPECT_EQ(symbols.offered.count("glib_pid"), 1u);
  EXPECT_EQ(symbols.offered.count("_Znwm"), 1u);
  EXPECT_EQ(symbols.offered.count("_Z6co_pidv"), 0u);
  EXPECT_TRUE(holds(symbols.libraries, "libstdc++.so"));
}

TEST_F(DynamicSymbolsTest, AllThatIsAskedIsCppAndNoneOfItAllocates)
{
  for (const std::string& symbol : readDynamicSymbols(REELDB_LIBRARY).asked) {
    EXPECT_EQ(symbol.substr(0, 2), "_Z") << symbol;
    EXPECT_EQ(host_check::demangled(symbol).find("operator delete"), std::string::npos) << symbol;
  }
}

TEST_F(DynamicSymbolsTest, AProgramHasThemToo)
{
  EXPECT_TRUE(holds(readDynamicSymbols("/proc/self/exe").libraries, "libc.so"));
}

TEST_F(DynamicSymbolsTest, AnythingButALibraryIsRefused)
{
  EXPECT_EQ(refusal(""), "is not a shared library");
  EXPECT_EQ(refusal("!<arch>\n" + std::string(100, ' ')), "is not a shared library");
  EXPECT_EQ(refusal(std::string(100, '\0')), "is not a shared library");
  EXPECT_EQ(refusal(ELFMAG), "is not a shared library");
  EXPECT_THROW(readDynamicSymbols(folder_.path()), std::runtime_error);
  EXPECT_THROW(readDynamicSymbols(folder_ / "gone"), std::runtime_error);
}

TEST_F(DynamicSymbolsTest, ALibraryOfAnotherMachineIsRefused)
{
  std::string bytes = bytesOf(BROKEN_HOST);
  bytes[EI_CLASS] = bytes[EI_CLASS] == ELFCLASS64 ? ELFCLASS32 : ELFCLASS64;
  EXPECT_EQ(refusal(bytes), "is a library for another kind of machine");
}

TEST_F(DynamicSymbolsTest, AnObjectFileIsRefused)
{
  std::string bytes = bytesOf(BROKEN_HOST);
  bytes[offsetof(Elf64_Ehdr, e_type)] = ET_REL;
  EXPECT_EQ(refusal(bytes), "is neither a shared library nor a program (an object file or a core)");
}

// Whatever is left of a file: it is read or refused, and nothing beyond its end is touched.
TEST_F(DynamicSymbolsTest, ALibraryThatIsCutOffAnywhereIsRefused)
{
  const std::string whole = bytesOf(BROKEN_HOST);
  ASSERT_GT(whole.size(), 4096u);
  EXPECT_EQ(refusal(whole), "");
  for (std::size_t length = 64; length < whole.size(); length += whole.size() / 200) {
    const std::string why = refusal(whole.substr(0, length));
    EXPECT_TRUE(length > sectionsIn(whole) || why.rfind("is cut off", 0) == 0) << length << ": " << why;
  }
}

TEST_F(DynamicSymbolsTest, ALibraryWithWrongBytesIsReadOrRefused)
{
  const std::string whole = bytesOf(BROKEN_HOST);
  int refused = 0;
  const auto spoil = [&](std::size_t from, std::size_t to, std::size_t step) {
    for (std::size_t i = from; i < to; i += step) {
      std::string bytes = whole;
      bytes[i] = static_cast<char>(~bytes[i]);
      refused += !refusal(bytes).empty();
    }
  };
  spoil(0, sizeof(Elf64_Ehdr), 1);
  spoil(sectionsIn(whole), whole.size(), 3);
  EXPECT_GT(refused, 20);
}

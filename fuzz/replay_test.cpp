// SPDX-License-Identifier: Apache-2.0
//
// Gives a fuzz target all of its kept inputs: the corpus from which a fuzzer starts, and the findings of fuzzers. It
// needs no fuzzer, so every build of the tests contains it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> filesIn(const fs::path& folder)
{
  std::vector<fs::path> files;
  if (fs::exists(folder))
    std::copy(fs::directory_iterator(folder), fs::directory_iterator(), std::back_inserter(files));
  std::sort(files.begin(), files.end());
  return files;
}

void replay(const std::vector<fs::path>& files)
{
  for (const fs::path& file : files) {
    std::cout << file.native() << std::endl; // shows the input if the target ends the process
    std::ifstream in(file, std::ios::binary);
    ASSERT_TRUE(in) << file << ": cannot be opened";
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    // A buffer of the exact size, so that a sanitizer detects reads behind its end.
    const std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
    try {
      EXPECT_EQ(LLVMFuzzerTestOneInput(data.data(), data.size()), 0) << file;
    } catch (const std::exception& broken) {
      ADD_FAILURE() << file << ":\n" << broken.what();
    }
  }
}

TEST(Replay, CorpusHolds)
{
  const std::vector<fs::path> files = filesIn(fs::path(FUZZ_FOLDER) / "corpus" / FUZZ_TARGET);
  ASSERT_FALSE(files.empty()) << "no corpus: fuzz/corpus/" << FUZZ_TARGET;
  replay(files);
}

TEST(Replay, PackedCorpusHolds)
{
  const std::vector<fs::path> files = filesIn(fs::path(FUZZ_UNPACKED) / FUZZ_TARGET);
  ASSERT_FALSE(files.empty()) << "no inputs: fuzz/corpus/" << FUZZ_TARGET
                              << ".tar.gz (scripts/pack_corpus.sh makes it)";
  replay(files);
}

TEST(Replay, WhatWasFoundIsFoundNoMore)
{
  replay(filesIn(fs::path(FUZZ_FOLDER) / "findings" / FUZZ_TARGET));
}

TEST(Replay, NothingAtAllHolds)
{
  EXPECT_EQ(LLVMFuzzerTestOneInput(nullptr, 0), 0);
}

} // namespace

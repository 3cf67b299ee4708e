// SPDX-License-Identifier: Apache-2.0
//
// What the cases of the host contract quote: every case names a sentence, and the sentence stands where it says.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

std::string read(const fs::path& file)
{
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

/// The words of a text, with one blank between them: without the signs of comments and the ends of lines.
std::string words(const std::string& text)
{
  return std::regex_replace(std::regex_replace(text, std::regex("///<?"), " "), std::regex("\\s+"), " ");
}

/// The value of adjacent string literals.
std::string valueOf(const std::string& literals)
{
  std::string value;
  bool inside = false;
  for (std::size_t i = 0; i < literals.size(); ++i)
    if (literals[i] == '"')
      inside = !inside;
    else if (inside)
      value += literals[i] == '\\' ? literals[++i] : literals[i];
  return value;
}

std::vector<fs::path> contractSources()
{
  std::vector<fs::path> sources;
  for (const auto& entry : fs::directory_iterator(CONTRACT_SOURCES))
    if (entry.path().filename().string().ends_with("_contract.cpp"))
      sources.push_back(entry.path());
  std::sort(sources.begin(), sources.end());
  return sources;
}

TEST(Promises, EveryCaseQuotesASentence)
{
  int cases = 0;
  for (const fs::path& source : contractSources()) {
    const std::string text = read(source);
    const std::regex opening("\nTEST_P\\((\\w+, \\w+)\\)\n\\{\n  (\\w+)");
    for (std::sregex_iterator found(text.begin(), text.end(), opening), end; found != end; ++found) {
      EXPECT_EQ((*found)[2], "PROMISE") << source.filename() << ": " << (*found)[1];
      ++cases;
    }
  }
  EXPECT_GT(cases, 100);
}

TEST(Promises, EverySentenceStandsWhereTheCaseSays)
{
  std::map<std::string, std::string> texts;
  const std::string literals = "((?:\"(?:[^\"\\\\]|\\\\.)*\"\\s*)+)";
  const std::regex promise("PROMISE\\(\\s*\"([^\"]+)\",\\s*" + literals + "\\)");
  int quoted = 0;
  std::vector<fs::path> sources = contractSources();
  sources.push_back(fs::path(CONTRACT_SOURCES) / "host_fixture.cpp");
  for (const fs::path& source : sources) {
    const std::string text = read(source);
    for (std::sregex_iterator found(text.begin(), text.end(), promise), end; found != end; ++found) {
      const std::string file = (*found)[1], sentence = valueOf((*found)[2]);
      if (texts.count(file) == 0)
        texts[file] = words(read(fs::path(PROJECT_FOLDER) / (file.starts_with("docs/") ? "" : "include") / file));
      EXPECT_NE(texts[file].find(sentence), std::string::npos)
          << source.filename() << " quotes " << file << ": \"" << sentence << "\", which is not there";
      ++quoted;
    }
  }
  EXPECT_GT(quoted, 100);
}

} // namespace

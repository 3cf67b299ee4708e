// SPDX-License-Identifier: Apache-2.0
//
// Tries what the documents say. Console blocks are typed, each document's in a folder of its own that holds the
// examples: a line that starts with "$ " is typed; what follows up to the next such line is expected. C++ blocks are
// compiled: as they are when they begin with an include, else as the body of a function. Links between documents lead
// somewhere.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/temp_folder.h"

namespace {

namespace fs = std::filesystem;

struct Step {
  int line;
  std::string command;
  std::string expected;
};

std::vector<Step> stepsOf(const fs::path& document)
{
  std::vector<Step> steps;
  std::ifstream in(document);
  EXPECT_TRUE(in) << document;
  bool inBlock = false;
  int number = 0;
  for (std::string line; std::getline(in, line);) {
    ++number;
    if (line.rfind("```", 0) == 0)
      inBlock = !inBlock && line == "```console";
    else if (inBlock && line.rfind("$ ", 0) == 0)
      steps.push_back({number, line.substr(2), {}});
    else if (inBlock && !steps.empty())
      steps.back().expected += line + "\n";
  }
  return steps;
}

std::string outputOf(const std::string& command, const fs::path& folder)
{
  const std::string shell = "cd '" + folder.string() + "' && PATH='" REELDB_BIN_DIR "':$PATH && export PATH && " +
                            "export COLUMNS=100 NO_COLOR=1 && unset REELDB_FACILITY; { " + command + "; } 2>&1";
  std::string output;
  std::FILE* const pipe = popen(shell.c_str(), "r");
  if (!pipe)
    return "popen failed";
  std::array<char, 4096> buffer;
  while (const std::size_t n = std::fread(buffer.data(), 1, buffer.size(), pipe))
    output.append(buffer.data(), n);
  pclose(pipe);
  return output;
}

/// Every document of the project, by its path below the source folder.
std::vector<std::string> documents()
{
  const fs::path root = REELDB_SOURCE_DIR;
  std::set<std::string> found;
  for (const fs::directory_entry& entry : fs::directory_iterator(root))
    if (entry.path().extension() == ".md")
      found.insert(entry.path().filename().string());
  for (const char* const folder : {"docs", "examples"})
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root / folder))
      if (entry.path().extension() == ".md")
        found.insert(fs::relative(entry.path(), root).string());
  return {found.begin(), found.end()};
}

std::string textOf(const fs::path& file)
{
  std::ifstream in(file);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

/// The blocks of a language, without their fences.
std::vector<std::string> blocksOf(const fs::path& document, const std::string& language)
{
  std::vector<std::string> blocks;
  std::istringstream in(textOf(document));
  bool inBlock = false, wanted = false;
  for (std::string line; std::getline(in, line);) {
    if (line.rfind("```", 0) == 0) {
      inBlock = !inBlock;
      wanted = inBlock && line == "```" + language;
      if (wanted)
        blocks.emplace_back();
    } else if (wanted) {
      blocks.back() += line + "\n";
    }
  }
  return blocks;
}

/// A program whose one function has this body; the body's includes come before it.
std::string wrapped(const std::string& block)
{
  std::string includes = "#include \"ReelDbManager.h\"\n#include \"reelhost/host.h\"\n", body;
  std::istringstream in(block);
  for (std::string line; std::getline(in, line);)
    (line.rfind("#include", 0) == 0 ? includes : body) += line + "\n";
  return includes + "void example()\n{\n" + body + "}\n";
}

/// What a link to a heading is made of: its words in lower case, joined by hyphens.
std::string anchorOf(const std::string& heading)
{
  std::string anchor;
  for (const char c : heading)
    if (std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_')
      anchor += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    else if (c == ' ')
      anchor += '-';
  return anchor;
}

bool hasAnchor(const fs::path& document, const std::string& anchor)
{
  std::istringstream in(textOf(document));
  for (std::string line; std::getline(in, line);) {
    const std::size_t text = line.find_first_not_of('#');
    if (text != 0 && text != std::string::npos && line[text] == ' ' && anchorOf(line.substr(text + 1)) == anchor)
      return true;
  }
  return false;
}

class Document : public ::testing::TestWithParam<std::string> {
protected:
  Document() { fs::copy(fs::path(REELDB_SOURCE_DIR) / "examples", folder_ / "examples", fs::copy_options::recursive); }
  const fs::path document_ = fs::path(REELDB_SOURCE_DIR) / GetParam();
  const reeldb_tests::TempFolder folder_;
};

TEST_P(Document, ConsoleBlocksPrintWhatTheySay)
{
  for (const Step& step : stepsOf(document_))
    EXPECT_EQ(outputOf(step.command, folder_.path()), step.expected)
        << GetParam() << ":" << step.line << ": $ " << step.command;
}

TEST_P(Document, CppBlocksCompile)
{
  for (const std::string& block : blocksOf(document_, "cpp")) {
    const std::string source = block.find("int main(") == std::string::npos ? wrapped(block) : block;
    folder_.write("block.cpp", source);
    EXPECT_EQ(outputOf(REELDB_COMPILE " block.cpp", folder_.path()), "") << GetParam() << ":\n" << source;
  }
}

TEST_P(Document, LinksLeadSomewhere)
{
  const std::string text = textOf(document_);
  const std::regex link(R"(\]\(([^)\s]+)\))");
  for (auto it = std::sregex_iterator(text.begin(), text.end(), link); it != std::sregex_iterator(); ++it) {
    const std::string target = (*it)[1];
    if (target.find("://") != std::string::npos)
      continue; // not ours
    const std::size_t hash = target.find('#');
    const std::string path = target.substr(0, hash);
    const fs::path file = path.empty() ? document_ : document_.parent_path() / path;
    EXPECT_TRUE(fs::exists(file)) << GetParam() << ": " << target;
    if (hash != std::string::npos && fs::exists(file)) {
      EXPECT_TRUE(hasAnchor(file, target.substr(hash + 1))) << GetParam() << ": " << target;
    }
  }
}

std::string nameOf(const ::testing::TestParamInfo<std::string>& info)
{
  return std::regex_replace(info.param, std::regex("[^A-Za-z0-9]"), "_");
}

INSTANTIATE_TEST_SUITE_P(All, Document, ::testing::ValuesIn(documents()), nameOf);

TEST(Documents, TheReadmeIsTyped)
{
  EXPECT_GT(stepsOf(fs::path(REELDB_SOURCE_DIR) / "README.md").size(), 5u);
}

} // namespace

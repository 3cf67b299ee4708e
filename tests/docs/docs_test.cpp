// SPDX-License-Identifier: Apache-2.0
//
// Types the console blocks of the documents, each document in a folder of its own that holds the examples, and compares
// what comes out. In a block, a line that starts with "$ " is typed; what follows up to the next such line is expected.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

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

class Document : public ::testing::TestWithParam<const char*> {
protected:
  Document()
  {
    std::string pattern = (fs::temp_directory_path() / "reeldb-docs-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
    fs::copy(fs::path(REELDB_SOURCE_DIR) / "examples", folder_ / "examples", fs::copy_options::recursive);
  }
  ~Document() override { fs::remove_all(folder_); }
  fs::path folder_;
};

TEST_P(Document, ConsoleBlocksPrintWhatTheySay)
{
  const fs::path document = fs::path(REELDB_SOURCE_DIR) / GetParam();
  const std::vector<Step> steps = stepsOf(document);
  ASSERT_FALSE(steps.empty()) << document << " has no console block";
  for (const Step& step : steps)
    EXPECT_EQ(outputOf(step.command, folder_), step.expected)
        << GetParam() << ":" << step.line << ": $ " << step.command;
}

INSTANTIATE_TEST_SUITE_P(All, Document, ::testing::Values("README.md"));

} // namespace

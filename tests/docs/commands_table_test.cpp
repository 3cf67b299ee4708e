// SPDX-License-Identifier: Apache-2.0
//
// docs/commands.md is made from the sources: for each command of --help the file that parses and prints, and the
// operations that it calls. The test makes the table again and compares; with REELDB_RENEW=1 it writes it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

std::string fileText(const fs::path& path)
{
  std::ifstream in(path);
  EXPECT_TRUE(in) << path;
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string helpOf(const std::string& words)
{
  const std::string line = std::string(REELDB_BIN_DIR "/reeldb ") + words + " --help";
  std::string text;
  if (std::FILE* const pipe = popen(line.c_str(), "r")) {
    char buffer[4096];
    for (std::size_t got = 0; (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
      text.append(buffer, got);
    EXPECT_EQ(pclose(pipe), 0) << line;
  }
  return text;
}

/// The commands of --help, with the verbs of a noun in place of the noun: "import", "project new".
std::vector<std::string> commands(const std::string& noun = {})
{
  std::vector<std::string> result;
  std::istringstream help(helpOf(noun));
  bool listed = false;
  for (std::string line; std::getline(help, line);) {
    if (listed && line.rfind("  ", 0) != 0)
      break;
    if (listed) {
      const std::string name = line.substr(2, line.find(' ', 2) - 2);
      if (name.empty())
        continue;
      const std::string words = noun.empty() ? name : noun + " " + name;
      const std::vector<std::string> verbs = noun.empty() ? commands(name) : std::vector<std::string>();
      if (verbs.empty())
        result.push_back(words);
      result.insert(result.end(), verbs.begin(), verbs.end());
    }
    listed = listed || line == "Commands:";
  }
  return result;
}

/// Names of functions that headers of app/ declare, but for those that only turn a result into text.
std::map<std::string, std::string> operations()
{
  std::map<std::string, std::string> found;
  const std::regex declared(R"(\n\w[\w:<>, ]*[&*>\w] (\w+)\([^;]*?\);)");
  const std::regex worker(R"(\nclass (\w+) \{[^}]*?\n  \1\(Session&)"); // an operation that goes on
  for (const auto& entry : fs::directory_iterator(fs::path(REELDB_SOURCE_DIR) / "app")) {
    if (entry.path().extension() != ".h")
      continue;
    const std::string text = fileText(entry.path());
    for (std::sregex_iterator at(text.begin(), text.end(), declared), end; at != end; ++at)
      found[(*at)[1]] = "app/" + entry.path().filename().string();
    for (std::sregex_iterator at(text.begin(), text.end(), worker), end; at != end; ++at)
      found[(*at)[1]] = "app/" + entry.path().filename().string();
  }
  return found;
}

/// The functions of a source by name, each with its text.
std::map<std::string, std::string> functionsOf(const std::string& source)
{
  std::map<std::string, std::string> found;
  const std::regex head(R"(\n(?:\[\[noreturn\]\] )?[\w:<>&*, ]+[ &*](\w+)\([^;{}]*\)\n\{\n)");
  for (std::sregex_iterator at(source.begin(), source.end(), head), end; at != end; ++at) {
    const auto begin = static_cast<std::size_t>(at->position());
    found[(*at)[1]] += source.substr(begin, source.find("\n}\n", begin) - begin);
  }
  return found;
}

/// The operations that the function calls, also by way of other functions of the same source.
void gather(const std::string& name, const std::map<std::string, std::string>& functions,
            const std::map<std::string, std::string>& known, std::set<std::string>& seen, std::set<std::string>& calls)
{
  const auto function = functions.find(name);
  if (function == functions.end() || !seen.insert(name).second)
    return;
  const std::string& text = function->second;
  const std::regex call(R"((app::)?\b(\w+)(?: \w+)?\()");
  for (std::sregex_iterator at(text.begin(), text.end(), call), end; at != end; ++at) {
    const std::string called = (*at)[2];
    if ((*at)[1].matched && known.count(called) != 0)
      calls.insert(called);
    else if (!(*at)[1].matched)
      gather(called, functions, known, seen, calls);
  }
}

/// The function that carries the command out: the one that its registration hands over.
std::string handlerOf(const std::string& source, const std::string& verb)
{
  const std::size_t named = source.find(".name = \"" + verb + "\"");
  if (named == std::string::npos)
    return {};
  const std::string rest = source.substr(named);
  const std::regex handler(R"(return (\w+)\(\*|\},\n? *(\w+)\);)");
  std::smatch found;
  if (!std::regex_search(rest, found, handler))
    return {};
  return found[1].matched ? found[1] : found[2];
}

std::string table()
{
  std::string text =
      "# Commands and operations\n\n"
      "Every command is a front end of operations in `app/`. Other programs can call the same operations. A test "
      "makes this table\nfrom `reeldb --help` and the sources, and says how to renew it.\n\n"
      "| command | parses and prints | operations |\n|---|---|---|\n";
  const std::map<std::string, std::string> known = operations();
  for (const std::string& words : commands()) {
    std::string file = words.substr(0, words.find(' '));
    std::replace(file.begin(), file.end(), '-', '_');
    const std::string path = "cli/commands/" + file + ".cpp";
    if (words == "help") { // the command line's own
      text += "| `reeldb help` | `cli/line/command_line.cpp` | none: it shows what `--help` shows |\n";
      continue;
    }
    const std::string source = fileText(fs::path(REELDB_SOURCE_DIR) / path);
    const std::size_t space = words.rfind(' ');
    const std::string handler = handlerOf(source, space == std::string::npos ? words : words.substr(space + 1));
    EXPECT_NE(handler, "") << words << ": no function is handed over in " << path;
    std::set<std::string> seen, calls;
    gather(handler, functionsOf(source), known, seen, calls);
    EXPECT_FALSE(calls.empty()) << words << ": calls no operation of app/";
    std::string list;
    for (const std::string& call : calls)
      list += (list.empty() ? "`" : ", `") + call + "` (" + known.at(call) + ")";
    text += "| `reeldb " + words + "` | `" + path + "` | " + list + " |\n";
  }
  return text;
}

TEST(CommandsTable, IsWhatTheSourcesSay)
{
  const fs::path file = fs::path(REELDB_SOURCE_DIR) / "docs/commands.md";
  const std::string made = table();
  if (std::getenv("REELDB_RENEW"))
    std::ofstream(file) << made;
  EXPECT_EQ(fileText(file), made) << "renew it: REELDB_RENEW=1 build/release/bin/docs_test "
                                     "--gtest_filter='CommandsTable.*'";
}

} // namespace

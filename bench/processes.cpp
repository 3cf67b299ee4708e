// SPDX-License-Identifier: Apache-2.0
#include "processes.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "support/temp_folder.h"

namespace reeldb_bench {

using reeldb_tests::TempFolder;

void run(const std::string& command, int status)
{
  const int ended = std::system((command + " >/dev/null 2>&1").c_str());
  if (!WIFEXITED(ended) || WEXITSTATUS(ended) != status)
    throw std::runtime_error(command + ": failed (exit status " + std::to_string(WEXITSTATUS(ended)) + ")");
}

std::string outputOf(const std::string& command)
{
  const TempFolder folder;
  const std::string file = folder / "out";
  const int ended = std::system((command + " >" + file).c_str());
  if (!WIFEXITED(ended) || WEXITSTATUS(ended) != 0)
    throw std::runtime_error(command + ": failed");
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

namespace {

double countedInstructions(const std::string& command, const std::string& options)
{
  const TempFolder folder;
  const std::string out = folder / "callgrind.out";
  run("GLIBC_TUNABLES=glibc.cpu.hwcaps=-AVX2,-AVX,-SSE4_2 valgrind --tool=callgrind " + options +
      " --callgrind-out-file='" + out + "' " + command);
  std::ifstream in(out);
  for (std::string line; std::getline(in, line);)
    if (line.rfind("totals: ", 0) == 0)
      return std::stod(line.substr(8));
  throw std::runtime_error(command + ": callgrind wrote no totals");
}

} // namespace

double instructionsOf(const std::string& command)
{
  return countedInstructions(command, "--collect-atstart=no");
}

double instructionsOfProcess(const std::string& command)
{
  return countedInstructions(command, "");
}

} // namespace reeldb_bench

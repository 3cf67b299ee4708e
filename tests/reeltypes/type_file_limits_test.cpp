// SPDX-License-Identifier: Apache-2.0
//
// The standalone host refuses the type files that would end the process in the library's reader, and no others.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "ReelTypeManager.h"
#include "reelhost/facility.h"
#include "support/library_fixture.h"
#include "support/temp_folder.h"

namespace reeldb_tests {
namespace {

class TypeFileLimits : public LibraryTest {
protected:
  TypeFileLimits() { facility_.write("facility.toml", ""); }

  bool isRefused(const std::string& bytes)
  {
    file_ = facility_.write("devicedata/reeltype.dat", bytes);
    try {
      reelhost::Facility::read(facility_.path());
    } catch (const reelhost::Error& error) {
      EXPECT_EQ(error.kind(), reelhost::ErrorKind::Unreadable) << error.what();
      return true;
    }
    return false;
  }

  /// Whether the last file ends a process that reads it.
  bool endsTheProcess()
  {
    const pid_t child = ::fork();
    if (child == 0) {
      const rlimit none = {0, 0};
      ::setrlimit(RLIMIT_CORE, &none);
      ::dup2(::open("/dev/null", O_WRONLY), STDERR_FILENO); // the warnings
      catalogue_.load(file_.c_str());
      ::_exit(0);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(status == 0 || (WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT)) << status;
    return status != 0;
  }

private:
  TempFolder facility_;
  std::string file_;
  ReelTypeManager catalogue_;
};

TEST_F(TypeFileLimits, HostRefusesWhatEndsTheProcessAndNothingElse)
{
  const auto repeated = [](char c) {
    std::vector<std::string> texts;
    for (const std::size_t length : {0U, 1U, 2000U, 2001U, 2002U, 2047U, 2048U})
      texts.emplace_back(length, c);
    return texts;
  };
  const std::string nul(1, '\0');
  const std::vector<std::string> befores = {"", "a:1\r\n\n", std::string(9, '\n'), " \t"};
  const std::vector<std::string> betweens = {"", ":", " :", ": ", "::", nul + ":", ":" + nul};
  int refused = 0, passed = 0;
  for (const std::string& before : befores)
    for (const std::string& name : repeated('n'))
      for (const std::string& between : betweens)
        for (const std::string& parameters : {std::string(), std::string("p"), std::string(2047, 'p'),
                                              std::string(2048, 'p'), std::string(2048, ' ')}) {
          const bool isBad = isRefused(before + name + between + parameters + "\n");
          ASSERT_EQ(isBad, endsTheProcess())
              << "\"" << before << "\", " << name.size() << " bytes, \"" << between << "\", " << parameters.size()
              << " of '" << parameters.substr(0, 1) << "'";
          ++(isBad ? refused : passed);
        }
  EXPECT_GT(refused, 200);
  EXPECT_GT(passed, 200);
}

} // namespace
} // namespace reeldb_tests

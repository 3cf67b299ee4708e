// SPDX-License-Identifier: Apache-2.0
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>

#include "standalone/model/host_test.h"

namespace {

using namespace reeldb_tests;

class OriginTest : public HostTest {};

/// What currentOrigin says of the user in a process of that user. Empty if there can be no such process.
std::string userNameOf(uid_t user)
{
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0)
    return {};
  const pid_t child = ::fork();
  if (child == 0) {
    bool written = false;
    if (::setuid(user) == 0) {
      const std::string name = reelhost::currentOrigin().user;
      written = ::write(ends[1], name.data(), name.size()) == static_cast<ssize_t>(name.size());
    }
    ::_exit(written ? 0 : 1);
  }
  ::close(ends[1]);
  std::string name(100, '\0');
  name.resize(static_cast<std::size_t>(std::max<ssize_t>(0, ::read(ends[0], name.data(), name.size()))));
  ::close(ends[0]);
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return status == 0 ? name : std::string();
}

TEST_F(OriginTest, UserWithoutANameIsNamedByTheNumber)
{
  if (::geteuid() != 0)
    GTEST_SKIP() << "only root can be another user";
  EXPECT_EQ(userNameOf(54321), "54321");
  EXPECT_EQ(userNameOf(0), "root");
}

} // namespace

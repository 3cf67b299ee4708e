// SPDX-License-Identifier: Apache-2.0
#include "commands/ask.h"

#include <cstdio>
#include <iostream>

#include <fmt/format.h>

#include "app/error.h"
#include "base/display_text.h"
#include "text/output.h"
#include "text/terminal.h"

namespace reeldb::cli {

bool ask(const std::string& question)
{
  if (!isTerminal(stdin))
    throw app::Error(app::ErrorKind::Refused,
                     question + " cannot ask (standard input is not a terminal; --yes confirms)");
  flushOutput();
  fmt::print(stderr, "{} [y/N] ", base::displayText(question));
  std::fflush(stderr);
  std::string answer;
  std::getline(std::cin, answer);
  return answer == "y" || answer == "Y" || answer == "yes";
}

} // namespace reeldb::cli

// SPDX-License-Identifier: Apache-2.0
#include "cli/process.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <stdexcept>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace reeldb_tests {

namespace {

constexpr std::chrono::minutes patience{2};

std::vector<std::string> environmentOf(const ProcessSetting& setting)
{
  std::vector<std::string> result;
  for (const char* name : {"PATH", "HOME", "TMPDIR", "ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS", "LSAN_OPTIONS",
                           "LLVM_PROFILE_FILE", "ASAN_SYMBOLIZER_PATH"})
    if (const char* value = std::getenv(name); value && !setting.environment.count(name))
      result.push_back(std::string(name) + "=" + value);
  for (const auto& [name, value] : setting.environment)
    result.push_back(name + "=" + value);
  return result;
}

std::vector<char*> pointers(std::vector<std::string>& texts)
{
  std::vector<char*> result;
  for (std::string& text : texts)
    result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

struct Pipe {
  int reading = -1, writing = -1;
};

Pipe makePipe()
{
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0)
    throw std::runtime_error("pipe: cannot be made");
  return {ends[0], ends[1]};
}

Pipe makeTerminal()
{
  winsize size{};
  size.ws_row = 24;
  size.ws_col = 80;
  int master = -1, slave = -1;
  if (openpty(&master, &slave, nullptr, nullptr, &size) != 0)
    throw std::runtime_error("terminal: cannot be made");
  fcntl(master, F_SETFD, FD_CLOEXEC);
  fcntl(slave, F_SETFD, FD_CLOEXEC);
  return {master, slave};
}

pid_t start(const std::vector<std::string>& words, const ProcessSetting& setting, int in, int out, int err)
{
  std::vector<std::string> arguments = words;
  std::vector<std::string> environment = environmentOf(setting);
  const std::vector<char*> argv = pointers(arguments);
  const std::vector<char*> envp = pointers(environment);
  const pid_t id = fork();
  if (id < 0)
    throw std::runtime_error("process: cannot be started");
  if (id == 0) {
    if (chdir(setting.folder.c_str()) == 0 && dup2(in, 0) == 0 && dup2(out, 1) == 1 && dup2(err, 2) == 2)
      execvpe(argv[0], argv.data(), envp.data());
    _exit(127);
  }
  return id;
}

ProcessResult resultOf(int status)
{
  ProcessResult result;
  if (WIFEXITED(status))
    result.code = WEXITSTATUS(status);
  else
    result.signal = WTERMSIG(status);
  return result;
}

/// Reads both ends until they close or the time is over.
void readAll(int out, int err, ProcessResult& result, std::chrono::steady_clock::time_point end, pid_t id)
{
  pollfd ends[2] = {{out, POLLIN, 0}, {err, POLLIN, 0}};
  std::string* texts[2] = {&result.out, &result.err};
  while (ends[0].fd >= 0 || ends[1].fd >= 0) {
    if (std::chrono::steady_clock::now() > end) {
      kill(id, SIGKILL);
      return;
    }
    poll(ends, 2, 1000);
    for (int i = 0; i < 2; ++i) {
      if (ends[i].fd < 0 || !(ends[i].revents & (POLLIN | POLLHUP | POLLERR)))
        continue;
      char buffer[4096];
      const ssize_t count = read(ends[i].fd, buffer, sizeof buffer);
      if (count > 0)
        texts[i]->append(buffer, static_cast<std::size_t>(count));
      else if (count == 0 || errno != EINTR)
        ends[i].fd = -1; // a terminal ends with an error
    }
  }
}

/// An open file with the input, at its beginning.
int inputFile(const std::string& text)
{
  if (text.empty())
    return open("/dev/null", O_RDONLY | O_CLOEXEC);
  std::FILE* file = std::tmpfile();
  std::fwrite(text.data(), 1, text.size(), file);
  std::fflush(file);
  const int number = fcntl(fileno(file), F_DUPFD_CLOEXEC, 3);
  std::fclose(file);
  lseek(number, 0, SEEK_SET);
  return number;
}

} // namespace

ProcessResult runProcess(const std::vector<std::string>& words, const ProcessSetting& setting)
{
  const auto end = std::chrono::steady_clock::now() + patience;
  const Pipe out = setting.terminal ? makeTerminal() : makePipe();
  const bool typed = setting.terminal && !setting.input.empty();
  const int in = typed ? fcntl(out.writing, F_DUPFD_CLOEXEC, 3) : inputFile(setting.input);
  const Pipe err = setting.terminal ? Pipe{} : makePipe();
  const int file = setting.outputFile.empty() ? -1 : open(setting.outputFile.c_str(), O_WRONLY | O_CLOEXEC);
  const pid_t id =
      start(words, setting, in, file >= 0 ? file : out.writing, setting.terminal ? out.writing : err.writing);
  if (typed && write(out.reading, setting.input.data(), setting.input.size()) < 0)
    throw std::runtime_error("terminal: cannot be typed at");
  for (const int number : {in, out.writing, err.writing, file})
    if (number >= 0)
      close(number);
  ProcessResult texts;
  readAll(out.reading, err.reading, texts, end, id);
  close(out.reading);
  if (err.reading >= 0)
    close(err.reading);
  int status = 0;
  rusage usage{};
  wait4(id, &status, 0, &usage);
  ProcessResult result = resultOf(status);
  result.peakKilobytes = usage.ru_maxrss;
  result.out = std::move(texts.out);
  result.err = std::move(texts.err);
  return result;
}

RunningProcess::RunningProcess(const std::vector<std::string>& words, const ProcessSetting& setting)
{
  const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
  const int file = setting.outputFile.empty() ? -1 : open(setting.outputFile.c_str(), O_WRONLY | O_CLOEXEC);
  id_ = start(words, setting, nothing, file >= 0 ? file : nothing, nothing);
  close(nothing);
  if (file >= 0)
    close(file);
}

RunningProcess::~RunningProcess()
{
  if (id_ <= 0)
    return;
  kill(id_, SIGKILL);
  waitpid(id_, nullptr, 0);
}

void RunningProcess::signal(int number)
{
  kill(id_, number);
}

ProcessResult RunningProcess::wait()
{
  int status = 0;
  waitpid(id_, &status, 0);
  id_ = -1;
  return resultOf(status);
}

} // namespace reeldb_tests

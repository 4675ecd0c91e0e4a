#include "bench/program.h"

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "bench/documents.h"

namespace brenlow::bench {

namespace {

constexpr int QUIET = 100;  // milliseconds without a byte and without work

[[noreturn]] void become_program(const std::vector<std::string>& arguments, const std::string& home) {
  ::setenv("HOME", home.c_str(), 1);
  ::setenv("TERM", "xterm-256color", 1);
  ::setenv("LC_ALL", "C.UTF-8", 1);
  std::vector<char*> words;
  std::string program = BRENLOW_PROGRAM;
  words.push_back(program.data());
  std::vector<std::string> copies = arguments;
  for (std::string& argument : copies) words.push_back(argument.data());
  words.push_back(nullptr);
  ::execv(program.c_str(), words.data());
  ::_exit(127);
}

}  // namespace

Program::Program(const std::vector<std::string>& arguments) {
  const std::string home = work_folder("home");
  winsize size{50, 120, 0, 0};
  int master = -1;
  _pid = ::forkpty(&master, nullptr, nullptr, &size);
  if (_pid < 0) throw std::runtime_error("no pseudo terminal");
  if (_pid == 0) become_program(arguments, home);
  _terminal = Descriptor(master);
  ::fcntl(master, F_SETFL, O_NONBLOCK);
}

Program::~Program() {
  if (_pid > 0) stop();
}

double Program::cpu() const {
  clockid_t clock;
  timespec time{};
  if (::clock_getcpuclockid(_pid, &clock) != 0 || ::clock_gettime(clock, &time) != 0)
    throw std::runtime_error("the program has ended");
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

std::size_t Program::resident_bytes() const {
  std::ifstream file("/proc/" + std::to_string(_pid) + "/statm");
  std::size_t pages = 0, resident = 0;
  file >> pages >> resident;
  return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

bool Program::_waits() const {
  std::ifstream file("/proc/" + std::to_string(_pid) + "/stat");
  std::string text(std::istreambuf_iterator<char>(file), {});
  std::size_t state = text.rfind(") ");
  return state != std::string::npos && text[state + 2] == 'S';
}

double Program::until_idle(std::string_view keys) {
  using Clock = std::chrono::steady_clock;
  std::array<char, 65536> bytes;
  auto begin = Clock::now(), last = begin;
  double worked = -1;
  for (;;) {
    pollfd terminal{_terminal.get(), static_cast<short>(keys.empty() ? POLLIN : POLLIN | POLLOUT), 0};
    if (::poll(&terminal, 1, QUIET) == 0) {
      double now = cpu();
      if (last != begin && now == worked && _waits())
        return std::chrono::duration<double, std::milli>(last - begin).count();
      worked = now;
      continue;
    }
    worked = -1;
    if (terminal.revents & POLLIN) {
      if (::read(_terminal.get(), bytes.data(), bytes.size()) <= 0) throw std::runtime_error("the program has ended");
      last = Clock::now();
    } else if (terminal.revents & POLLOUT) {
      ssize_t written = ::write(_terminal.get(), keys.data(), keys.size());
      if (written > 0) keys.remove_prefix(static_cast<std::size_t>(written));
    } else {
      throw std::runtime_error("the program has ended");
    }
  }
}

double Program::stop() {
  ::kill(_pid, SIGKILL);
  rusage used{};
  ::wait4(_pid, nullptr, 0, &used);
  _pid = -1;
  auto milliseconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
  };
  return milliseconds(used.ru_utime) + milliseconds(used.ru_stime);
}

}  // namespace brenlow::bench

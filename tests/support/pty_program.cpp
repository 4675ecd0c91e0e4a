#include "tests/support/pty_program.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <system_error>

namespace brenlow::test {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// How long one look at the terminal may take before the process is looked at again.
constexpr milliseconds GLANCE{20};

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> list;
  for (std::string& text : texts) list.push_back(text.data());
  list.push_back(nullptr);
  return list;
}

std::vector<std::string> environment_of(const ProgramOptions& options, const std::string& home) {
  std::map<std::string, std::string> variables = {
      {"HOME", home}, {"TERM", "xterm-256color"}, {"LC_ALL", "C.UTF-8"}, {"PATH", "/usr/bin:/bin"}};
  for (const char* name : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"})
    if (const char* value = std::getenv(name)) variables[name] = value;
  for (const auto& [name, value] : options.environment) variables[name] = value;
  std::vector<std::string> list;
  for (const auto& [name, value] : variables) list.push_back(name + "=" + value);
  return list;
}

}  // namespace

PtyProgram::PtyProgram(const std::string& program, const ProgramOptions& options)
    : _terminal(options.rows, options.cols), _screen(options.rows, options.cols) {
  for (const auto& [name, content] : options.home_files) _home.write(name, content);
  ::fcntl(_terminal.master(), F_SETFL, O_NONBLOCK);
  _start(program, options);
}

PtyProgram::~PtyProgram() {
  if (!_running()) return;
  ::kill(_pid, SIGKILL);
  ::waitpid(_pid, nullptr, 0);
}

// Between fork and exec the child makes system calls only.
void PtyProgram::_start(const std::string& program, const ProgramOptions& options) {
  std::vector<std::string> arguments = {program};
  arguments.insert(arguments.end(), options.arguments.begin(), options.arguments.end());
  std::vector<std::string> environment = environment_of(options, _home.path().string());
  std::vector<char*> argument_list = pointers(arguments);
  std::vector<char*> environment_list = pointers(environment);
  Descriptor nothing(::open("/dev/null", O_RDONLY | O_CLOEXEC));
  Descriptor out(::open(_captured.file("output").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  Descriptor errors(::open(_captured.file("errors").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  int input = options.input_is_terminal ? _terminal.slave() : nothing.get();
  int output = options.output_is_terminal ? _terminal.slave() : out.get();
  std::string folder = _home.path().string();
  _pid = ::fork();
  if (_pid < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (_pid > 0) return;
  ::setsid();
  ::ioctl(_terminal.slave(), TIOCSCTTY, 0);
  ::dup2(input, STDIN_FILENO);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(errors.get(), STDERR_FILENO);
  if (::chdir(folder.c_str()) == 0) ::execve(program.c_str(), argument_list.data(), environment_list.data());
  ::_exit(127);
}

void PtyProgram::send(std::string_view bytes, Where where) {
  auto until = steady_clock::now() + WAIT_LIMIT;
  while (!bytes.empty()) {
    ssize_t written = ::write(_terminal.master(), bytes.data(), bytes.size());
    if (written > 0) bytes.remove_prefix(static_cast<std::size_t>(written));
    if (written < 0 && errno != EAGAIN && errno != EINTR) _fail("the terminal takes no input", where);
    // A program that is held up by its own output reads nothing until that is taken.
    if (written < 0) _pump(GLANCE);
    if (steady_clock::now() > until) _fail("the program does not read its input", where);
  }
}

void PtyProgram::resize(int rows, int cols) {
  _screen.resize(rows, cols);
  _terminal.resize(rows, cols);
}

void PtyProgram::kill(int signal) const { ::kill(_pid, signal); }

void PtyProgram::wait_for(std::string_view text, Where where) {
  wait_until([text](const TerminalScreen& screen) { return screen.shows(text); },
             "the text \"" + std::string(text) + "\"", where);
}

void PtyProgram::wait_until(const std::function<bool(const TerminalScreen&)>& holds, std::string_view what,
                            Where where) {
  auto until = steady_clock::now() + WAIT_LIMIT;
  while (!holds(_screen)) {
    bool running = _running();
    if (_pump(GLANCE)) continue;
    if (!running) _fail("the program ended before " + std::string(what), where);
    if (steady_clock::now() > until) _fail("waited in vain for " + std::string(what), where);
  }
}

ProgramEnd PtyProgram::wait_for_end(Where where) {
  auto until = steady_clock::now() + WAIT_LIMIT;
  while (_running()) {
    _pump(GLANCE);
    if (steady_clock::now() > until) _fail("the program does not end", where);
  }
  while (_pump(milliseconds{0})) {
  }
  return *_end;
}

std::string PtyProgram::output() const { return read_bytes(_captured.file("output")); }

std::string PtyProgram::errors() const { return read_bytes(_captured.file("errors")); }

bool PtyProgram::_pump(milliseconds limit) {
  pollfd waiting{_terminal.master(), POLLIN, 0};
  if (::poll(&waiting, 1, static_cast<int>(limit.count())) <= 0) return false;
  std::array<char, 65536> bytes;
  ssize_t count = ::read(_terminal.master(), bytes.data(), bytes.size());
  if (count <= 0) return false;
  _screen.feed({bytes.data(), static_cast<std::size_t>(count)});
  return true;
}

bool PtyProgram::_running() {
  if (_end) return false;
  int status = 0;
  if (::waitpid(_pid, &status, WNOHANG) == 0) return true;
  _end = ProgramEnd{WIFEXITED(status) ? WEXITSTATUS(status) : -1, WIFSIGNALED(status) ? WTERMSIG(status) : 0};
  return false;
}

void PtyProgram::_fail(const std::string& what, const Where& where) const {
  std::string text = what + "\n" + _screen.picture() + "standard error: " + errors();
  if (_end) text += "\nended with status " + std::to_string(_end->status) + ", signal " + std::to_string(_end->signal);
  ADD_FAILURE_AT(where.file, where.line) << text;
  throw testing::AssertionException(
      testing::TestPartResult(testing::TestPartResult::kFatalFailure, where.file, where.line, text.c_str()));
}

std::string brenlow_program() { return BRENLOW_PROGRAM; }

}  // namespace brenlow::test

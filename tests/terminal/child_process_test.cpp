#include "terminal/child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <random>

#include "terminal/descriptor.h"
#include "tests/terminal/fake_machine.h"

namespace brenlow {
namespace {

using namespace std::chrono_literals;
using test::FakeTools;
using test::HANG;
using test::PATIENCE;

std::string random_bytes(std::size_t size) {
  std::mt19937 random(7);
  std::string bytes(size, '\0');
  for (char& byte : bytes) byte = static_cast<char>(random());
  return bytes;
}

void expect_no_child_left() {
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

class SignalGuard {
 public:
  SignalGuard(int signal, void (*handler)(int)) : _signal(signal) {
    struct sigaction action {};  // without SA_RESTART, as the session's own handlers are
    action.sa_handler = handler;
    ::sigaction(signal, &action, &_before);
  }
  ~SignalGuard() { ::sigaction(_signal, &_before, nullptr); }
  bool still_has(void (*handler)(int)) const {
    struct sigaction now {};
    ::sigaction(_signal, nullptr, &now);
    return now.sa_handler == handler;
  }

 private:
  int _signal;
  struct sigaction _before {};
};

TEST(ChildProcess, LargeTextsPassBothWaysAtOnceUnderSignalsAndWithoutStandardOutput) {
  const std::string text = random_bytes(1 << 20);
  const SignalGuard alarm(SIGALRM, [](int) {});
  const itimerval every_millisecond{{0, 1000}, {0, 1000}};
  const itimerval never{};
  ::setitimer(ITIMER_REAL, &every_millisecond, nullptr);
  auto result = run_child({"cat"}, {.input = text, .time_limit = PATIENCE});
  const auto quiet = run_child({"sleep", "0.05"}, {.capture = false});
  ::setitimer(ITIMER_REAL, &never, nullptr);
  EXPECT_EQ(quiet.value_or(ChildResult{}).status, 0);
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 0);
  EXPECT_TRUE(result->output == text);

  // Without one of the standard streams its number is free for the next file that is opened.
  const Descriptor output(::dup(STDOUT_FILENO));
  ::close(STDOUT_FILENO);
  result = run_child({"sh", "-c", "cat; echo error >&2"}, {.input = "still here", .time_limit = PATIENCE});
  ::dup2(output.get(), STDOUT_FILENO);
  EXPECT_EQ(result.value_or(ChildResult{}).output, "still here");
  expect_no_child_left();
}

TEST(ChildProcess, TheEndOfAProgramIsToldAsItWas) {
  const FakeTools tools;
  tools.add("fails", "echo said; echo error >&2; exit 3");
  tools.add("dies", "kill -9 $$");
  tools.folder().write("bin/second/tool", "#!/bin/sh\necho found\n");
  tools.folder().write("bin/plain_file", "no program");
  std::filesystem::permissions(tools.search_path() + "/second/tool", std::filesystem::perms::owner_all);
  std::filesystem::permissions(tools.folder().write("bin/damaged", ""), std::filesystem::perms::owner_all);
  std::filesystem::create_directory(tools.search_path() + "/tool");
  ChildOptions options{.time_limit = PATIENCE, .search_path = tools.search_path()};

  // Whoever starts the session may ignore the end of children.
  const SignalGuard ignored(SIGCHLD, SIG_IGN);
  const auto failed = run_child({"fails"}, options);
  ASSERT_TRUE(failed);
  EXPECT_EQ(failed->status, 3);
  EXPECT_EQ(failed->output, "said\n");
  EXPECT_TRUE(ignored.still_has(SIG_IGN));

  EXPECT_EQ(run_child({"dies"}, options).value_or(ChildResult{.status = 99}).status, -1);
  EXPECT_EQ(run_child({"damaged"}, options).value_or(ChildResult{.status = 99}).status, -1);
  for (const char* missing : {"absent", "plain_file", "tool", ""})
    EXPECT_FALSE(run_child({missing}, options)) << missing;
  options.search_path = "/nonexistent::" + tools.search_path() + ":" + tools.search_path() + "/second";
  EXPECT_EQ(run_child({"tool"}, options).value_or(ChildResult{}).output, "found\n");
  expect_no_child_left();
}

TEST(ChildProcess, AProgramThatStopsReadingDoesNotEndTheSession) {
  const FakeTools tools;
  tools.add("deaf", "exec <&-; exit 0");
  tools.add("hasty", "exit 7");
  const std::string text(1 << 20, 'x');
  const SignalGuard fatal(SIGPIPE, SIG_DFL);
  for (const bool capture : {true, false}) {
    ChildOptions options{.input = text, .capture = capture, .search_path = tools.search_path()};
    EXPECT_EQ(run_child({"deaf"}, options).value_or(ChildResult{}).status, 0);
    EXPECT_EQ(run_child({"hasty"}, options).value_or(ChildResult{}).status, 7);
  }
  EXPECT_TRUE(fatal.still_has(SIG_DFL));
}

TEST(ChildProcess, AHangingProgramIsKilledWithItsChildren) {
  const FakeTools tools;
  const std::string lifeline = tools.folder().file("lifeline");
  ASSERT_EQ(::mkfifo(lifeline.c_str(), 0600), 0);
  const Descriptor reader = open_without_waiting(lifeline, O_RDONLY);
  tools.add("hangs", "{ echo alive; " + HANG + "; } > '" + lifeline + "' & wait");
  const auto begun = std::chrono::steady_clock::now();
  const auto result = run_child({"hangs"}, {.time_limit = 300ms, .search_path = tools.search_path()});
  ASSERT_TRUE(result);
  EXPECT_TRUE(result->timed_out);
  EXPECT_EQ(result->status, -1);
  EXPECT_LT(std::chrono::steady_clock::now() - begun, PATIENCE);
  // The last writer is gone: the pipe comes to its end once the line in it has been read.
  char line[16];
  ssize_t count = 0;
  do {
    pollfd end{reader.get(), POLLIN, 0};
    ASSERT_EQ(::poll(&end, 1, 20000), 1) << "a grandchild lives on";
    count = ::read(reader.get(), line, sizeof line);
  } while (count > 0);
  EXPECT_EQ(count, 0);
  expect_no_child_left();
}

TEST(ChildProcess, AHelperLeftInTheBackgroundHoldsNobodyUp) {
  const FakeTools tools;
  tools.add("leaves", "{ " + HANG + "; } & echo $! > '" + tools.folder().file("pid") + "'; echo ready");
  for (const bool capture : {true, false}) {
    const auto begun = std::chrono::steady_clock::now();
    const auto result = run_child({"leaves"}, {.capture = capture, .search_path = tools.search_path()});
    EXPECT_LT(std::chrono::steady_clock::now() - begun, PATIENCE);
    ::kill(std::stoi(test::read_bytes(tools.folder().file("pid"))), SIGKILL);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->status, 0);
    EXPECT_EQ(result->output, capture ? "ready\n" : "");
  }
}

TEST(ChildProcess, EndlessOutputIsCutOffAndTheProgramEnded) {
  const auto result = run_child({"cat", "/dev/zero"}, {.time_limit = PATIENCE, .output_limit = 1 << 20});
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, -1);
  EXPECT_FALSE(result->timed_out);
  EXPECT_LT(result->output.size(), 2U << 20);
  expect_no_child_left();
}

TEST(ChildProcess, NothingOfTheSessionIsInherited) {
  if (!std::filesystem::exists("/proc/self/status")) GTEST_SKIP() << "needs /proc";
  const Descriptor leak(::fcntl(STDERR_FILENO, F_DUPFD, 77));
  const SignalGuard ignored(SIGUSR1, SIG_IGN);
  sigset_t blocked, before;
  ::sigemptyset(&blocked);
  ::sigaddset(&blocked, SIGWINCH);
  ::sigprocmask(SIG_BLOCK, &blocked, &before);
  const auto open = run_child({"ls", "/proc/self/fd"}, {.time_limit = PATIENCE});
  const auto masks = run_child({"sed", "-n", "s/^Sig[BI].*:.//p", "/proc/self/status"}, {.time_limit = PATIENCE});
  ::sigprocmask(SIG_SETMASK, &before, nullptr);
  ASSERT_TRUE(open && masks);
  EXPECT_EQ(open->output, "0\n1\n2\n3\n");  // 3 is the listed folder itself
  // Two lines of 16 hexadecimal digits: what is blocked and what is ignored. From signal 32 on the C library
  // uses some for itself.
  ASSERT_EQ(masks->output.size(), 34U);
  for (std::size_t line : {0U, 17U})
    EXPECT_EQ(std::stoull(masks->output.substr(line, 16), nullptr, 16) & 0x7FFFFFFF, 0U) << masks->output;
}

}  // namespace
}  // namespace brenlow

#include "terminal/child_process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "terminal/descriptor.h"
#include "tests/terminal/fake_machine.h"

namespace brenlow {
namespace {

using namespace std::chrono_literals;
using test::HANG;
using test::PATIENCE;

class ChildProcess : public testing::Test {
 protected:
  ~ChildProcess() override { EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child is left"; }
  test::FakeTools tools;
  ChildOptions options{.time_limit = PATIENCE, .search_path = tools.search_path()};
};

TEST_F(ChildProcess, LargeTextsPassBothWaysAtOnceUnderSignals) {
  const std::string text(1 << 20, 'x');
  const auto before = std::signal(SIGALRM, [](int) {});
  const itimerval every_millisecond{{0, 1000}, {0, 1000}}, never{};
  ::setitimer(ITIMER_REAL, &every_millisecond, nullptr);
  const auto result = run_child({"cat"}, {.input = text, .time_limit = PATIENCE});
  ::setitimer(ITIMER_REAL, &never, nullptr);
  std::signal(SIGALRM, before);
  ASSERT_TRUE(result);
  EXPECT_EQ(result->status, 0);
  EXPECT_TRUE(result->output == text);
}

TEST_F(ChildProcess, TheEndOfAProgramIsToldAsItWasWhoeverIgnoresTheEndOfChildren) {
  tools.add("fails", "echo said; echo error >&2; exit 3");
  tools.add("dies", "kill -9 $$");
  tools.add("second/tool", "echo found");
  tools.folder().write("bin/plain_file", "no program");
  std::filesystem::create_directory(tools.search_path() + "/tool");
  std::signal(SIGCHLD, SIG_IGN);
  const auto failed = run_child({"fails"}, options);
  EXPECT_EQ(std::signal(SIGCHLD, SIG_DFL), SIG_IGN);
  ASSERT_TRUE(failed);
  EXPECT_EQ(failed->status, 3);
  EXPECT_EQ(failed->output, "said\n");
  EXPECT_EQ(run_child({"dies"}, options).value_or(ChildResult{.status = 99}).status, -1);
  for (const char* missing : {"absent", "plain_file", "tool", ""})
    EXPECT_FALSE(run_child({missing}, options)) << missing;
  options.search_path = "/nonexistent::" + tools.search_path() + ":" + tools.search_path() + "/second";
  EXPECT_EQ(run_child({"tool"}, options).value_or(ChildResult{}).output, "found\n");
}

TEST_F(ChildProcess, AProgramThatStopsReadingDoesNotEndTheSession) {
  tools.add("deaf", "exec <&-; exit 7");
  const std::string text(1 << 20, 'x');
  options.input = text;
  for (const bool capture : {true, false}) {
    options.capture = capture;
    EXPECT_EQ(run_child({"deaf"}, options).value_or(ChildResult{}).status, 7);
  }
  EXPECT_EQ(std::signal(SIGPIPE, SIG_DFL), SIG_DFL);
}

TEST_F(ChildProcess, AHangingProgramIsKilledWithItsChildren) {
  const std::string lifeline = tools.folder().file("lifeline");
  ASSERT_EQ(::mkfifo(lifeline.c_str(), 0600), 0);
  const Descriptor reader = open_without_waiting(lifeline, O_RDONLY);
  tools.add("hangs", HANG + " > '" + lifeline + "' & wait");
  options.time_limit = 500ms;
  const auto result = run_child({"hangs"}, options);
  ASSERT_TRUE(result);
  EXPECT_TRUE(result->timed_out);
  EXPECT_EQ(result->status, -1);
  pollfd end{reader.get(), POLLIN, 0};
  EXPECT_EQ(::poll(&end, 1, 20000), 1) << "a grandchild lives on and holds the pipe";
}

TEST_F(ChildProcess, AHelperLeftInTheBackgroundHoldsNobodyUp) {
  tools.add("leaves", HANG + " & echo $! > '" + tools.folder().file("pid") + "'; echo ready");
  for (const bool capture : {true, false}) {
    options.capture = capture;
    const auto result = run_child({"leaves"}, options);
    ::kill(std::stoi(test::read_bytes(tools.folder().file("pid"))), SIGKILL);
    ASSERT_TRUE(result);
    EXPECT_FALSE(result->timed_out);
    EXPECT_EQ(result->output, capture ? "ready\n" : "");
  }
}

TEST_F(ChildProcess, EndlessOutputIsCutOffAndNoFileOfTheSessionIsInherited) {
  const Descriptor leak(::fcntl(STDERR_FILENO, F_DUPFD, 77));
  const auto open = run_child({"ls", "/proc/self/fd"}, {.time_limit = PATIENCE});
  EXPECT_EQ(open.value_or(ChildResult{}).output, "0\n1\n2\n3\n");  // 3 is the listed folder itself
  const auto endless = run_child({"cat", "/dev/zero"}, {.time_limit = PATIENCE, .output_limit = 1 << 20});
  ASSERT_TRUE(endless);
  EXPECT_EQ(endless->status, -1);
  EXPECT_FALSE(endless->timed_out);
  EXPECT_LT(endless->output.size(), 2U << 20);
}

}  // namespace
}  // namespace brenlow

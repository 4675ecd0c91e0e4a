// The session's end when nobody chose it: what was typed is in a rescue copy, and the terminal is as it was.

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <functional>
#include <regex>
#include <thread>

#include "documents/odt_reader.h"
#include "documents/odt_writer.h"
#include "tests/support/pty_program.h"

namespace brenlow::test {
namespace {

namespace fs = std::filesystem;

const std::string DOCUMENT = "writing/novel.odt";
const std::string COPY = "novel rescued \\d{4}-\\d\\d-\\d\\d \\d{6}\\.odt";

std::string package_of(const std::u32string& text) {
  const TemporaryFolder folder;
  lines_to_odt({Text(text)}, folder.file("a.odt"), std::nullopt, {}, {});
  return read_bytes(folder.file("a.odt"));
}

ProgramOptions with_novel() { return {.arguments = {DOCUMENT}, .home_files = {{DOCUMENT, package_of(U"novel")}}}; }

void type_something(PtyProgram& program) {
  program.wait_for("Opened: novel.odt");
  program.send("unsaved ");
  program.wait_for("unsaved novel");
}

// The one file of the folder whose name matches.
fs::path only_file(const fs::path& folder, const std::string& name) {
  fs::path found;
  for (const auto& entry : fs::directory_iterator(folder))
    if (std::regex_match(entry.path().filename().string(), std::regex(name))) {
      EXPECT_EQ(found, fs::path()) << "a second copy: " << entry.path();
      found = entry.path();
    }
  EXPECT_NE(found, fs::path()) << "no file " << name << " in " << folder;
  return found;
}

void expect_rescued(const PtyProgram& program, const std::string& before) {
  const fs::path copy = only_file(program.home().file("writing"), COPY);
  EXPECT_EQ(odt_to_rich(copy).lines, (std::vector<Text>{U"unsaved novel"}));
  EXPECT_EQ(read_bytes(program.home().file(DOCUMENT)), before);
  EXPECT_EQ(program.errors(), "brenlow: the changes that were not saved are in " + copy.string() + "\n");
}

TEST(Rescue, ASignalCostsNoTextWhateverTheSessionIsDoing) {
  const std::vector<std::pair<int, std::string>> cases = {
      {SIGHUP, ""},       {SIGINT, "\x06"}, {SIGQUIT, std::string(1, '\0')}, {SIGTERM, "\x0f"}, {SIGXCPU, "\x11"},
      {SIGTERM, "\x1bk"}, {SIGTERM, "\x1b"}};
  for (const auto& [signal, keys] : cases) {
    SCOPED_TRACE(testing::Message() << "signal " << signal << " after " << testing::PrintToString(keys));
    const ProgramOptions options = with_novel();
    PtyProgram program(brenlow_program(), options);
    type_something(program);
    program.send(keys);
    if (keys.size() == 1 && keys != "\x1b")
      program.wait_until(
          [](const TerminalScreen& screen) {
            return !screen.shows("unsaved novel") || screen.shows("?") || screen.shows("Find: ");
          },
          "the dialog");
    program.kill(signal);
    EXPECT_EQ(program.wait_for_end(), (ProgramEnd{.status = 128 + signal, .signal = 0}));
    expect_rescued(program, options.home_files.at(DOCUMENT));
    EXPECT_EQ(program.modes(), program.modes_before());
    EXPECT_FALSE(program.screen().alternate());
    EXPECT_TRUE(program.screen().cursor_visible());
  }
}

TEST(Rescue, ATerminalThatGoesAwayCostsNoTextWithOrWithoutASignal) {
  for (bool signal_ignored : {false, true})
    for (const std::string keys : {"", "\x06", "\x11"}) {
      ProgramOptions options = with_novel();
      std::string program_path = brenlow_program();
      if (signal_ignored) {
        options.arguments = {"-c", "trap '' HUP; exec '" + program_path + "' " + DOCUMENT};
        program_path = "/bin/sh";
      }
      PtyProgram program(program_path, options);
      type_something(program);
      program.send(keys);
      program.hang_up();
      EXPECT_EQ(program.wait_for_end(), (ProgramEnd{.status = 128 + SIGHUP, .signal = 0}));
      expect_rescued(program, options.home_files.at(DOCUMENT));
    }
}

TEST(Rescue, WithoutUnsavedChangesTheSessionJustEnds) {
  for (bool saved : {false, true}) {
    PtyProgram program(brenlow_program(), with_novel());
    program.wait_for("Opened: novel.odt");
    if (saved) {
      type_something(program);
      program.send("\x13");
      program.wait_for("Saved (ODT): novel.odt");
    }
    program.kill(SIGTERM);
    EXPECT_EQ(program.wait_for_end(), (ProgramEnd{.status = 128 + SIGTERM, .signal = 0}));
    EXPECT_EQ(program.errors(), "");
    EXPECT_EQ(std::distance(fs::directory_iterator(program.home().file("writing")), fs::directory_iterator()), 1);
    EXPECT_EQ(program.modes(), program.modes_before());
  }
}

TEST(Rescue, AnUnnamedDocumentIsRescuedIntoTheWorkingFolder) {
  PtyProgram program(brenlow_program(), {});
  program.wait_until([](const TerminalScreen& screen) { return screen.alternate(); }, "the session");
  program.send("a thought");
  program.wait_for("a thought");
  program.kill(SIGTERM);
  EXPECT_EQ(program.wait_for_end().status, 128 + SIGTERM);
  const fs::path copy = only_file(program.home().path(), "unnamed rescued .*\\.odt");
  EXPECT_EQ(odt_to_rich(copy).lines, (std::vector<Text>{U"a thought"}));
}

TEST(Rescue, AHangingClipboardToolDoesNotHoldUpTheEnd) {
  ProgramOptions options = with_novel();
  options.home_files["bin/wl-copy"] = "#!/bin/sh\n: > \"$HOME/running\"\nexec sleep 1000\n";
  options.environment = {{"WAYLAND_DISPLAY", "none"}, {"PATH", "/usr/bin:/bin"}};
  options.arguments = {"-c",
                       "chmod +x bin/wl-copy; PATH=\"$HOME/bin:$PATH\" exec '" + brenlow_program() + "' " + DOCUMENT};
  PtyProgram program("/bin/sh", options);
  type_something(program);
  program.send("\x01\x03");  // select all, copy
  program.wait_until([&](const TerminalScreen&) { return fs::exists(program.home().file("running")); }, "the tool");
  program.kill(SIGTERM);
  EXPECT_EQ(program.wait_for_end().status, 128 + SIGTERM);
  expect_rescued(program, options.home_files.at(DOCUMENT));
}

TEST(Rescue, ATerminalThatTakesNothingMoreDoesNotHoldUpTheEnd) {
  ProgramOptions options = with_novel();
  options.rows = 200;
  options.cols = 300;
  PtyProgram program(brenlow_program(), options);
  type_something(program);
  // Nobody reads what is drawn for these keys: a help page and back, again and again.
  for (int page = 0; page < 50; ++page) program.send(std::string_view("\0x", 2));
  program.kill(SIGTERM);
  const auto until = std::chrono::steady_clock::now() + WAIT_LIMIT;
  while (program.errors().empty() && std::chrono::steady_clock::now() < until) std::this_thread::yield();
  expect_rescued(program, options.home_files.at(DOCUMENT));
  EXPECT_EQ(program.wait_for_end().status, 128 + SIGTERM);
}

#if defined(__linux__) && !defined(BRENLOW_SANITIZED)  // the sanitizers need more memory than a limit would leave
TEST(Rescue, WantOfMemoryCostsNoText) {
  ProgramOptions options = with_novel();
  const std::u32string text = U"novel " + std::u32string(4'000'000, U'x');
  options.home_files[DOCUMENT] = package_of(text);
  PtyProgram program(brenlow_program(), options);
  type_something(program);
  const rlimit none_left{std::size_t{64} << 20, RLIM_INFINITY};
  ASSERT_EQ(::prlimit(program.process(), RLIMIT_AS, &none_left, nullptr), 0);
  program.send("\x01\x03\x16\x16\x16");  // select all, copy, paste, paste, paste
  EXPECT_EQ(program.wait_for_end(), (ProgramEnd{.status = 1, .signal = 0}));
  const fs::path copy = only_file(program.home().file("writing"), COPY);
  EXPECT_EQ(program.errors(),
            "brenlow: not enough memory\nbrenlow: the changes that were not saved are in " + copy.string() + "\n");
  const std::vector<Text> rescued = odt_to_rich(copy).lines;
  ASSERT_EQ(rescued.size(), 1U);
  std::u32string expected = U"unsaved " + text;
  while (expected.size() < rescued[0].size()) expected += U"unsaved " + text;  // what was pasted until then
  EXPECT_TRUE(rescued[0].view() == expected);
  EXPECT_EQ(program.modes(), program.modes_before());
}
#endif

}  // namespace
}  // namespace brenlow::test

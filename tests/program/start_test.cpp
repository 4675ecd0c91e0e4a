#include <gtest/gtest.h>

#include <algorithm>

#include "tests/support/pty_program.h"

namespace brenlow::test {
namespace {

constexpr std::string_view QUIT = "\x11";  // Ctrl+Q

TEST(Start, WithoutAUsableTerminalItSaysSoInOneLineAndLeaves) {
  ProgramOptions no_input, no_output, unknown_terminal;
  no_input.input_is_terminal = false;
  no_output.output_is_terminal = false;
  unknown_terminal.environment["TERM"] = "no-such-terminal";
  for (const ProgramOptions& options : {no_input, no_output, unknown_terminal}) {
    PtyProgram program(brenlow_program(), options);
    EXPECT_EQ(program.wait_for_end(), (ProgramEnd{.status = 1, .signal = 0}));
    std::string errors = program.errors();
    EXPECT_TRUE(errors.starts_with("brenlow: ")) << errors;
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;
    EXPECT_EQ(program.modes(), program.modes_before());
    EXPECT_FALSE(program.screen().alternate());
  }
}

TEST(Start, ADamagedDocumentLeavesAUsableSessionAndTheFile) {
  PtyProgram program(brenlow_program(),
                     {.arguments = {"broken.odt"}, .home_files = {{"broken.odt", "no package at all"}}});
  program.wait_for("Error opening file: Not a zip archive");
  program.send("still here");
  program.wait_for("still here");
  EXPECT_EQ(read_bytes(program.home().file("broken.odt")), "no package at all");
}

TEST(Start, APathThatDoesNotExistIsANewDocumentAndNoFile) {
  PtyProgram program(brenlow_program(), {.arguments = {"novel.odt"}});
  program.wait_for("New file: novel.odt");
  program.send(QUIT);
  EXPECT_EQ(program.wait_for_end(), (ProgramEnd{.status = 0, .signal = 0}));
  EXPECT_FALSE(std::filesystem::exists(program.home().file("novel.odt")));
}

TEST(Start, FontDebugTellsAboutTheTerminalWithoutNeedingOne) {
  PtyProgram program(brenlow_program(), {.arguments = {"ignored.odt", "--font-debug"},
                                         .environment = {{"FOOT_VERSION", "1.13"}},
                                         .input_is_terminal = false,
                                         .output_is_terminal = false});
  EXPECT_EQ(program.wait_for_end(), (ProgramEnd{.status = 0, .signal = 0}));
  EXPECT_NE(program.output().find("foot"), std::string::npos) << program.output();
}

TEST(Start, KeyDebugShowsTheBytesOfEachKeyAndGivesTheTerminalBack) {
  PtyProgram program(brenlow_program(), {.arguments = {"ignored.odt", "--key-debug"}, .rows = 8});
  program.wait_for("Key debug mode — press keys to see their byte sequences.");
  program.wait_for("Press Ctrl+C or Ctrl+D to quit.");
  program.send("a");
  program.wait_for("hex=[61]  dec=[97]  str=[a]");
  program.send("\x1b[1;5A");
  program.wait_for("hex=[1b 5b 31 3b 35 41]  dec=[27 91 49 59 53 65]  str=[.[1;5A]");
  for (char key = 'b'; key <= 'i'; ++key) {
    program.send(std::string(1, key));
    program.wait_for("str=[" + std::string(1, key) + "]");
  }
  program.wait_for("Key debug — Ctrl+C/D to quit:");
  program.resize(24, 60);
  for (char key = 'j'; key <= 'z'; ++key) {
    program.send(std::string(1, key));
    program.wait_for("str=[" + std::string(1, key) + "]");
  }
  program.wait_for("Key debug — Ctrl+C/D to quit:");
  program.send("\x04");
  EXPECT_EQ(program.wait_for_end(), (ProgramEnd{.status = 0, .signal = 0}));
  EXPECT_EQ(program.modes(), program.modes_before());
  EXPECT_FALSE(program.screen().alternate());
}

}  // namespace
}  // namespace brenlow::test

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/pty_program.h"

namespace brenlow::test {
namespace {

constexpr std::string_view QUIT = "\x11";   // Ctrl+Q
constexpr std::string_view SAVE = "\x13";   // Ctrl+S
constexpr std::string_view BOLD = "\x02";   // Ctrl+B
constexpr std::string_view BREAK = "\x10";  // Ctrl+P
constexpr ProgramEnd IN_ORDER{.status = 0, .signal = 0};

TEST(Save, WhatIsTypedIsInTheFile) {
  PtyProgram program(brenlow_program(), {.arguments = {"diary.txt"}});
  program.wait_for("New file: diary.txt");
  program.send("Café — 日本 \xF0\x9F\x8D\x80\rsecond line\r");
  program.wait_for("second line");
  program.send(SAVE);
  program.wait_for("Saved (TXT): diary.txt");
  EXPECT_EQ(read_bytes(program.home().file("diary.txt")), "Café — 日本 \xF0\x9F\x8D\x80\nsecond line\n");
}

TEST(Save, AFormattedDocumentComesBackAsItWas) {
  ProgramOptions options;
  options.arguments = {"letter.odt"};
  std::string package;
  {
    PtyProgram program(brenlow_program(), options);
    program.wait_for("New file: letter.odt");
    for (std::string_view keys :
         std::initializer_list<std::string_view>{"Dear ", BOLD, "Ada", BOLD, ", hello\r", BREAK, "next page"})
      program.send(keys);
    program.wait_for("next page");
    program.send(SAVE);
    program.wait_for("Saved (ODT): letter.odt");
    package = read_bytes(program.home().file("letter.odt"));
    program.send(QUIT);
    EXPECT_EQ(program.wait_for_end(), IN_ORDER);
  }
  options.home_files["letter.odt"] = package;
  PtyProgram program(brenlow_program(), options);
  program.wait_for("Opened: letter.odt");
  program.wait_for("next page");
  auto row_of = [&](const std::string& text) {
    int row = 0;
    while (program.screen().row(row).find(text) == std::string::npos) ++row;
    return row;
  };
  const int row = row_of("Dear Ada, hello");
  EXPECT_TRUE(program.screen().attributes(row).ends_with(".bbb")) << program.screen().attributes(row);
  EXPECT_GT(row_of("next page"), row + 1) << program.screen().picture();
}

TEST(Save, UnsavedTextIsNeverLostWithoutAQuestion) {
  const std::string question = "Unsaved changes. Save before exit? [y/n/c]";
  for (char answer : {'y', 'n'}) {
    PtyProgram program(brenlow_program(), {.arguments = {"draft.md"}, .home_files = {{"draft.md", "draft"}}});
    program.wait_for("Opened: draft.md");
    program.send("new ");
    program.send(QUIT);
    program.wait_for(question);
    program.send("c");
    program.wait_for("Exit cancelled.");
    program.send(QUIT);
    program.wait_for(question);
    program.send(std::string(1, answer));
    EXPECT_EQ(program.wait_for_end(), IN_ORDER);
    EXPECT_EQ(read_bytes(program.home().file("draft.md")), answer == 'y' ? "new draft" : "draft");
  }
}

TEST(Save, WithoutThePartForPackagesNothingIsLost) {
  TemporaryFolder folder;
  std::filesystem::copy_file(brenlow_program(), folder.file("brenlow"));
  const std::string package = read_bytes(BRENLOW_TEST_DATA "/office.odt");
  PtyProgram program(folder.file("brenlow"),
                     {.arguments = {"letter.odt"}, .cols = 200, .home_files = {{"letter.odt", package}}});
  program.wait_for("Error opening file: cannot load the part of Brenlow for .odt: ");
  program.send("precious");
  program.send(SAVE);
  program.wait_for("Save error: cannot load the part of Brenlow for .odt: ");
  program.wait_for("precious");
  EXPECT_EQ(read_bytes(program.home().file("letter.odt")), package);
  program.send(QUIT);
  program.wait_for("Unsaved changes. Save before exit? [y/n/c]");
}

TEST(Save, AFailedSaveKeepsTheSessionAndItsText) {
  PtyProgram program(brenlow_program(), {.arguments = {"no-such-folder/draft.md"}});
  program.wait_for("New file: draft.md");
  program.send("precious");
  program.send(QUIT);
  program.wait_for("Unsaved changes. Save before exit? [y/n/c]");
  program.send("y");
  program.wait_for("Save error: ");
  program.wait_for("precious");
  program.send(QUIT);
  program.wait_for("Unsaved changes. Save before exit? [y/n/c]");
}

}  // namespace
}  // namespace brenlow::test

// The pictures of README.md and of the handbook, as the program draws them. scripts/make_pictures.sh draws them anew.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/support/pty_program.h"
#include "tests/support/svg_picture.h"

namespace brenlow::test {
namespace {

namespace fs = std::filesystem;

const std::string ESC = "\x1b", DOWN = "\x1b[B", END = "\x1b[F", PAGE_DOWN = "\x1b[6~", ENTER = "\r";
constexpr std::string_view OPEN = "\x0f", FILTER = "\x07";  // Ctrl+O, Ctrl+G

// Keeps what differs from machine to machine out of a picture: the charge of the battery and the name of the
// temporary home folder.
Frame touched_up(const PtyProgram& program) {
  Frame frame(program.screen());
  const int last = static_cast<int>(frame.cells.size()) - 1, width = static_cast<int>(frame.cells[0].size());
  const std::string status = frame.row(last);
  if (status.ends_with("% ")) frame.put(last, width - 6, "   AC ");
  const std::string home = program.home().path().string(), title = frame.row(0);
  if (std::size_t at = title.find(home); at != std::string::npos) {
    std::string shown = "/home/ines" + title.substr(at + home.size());
    frame.put(0, static_cast<int>(at), shown + std::string(home.size(), ' '));
  }
  return frame;
}

// Waits until the screen is the picture in the tree; or, asked to by the environment, puts it there once the screen
// has come to rest.
void expect_picture(PtyProgram& program, const std::string& name, std::string_view title,
                    Where where = Where::current()) {
  const fs::path path = fs::path(BRENLOW_PICTURES) / (name + ".svg");
  auto drawn = [&] { return svg_picture(touched_up(program), title); };
  if (!std::getenv("BRENLOW_DRAW_PICTURES")) {
    const std::string expected = read_bytes(path);
    program.wait_until([&](const TerminalScreen&) { return drawn() == expected; }, path.string() + " to be shown",
                       where);
    return;
  }
  int unchanged = 0;
  std::string last;
  program.wait_until(
      [&](const TerminalScreen&) {
        unchanged = drawn() == last ? unchanged + 1 : 0;
        last = drawn();
        return unchanged == 10;
      },
      "a screen at rest", where);
  write_bytes(path, last);
}

std::string sample(const std::string& name) { return read_bytes(fs::path(BRENLOW_SAMPLES) / name); }

ProgramOptions writer_with(const std::string& document, int rows = 22) {
  return {.arguments = {document},
          .rows = rows,
          .cols = 88,
          .environment = {{"TZ", "UTC"}},
          .home_files = {{document, sample(fs::path(document).filename())},
                         {".config/brenlow/brenlow.conf", "margin_left: 6\nmargin_right: 6\ncursor_blink: no\n"}}};
}

// Sets when a file was changed last, in minutes since 1 August 2026, UTC.
void date(const std::string& path, int minutes) {
  const timespec when{1'785'542'400 + minutes * 60, 0};
  const std::array<timespec, 2> read_and_changed = {when, when};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), read_and_changed.data(), 0), 0) << path;
}

TEST(Pictures, WritingIsShownAsItIs) {
  PtyProgram program(brenlow_program(), writer_with("the-knot.odt", 26));
  program.wait_for("Opened: the-knot.odt");
  for (int line = 0; line < 28; ++line) program.send(DOWN);
  program.send(END);
  expect_picture(program, "writing", "A page of a story in Brenlow, with a page break, chapters, bold and italic");
}

TEST(Pictures, AFoldedStoryIsShownAsItIs) {
  PtyProgram program(brenlow_program(), writer_with("the-knot.odt"));
  program.wait_for("Opened: the-knot.odt");
  program.send(ESC + "*");
  program.wait_for("All 10 chapters folded.");
  for (int line = 0; line < 10; ++line) program.send(DOWN);
  program.send(ESC + "#");
  expect_picture(program, "folded", "The chapters of a story, all but one folded");
}

TEST(Pictures, TheFilterIsShownAsItIs) {
  PtyProgram program(brenlow_program(), writer_with("the-knot.odt"));
  program.wait_for("Opened: the-knot.odt");
  program.send(FILTER);
  program.wait_for("kGrep");
  program.send("lantern" + ENTER);
  expect_picture(program, "filter", "Only the lines of a story that hold the word lantern");
}

TEST(Pictures, AScreenplayIsShownAsItIs) {
  PtyProgram program(brenlow_program(), writer_with("last-ferry.fountain"));
  program.wait_for("Opened: last-ferry.fountain");
  for (int page = 0; page < 4; ++page) program.send(PAGE_DOWN);
  expect_picture(program, "screenplay", "A Fountain screenplay in its colours");
}

TEST(Pictures, TheFileBrowserIsShownAsItIs) {
  struct File {
    std::string name;
    std::string content;
    int minutes;  // since 1 August 2026
  };
  const std::vector<File> files = {{"the-knot.odt", sample("the-knot.odt"), 32'170},
                                   {"field-guide-to-fog.md", sample("field-guide-to-fog.md"), 9'405},
                                   {"last-ferry.fountain", sample("last-ferry.fountain"), 27'981},
                                   {"harrow.odt", std::string(412'830, ' '), 31'019},
                                   {"diary.md", std::string(38'412, ' '), 32'318},
                                   {"letters.txt", std::string(6'203, ' '), 2'790},
                                   {"ropework.txt", std::string(14'090, ' '), 12'233},
                                   {"first draft/harrow.odt", "", 0},
                                   {"research/rope.txt", "", 0}};
  ProgramOptions options = writer_with("writing/the-knot.odt");
  for (const File& file : files) options.home_files["writing/" + file.name] = file.content;
  PtyProgram program(brenlow_program(), options);
  program.wait_for("Opened: the-knot.odt");
  for (const File& file : files) date(program.home().file("writing/" + file.name), file.minutes);
  for (const char* folder : {"first draft", "research"})
    date(program.home().file(std::string("writing/") + folder), 600);
  program.send(OPEN);
  program.wait_for("recent");
  program.send("la");
  expect_picture(program, "browser", "The file browser, with the documents of a folder");
}

}  // namespace
}  // namespace brenlow::test

#include "terminal/console_font.h"

#include <gtest/gtest.h>

#include <csignal>

#include "tests/terminal/fake_machine.h"
#include "tests/terminal/font_files.h"

namespace brenlow {
namespace {

using test::FakeTools;
using test::gzipped;
using test::psf1;
using test::psf2;
using test::TemporaryFolder;

volatile std::sig_atomic_t resizes = 0;

std::string listed(const std::vector<FontEntry>& fonts) {
  std::string text;
  for (const FontEntry& font : fonts)
    text += std::to_string(font.width) + "x" + std::to_string(font.height) + " " + font.name + "\n";
  return text;
}

class ConsoleFont : public testing::Test {
 protected:
  ConsoleFont() {
    _before = std::signal(SIGWINCH, [](int) { resizes = resizes + 1; });
  }
  ~ConsoleFont() override { std::signal(SIGWINCH, _before); }

  void add_sizes(std::initializer_list<int> heights) const {
    for (int height : heights) machine.write("fonts/f" + std::to_string(height) + ".psf", psf1(height));
  }
  ConsoleFontController controller(std::vector<std::string> dirs = {}) const {
    if (dirs.empty()) dirs.push_back(machine.file("fonts"));
    ConsoleFontController made(files, dirs, machine.file("no-tty"), tools.search_path());
    made.setfont_limit = test::PATIENCE;
    return made;
  }

  TemporaryFolder machine;
  FakeTools tools;
  ConfigFiles files = config_files(machine.path().string());

 private:
  void (*_before)(int);
};

TEST_F(ConsoleFont, OneFontPerSizeIsOfferedTheBestOfItsKind) {
  machine.write("one/zebra.psf", psf1(16));
  machine.write("one/Ter-x16.psf.gz", gzipped(psf1(16)));
  machine.write("one/spleen-8x16.psf", psf1(16));
  machine.write("one/b24.psf", psf2(12, 24));
  machine.write("one/a24.psf.gz", gzipped(psf2(12, 24)));
  machine.write("one/wide.psf", psf2(16, 16));
  machine.write("one/shared.psf.gz", gzipped(psf1(8)));
  machine.write("one/corrupt.psf.gz", gzipped(psf1(9)).substr(0, 30));
  machine.write("one/readme.txt", psf1(10));
  machine.write("one/cut.psf", psf1(11).substr(0, 200));
  machine.folder("one/folder.psf");
  machine.write("two/shared.psf", psf1(12));
  machine.write("two/cut.psf", psf1(11));
  const std::vector<std::string> dirs = {machine.file("absent"), machine.file("one"), machine.file("two")};
  EXPECT_EQ(listed(_scan_fonts(dirs)), "8x8 shared\n8x11 cut\n8x16 Ter-x16\n16x16 wide\n12x24 a24\n");
}

TEST_F(ConsoleFont, SteppingLoadsAndRemembersTheFontUpToBothEnds) {
  add_sizes({8, 14, 16});
  tools.add("setfont", "");
  ConsoleFontController fonts = controller();
  EXPECT_EQ(fonts.current_name(), "f14") << "the middle size at first";
  resizes = 0;
  EXPECT_EQ(fonts.increase(), "Zoom 3/3: f16 (8x16)");
  EXPECT_EQ(resizes, 1);
  EXPECT_EQ(tools.take_log(), "setfont|" + machine.file("fonts/f16.psf") + "\n");
  EXPECT_EQ(fonts.increase(), "Already at largest font (8x16)");
  EXPECT_EQ(tools.take_log(), "");
  EXPECT_EQ(controller().current_name(), "f16");
  EXPECT_EQ(fonts.reset(), "Zoom 2/3: f14 (8x14)");
  EXPECT_EQ(fonts.decrease(), "Zoom 1/3: f8 (8x8)");
  EXPECT_EQ(fonts.decrease(), "Already at smallest font (8x8)");
  EXPECT_EQ(controller().current_name(), "f8");
  std::filesystem::remove(machine.file("fonts/f8.psf"));
  EXPECT_EQ(controller().current_name(), "f16") << "the middle of what is left";
}

TEST_F(ConsoleFont, ASavedNameThatLooksLikeANumberOrAnAnswerIsFoundAgain) {
  int height = 8;
  for (const char* name : {"0080", "No", "-5", "true", "Lat2 Fixed"})
    machine.write(std::string("fonts/") + name + ".psf", psf1(height++));
  tools.add("setfont", "");
  ConsoleFontController fonts = controller();
  for (fonts._idx = 0; fonts._idx < 5; ++fonts._idx) {
    fonts._apply();
    EXPECT_EQ(controller().current_name(), fonts.current_name());
  }
}

TEST_F(ConsoleFont, AFontThatCannotBeLoadedIsNotRemembered) {
  add_sizes({8, 14, 16});
  ConsoleFontController fonts = controller();
  const std::string path = machine.file("fonts/f16.psf");
  resizes = 0;
  EXPECT_EQ(fonts.increase(), "Failed to set font f16 (try: sudo setfont " + path + ")");
  tools.add("setfont", "exit 1");
  EXPECT_EQ(fonts._apply(), "Failed to set font f16 (try: sudo setfont " + path + ")");
  tools.add("setfont", test::HANG);
  fonts.setfont_limit = std::chrono::milliseconds(50);
  EXPECT_FALSE(fonts._setfont(path));
  EXPECT_EQ(resizes, 0);
  EXPECT_EQ(controller().current_name(), "f14");
}

TEST_F(ConsoleFont, WithoutFontsEveryCommandSaysWhereTheyWereLookedFor) {
  ConsoleFontController fonts = controller({"/nonexistent/a", "/nonexistent/b"});
  const std::string message = "No PSF fonts found in /nonexistent/a, /nonexistent/b";
  EXPECT_FALSE(fonts.available());
  EXPECT_EQ(fonts.increase(), message);
  EXPECT_EQ(fonts.decrease(), message);
  EXPECT_EQ(fonts.reset(), message);
  EXPECT_EQ(fonts._apply(), "No fonts available");
  EXPECT_EQ(fonts.current_name() + fonts.current_label(), "");
}

TEST_F(ConsoleFont, TheReportMarksTheFontInUse) {
  add_sizes({8, 16});
  const std::string report = controller().debug_info();
  EXPECT_NE(report.find("  Current font  : f16 (8x16)\n"), std::string::npos) << report;
  EXPECT_NE(report.find("  (exists)\n  Available sizes:\n      [ 1] 8x 8  f8\n    * [ 2] 8x16  f16\n─"),
            std::string::npos)
      << report;
}

}  // namespace
}  // namespace brenlow

#include "terminal/console_font.h"

#include <gtest/gtest.h>

#include <csignal>

#include "tests/terminal/fake_machine.h"
#include "tests/terminal/font_files.h"

namespace brenlow {
namespace {

using test::gzipped;
using test::psf1;
using test::psf2;

class ConsoleFont : public testing::Test {
 protected:
  void add_sizes(std::initializer_list<int> heights) const {
    for (int height : heights) machine.write("fonts/f" + std::to_string(height) + ".psf", psf1(height));
  }
  ConsoleFontController controller() const {
    ConsoleFontController made(files, {machine.file("fonts")}, machine.file("no-tty"), tools.search_path());
    made.setfont_limit = test::PATIENCE;
    return made;
  }

  test::TemporaryFolder machine;
  test::FakeTools tools;
  ConfigFiles files = config_files(machine.path().string());
};

TEST_F(ConsoleFont, OneFontPerSizeIsOfferedTheBestOfItsKind) {
  for (const auto& [name, bytes] : std::map<std::string, std::string>{{"one/zebra.psf", psf1(16)},
                                                                      {"one/Ter-x16.psf.gz", gzipped(psf1(16))},
                                                                      {"one/spleen-8x16.psf", psf1(16)},
                                                                      {"one/b24.psf", psf2(12, 24)},
                                                                      {"one/a24.psf.gz", gzipped(psf2(12, 24))},
                                                                      {"one/wide.psf", psf2(16, 16)},
                                                                      {"one/A9.psf", psf1(9)},
                                                                      {"one/Spleen9.psf", psf1(9)},
                                                                      {"one/readme.txt", psf1(10)},
                                                                      {"one/cut.psf", psf1(11).substr(0, 200)},
                                                                      {"two/cut.psf", psf1(11)}})
    machine.write(name, bytes);
  machine.folder("one/folder.psf");
  std::string found;
  for (const FontEntry& font : _scan_fonts({machine.file("absent"), machine.file("one"), machine.file("two")}))
    found += std::to_string(font.width) + "x" + std::to_string(font.height) + " " + font.name + "\n";
  EXPECT_EQ(found, "8x9 Spleen9\n8x11 cut\n8x16 Ter-x16\n16x16 wide\n12x24 a24\n");
}

TEST_F(ConsoleFont, OnlyAFontThatWasLoadedIsRememberedAndTheWindowToldOfItsSize) {
  static volatile std::sig_atomic_t resizes = 0;
  const auto before = std::signal(SIGWINCH, [](int) { resizes = resizes + 1; });
  add_sizes({8, 14, 16});
  ConsoleFontController fonts = controller();
  const std::string failure = "Failed to set font f16 (try: sudo setfont " + machine.file("fonts/f16.psf") + ")";
  EXPECT_EQ(fonts.increase(), failure) << "no such tool";
  tools.add("setfont", "exit 1");
  EXPECT_EQ(fonts._apply(), failure);
  tools.add("setfont", test::HANG);
  fonts.setfont_limit = std::chrono::milliseconds(50);
  EXPECT_EQ(fonts._apply(), failure);
  EXPECT_EQ(controller().current_name(), "f14") << "the middle size at first";
  EXPECT_EQ(resizes, 0);
  tools.add("setfont", "");
  fonts = controller();
  EXPECT_EQ(fonts.increase(), "Zoom 3/3: f16 (8x16)");
  EXPECT_EQ(resizes, 1);
  std::signal(SIGWINCH, before);
  EXPECT_EQ(controller().current_name(), "f16");
  EXPECT_NE(fonts.debug_info().find("      [ 2] 8x14  f14\n    * [ 3] 8x16  f16\n"), std::string::npos);
  std::filesystem::remove(machine.file("fonts/f16.psf"));
  EXPECT_EQ(controller().current_name(), "f14") << "the middle of what is left";
}

TEST_F(ConsoleFont, WithoutFontsEveryCommandSaysWhereTheyWereLookedFor) {
  ConsoleFontController fonts(files, {"/nonexistent/a", "/nonexistent/b"}, "", tools.search_path());
  const std::string message = "No PSF fonts found in /nonexistent/a, /nonexistent/b";
  EXPECT_FALSE(fonts.available());
  for (const std::string& told : {fonts.increase(), fonts.decrease(), fonts.reset()}) EXPECT_EQ(told, message);
  EXPECT_EQ(fonts._apply(), "No fonts available");
}

}  // namespace
}  // namespace brenlow

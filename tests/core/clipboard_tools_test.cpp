#include "core/clipboard_tools.h"

#include <gtest/gtest.h>

#include "tests/terminal/fake_machine.h"

namespace brenlow {
namespace {

using test::FakeEnvironment;
using test::FakeTools;
using test::Variables;

const Variables BOTH_DISPLAYS = {{"WAYLAND_DISPLAY", "wayland-0"}, {"DISPLAY", ":0"}};

TEST(ClipboardTools, EveryToolOfTheDesktopIsTriedInOrder) {
  const FakeTools tools;
  for (const char* name : {"wl-copy", "wl-paste", "xclip", "xsel", "pbcopy", "pbpaste"}) tools.add(name, "exit 1");
  struct Case {
    Variables environment;
    std::string copy, paste;
  };
  const std::string wayland_copy = "wl-copy\n", wayland_paste = "wl-paste|--no-newline\n";
  const std::string x_copy = "xclip|-selection|clipboard\nxsel|--clipboard|--input\n";
  const std::string x_paste = "xclip|-selection|clipboard|-out\nxsel|--clipboard|--output\n";
  const Case cases[] = {
      {BOTH_DISPLAYS, wayland_copy + x_copy + "pbcopy\n", wayland_paste + x_paste + "pbpaste\n"},
      {{{"WAYLAND_DISPLAY", ""}, {"DISPLAY", ":0"}}, x_copy + "pbcopy\n", x_paste + "pbpaste\n"},
      {{{"WAYLAND_DISPLAY", "wayland-0"}}, wayland_copy + "pbcopy\n", wayland_paste + "pbpaste\n"},
      {{}, "pbcopy\n", "pbpaste\n"},
  };
  for (const Case& c : cases) {
    const FakeEnvironment environment(c.environment);
    EXPECT_FALSE(_clipboard_copy("text", tools.search_path()));
    EXPECT_EQ(tools.take_log(), c.copy);
    EXPECT_FALSE(_clipboard_paste(tools.search_path(), test::PATIENCE));
    EXPECT_EQ(tools.take_log(), c.paste);
  }
}

TEST(ClipboardTools, TheFirstToolThatTakesTheTextGetsAllOfIt) {
  const FakeEnvironment environment(BOTH_DISPLAYS);
  const FakeTools tools;
  const std::string held = tools.folder().file("held");
  tools.add("wl-copy", "exit 1");
  tools.add("xsel", "cat > '" + held + "'");
  tools.add("pbcopy", "");
  std::string text = "Grüße\n\ttabs\r\n";
  text.resize(300'000, 'x');
  for (const std::string& copied : {text, std::string()}) {
    EXPECT_TRUE(_clipboard_copy(copied, tools.search_path()));
    EXPECT_EQ(tools.take_log(), "wl-copy\nxsel|--clipboard|--input\n");
    EXPECT_TRUE(test::read_bytes(held) == copied);
  }
}

TEST(ClipboardTools, PastePassesOverToolsThatHangOrFailAndKeepsEveryByte) {
  const FakeEnvironment environment(BOTH_DISPLAYS);
  const FakeTools tools;
  tools.add("wl-paste", "printf half; " + test::HANG);
  tools.add("xclip", "printf wrong; exit 1");
  tools.add("xsel", "printf 'caf\\303\\251 \\377\\r\\n'");
  EXPECT_EQ(_clipboard_paste(tools.search_path(), std::chrono::milliseconds(1000)), "caf\xc3\xa9 \xff\r\n");
  EXPECT_EQ(tools.take_log(), "wl-paste|--no-newline\nxclip|-selection|clipboard|-out\nxsel|--clipboard|--output\n");
  tools.add("wl-paste", "");
  EXPECT_EQ(_clipboard_paste(tools.search_path(), test::PATIENCE), "") << "an empty clipboard is an answer";
}

}  // namespace
}  // namespace brenlow

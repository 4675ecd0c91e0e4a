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
  const std::string x_copy = "xclip|-selection|clipboard\nxsel|--clipboard|--input\npbcopy\n";
  const std::string x_paste = "xclip|-selection|clipboard|-out\nxsel|--clipboard|--output\npbpaste\n";
  for (const auto& [variables, copied, pasted] :
       {std::tuple(BOTH_DISPLAYS, "wl-copy\n" + x_copy, "wl-paste|--no-newline\n" + x_paste),
        std::tuple(Variables{{"WAYLAND_DISPLAY", ""}, {"DISPLAY", ":0"}}, x_copy, x_paste),
        std::tuple(Variables{}, std::string("pbcopy\n"), std::string("pbpaste\n"))}) {
    const FakeEnvironment environment(variables);
    EXPECT_FALSE(_clipboard_copy("text", tools.search_path()));
    EXPECT_EQ(tools.take_log(), copied);
    EXPECT_FALSE(_clipboard_paste(tools.search_path(), test::PATIENCE));
    EXPECT_EQ(tools.take_log(), pasted);
  }
}

TEST(ClipboardTools, TheFirstToolThatWorksGetsAndGivesEveryByte) {
  const FakeEnvironment environment(BOTH_DISPLAYS);
  const FakeTools tools;
  const std::string held = "'" + tools.folder().file("held") + "'";
  tools.add("wl-copy", "exit 1");
  tools.add("xsel", "[ $2 = --input ] && cat > " + held + " || cat " + held);
  tools.add("wl-paste", "printf half; " + test::HANG);
  tools.add("pbcopy", "");
  std::string text = "Grüße \xff\n\ttabs\r\n";
  text.resize(300'000, 'x');
  for (const std::string& copied : {text, std::string()}) {
    EXPECT_TRUE(_clipboard_copy(copied, tools.search_path()));
    EXPECT_TRUE(_clipboard_paste(tools.search_path(), std::chrono::milliseconds(1000)) == copied);
    tools.add("xclip", "printf wrong; exit 1");
  }
}

}  // namespace
}  // namespace brenlow

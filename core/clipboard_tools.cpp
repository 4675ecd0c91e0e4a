#include "core/clipboard_tools.h"

#include <array>
#include <vector>

#include "terminal/child_process.h"
#include "terminal/environment.h"

namespace brenlow {

namespace {

struct ClipboardTool {
  const char* variable;  // must be set and not empty; null: no condition
  std::vector<std::string> copy;
  std::vector<std::string> paste;
};

// In the order they are tried.
const std::array<ClipboardTool, 4>& clipboard_tools() {
  static const std::array<ClipboardTool, 4> TOOLS{{
      {"WAYLAND_DISPLAY", {"wl-copy"}, {"wl-paste", "--no-newline"}},
      {"DISPLAY", {"xclip", "-selection", "clipboard"}, {"xclip", "-selection", "clipboard", "-out"}},
      {"DISPLAY", {"xsel", "--clipboard", "--input"}, {"xsel", "--clipboard", "--output"}},
      {nullptr, {"pbcopy"}, {"pbpaste"}},
  }};
  return TOOLS;
}

bool applies(const ClipboardTool& tool) { return !tool.variable || !environment(tool.variable).value_or("").empty(); }

}  // namespace

bool _clipboard_copy(std::string_view text, const std::string& search_path) {
  ChildOptions options;
  options.input = text;
  // The tools stay in the background to serve the text to others; nothing of theirs is waited for.
  options.capture = false;
  options.search_path = search_path;
  for (const ClipboardTool& tool : clipboard_tools()) {
    if (!applies(tool)) continue;
    const auto result = run_child(tool.copy, options);
    if (result && result->status == 0) return true;
  }
  return false;
}

std::optional<std::string> _clipboard_paste(const std::string& search_path, std::chrono::milliseconds time_limit) {
  ChildOptions options;
  options.time_limit = time_limit;
  options.search_path = search_path;
  for (const ClipboardTool& tool : clipboard_tools()) {
    if (!applies(tool)) continue;
    auto result = run_child(tool.paste, options);
    if (result && result->status == 0) return std::move(result->output);
  }
  return std::nullopt;
}

}  // namespace brenlow

#pragma once

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

#include "tests/support/temporary_folder.h"

namespace brenlow::test {

using Variables = std::map<std::string, std::string>;

// An environment that speaks of no terminal, clipboard or multiplexer but for the variables given; the
// former one is back at the end.
class FakeEnvironment {
 public:
  explicit FakeEnvironment(const Variables& variables = {}) {
    for (const char* name :
         {"ALACRITTY_SOCKET", "ALACRITTY_WINDOW_ID", "Brenlow_FONT", "COLORTERM", "DISPLAY", "FOOT_SERVER_SOCKET",
          "FOOT_VERSION", "KITTY_PID", "KITTY_WINDOW_ID", "TERM", "TERM_PROGRAM", "TMUX", "VTE_VERSION",
          "WAYLAND_DISPLAY", "WEZTERM_UNIX_SOCKET", "WEZTERM_PANE"}) {
      const char* value = std::getenv(name);
      _before[name] = value ? std::optional<std::string>(value) : std::nullopt;
      ::unsetenv(name);
    }
    for (const auto& [name, value] : variables) ::setenv(name.c_str(), value.c_str(), 1);
  }
  FakeEnvironment(const FakeEnvironment&) = delete;
  FakeEnvironment& operator=(const FakeEnvironment&) = delete;
  ~FakeEnvironment() {
    for (const auto& [name, value] : _before)
      value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
  }

 private:
  std::map<std::string, std::optional<std::string>> _before;
};

// A search path with shell scripts in place of external tools. Each run leaves a line "name|argument|...".
class FakeTools {
 public:
  FakeTools() { std::filesystem::create_directory(search_path()); }

  void add(const std::string& name, const std::string& script) const {
    const std::string path = _folder.write("bin/" + name, "#!/bin/sh\n{ printf %s " + name +
                                                              "; for a; do printf '|%s' \"$a\"; done; echo; } >> '" +
                                                              _folder.file("log") + "'\n" + script + "\n");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  }
  std::string search_path() const { return _folder.file("bin"); }
  const TemporaryFolder& folder() const { return _folder; }

  // The runs since the last call.
  std::string take_log() const {
    const std::string log = _folder.file("log");
    if (!std::filesystem::exists(log)) return "";
    std::string text = read_bytes(log);
    std::filesystem::remove(log);
    return text;
  }

 private:
  TemporaryFolder _folder;
};

// Far above what a machine under load needs, far below the sleep of a tool that hangs.
inline constexpr std::chrono::seconds PATIENCE{20};
inline const std::string HANG = "exec sleep 1000";

}  // namespace brenlow::test

#pragma once

#include <string>
#include <vector>

#include "customise/settings.h"

namespace brenlow {

// The user's home folder: HOME, else what the user database says.
std::string home_folder();

// What the machine around a session offers, or lacks. The defaults are the real thing; a test hands in
// folders of its own.
struct Machine {
  ConfigFiles files = config_files(home_folder());
  std::string tty = "/dev/tty";  // where escape sequences and console requests go
  std::string power_supplies = "/sys/class/power_supply";
  std::vector<std::string> font_dirs;  // empty: FONT_DIRS
  std::string search_path;             // for external tools; empty: PATH
  int input = 0;                       // descriptor that keys are read from
  int output = 1;                      // and that the screen is written to
};

}  // namespace brenlow

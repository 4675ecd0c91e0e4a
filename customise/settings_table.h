#pragma once

#include <span>
#include <string_view>

#include "customise/settings.h"

namespace brenlow {

// A setting as brenlow.conf presents it.
struct SettingRow {
  std::string_view section;
  std::string_view key;
  std::string_view comment;  // lines divided by LF
};
// In the order of the file; the rows of one section stand together.
extern const std::span<const SettingRow> SETTING_ROWS;

// The settings of a fresh installation, in the order in which missing ones are added.
const std::vector<std::pair<std::string_view, Setting>>& fresh_settings();

}  // namespace brenlow

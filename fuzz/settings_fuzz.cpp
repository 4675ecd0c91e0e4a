// A settings file: what is read is written so that it reads the same.

#include "customise/settings.h"

#include <cstdint>
#include <string>

#include "fuzz/require.h"

using namespace brenlow;
using fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string text(data, data + size);
  std::erase(text, '\0');  // files with NUL bytes are not parsed
  const SettingsMap settings = parse_settings(text);
  const std::string written = settings_file_text(settings);
  const SettingsMap again = parse_settings(written);
  for (const auto& [key, value] : settings.entries()) {
    const Setting* kept = again.find(key);
    require(kept && *kept == value);
  }
  require(settings_file_text(again) == written);
  for (const auto& [key, value] : settings.entries()) {
    setting_margin(settings, key);
    setting_truth(settings, key, true);
    setting_is_not_no(settings, key, true);
  }
  setting_cursor_shape(settings);
  setting_extension(settings);
  return 0;
}

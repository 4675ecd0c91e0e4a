#include "terminal/console_font.h"

#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <set>
#include <system_error>
#include <tuple>

#include "core/unicode.h"
#include "terminal/child_process.h"
#include "terminal/console_requests.h"
#include "terminal/psf.h"

namespace brenlow {

namespace {

constexpr std::string_view FONT_SETTING = "console_font";

// The argument of PIO_CONSOLEFONT.
struct ConsoleFontRequest {
  std::uint32_t width;
  std::uint32_t height;
  std::uint32_t charcount;
  const char* data;
};

// The file name without the extension of a font, or nothing for another file.
std::optional<std::string> font_name(const std::filesystem::path& path) {
  const std::string name = path.filename().string();
  for (std::string_view extension : {".psf.gz", ".psf"})
    if (name.ends_with(extension)) return name.substr(0, name.size() - extension.size());
  return std::nullopt;
}

// The files of a folder by path; none if it cannot be read.
std::vector<std::filesystem::path> sorted_files(const std::string& dir) {
  std::vector<std::filesystem::path> paths;
  std::error_code failure;
  std::filesystem::directory_iterator entries(dir, failure);
  for (; !failure && entries != std::filesystem::directory_iterator(); entries.increment(failure))
    paths.push_back(entries->path());
  std::ranges::sort(paths);
  return paths;
}

std::vector<FontEntry> all_fonts(const std::vector<std::string>& dirs) {
  std::vector<FontEntry> fonts;
  std::set<std::string> seen;
  for (const std::string& dir : dirs) {
    for (const auto& path : sorted_files(dir)) {
      const auto name = font_name(path);
      if (!name || seen.contains(*name)) continue;
      const auto info = _psf_info(path.string());
      if (!info) continue;  // and a sound file of this name in a later folder may still serve
      seen.insert(*name);
      fonts.push_back({info->height, info->width, *name, path.string()});
    }
  }
  return fonts;
}

int preference(const std::string& name) {
  const std::string lower_case = lowered_ascii(name);
  return lower_case.starts_with("ter-") ? 0 : lower_case.starts_with("spleen") ? 1 : 2;
}

std::string size_label(const FontEntry& font) { return std::to_string(font.width) + "x" + std::to_string(font.height); }

std::string right_aligned(int number) {
  const std::string digits = std::to_string(number);
  return digits.size() < 2 ? " " + digits : digits;
}

}  // namespace

const std::vector<std::string> FONT_DIRS = {"/usr/share/kbd/consolefonts", "/usr/share/consolefonts",
                                            "/lib/kbd/consolefonts"};

std::vector<FontEntry> _scan_fonts(const std::vector<std::string>& dirs) {
  std::vector<FontEntry> fonts = all_fonts(dirs);
  std::ranges::sort(fonts, {}, [](const FontEntry& font) {
    return std::tuple(font.height, font.width, preference(font.name), font.name);
  });
  auto same_size = [](const FontEntry& a, const FontEntry& b) { return a.height == b.height && a.width == b.width; };
  fonts.erase(std::unique(fonts.begin(), fonts.end(), same_size), fonts.end());
  return fonts;
}

ConsoleFontController::ConsoleFontController(ConfigFiles files, std::vector<std::string> dirs, std::string tty,
                                             std::string search_path)
    : _fonts(_scan_fonts(dirs)),
      _files(std::move(files)),
      _dirs(std::move(dirs)),
      _tty(std::move(tty)),
      _search_path(std::move(search_path)) {
  _idx = _index_of_saved_font();
}

// The middle size unless a saved font is there.
int ConsoleFontController::_index_of_saved_font() const {
  const SettingsMap settings = load_config(_files);
  if (const Setting* saved = settings.find(FONT_SETTING)) {
    // The settings file has no quoting: a font named "8" or "no" comes back as a number or a truth, so the
    // names are read the same way to compare.
    auto is_saved = [&](const FontEntry& font) { return _parse_conf_value(font.name) == *saved; };
    const auto font = std::ranges::find_if(_fonts, is_saved);
    if (font != _fonts.end()) return static_cast<int>(font - _fonts.begin());
  }
  return static_cast<int>(_fonts.size() / 2);
}

std::string ConsoleFontController::_message_without_fonts() const {
  std::string message = "No PSF fonts found in ";
  for (const std::string& dir : _dirs) message += (&dir == &_dirs.front() ? "" : ", ") + dir;
  return message;
}

std::string ConsoleFontController::current_name() const {
  return available() ? _fonts[static_cast<std::size_t>(_idx)].name : "";
}

std::string ConsoleFontController::current_label() const {
  return available() ? size_label(_fonts[static_cast<std::size_t>(_idx)]) : "";
}

std::string ConsoleFontController::increase() {
  if (!available()) return _message_without_fonts();
  if (_idx + 1 >= static_cast<int>(_fonts.size())) return "Already at largest font (" + current_label() + ")";
  ++_idx;
  return _apply();
}

std::string ConsoleFontController::decrease() {
  if (!available()) return _message_without_fonts();
  if (_idx <= 0) return "Already at smallest font (" + current_label() + ")";
  --_idx;
  return _apply();
}

std::string ConsoleFontController::reset() {
  if (!available()) return _message_without_fonts();
  _idx = static_cast<int>(_fonts.size() / 2);
  return _apply();
}

std::string ConsoleFontController::_apply() {
  if (!available()) return "No fonts available";
  const FontEntry& font = _fonts[static_cast<std::size_t>(_idx)];
  if (_setfont(font.path)) {
    persist_setting(_files, FONT_SETTING, font.name);
  } else if (!_ioctl(font.path)) {
    return "Failed to set font " + font.name + " (try: sudo setfont " + font.path + ")";
  }
  // The console's rows and columns go with the font.
  ::kill(::getpid(), SIGWINCH);
  return "Zoom " + std::to_string(_idx + 1) + "/" + std::to_string(_fonts.size()) + ": " + font.name + " (" +
         size_label(font) + ")";
}

bool ConsoleFontController::_setfont(const std::string& path) const {
  ChildOptions options;
  options.time_limit = setfont_limit;
  options.search_path = _search_path;
  const auto result = run_child({"setfont", path}, options);
  return result && result->status == 0;
}

bool ConsoleFontController::_ioctl(const std::string& path) const {
  const auto bytes = _read_font_bytes(path);
  const auto info = bytes ? psf_info_of(*bytes) : std::nullopt;
  if (!info) return false;
  ConsoleFontRequest request{static_cast<std::uint32_t>(info->width), static_cast<std::uint32_t>(info->height),
                             info->count, psf_glyphs(*info, *bytes).data()};
  return console_ioctl(_tty, PIO_CONSOLEFONT, &request);
}

std::string ConsoleFontController::debug_info() const {
  std::string report = "── console font debug ──────────────────────────\n";
  report += "  PSF fonts (unique sizes) : " + std::to_string(_fonts.size()) + "\n";
  report += "  Current index : " + std::to_string(_idx) + "\n";
  report += "  Current font  : " + current_name() + " (" + current_label() + ")\n";
  report += "  Dirs searched:\n";
  for (const std::string& dir : _dirs) {
    std::error_code unknown;
    report += "    " + dir + (std::filesystem::is_directory(dir, unknown) ? "  (exists)\n" : "  (missing)\n");
  }
  if (available()) report += "  Available sizes:\n";
  for (int i = 0; i < static_cast<int>(_fonts.size()); ++i) {
    const FontEntry& font = _fonts[static_cast<std::size_t>(i)];
    report += std::string("    ") + (i == _idx ? "*" : " ") + " [" + right_aligned(i + 1) + "] " +
              std::to_string(font.width) + "x" + right_aligned(font.height) + "  " + font.name + "\n";
  }
  for (int i = 0; i < 48; ++i) report += "─";
  return report;
}

}  // namespace brenlow

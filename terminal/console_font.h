#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "customise/settings.h"

namespace brenlow {

// Where the distributions keep console fonts.
extern const std::vector<std::string> FONT_DIRS;

struct FontEntry {
  int height;
  int width;
  std::string name;  // file name without .psf or .psf.gz
  std::string path;
};

// One font per distinct pixel size, from the smallest to the largest; of equal sizes Terminus ("ter-") is
// preferred, then "spleen". A name in an earlier folder hides the same name in a later one. What is no font
// is passed over.
std::vector<FontEntry> _scan_fonts(const std::vector<std::string>& dirs);

// Zoom on the Linux console: steps through the bitmap fonts of the system.
class ConsoleFontController {
 public:
  explicit ConsoleFontController(ConfigFiles files, std::vector<std::string> dirs = FONT_DIRS,
                                 std::string tty = "/dev/tty", std::string search_path = {});

  bool available() const { return !_fonts.empty(); }
  std::string current_name() const;   // empty without fonts
  std::string current_label() const;  // "WxH"; empty without fonts
  // These three give a message for the status line.
  std::string increase();
  std::string decrease();
  std::string reset();  // to the middle size
  // Loads the current font, keeps its name in the settings and has the screen take over its new size; gives
  // a message.
  std::string _apply();
  bool _setfont(const std::string& path) const;
  bool _ioctl(const std::string& path) const;
  std::string debug_info() const;

  std::vector<FontEntry> _fonts;
  int _idx = 0;                                   // valid unless there are no fonts
  std::chrono::milliseconds setfont_limit{4000};  // for a run of the font tool

 private:
  int _index_of_saved_font() const;
  std::string _message_without_fonts() const;

  ConfigFiles _files;
  std::vector<std::string> _dirs;
  std::string _tty;
  std::string _search_path;
};

}  // namespace brenlow

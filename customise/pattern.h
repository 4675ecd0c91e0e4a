#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>

struct pcre2_real_code_32;

namespace brenlow {

// A compiled regular expression in Python's dialect, matched against lines of code points.
class Pattern {
 public:
  // Null for one that does not compile or is too large.
  static std::shared_ptr<const Pattern> compile(std::u32string_view python);

 private:
  friend class PatternScan;
  struct CodeDeleter {
    void operator()(pcre2_real_code_32* code) const;
  };
  using Code = std::unique_ptr<pcre2_real_code_32, CodeDeleter>;
  explicit Pattern(Code code) : _code(std::move(code)) {}

  Code _code;
};

// The matches of a pattern in a line from left to right, without the empty ones. The work is bounded in
// proportion to the line; past the bound the scan ends and has given up. One scan at a time: scans share
// their memory.
class PatternScan {
 public:
  PatternScan(const Pattern& pattern, std::u32string_view line);

  // Goes on to the next match; false when there is none or the scan gave up.
  bool next();
  int start() const { return static_cast<int>(_start); }
  int end() const { return static_cast<int>(_end); }
  bool gave_up() const { return _gave_up; }

 private:
  const pcre2_real_code_32* _code;
  std::u32string_view _line;
  std::size_t _start = 0;
  std::size_t _end = 0;
  bool _gave_up = false;
};

}  // namespace brenlow

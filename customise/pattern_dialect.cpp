// Python's regular expressions rewritten for PCRE2, in one pass. Most constructs are the same; these differ:
//
//   Python                          given to PCRE2
//   (?P<name>...)                   (...), the name being looked up here
//   (?P=name)  \1 .. \99            \g{number}; refused before the group is closed
//   (?(name)a|b)  (?(1)a|b)         (?(number)a|b)
//   (?imsx) at the start            (?ims) before everything; refused anywhere else
//   (?a)  (?a:...)                  \w \d \s \b and their opposites written out for ASCII
//   (?u)                            nothing: the default
//   (?L)                            refused, as for every text pattern
//   (?x)                            white space and comments are left out here
//   (?#...)                         left out
//   \Z                              \z
//   \s  \S                          with the separators U+001C to U+001F
//   \v                              U+000B alone
//   \xHH \uHHHH \UHHHHHHHH \ooo     the character
//   {,n}  {,}                       {0,n}  {0,}
//   { that begins no quantifier     the character
//   [ within a class, [[:alpha:]]   the character
//   other escaped letters           refused: \h \H \R \K \Q \E \G \X \C \N \p ...
//   (* (?R) (?1) (?&n) (?P>n)       refused, as are (?|...), (?C), (?<n>...) and (?'n'...)
//   a quantifier behind a quantifier, behind an assertion or at the start: refused

#include "customise/pattern_dialect.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace brenlow {

namespace {

struct Refused {};

constexpr std::u32string_view STEP = U"(?C)";
constexpr std::u32string_view STEP_BEFORE_REFERENCE = U"(?C1)";

bool is_digit(char32_t c) { return c >= U'0' && c <= U'9'; }
bool is_octal(char32_t c) { return c >= U'0' && c <= U'7'; }
bool is_letter(char32_t c) { return (c >= U'a' && c <= U'z') || (c >= U'A' && c <= U'Z'); }
bool is_blank(char32_t c) { return c == U' ' || (c >= U'\t' && c <= U'\r'); }

int hex_value(char32_t c) {
  if (is_digit(c)) return static_cast<int>(c - U'0');
  if (c >= U'a' && c <= U'f') return static_cast<int>(c - U'a' + 10);
  if (c >= U'A' && c <= U'F') return static_cast<int>(c - U'A' + 10);
  return -1;
}

// An escape that stands for a set of characters: alone and as part of a class.
struct Shorthand {
  char32_t letter;
  std::u32string_view alone, within;
  std::u32string_view ascii_alone, ascii_within;
};
// Everything but white space, as ranges: a class cannot take members away.
constexpr std::u32string_view NO_SPACE =
    U"\\x{0}-\\x{8}\\x{E}-\\x{1B}\\!-\\x{84}\\x{86}-\\x{9F}\\x{A1}-\\x{167F}\\x{1681}-\\x{1FFF}\\x{200B}-\\x{2027}"
    U"\\x{202A}-\\x{202E}\\x{2030}-\\x{205E}\\x{2060}-\\x{2FFF}\\x{3001}-\\x{10FFFF}";
constexpr Shorthand SHORTHANDS[] = {
    {U'd', U"\\d", U"\\d", U"[0-9]", U"0-9"},
    {U'D', U"\\D", U"\\D", U"[^0-9]", U"\\x{0}-\\/\\:-\\x{10FFFF}"},
    {U'w', U"\\w", U"\\w", U"[A-Za-z0-9_]", U"A-Za-z0-9_"},
    {U'W', U"\\W", U"\\W", U"[^A-Za-z0-9_]", U"\\x{0}-\\/\\:-\\@\\[-\\^\\`\\{-\\x{10FFFF}"},
    {U's', U"[\\s\\x{1C}-\\x{1F}]", U"\\s\\x{1C}-\\x{1F}", U"[ \\t-\\r]", U" \\t-\\r"},
    {U'S', U"[^\\s\\x{1C}-\\x{1F}]", NO_SPACE, U"[^ \\t-\\r]", U"\\x{0}-\\x{8}\\x{E}-\\x{1F}\\!-\\x{10FFFF}"},
};
// The letters of escapes for control characters, and these characters.
constexpr std::u32string_view CONTROL_LETTERS = U"afnrtv";
constexpr std::u32string_view CONTROLS = U"\a\f\n\r\t\v";

constexpr std::u32string_view ASCII_BOUNDARY =
    U"(?:(?<=[A-Za-z0-9_])(?![A-Za-z0-9_])|(?<![A-Za-z0-9_])(?=[A-Za-z0-9_]))";
constexpr std::u32string_view ASCII_NO_BOUNDARY =
    U"(?:(?<=[A-Za-z0-9_])(?=[A-Za-z0-9_])|(?<![A-Za-z0-9_])(?![A-Za-z0-9_]))";

const Shorthand* shorthand(char32_t letter) {
  auto found = std::find_if(std::begin(SHORTHANDS), std::end(SHORTHANDS),
                            [&](const Shorthand& entry) { return entry.letter == letter; });
  return found == std::end(SHORTHANDS) ? nullptr : found;
}

class Translation {
 public:
  explicit Translation(std::u32string_view source) : _source(source) {}

  std::u32string run() {
    while (_at < _source.size()) _item();
    if (_open.size() != 1 || _highest_condition > _groups()) throw Refused();
    if (_global_flags.empty()) return std::move(_out);
    return U"(?" + _global_flags + U")" + _out;
  }

 private:
  struct Group {
    int number = 0;  // 0 for a group that captures nothing
    bool verbose = false;
    bool ascii = false;
    bool has_branches = false;
  };
  // One member of a class: a character, or a set that cannot be an end of a range.
  struct Member {
    char32_t character = 0;
    const Shorthand* set = nullptr;
  };

  char32_t _peek() const { return _at < _source.size() ? _source[_at] : U'\0'; }
  char32_t _take() {
    if (_at == _source.size()) throw Refused();
    return _source[_at++];
  }
  bool _accept(char32_t wanted) {
    if (_at == _source.size() || _source[_at] != wanted) return false;
    ++_at;
    return true;
  }
  std::u32string_view _take_until(char32_t end) {
    std::size_t found = _source.find(end, _at);
    if (found == std::u32string_view::npos) throw Refused();
    std::u32string_view taken = _source.substr(_at, found - _at);
    _at = found + 1;
    return taken;
  }
  std::u32string_view _take_digits() {
    std::size_t from = _at;
    while (is_digit(_peek())) ++_at;
    return _source.substr(from, _at - from);
  }

  int _groups() const { return static_cast<int>(_closed.size()) - 1; }

  void _item() {
    char32_t c = _take();
    if (_open.back().verbose && is_blank(c)) return;
    if (_open.back().verbose && c == U'#') {
      while (_at < _source.size() && _take() != U'\n') {
      }
      return;
    }
    switch (c) {
      case U'\\':
        return _escape();
      case U'[':
        return _class();
      case U'(':
        return _open_group();
      case U')':
        return _close_group();
      case U'|':
        return _branch();
      case U'{':
        return _brace();
      case U'*':
      case U'+':
      case U'?':
        return _repeat({c}, true);
      case U'^':
      case U'$':
        return _assertion({&c, 1});
      case U'.':
        return _atom(U".");
      default:
        return _character(c);
    }
  }

  void _atom(std::u32string_view text) {
    _out += text;
    _repeatable = true;
  }
  void _assertion(std::u32string_view text) {
    _out += text;
    _repeatable = false;
  }
  void _literal(char32_t c) {
    if (c == 0) {
      _out += U"\\x{0}";
      return;
    }
    if (c > 0x20 && c < 0x7F && !is_letter(c) && !is_digit(c)) _out += U'\\';
    _out += c;
  }
  void _character(char32_t c) {
    _literal(c);
    _repeatable = true;
  }

  void _branch() {
    if (_open.size() > 1) _out += STEP;
    _open.back().has_branches = true;
    _assertion(U"|");
  }

  void _repeat(const std::u32string& quantifier, bool counted) {
    if (!_repeatable) throw Refused();
    _out += quantifier;
    if (_peek() == U'?' || _peek() == U'+') _out += _take();
    if (counted) _out += STEP;
    _repeatable = false;
  }

  void _brace() {
    std::size_t behind = _at;
    std::u32string low(_take_digits());
    bool comma = _accept(U',');
    std::u32string high(comma ? _take_digits() : U"");
    bool begins_quantifier = (comma || !low.empty()) && _accept(U'}');
    if (!begins_quantifier) {
      _at = behind;
      return _character(U'{');
    }
    if (low.empty()) low = U"0";
    // A small fixed count is no more work than the characters written out, and those may speed up the search.
    bool counted = comma || low.size() > 1;
    _repeat(U"{" + low + (comma ? U"," + high : U"") + U"}", counted);
  }

  // ---- escapes

  char32_t _hex(int digits) {
    char32_t value = 0;
    for (int i = 0; i < digits; ++i) {
      int digit = hex_value(_take());
      if (digit < 0) throw Refused();
      value = value * 16 + static_cast<char32_t>(digit);
    }
    if (value > 0x10FFFF || (value >= 0xD800 && value < 0xE000)) throw Refused();
    return value;
  }

  // `first` is the first digit of at most three.
  char32_t _octal(char32_t first) {
    char32_t value = first - U'0';
    for (int i = 0; i < 2 && is_octal(_peek()); ++i) value = value * 8 + (_take() - U'0');
    if (value > 0377) throw Refused();
    return value;
  }

  // The one character an escape stands for.
  char32_t _escaped_character(char32_t c) {
    if (c == U'x') return _hex(2);
    if (c == U'u') return _hex(4);
    if (c == U'U') return _hex(8);
    if (std::size_t control = CONTROL_LETTERS.find(c); control != CONTROL_LETTERS.npos) return CONTROLS[control];
    if (is_letter(c) || is_digit(c)) throw Refused();
    return c;
  }

  void _escape() {
    char32_t c = _take();
    bool ascii = _open.back().ascii;
    if (const Shorthand* set = shorthand(c)) return _atom(ascii ? set->ascii_alone : set->alone);
    switch (c) {
      case U'A':
        return _assertion(U"\\A");
      case U'Z':
        return _assertion(U"\\z");
      case U'b':
        return _assertion(ascii ? std::u32string(ASCII_BOUNDARY) : U"\\b");
      case U'B':
        return _assertion(ascii ? std::u32string(ASCII_NO_BOUNDARY) : U"\\B");
      case U'0':
        return _character(_octal(c));
      default:
        break;
    }
    if (!is_digit(c)) return _character(_escaped_character(c));
    bool three_octal = is_octal(c) && is_octal(_peek()) && _at + 1 < _source.size() && is_octal(_source[_at + 1]);
    if (three_octal) return _character(_octal(c));
    int number = static_cast<int>(c - U'0');
    if (is_digit(_peek())) number = number * 10 + static_cast<int>(_take() - U'0');
    _reference(number);
  }

  void _append_number(int number) {
    for (char digit : std::to_string(number)) _out += static_cast<char32_t>(digit);
  }

  void _reference(int number) {
    if (number > _groups() || !_closed[static_cast<std::size_t>(number)]) throw Refused();
    _out += STEP_BEFORE_REFERENCE;
    _out += U"\\g{";
    _append_number(number);
    _atom(U"}");
  }

  // ---- classes

  Member _member(char32_t c) {
    if (c != U'\\') return {c};
    c = _take();
    if (const Shorthand* set = shorthand(c)) return {0, set};
    if (c == U'b') return {U'\b'};
    if (is_octal(c)) return {_octal(c)};
    return {_escaped_character(c)};
  }

  void _append(const Member& member) {
    if (member.set)
      _out += _open.back().ascii ? member.set->ascii_within : member.set->within;
    else
      _literal(member.character);
  }

  void _class() {
    _out += U'[';
    if (_accept(U'^')) _out += U'^';
    bool first = true;
    for (char32_t c = _take(); c != U']' || first; c = _take()) {
      first = false;
      Member low = _member(c);
      _append(low);
      if (!_accept(U'-')) continue;
      if (_peek() == U']') {
        _literal(U'-');
        continue;
      }
      Member high = _member(_take());
      if (low.set || high.set || high.character < low.character) throw Refused();
      _out += U'-';
      _append(high);
    }
    _atom(U"]");
  }

  // ---- groups

  void _enter(std::u32string_view head, Group group) {
    _out += head;
    _open.push_back(group);
    _repeatable = false;
  }
  // A group with the flags of the one around it.
  void _enter_plain(std::u32string_view head) {
    Group group = _open.back();
    group.number = 0;
    group.has_branches = false;
    _enter(head, group);
  }
  void _enter_capture() {
    _closed.push_back(false);
    _enter_plain(U"(");
    _open.back().number = _groups();
  }

  void _close_group() {
    if (_open.size() == 1) throw Refused();
    if (_open.back().has_branches) _out += STEP;
    if (_open.back().number > 0) _closed[static_cast<std::size_t>(_open.back().number)] = true;
    _open.pop_back();
    _atom(U")");
  }

  void _open_group() {
    if (!_accept(U'?')) return _enter_capture();
    switch (_peek()) {
      case U':':
      case U'=':
      case U'!':
      case U'>':
        return _enter_plain(std::u32string(U"(?") + _take());
      case U'<':
        return _lookbehind();
      case U'P':
        return _named();
      case U'(':
        return _condition();
      case U'#':
        return static_cast<void>(_take_until(U')'));
      default:
        return _flags();
    }
  }

  void _lookbehind() {
    _take();
    char32_t kind = _take();
    if (kind != U'=' && kind != U'!') throw Refused();
    _enter_plain(std::u32string(U"(?<") + kind);
  }

  void _named() {
    _take();
    if (_accept(U'=')) return _reference(_named_group(_take_until(U')')));
    if (!_accept(U'<')) throw Refused();
    std::u32string name(_take_until(U'>'));
    auto part_of_name = [](char32_t c) { return is_letter(c) || is_digit(c) || c == U'_' || c >= 0x80; };
    if (name.empty() || is_digit(name.front()) || !std::all_of(name.begin(), name.end(), part_of_name)) throw Refused();
    if (_find_name(name) > 0) throw Refused();
    _enter_capture();
    _names.emplace_back(std::move(name), _groups());
  }

  int _find_name(std::u32string_view name) const {
    for (const auto& [known, number] : _names)
      if (known == name) return number;
    return 0;
  }
  int _named_group(std::u32string_view name) const {
    int number = _find_name(name);
    if (number == 0) throw Refused();
    return number;
  }

  void _condition() {
    _take();
    std::u32string_view name = _take_until(U')');
    int number = 0;
    if (!name.empty() && std::all_of(name.begin(), name.end(), is_digit)) {
      for (char32_t digit : name) number = std::min(number * 10 + static_cast<int>(digit - U'0'), 1'000'000);
      if (number == 0) throw Refused();
      _highest_condition = std::max(_highest_condition, number);
    } else {
      number = _named_group(name);
    }
    _enter_plain(U"(?(");
    _append_number(number);
    _out += U')';
  }

  // Letters from `allowed` up to the first other character.
  std::u32string _flag_letters(std::u32string_view allowed) {
    std::u32string letters;
    while (is_letter(_peek())) {
      char32_t letter = _take();
      if (allowed.find(letter) == std::u32string_view::npos) throw Refused();
      if (letters.find(letter) == std::u32string::npos) letters += letter;
    }
    return letters;
  }

  void _flags() {
    std::u32string on = _flag_letters(U"aimsux");
    bool minus = _accept(U'-');
    std::u32string off = minus ? _flag_letters(U"imsx") : U"";
    bool global = _accept(U')');
    if (!global && !_accept(U':')) throw Refused();
    if (global ? on.empty() || minus || _open.size() > 1 || !_out.empty() : minus && off.empty()) throw Refused();
    auto has = [](const std::u32string& letters, char32_t c) { return letters.find(c) != std::u32string::npos; };
    if ((has(on, U'a') && has(on, U'u')) || std::any_of(on.begin(), on.end(), [&](char32_t c) { return has(off, c); }))
      throw Refused();

    Group group = _open.back();
    group.number = 0;
    group.has_branches = false;
    group.verbose = (group.verbose || has(on, U'x')) && !has(off, U'x');
    group.ascii = (group.ascii || has(on, U'a')) && !has(on, U'u');
    auto ours = [](char32_t c) { return c == U'a' || c == U'u' || c == U'x'; };
    std::erase_if(on, ours);
    std::erase_if(off, ours);
    if (global) {
      _open.back() = group;
      _global_flags += on;
    } else {
      _enter(U"(?" + on + (off.empty() ? U"" : U"-" + off) + U":", group);
    }
  }

  std::u32string_view _source;
  std::size_t _at = 0;
  std::u32string _out;
  std::u32string _global_flags;
  std::vector<Group> _open{Group()};  // the whole pattern, then the groups that are not closed
  std::vector<bool> _closed{false};   // by the number of the capturing group; group 0 cannot be referred to
  std::vector<std::pair<std::u32string, int>> _names;
  int _highest_condition = 0;
  bool _repeatable = false;  // a quantifier may follow
};

}  // namespace

std::optional<std::u32string> pcre2_source(std::u32string_view python) {
  try {
    return Translation(python).run();
  } catch (const Refused&) {
    return std::nullopt;
  }
}

}  // namespace brenlow

#include "customise/syntax_rules.h"

#include <algorithm>
#include <array>

#include "core/colours.h"
#include "core/failure.h"
#include "core/unicode.h"
#include "customise/conf_file.h"
#include "customise/pattern.h"
#include "customise/syntax_defaults.h"

namespace brenlow {

namespace {

struct FormatPattern {
  std::u32string_view text;
  FormatKind kind;
};
constexpr std::array<FormatPattern, 4> _FORMAT_PATTERNS{{{U"@normal@", FormatKind::normal},
                                                         {U"@bold@", FormatKind::bold},
                                                         {U"@italic@", FormatKind::italic},
                                                         {U"@bold_italic@", FormatKind::bold_italic}}};

struct NamedColor {
  std::string_view name;
  unsigned char color;
};
constexpr std::array<NamedColor, 8> _NAMED_COLORS{{{"black", COLOR_BLACK},
                                                   {"red", COLOR_RED},
                                                   {"green", COLOR_GREEN},
                                                   {"yellow", COLOR_YELLOW},
                                                   {"blue", COLOR_BLUE},
                                                   {"magenta", COLOR_MAGENTA},
                                                   {"cyan", COLOR_CYAN},
                                                   {"white", COLOR_WHITE}}};

std::string stripped_and_lowered(std::string_view text) { return encode_utf8(lowered(trimmed(decode_utf8(text)))); }

std::optional<unsigned char> hex_byte(std::string_view digits) {
  int value = 0;
  for (char c : digits) {
    bool letter = c >= 'a' && c <= 'f';
    if (!letter && (c < '0' || c > '9')) return std::nullopt;
    value = value * 16 + (letter ? c - 'a' + 10 : c - '0');
  }
  return static_cast<unsigned char>(value);
}

// The name of the rule file's format: without leading dots, in lower case. A name that would lead out of the
// folder is none.
std::string format_name(std::string_view extension) {
  extension.remove_prefix(std::min(extension.find_first_not_of('.'), extension.size()));
  if (extension.find('/') != std::string_view::npos || extension.find('\0') != std::string_view::npos) return {};
  auto text = decode_utf8_strict(extension);
  return text ? encode_utf8(lowered(*text)) : lowered_ascii(extension);
}

std::string rule_file(const ConfigFiles& files, std::string_view name) {
  return files.CONFIG_DIR + "/" + std::string(name) + ".conf";
}

// The rule of a section that has both its lines, if the pattern compiles.
void finish_rule(SyntaxRules& rules, std::optional<std::u32string>& pattern, std::optional<StyleSpec>& style) {
  auto source = std::exchange(pattern, std::nullopt);
  auto wanted = std::exchange(style, std::nullopt);
  if (!source || !wanted) return;
  std::u32string name = lowered(trimmed(*source));
  auto format = std::find_if(_FORMAT_PATTERNS.begin(), _FORMAT_PATTERNS.end(),
                             [&](const FormatPattern& known) { return known.text == name; });
  if (format != _FORMAT_PATTERNS.end())
    rules.push_back({nullptr, format->kind, *wanted});
  else if (auto compiled = Pattern::compile(*source))
    rules.push_back({std::move(compiled), FormatKind::normal, *wanted});
}

}  // namespace

std::optional<StyleSpec> _parse_style_spec(std::string_view text) {
  std::string style = stripped_and_lowered(text);
  if (style == "inverse") return StyleSpec{};
  for (const NamedColor& known : _NAMED_COLORS)
    if (known.name == style) return StyleSpec{StyleSpec::Kind::color, known.color, 0, 0, 0};
  style.erase(0, std::min(style.find_first_not_of('#'), style.size()));
  if (style.size() != 6) return std::nullopt;
  auto r = hex_byte(std::string_view(style).substr(0, 2));
  auto g = hex_byte(std::string_view(style).substr(2, 2));
  auto b = hex_byte(std::string_view(style).substr(4, 2));
  if (!r || !g || !b) return std::nullopt;
  return StyleSpec{StyleSpec::Kind::rgb, 0, *r, *g, *b};
}

SyntaxRules parse_syntax_rules(std::string_view text) {
  SyntaxRules rules;
  std::optional<std::u32string> pattern;
  std::optional<StyleSpec> style;
  for (std::string_view line : conf_lines(text)) {
    if (line.empty() || line.front() == '#' || line.front() == ';') continue;
    if (line.front() == '[') {
      finish_rule(rules, pattern, style);
      continue;
    }
    auto entry = split_conf_line(line, 0);
    if (!entry) continue;
    std::string key = stripped_and_lowered(entry->key);
    if (key == "pattern") pattern = trimmed(decode_utf8(entry->value)).str();
    if (key == "style") style = _parse_style_spec(entry->value);
  }
  finish_rule(rules, pattern, style);
  return rules;
}

void _write_default_syntax_config(const ConfigFiles& files, std::string_view ext) {
  std::string_view text = default_syntax_config(ext);
  std::string path = rule_file(files, ext);
  if (text.empty() || path_exists(path)) return;
  try {
    write_conf_file(files.CONFIG_DIR, path, text);
  } catch (const Failure&) {
    return;  // the defaults stay unwritten, and the document without colours
  }
}

SyntaxRules load_syntax_config(const ConfigFiles& files, std::string_view extension) {
  std::string name = format_name(extension);
  if (name.empty()) return {};
  _write_default_syntax_config(files, name);
  try {
    return parse_syntax_rules(read_conf_file(rule_file(files, name)));
  } catch (const Failure&) {
    return {};
  }
}

}  // namespace brenlow

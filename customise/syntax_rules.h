#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/spans.h"
#include "core/text.h"
#include "customise/settings.h"

namespace brenlow {

// A style of a rule file.
struct StyleSpec {
  enum class Kind : unsigned char { inverse, color, rgb };
  Kind kind = Kind::inverse;
  unsigned char color = 0;  // COLOR_* for Kind::color
  unsigned char r = 0, g = 0, b = 0;
  friend bool operator==(const StyleSpec&, const StyleSpec&) = default;
};

// The characters `start` up to, not including, `end` of one line take `style`.
struct SyntaxSpan {
  int start;
  int end;
  StyleSpec style;
  friend bool operator==(const SyntaxSpan&, const SyntaxSpan&) = default;
};

class Pattern;  // a compiled regular expression (customise/pattern.h)

enum class FormatKind { normal, bold, italic, bold_italic };

struct SyntaxRule {
  std::shared_ptr<const Pattern> pattern;  // absent for a rule on the document's own formatting
  FormatKind format = FormatKind::normal;  // used without a pattern
  StyleSpec style;
};
using SyntaxRules = std::vector<SyntaxRule>;

// The rules of the extension, with or without its dot; the default file is written first where it is
// missing. Bad rules are dropped. Never fails.
SyntaxRules load_syntax_config(const ConfigFiles& files, std::string_view extension);
// Writes the default file of `ext`, which has no dot, where there is one and the file is missing. Never fails.
void _write_default_syntax_config(const ConfigFiles& files, std::string_view ext);
// "inverse", a colour's name or six hexadecimal digits with or without "#"; nothing for any other text.
std::optional<StyleSpec> _parse_style_spec(std::string_view text);
// The rules of a rule file's text in its order. Never fails.
SyntaxRules parse_syntax_rules(std::string_view text);

// The syntax spans of one line in the order in which they were claimed: a stretch that overlaps an earlier one
// is dropped whole. A pattern whose search costs too much claims nothing on the line.
std::vector<SyntaxSpan> _compute_syn_spans(std::u32string_view line, const SyntaxRules& rules,
                                           const SpanList& fmt_spans);

}  // namespace brenlow

// The input is a rule file and, line by line, the text that its rules colour.

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "core/unicode.h"
#include "customise/conf_file.h"
#include "customise/syntax_rules.h"
#include "fuzz/require.h"

namespace {

using namespace brenlow;
using fuzz::require;

void check_spans(std::u32string_view line, std::vector<SyntaxSpan> spans) {
  std::sort(spans.begin(), spans.end(), [](const SyntaxSpan& a, const SyntaxSpan& b) { return a.start < b.start; });
  int reached = 0;
  for (const SyntaxSpan& span : spans) {
    require(span.start >= reached && span.end > span.start);
    reached = span.end;
  }
  require(reached <= static_cast<int>(line.size()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  const SyntaxRules rules = parse_syntax_rules(text);
  // Formatting that follows from the input, past the line's end and overlapping as well.
  std::vector<Span> spans;
  for (std::size_t i = 0; i + 2 < size && spans.size() < 16; i += 3)
    spans.push_back({data[i] % 64, data[i] % 64 + data[i + 1] % 32, 1 + data[i + 2] % 3});
  const SpanList format = span_list(spans);
  for (std::string_view bytes : conf_lines(text)) {
    const std::u32string line = decode_utf8(bytes);
    check_spans(line, _compute_syn_spans(line, rules, format));
  }
  return 0;
}

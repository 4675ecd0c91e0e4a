#include "tests/support/notation.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <vector>

#include "core/unicode.h"

namespace brenlow::test {

namespace {

constexpr char32_t PAGE_BREAK = U'⏎';

struct Tag {
  std::u32string_view text;
  int bit;
  bool on;
};
constexpr std::array TAGS = {Tag{U"<b>", FMT_BOLD, true}, Tag{U"</b>", FMT_BOLD, false}, Tag{U"<i>", FMT_ITALIC, true},
                             Tag{U"</i>", FMT_ITALIC, false}};

const Tag* tag_at(std::u32string_view rest) {
  auto found = std::find_if(TAGS.begin(), TAGS.end(), [rest](const Tag& tag) { return rest.starts_with(tag.text); });
  return found == TAGS.end() ? nullptr : &*found;
}

std::string print(const DocumentTriple& document, std::optional<std::pair<int, int>> cursor,
                  std::optional<std::pair<int, int>> anchor) {
  std::u32string out;
  for (std::size_t ly = 0; ly < document.lines.size(); ++ly) {
    const Text& line = document.lines[ly];
    auto number = static_cast<int>(ly);
    if (ly > 0) out += U'\n';
    if (document.pagebreak_lines.contains(number)) out += PAGE_BREAK;
    std::vector<int> open;  // formats, the innermost last
    for (int x = 0; x <= line.length(); ++x) {
      int format = x < line.length() ? format_at(document.fmt_lines[ly], x) : 0;
      // An inner format is closed with the outer one.
      while (std::any_of(open.begin(), open.end(), [&](int bit) { return (bit & ~format) != 0; })) {
        out += open.back() == FMT_BOLD ? U"</b>" : U"</i>";
        open.pop_back();
      }
      if (anchor == std::pair(number, x)) out += U'^';
      if (cursor == std::pair(number, x)) out += U'|';
      for (int bit : {FMT_BOLD, FMT_ITALIC}) {
        if ((format & bit) == 0 || std::find(open.begin(), open.end(), bit) != open.end()) continue;
        out += bit == FMT_BOLD ? U"<b>" : U"<i>";
        open.push_back(bit);
      }
      if (x == line.length()) break;
      char32_t character = line[static_cast<std::size_t>(x)];
      if (std::u32string_view(U"|^<\\⏎").find(character) != std::u32string_view::npos) out += U'\\';
      out += character;
    }
  }
  return encode_utf8(out);
}

}  // namespace

MarkedDocument parse_notation(std::string_view notation) {
  MarkedDocument marked;
  DocumentTriple& document = marked.document;
  document = {.lines = {}, .fmt_lines = {}, .pagebreak_lines = {}};
  std::u32string text = decode_utf8(notation);
  std::u32string line;
  std::vector<unsigned char> masks;
  int format = 0;
  auto end_line = [&] {
    document.lines.emplace_back(line);
    document.fmt_lines.push_back(spans_from_masks(masks));
    line.clear();
    masks.clear();
  };
  for (std::size_t i = 0; i < text.size(); ++i) {
    auto here = std::pair(static_cast<int>(document.lines.size()), static_cast<int>(line.size()));
    if (const Tag* tag = tag_at(std::u32string_view(text).substr(i))) {
      format = tag->on ? format | tag->bit : format & ~tag->bit;
      i += tag->text.size() - 1;
    } else if (text[i] == U'\n') {
      end_line();
    } else if (text[i] == U'|') {
      std::tie(marked.cy, marked.cx) = here;
    } else if (text[i] == U'^') {
      marked.anchor = here;
    } else if (text[i] == PAGE_BREAK && line.empty()) {
      document.pagebreak_lines.insert(here.first);
    } else {
      if (text[i] == U'\\' && i + 1 < text.size()) ++i;
      line += text[i];
      masks.push_back(static_cast<unsigned char>(format));
    }
  }
  end_line();
  return marked;
}

std::string print_notation(const MarkedDocument& marked) {
  return print(marked.document, std::pair(marked.cy, marked.cx), marked.anchor);
}

std::string print_notation(const DocumentTriple& document) { return print(document, {}, {}); }

}  // namespace brenlow::test

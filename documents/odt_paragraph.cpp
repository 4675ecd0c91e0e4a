#include "documents/odt_paragraph.h"

#include <libxml/tree.h>

#include <algorithm>
#include <charconv>
#include <string_view>

#include "core/failure.h"
#include "core/unicode.h"
#include "documents/odt_format.h"

namespace brenlow {

namespace {

int bits_of(TextAttributes attributes) {
  return (attributes.bold ? FMT_BOLD : 0) | (attributes.italic ? FMT_ITALIC : 0);
}

void add_run(RunList& out, std::size_t length, int bits) {
  if (length == 0) return;
  if (!out.runs.empty() && out.runs.back().bits == bits)
    out.runs.back().length += length;
  else
    out.runs.push_back({length, bits});
}

void add_characters(RunList& out, std::size_t count, char32_t character, int bits) {
  out.text.append(count, character);
  add_run(out, count, bits);
}

void add_utf8(RunList& out, const xmlChar* content, int bits) {
  if (!content) return;
  std::string_view bytes(reinterpret_cast<const char*>(content));
  std::size_t before = out.text.size();
  out.text.resize(before + bytes.size());
  std::size_t length = decode_utf8_into(bytes, out.text.data() + before);
  out.text.resize(before + length);
  add_run(out, length, bits);
}

// The attribute text:c of text:s (part 3, section 19.763); negative counts are none.
std::size_t space_count(const XmlNode* node, std::size_t most) {
  std::string_view value = attribute(node, NS_TEXT, "c");
  if (!value.data()) return 1;
  std::string_view digits = trimmed(value);
  bool signed_plus = digits.starts_with('+');
  if (signed_plus) digits.remove_prefix(1);
  long long count = 0;
  auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), count);
  bool whole = end == digits.data() + digits.size() && !(signed_plus && digits.starts_with('-'));
  if (digits.empty() || !whole || error == std::errc::invalid_argument)
    throw Failure("text:c is not a number: \"" + std::string(value.substr(0, 40)) + "\"");
  if (digits.starts_with('-')) return 0;
  if (error == std::errc::result_out_of_range || static_cast<unsigned long long>(count) > most)
    throw Failure("text:c asks for too many spaces: " + std::string(value.substr(0, 40)));
  return static_cast<std::size_t>(count);
}

// What holds within a text:span.
TextAttributes span_attributes(const XmlNode* span, TextAttributes attributes, const StyleMap& style_map) {
  std::string_view name = attribute(span, NS_TEXT, "style-name");
  if (auto found = style_map.find(name); found != style_map.end()) {
    attributes = found->second;
  } else {
    std::string lower_name = lowered_ascii(name);
    if (lower_name.find("bold") != std::string::npos) attributes.bold = true;
    if (lower_name.find("italic") != std::string::npos) attributes.italic = true;
  }
  std::string_view weight = attribute(span, NS_FO, "font-weight");
  std::string_view style = attribute(span, NS_FO, "font-style");
  if (weight == "bold") attributes.bold = true;
  if (weight == "normal" || weight == "400") attributes.bold = false;
  if (style == "italic" || style == "oblique") attributes.italic = true;
  if (style == "normal") attributes.italic = false;
  return attributes;
}

// Walks below a paragraph without recursion: documents choose how deep they nest.
class Walk {
 public:
  Walk(TextAttributes base, const StyleMap& style_map, std::size_t& spaces_left, RunList& out)
      : _style_map(style_map), _spaces_left(spaces_left), _out(out), _within{base} {}

  void run(const XmlNode* paragraph) {
    const XmlNode* node = paragraph->children;
    while (node) {
      if (_enter(node) && node->children) {
        node = node->children;
        continue;
      }
      if (_entered) _within.pop_back();
      while (!node->next) {
        node = node->parent;
        if (node == paragraph) return;
        _within.pop_back();
      }
      node = node->next;
    }
  }

 private:
  // Adds what the node itself gives; true if its children count, and then their attributes are pushed.
  bool _enter(const XmlNode* node) {
    _entered = false;
    int bits = bits_of(_within.back());
    if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) add_utf8(_out, node->content, bits);
    if (node->type != XML_ELEMENT_NODE) return false;
    std::string_view tag = local_name(node);
    if (tag == "s") {
      std::size_t count = space_count(node, _spaces_left);
      _spaces_left -= count;
      add_characters(_out, count, U' ', bits);
    } else if (tag == "tab") {
      add_characters(_out, 1, U'\t', bits);
    } else if (tag == "line-break") {
      add_characters(_out, 1, U'\n', bits);
    } else {
      _within.push_back(tag == "span" ? span_attributes(node, _within.back(), _style_map) : _within.back());
      _entered = true;
    }
    return _entered;
  }

  const StyleMap& _style_map;
  std::size_t& _spaces_left;
  RunList& _out;
  std::vector<TextAttributes> _within;  // what holds on every level entered
  bool _entered = false;
};

}  // namespace

bool is_paragraph(const XmlNode* node) {
  return node->type == XML_ELEMENT_NODE && (local_name(node) == "p" || local_name(node) == "h");
}

void _collect_rich(const XmlNode* elem, TextAttributes base, const StyleMap& style_map, std::size_t& spaces_left,
                   RunList& out) {
  out.text.clear();
  out.runs.clear();
  if (is_paragraph(elem)) Walk(base, style_map, spaces_left, out).run(elem);
}

void _runs_to_line_fmt(const RunList& runs, LineStorage& storage, DocumentTriple& document) {
  std::u32string_view text = runs.text;
  std::vector<Span> spans;
  std::size_t run = 0;
  std::size_t run_start = 0;
  for (std::size_t start = 0;;) {
    std::size_t end = std::min(text.find(U'\n', start), text.size());
    spans.clear();
    while (run < runs.runs.size() && run_start < end) {
      std::size_t run_end = run_start + runs.runs[run].length;
      std::size_t from = std::max(run_start, start);
      std::size_t to = std::min(run_end, end);
      if (runs.runs[run].bits != 0 && from < to)
        spans.push_back({static_cast<int>(from - start), static_cast<int>(to - start), runs.runs[run].bits});
      if (run_end > end) break;
      run_start = run_end;
      ++run;
    }
    if (document.lines.size() == MAX_ODT_LINES) throw Failure("content.xml: too many lines");
    document.lines.push_back(storage.line(text.substr(start, end - start)));
    document.fmt_lines.push_back(span_list(spans));
    if (end == text.size()) return;
    start = end + 1;
  }
}

}  // namespace brenlow

#include "documents/odt_writer.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <set>
#include <string>
#include <utility>

#include "core/failure.h"
#include "documents/file_access.h"
#include "documents/odt_format.h"
#include "documents/odt_segments.h"
#include "documents/xml_tree.h"
#include "documents/xml_writer.h"
#include "documents/zip_package.h"

namespace brenlow {

namespace {

struct GeneratedStyle {
  std::string_view name;
  std::string_view markup;
};

// Both properties are set, so that a span is plain in the one it is not about.
constexpr GeneratedStyle TEXT_STYLES[] = {
    {"T_Bold", R"(<style:style style:name="T_Bold" style:family="text"><style:text-properties fo:font-weight="bold" )"
               R"(fo:font-style="normal"/></style:style>)"},
    {"T_Italic", R"(<style:style style:name="T_Italic" style:family="text"><style:text-properties )"
                 R"(fo:font-weight="normal" fo:font-style="italic"/></style:style>)"},
    {"T_BoldItalic", R"(<style:style style:name="T_BoldItalic" style:family="text"><style:text-properties )"
                     R"(fo:font-weight="bold" fo:font-style="italic"/></style:style>)"}};
constexpr GeneratedStyle PAGEBREAK_STYLE = {
    "P_PageBreak", R"(<style:style style:name="P_PageBreak" style:family="paragraph" )"
                   R"(style:parent-style-name="Standard"><style:paragraph-properties fo:break-before="page"/>)"
                   R"(</style:style>)"};

constexpr std::string_view SPAN_STYLES[] = {"", "T_Bold", "T_Italic", "T_BoldItalic"};  // by format bits

// The markup of the styles needed that `automatic_styles` (may be null) does not hold yet.
std::string missing_styles(const XmlNode* automatic_styles, bool with_spans, bool with_pagebreaks) {
  std::set<std::string_view> existing;
  for (const XmlNode* style = first_child(automatic_styles, NS_STYLE, "style"); style;
       style = next_of(style, NS_STYLE, "style"))
    existing.insert(attribute(style, NS_STYLE, "name"));
  std::string markup;
  auto add = [&](const GeneratedStyle& style) {
    if (!existing.contains(style.name)) markup += style.markup;
  };
  if (with_spans) std::for_each(std::begin(TEXT_STYLES), std::end(TEXT_STYLES), add);
  if (with_pagebreaks) add(PAGEBREAK_STYLE);
  return markup;
}

void append_paragraph(std::string& out, const Text& line, const SpanList& spans, bool new_page) {
  out += new_page ? R"(<text:p text:style-name="P_PageBreak">)" : R"(<text:p text:style-name="Standard">)";
  if (spans.empty()) {
    append_escaped(out, line);
  } else {
    for (const Segment& segment : _fmt_spans_for_line(line, spans)) {
      if (segment.bits != 0)
        out.append(R"(<text:span text:style-name=")").append(SPAN_STYLES[segment.bits]).append("\">");
      append_escaped(out, segment.text);
      if (segment.bits != 0) out += "</text:span>";
    }
  }
  out += "</text:p>";
}

// What is written must be readable again: a paragraph or a span makes two tags and at most four nodes, and
// some room is left for the rest of the tree.
void check_readable(const std::string& content) {
  if (content.size() > MAX_MEMBER_BYTES) throw Failure("the text is larger than 256 MiB");
  std::size_t tags = static_cast<std::size_t>(std::count(content.begin(), content.end(), '<'));
  if (tags * 2 > MAX_XML_NODES / 4 * 3) throw Failure("too many paragraphs for an .odt file");
}

// What is written: references of the caller's.
struct Body {
  const LineList& lines;
  const FormatList& fmt_lines;
  const IndexSet& pagebreak_lines;
};

void append_paragraphs(std::string& out, const Body& body) {
  std::size_t characters = 0;
  for (const Text& line : body.lines) characters += line.size();
  constexpr std::size_t PARAGRAPH_MARKUP = 48, REST = 4096;
  out.reserve(out.size() + characters + characters / 8 + body.lines.size() * PARAGRAPH_MARKUP + REST);
  const SpanList no_spans;
  const int* next_break = body.pagebreak_lines.begin();
  for (std::size_t i = 0; i < body.lines.size(); ++i) {
    while (next_break != body.pagebreak_lines.end() && *next_break < static_cast<int>(i)) ++next_break;
    bool new_page = next_break != body.pagebreak_lines.end() && *next_break == static_cast<int>(i);
    append_paragraph(out, body.lines[i], i < body.fmt_lines.size() ? body.fmt_lines[i] : no_spans, new_page);
  }
}

// The tree that the body is put into: that of the old package if it has a place for text. One that is there
// and cannot be read is a failure: what it holds would be lost.
XmlTree base_tree(const std::optional<PackageReader>& old) {
  if (old && old->has("content.xml")) {
    XmlTree tree = read_content(*old);
    if (find_office_text(tree.root())) return tree;
  }
  return XmlTree::parse(MINIMAL_CONTENT, "content.xml");
}

std::string content_xml(const XmlTree& tree, const Body& body) {
  using Place = XmlInsertion::Place;
  bool with_spans =
      std::any_of(body.fmt_lines.begin(), body.fmt_lines.end(), [](const SpanList& spans) { return !spans.empty(); });
  const XmlNode* automatic_styles = first_child(tree.root(), NS_OFFICE, "automatic-styles");
  std::string styles = missing_styles(automatic_styles, with_spans, !body.pagebreak_lines.empty());
  std::vector<XmlInsertion> insertions{{find_office_text(tree.root()), Place::INSTEAD_OF_CHILDREN,
                                        [&](std::string& out) { append_paragraphs(out, body); }}};
  auto append_styles = [&](std::string& out) { out += styles; };
  if (automatic_styles) {
    insertions.push_back({automatic_styles, Place::BEHIND_CHILDREN, append_styles});
  } else {
    styles = "<office:automatic-styles>" + styles + "</office:automatic-styles>";
    insertions.push_back({first_child(tree.root(), NS_OFFICE, "body"), Place::BEFORE, append_styles});
  }
  std::string content = R"(<?xml version="1.0" encoding="UTF-8"?>)"
                        "\n";
  append_serialised(content, tree.root(), NS, insertions);
  return content;
}

std::optional<PackageReader> open_old(const std::optional<std::string>& source_path) {
  struct stat status;
  if (!source_path || ::stat(source_path->c_str(), &status) != 0) return std::nullopt;
  return PackageReader::from_bytes(read_file(*source_path, std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

std::string odt_bytes(const LineList& lines, const std::optional<std::string>& source_path,
                      const FormatList& fmt_lines, const IndexSet& pagebreak_lines) {
  std::optional<PackageReader> old = open_old(source_path);
  std::string content = content_xml(base_tree(old), Body{lines, fmt_lines, pagebreak_lines});
  check_readable(content);

  PackageWriter package;
  package.add_stored("mimetype", std::string(ODT_MIME_TYPE));
  if (old) {
    package.copy_members(*old, {"mimetype", "content.xml", "meta.xml"});
  } else {
    package.add_deflated("styles.xml", std::string(MINIMAL_STYLES));
    package.add_deflated("META-INF/manifest.xml", std::string(MINIMAL_MANIFEST));
  }
  package.add_deflated("content.xml", std::move(content));
  package.add_deflated("meta.xml", make_meta_xml());
  return package.finish();
}

void lines_to_odt(const LineList& lines, const std::string& path,
                  const std::optional<std::string>& source_path, const FormatList& fmt_lines,
                  const IndexSet& pagebreak_lines) {
  write_file(path, odt_bytes(lines, source_path, fmt_lines, pagebreak_lines), Durability::ON_DISK);
}

}  // namespace brenlow

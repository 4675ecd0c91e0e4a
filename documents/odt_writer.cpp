#include "documents/odt_writer.h"

#include <algorithm>
#include <cstdint>
#include <functional>
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

// The markup of the styles needed that the tree does not hold yet.
std::string missing_styles(const XmlTree& tree, const FormatList& fmt_lines, const IndexSet& pagebreak_lines) {
  const XmlNode* automatic_styles = first_child(tree.root(), NS_OFFICE, "automatic-styles");
  std::set<std::string_view> existing;
  for (const XmlNode* style = first_child(automatic_styles, NS_STYLE, "style"); style;
       style = next_of(style, NS_STYLE, "style"))
    existing.insert(attribute(style, NS_STYLE, "name"));
  std::string markup;
  auto add = [&](const GeneratedStyle& style) {
    if (!existing.contains(style.name)) markup += style.markup;
  };
  bool with_spans =
      std::any_of(fmt_lines.begin(), fmt_lines.end(), [](const SpanList& spans) { return !spans.empty(); });
  if (with_spans) std::for_each(std::begin(TEXT_STYLES), std::end(TEXT_STYLES), add);
  if (!pagebreak_lines.empty()) add(PAGEBREAK_STYLE);
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

void append_paragraphs(std::string& out, const LineList& lines, const FormatList& fmt_lines,
                       const IndexSet& pagebreak_lines) {
  std::size_t characters = 0;
  for (const Text& line : lines) characters += line.size();
  constexpr std::size_t PARAGRAPH_MARKUP = 48, REST = 4096;
  out.reserve(out.size() + characters + characters / 8 + lines.size() * PARAGRAPH_MARKUP + REST);
  const SpanList no_spans;
  const int* next_break = pagebreak_lines.begin();
  for (std::size_t i = 0; i < lines.size(); ++i) {
    while (next_break != pagebreak_lines.end() && *next_break < static_cast<int>(i)) ++next_break;
    bool new_page = next_break != pagebreak_lines.end() && *next_break == static_cast<int>(i);
    append_paragraph(out, lines[i], i < fmt_lines.size() ? fmt_lines[i] : no_spans, new_page);
  }
}

// The old package that is kept from.
struct Source {
  std::optional<FileStamp> file;
  std::optional<PackageReader> package;
};

Source open_source(const std::optional<std::string>& path) {
  if (!path) return {};
  std::optional<FileStamp> file = file_stamp(*path);
  if (!file) return {};
  return {file, PackageReader::from_bytes(read_file(*path, std::numeric_limits<std::int32_t>::max()))};
}

// The tree that the body is put into: that of the old package if it has a place for text. One that is there
// and cannot be read is a failure: what it holds would be lost.
XmlTree base_tree(const Source& source, const KeptContent* kept) {
  bool known = source.file && kept && kept->file == source.file;
  if (known || (source.package && source.package->has("content.xml"))) {
    XmlTree tree = known ? XmlTree::parse(kept->xml, "content.xml") : read_content(*source.package);
    if (find_office_text(tree.root())) return tree;
  }
  return XmlTree::parse(MINIMAL_CONTENT, "content.xml");
}

using Append = std::function<void(std::string&)>;

std::string content_xml(const XmlTree& tree, const std::string& styles, const Append& append_text) {
  using Place = XmlInsertion::Place;
  std::vector<XmlInsertion> insertions{{find_office_text(tree.root()), Place::INSTEAD_OF_CHILDREN, append_text}};
  const Append append_styles = [&](std::string& out) { out += styles; };
  const Append append_section = [&](std::string& out) {
    out += "<office:automatic-styles>";
    out += styles;
    out += "</office:automatic-styles>";
  };
  if (const XmlNode* automatic_styles = first_child(tree.root(), NS_OFFICE, "automatic-styles")) {
    insertions.push_back({automatic_styles, Place::BEHIND_CHILDREN, append_styles});
  } else {
    insertions.push_back({first_child(tree.root(), NS_OFFICE, "body"), Place::BEFORE, append_section});
  }
  std::string content = R"(<?xml version="1.0" encoding="UTF-8"?>)"
                        "\n";
  append_serialised(content, tree.root(), NS, insertions);
  return content;
}

}  // namespace

std::string odt_bytes(const LineList& lines, const std::optional<std::string>& source_path, const FormatList& fmt_lines,
                      const IndexSet& pagebreak_lines, KeptContent* kept) {
  const Source source = open_source(source_path);
  const XmlTree tree = base_tree(source, kept);
  const std::string styles = missing_styles(tree, fmt_lines, pagebreak_lines);
  std::string content =
      content_xml(tree, styles, [&](std::string& out) { append_paragraphs(out, lines, fmt_lines, pagebreak_lines); });
  check_readable(content);

  PackageWriter package;
  package.add_stored("mimetype", std::string(ODT_MIME_TYPE));
  if (source.package) {
    package.copy_members(*source.package, {"mimetype", "content.xml", "meta.xml"});
  } else {
    package.add_deflated("styles.xml", std::string(MINIMAL_STYLES));
    package.add_deflated("META-INF/manifest.xml", std::string(MINIMAL_MANIFEST));
  }
  package.add_deflated("content.xml", std::move(content));
  package.add_deflated("meta.xml", make_meta_xml());
  if (kept) *kept = {std::nullopt, content_xml(tree, styles, [](std::string&) {})};
  return package.finish();
}

void lines_to_odt(const LineList& lines, const std::string& path, const std::optional<std::string>& source_path,
                  const FormatList& fmt_lines, const IndexSet& pagebreak_lines, KeptContent* kept) {
  write_file(path, odt_bytes(lines, source_path, fmt_lines, pagebreak_lines, kept), Durability::ON_DISK);
  if (kept) kept->file = file_stamp(path);
}

}  // namespace brenlow

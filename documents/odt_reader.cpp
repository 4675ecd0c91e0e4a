#include "documents/odt_reader.h"

#include <libxml/tree.h>

#include <optional>
#include <string_view>
#include <vector>

#include "core/failure.h"
#include "documents/odt_format.h"
#include "documents/odt_paragraph.h"
#include "documents/odt_styles.h"
#include "documents/xml_tree.h"
#include "documents/zip_package.h"

namespace brenlow {

namespace {

// A few bytes of markup can ask for any number of blanks; nobody's prose has that many.
constexpr std::size_t MAX_COUNTED_SPACES = std::size_t{64} << 20;

struct Styles {
  StyleMap attributes;
  StyleNames pagebreaks;
};

// A faulty styles.xml counts as absent: the text matters more than its looks.
std::optional<XmlTree> read_styles_xml(const PackageReader& package) {
  const std::string member = "styles.xml";
  if (!package.has(member)) return std::nullopt;
  try {
    return XmlTree::parse(package.read(member), member);
  } catch (const Failure&) {
    return std::nullopt;
  }
}

Styles collect_styles(const XmlTree& content, const std::optional<XmlTree>& styles_xml) {
  Styles styles{_build_style_map(content.root()), _build_pagebreak_styles(content.root())};
  if (!styles_xml) return styles;
  for (const auto& [name, attributes] : _build_style_map(styles_xml->root()))
    styles.attributes.insert_or_assign(name, attributes);
  styles.pagebreaks.merge(_build_pagebreak_styles(styles_xml->root()));
  return styles;
}

DocumentTriple read_paragraphs(const XmlNode* office_text, const Styles& styles) {
  DocumentTriple document;
  document.lines.clear();
  document.fmt_lines.clear();
  std::vector<int> pagebreaks;
  std::size_t spaces_left = MAX_COUNTED_SPACES;
  RunList runs;
  for (const XmlNode* node = office_text->children; node; node = node->next) {
    if (!is_paragraph(node)) continue;
    std::string_view style_name = attribute(node, NS_TEXT, "style-name");
    auto found = styles.attributes.find(style_name);
    TextAttributes base = found == styles.attributes.end() ? TextAttributes{} : found->second;
    _collect_rich(node, base, styles.attributes, spaces_left, runs);
    if (styles.pagebreaks.contains(style_name)) pagebreaks.push_back(static_cast<int>(document.lines.size()));
    _runs_to_line_fmt(runs, document);
  }
  if (document.lines.empty()) return {};
  document.pagebreak_lines = IndexSet::from_sorted(pagebreaks);
  return document;
}

}  // namespace

DocumentTriple odt_to_rich(const std::string& path) {
  PackageReader package = PackageReader::from_file(path);
  XmlTree content = read_content(package);
  const XmlNode* office_text = find_office_text(content.root());
  if (!office_text) return {};
  return read_paragraphs(office_text, collect_styles(content, read_styles_xml(package)));
}

}  // namespace brenlow

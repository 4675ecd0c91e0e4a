#include "documents/odt_reader.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <optional>
#include <string_view>
#include <vector>

#include "core/failure.h"
#include "documents/line_storage.h"
#include "documents/odt_format.h"
#include "documents/odt_paragraph.h"
#include "documents/odt_styles.h"
#include "documents/xml_tree.h"
#include "documents/xml_writer.h"
#include "documents/zip_package.h"

namespace brenlow {

namespace {

// A few bytes of markup can ask for any number of blanks; nobody's prose has that many.
constexpr std::size_t MAX_COUNTED_SPACES = std::size_t{64} << 20;

struct Styles {
  StyleMap attributes;
  StyleNames pagebreaks;
  friend bool operator==(const Styles&, const Styles&) = default;
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

Styles collect_styles(const XmlNode* content, const std::optional<XmlTree>& styles_xml) {
  Styles styles{_build_style_map(content), _build_pagebreak_styles(content)};
  if (!styles_xml) return styles;
  for (const auto& [name, attributes] : _build_style_map(styles_xml->root()))
    styles.attributes.insert_or_assign(name, attributes);
  styles.pagebreaks.merge(_build_pagebreak_styles(styles_xml->root()));
  return styles;
}

// Takes the paragraphs of a document one after the other.
class ParagraphReader {
 public:
  explicit ParagraphReader(const Styles& styles) : _styles(styles) {
    _document.lines.clear();
    _document.fmt_lines.clear();
  }

  void read(const XmlNode* node) {
    if (!is_paragraph(node)) return;
    std::string_view style_name = attribute(node, NS_TEXT, "style-name");
    auto found = _styles.attributes.find(style_name);
    TextAttributes base = found == _styles.attributes.end() ? TextAttributes{} : found->second;
    _collect_rich(node, base, _styles.attributes, _spaces_left, _runs);
    if (_styles.pagebreaks.contains(style_name)) _pagebreaks.push_back(static_cast<int>(_document.lines.size()));
    _runs_to_line_fmt(_runs, _storage, _document);
  }

  DocumentTriple document() && {
    if (_document.lines.empty()) return {};
    _document.pagebreak_lines = IndexSet::from_sorted(_pagebreaks);
    _document.lines.shrink_to_fit();
    _document.fmt_lines.shrink_to_fit();
    return std::move(_document);
  }

 private:
  const Styles& _styles;
  DocumentTriple _document;
  std::vector<int> _pagebreaks;
  std::size_t _spaces_left = MAX_COUNTED_SPACES;
  RunList _runs;
  LineStorage _storage;
};

DocumentTriple read_document(const std::string& path, KeptContent* kept) {
  const std::optional<FileStamp> stamp = file_stamp(path);
  PackageReader package = PackageReader::from_file(path);
  const std::optional<XmlTree> styles_xml = read_styles_xml(package);
  // Styles stand before the text that they are for. Where some do not, the text is read once more, knowing all.
  for (std::optional<Styles> all;;) {
    std::optional<Styles> known = std::move(all);
    std::optional<ParagraphReader> reader;
    XmlTree content = read_content(package, [&](const XmlNode* node) {
      if (!known) known = collect_styles(root_of(node), styles_xml);
      if (!reader) reader.emplace(*known);
      reader->read(node);
    });
    all = collect_styles(content.root(), styles_xml);
    if (reader && all != known) continue;
    if (kept) {
      *kept = {stamp, {}};
      append_serialised(kept->xml, content.root(), NS, {});
    }
    return reader ? std::move(*reader).document() : DocumentTriple();
  }
}

}  // namespace

DocumentTriple odt_to_rich(const std::string& path, KeptContent* kept) {
  DocumentTriple document = read_document(path, kept);
#ifdef __GLIBC__
  ::malloc_trim(0);  // what the package took lies between the lines, and would stay with the process
#endif
  return document;
}

}  // namespace brenlow

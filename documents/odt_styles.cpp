#include "documents/odt_styles.h"

#include <string_view>
#include <unordered_map>
#include <vector>

#include "documents/odt_format.h"

namespace brenlow {

namespace {

constexpr int MAX_PARENTS = 10;

struct RawStyle {
  std::string_view name;
  std::string_view fw;  // fo:font-weight, or empty
  std::string_view fs;  // fo:font-style, or empty
  std::string_view parent;
};

// Calls `visit` for every style:style of both sections, the automatic ones first.
template <class Visit>
void for_each_style(const XmlNode* root, Visit&& visit) {
  for (std::string_view section_name : {"automatic-styles", "styles"}) {
    const XmlNode* section = first_child(root, NS_OFFICE, section_name);
    for (const XmlNode* style = first_child(section, NS_STYLE, "style"); style;
         style = next_of(style, NS_STYLE, "style"))
      visit(style);
  }
}

// The raw styles in the order of their first definition; a later one of the same name took the place.
struct RawStyles {
  std::vector<RawStyle> styles;
  std::unordered_map<std::string_view, std::size_t> places;

  void store(const RawStyle& style) {
    auto [place, added] = places.try_emplace(style.name, styles.size());
    if (added)
      styles.push_back(style);
    else
      styles[place->second] = style;
  }
};

bool resolved_bold(std::string_view fw, bool parent) {
  if (fw.empty()) return parent;
  if (fw == "bold") return true;
  return parent && fw != "normal" && fw != "400" && fw != "100" && fw != "200" && fw != "300";
}

bool resolved_italic(std::string_view fs, bool parent) {
  if (fs.empty()) return parent;
  if (fs == "italic" || fs == "oblique") return true;
  return parent && fs != "normal";
}

// A chain that is too long, and so also one that bites its tail, ends as plain text.
TextAttributes resolve(std::string_view name, int depth, const RawStyles& raw, StyleMap& resolved) {
  if (auto found = resolved.find(name); found != resolved.end()) return found->second;
  if (depth > MAX_PARENTS) return {};
  auto place = raw.places.find(name);
  if (place == raw.places.end()) return {};
  const RawStyle& style = raw.styles[place->second];
  TextAttributes parent;
  if (!style.parent.empty()) parent = resolve(style.parent, depth + 1, raw, resolved);
  TextAttributes own{resolved_bold(style.fw, parent.bold), resolved_italic(style.fs, parent.italic)};
  resolved.insert_or_assign(std::string(name), own);
  return own;
}

}  // namespace

StyleMap _build_style_map(const XmlNode* root) {
  RawStyles raw;
  for_each_style(root, [&](const XmlNode* style) {
    RawStyle record{attribute(style, NS_STYLE, "name"), {}, {}, attribute(style, NS_STYLE, "parent-style-name")};
    if (const XmlNode* properties = first_child(style, NS_STYLE, "text-properties")) {
      record.fw = attribute(properties, NS_FO, "font-weight");
      record.fs = attribute(properties, NS_FO, "font-style");
    }
    if (!record.name.empty()) raw.store(record);
  });
  StyleMap resolved;
  for (const RawStyle& style : raw.styles) resolve(style.name, 0, raw, resolved);
  return resolved;
}

StyleNames _build_pagebreak_styles(const XmlNode* root) {
  StyleNames names;
  for_each_style(root, [&](const XmlNode* style) {
    const XmlNode* properties = first_child(style, NS_STYLE, "paragraph-properties");
    std::string_view name = attribute(style, NS_STYLE, "name");
    if (properties && !name.empty() && attribute(properties, NS_FO, "break-before") == "page") names.emplace(name);
  });
  return names;
}

}  // namespace brenlow

#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>

#include "documents/xml_tree.h"

namespace brenlow {

struct TextAttributes {
  bool bold = false;
  bool italic = false;
  friend bool operator==(const TextAttributes&, const TextAttributes&) = default;
};

// Style name to attributes, resolved through the parents. One space of names for all style families.
using StyleMap = std::map<std::string, TextAttributes, std::less<>>;
using StyleNames = std::set<std::string, std::less<>>;

// Both take the root of content.xml or of styles.xml. Each file is resolved by itself: a parent that only
// the other file defines counts as plain.
StyleMap _build_style_map(const XmlNode* root);
// The styles that begin a new page by a property of their own; nothing is inherited.
StyleNames _build_pagebreak_styles(const XmlNode* root);

}  // namespace brenlow

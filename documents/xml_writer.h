#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/text_view.h"
#include "documents/xml_tree.h"

namespace brenlow {

// Appends text as element content. Characters that XML 1.0 cannot hold (section 2.2) become U+FFFD, so
// that the document can be read again.
void append_escaped(std::string& out, TextView text);

// Markup that takes a place in a tree which is written.
struct XmlInsertion {
  enum class Place { BEFORE, INSTEAD_OF_CHILDREN, BEHIND_CHILDREN };
  const XmlNode* node;
  Place place;
  std::function<void(std::string&)> append;
};

// Appends the element with all below it, without a declaration. Every namespace that is declared anywhere is
// declared on the outermost element: those of `fixed` (prefix, URI) with their prefixes, the others with
// the prefix they had, where it is free.
void append_serialised(std::string& out, const XmlNode* root,
                       std::span<const std::pair<std::string_view, std::string_view>> fixed,
                       const std::vector<XmlInsertion>& insertions);

}  // namespace brenlow

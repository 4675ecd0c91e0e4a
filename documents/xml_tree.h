#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

struct _xmlDoc;
struct _xmlNode;

namespace brenlow {

using XmlNode = _xmlNode;

// What a tree may have of elements, texts, and attributes (which count twice); each takes about 120 bytes.
inline constexpr std::size_t MAX_XML_NODES = 12'000'000;

struct XmlDocFree {
  void operator()(_xmlDoc* document) const;
};

// An element's place: its own name and its parent's, both in the namespace `uri`, the parent a child of the root.
struct XmlPlace {
  std::string_view uri;
  std::string_view parent;
  std::string_view name;
};

// Is shown a node of a tree that is still being parsed; what stands before the node is there already.
using ShowNode = std::function<void(const XmlNode*)>;

// A parsed XML document. Text of internal entities is in place; comments and processing instructions are
// nodes of their own. The depth and the number of nodes are bounded.
class XmlTree {
 public:
  // `what` names the document in the text of a Failure. No file and no network is ever asked for anything.
  // The first element at `emptied` comes without its content, which is checked all the same: each child is handed to
  // `show`, if that is given, as soon as it is complete, and does not stay.
  static XmlTree parse(std::string_view bytes, const std::string& what, const XmlPlace* emptied = nullptr,
                       const ShowNode& show = {});
  const XmlNode* root() const;

 private:
  explicit XmlTree(std::unique_ptr<_xmlDoc, XmlDocFree> document) : _document(std::move(document)) {}
  std::unique_ptr<_xmlDoc, XmlDocFree> _document;
};

// The look-ups go by namespace URI and never by prefix. Their texts live as long as the tree.
const XmlNode* root_of(const XmlNode* node);
std::string_view local_name(const XmlNode* node);
bool is_element(const XmlNode* node, std::string_view uri, std::string_view name);
const XmlNode* first_child(const XmlNode* parent, std::string_view uri, std::string_view name);
// The next sibling of that name.
const XmlNode* next_of(const XmlNode* element, std::string_view uri, std::string_view name);
// The attribute's value; an absent one gives an empty text whose data() is null.
std::string_view attribute(const XmlNode* element, std::string_view uri, std::string_view name);

}  // namespace brenlow

#include "documents/xml_writer.h"

#include <libxml/tree.h>

#include <algorithm>
#include <map>

#include "core/unicode.h"

namespace brenlow {

namespace {

constexpr std::string_view XML_URI = "http://www.w3.org/XML/1998/namespace";

std::string_view text_of(const xmlChar* characters) {
  return characters ? std::string_view(reinterpret_cast<const char*>(characters)) : std::string_view();
}

// Characters of any width that stand for themselves; without a branch, see append_in_runs.
constexpr auto IS_PLAIN = [](auto c) {
  using C = decltype(c);
  return (static_cast<C>(c - 0x20) < C{0x5F}) & (c != C{'<'}) & (c != C{'>'}) & (c != C{'&'});
};

void append_special(std::string& out, char32_t c) {
  switch (c) {
    case U'<':
      out += "&lt;";
      break;
    case U'>':
      out += "&gt;";
      break;
    case U'&':
      out += "&amp;";
      break;
    case U'\r':  // as a plain character it would be read as a line feed
      out += "&#13;";
      break;
    default: {
      bool allowed = c >= 0x20 ? c != 0xFFFE && c != 0xFFFF : c == U'\t' || c == U'\n';
      append_utf8(out, allowed ? c : char32_t{0xFFFD});
    }
  }
}

void append_escaped_utf8(std::string& out, std::string_view text, bool in_attribute) {
  for (char c : text) {
    if (c == '<')
      out += "&lt;";
    else if (c == '>')
      out += "&gt;";
    else if (c == '&')
      out += "&amp;";
    else if (c == '\r' || (in_attribute && (c == '\n' || c == '\t' || c == '"')))
      out.append("&#").append(std::to_string(c)).append(";");
    else
      out += c;
  }
}

class Serialiser {
 public:
  Serialiser(std::string& out, const XmlNode* root,
             std::span<const std::pair<std::string_view, std::string_view>> fixed,
             const std::vector<XmlInsertion>& insertions)
      : _out(out), _root(root), _insertions(insertions) {
    _prefixes[XML_URI] = "xml";
    for (const auto& [prefix, uri] : fixed) _declare(uri, prefix);
    for (const XmlNode* node = root; node; node = _next(node, _children(node))) {
      if (node->type != XML_ELEMENT_NODE) continue;
      for (const xmlNs* ns = node->nsDef; ns; ns = ns->next)
        if (ns->href && *ns->href) _declare(text_of(ns->href), text_of(ns->prefix));
    }
  }

  void run() {
    for (const XmlNode* node = _root; node;) {
      _open(node);
      const XmlNode* children = _children(node);
      if (!children) _close(node);
      while (!children && node != _root && !node->next) _close(node = node->parent);
      node = children ? children : node == _root ? nullptr : node->next;
    }
  }

 private:
  const XmlInsertion* _insertion(const XmlNode* node, XmlInsertion::Place place) const {
    auto found = std::find_if(_insertions.begin(), _insertions.end(),
                              [&](const XmlInsertion& one) { return one.node == node && one.place == place; });
    return found == _insertions.end() ? nullptr : &*found;
  }

  const XmlNode* _children(const XmlNode* node) const {
    if (node->type != XML_ELEMENT_NODE) return nullptr;
    return _insertion(node, XmlInsertion::Place::INSTEAD_OF_CHILDREN) ? nullptr : node->children;
  }

  bool _is_empty(const XmlNode* node) const {
    using Place = XmlInsertion::Place;
    return !node->children && !_insertion(node, Place::INSTEAD_OF_CHILDREN) &&
           !_insertion(node, Place::BEHIND_CHILDREN);
  }

  const XmlNode* _next(const XmlNode* node, const XmlNode* children) const {
    if (children) return children;
    while (node != _root && !node->next) node = node->parent;
    return node == _root ? nullptr : node->next;
  }

  void _declare(std::string_view uri, std::string_view wanted) {
    if (_prefixes.contains(uri)) return;
    auto taken = [&](std::string_view prefix) {
      return std::any_of(_prefixes.begin(), _prefixes.end(), [&](const auto& one) { return one.second == prefix; });
    };
    std::string prefix(wanted);
    bool reserved = lowered_ascii(prefix).starts_with("xml");
    for (int i = 0; prefix.empty() || reserved || taken(prefix); ++i) {
      prefix = "ns" + std::to_string(i);
      reserved = false;
    }
    _prefixes.emplace(uri, prefix);
    _declared.emplace_back(prefix, uri);
  }

  void _append_name(const xmlNs* ns, const xmlChar* name) {
    if (ns) _out.append(_prefixes.find(text_of(ns->href))->second).append(":");
    _out += text_of(name);
  }

  void _append_attribute(std::string_view value) {
    _out += "=\"";
    append_escaped_utf8(_out, value, true);
    _out += '"';
  }

  void _open(const XmlNode* node) {
    if (const XmlInsertion* before = _insertion(node, XmlInsertion::Place::BEFORE)) before->append(_out);
    switch (node->type) {
      case XML_ELEMENT_NODE:
        _open_element(node);
        break;
      case XML_TEXT_NODE:
      case XML_CDATA_SECTION_NODE:
        append_escaped_utf8(_out, text_of(node->content), false);
        break;
      case XML_COMMENT_NODE:
        _out.append("<!--").append(text_of(node->content)).append("-->");
        break;
      case XML_PI_NODE:
        _out.append("<?").append(text_of(node->name)).append(" ").append(text_of(node->content)).append("?>");
        break;
      default:
        break;
    }
  }

  void _open_element(const XmlNode* node) {
    _out += '<';
    _append_name(node->ns, node->name);
    if (node == _root) {
      for (const auto& [prefix, uri] : _declared) {
        _out.append(" xmlns:").append(prefix);
        _append_attribute(uri);
      }
    }
    for (const xmlAttr* at = node->properties; at; at = at->next) {
      _out += ' ';
      _append_name(at->ns, at->name);
      _append_attribute(at->children ? text_of(at->children->content) : std::string_view());
    }
    if (_is_empty(node)) return;
    _out += '>';
    if (const XmlInsertion* inner = _insertion(node, XmlInsertion::Place::INSTEAD_OF_CHILDREN)) inner->append(_out);
  }

  void _close(const XmlNode* node) {
    if (node->type != XML_ELEMENT_NODE) return;
    if (_is_empty(node)) {
      _out += "/>";
      return;
    }
    if (const XmlInsertion* last = _insertion(node, XmlInsertion::Place::BEHIND_CHILDREN)) last->append(_out);
    _out += "</";
    _append_name(node->ns, node->name);
    _out += '>';
  }

  std::string& _out;
  const XmlNode* _root;
  const std::vector<XmlInsertion>& _insertions;
  std::map<std::string_view, std::string> _prefixes;                // by URI
  std::vector<std::pair<std::string, std::string_view>> _declared;  // prefix and URI, in document order
};

}  // namespace

void append_escaped(std::string& out, TextView text) {
  append_in_runs(out, text, IS_PLAIN, [&](char32_t character) { append_special(out, character); });
}

void append_serialised(std::string& out, const XmlNode* root,
                       std::span<const std::pair<std::string_view, std::string_view>> fixed,
                       const std::vector<XmlInsertion>& insertions) {
  Serialiser(out, root, fixed, insertions).run();
}

}  // namespace brenlow

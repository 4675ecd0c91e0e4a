#include "documents/xml_tree.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/xmlerror.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>

#include "core/failure.h"
#include "core/unicode.h"

namespace brenlow {

namespace {

// The deepest tree must be safe for library versions that free recursively.
constexpr int MAX_DEPTH = 20'000;
// With a document type declaration, entities can multiply the content tenfold before libxml2 stops them.
constexpr std::size_t MAX_BYTES_WITH_DOCTYPE = 4 << 20;
// libxml2 takes quadratic time for the attributes of one tag, for all names of a document (beyond some ten
// thousand), and for namespaces looked up from the depth. Documents of office programs stay far below.
constexpr int MAX_ATTRIBUTES = 1000;
constexpr std::size_t MAX_ENTITY_BYTES = 1 << 16;
constexpr std::size_t MAX_BYTES_UNSEEN = 1 << 20;  // in an encoding in which tags cannot be looked at beforehand
constexpr int MAX_NAMES = 100'000;
constexpr std::uint64_t MAX_LOOKUP_STEPS = 1'000'000'000;

struct ParserFree {
  void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
};

struct ParseState {
  std::size_t nodes = 0;
  std::uint64_t lookup_steps = 0;
  int depth = 0;
  bool too_long_for_doctype = false;
  const XmlPlace* place = nullptr;  // of the element that stays empty; null once that was met
  const ShowNode* show = nullptr;
  const XmlNode* emptied = nullptr;  // the element, where its children are shown
  int skipped_below = 0;             // its depth, while within it, where nobody asks for them
  const char* refusal = nullptr;     // why the parsing was stopped
  std::exception_ptr failure;        // of whom a node was shown
  std::string first_error;           // the later ones only follow from it
};

xmlParserCtxt* parser_of(void* context) { return static_cast<xmlParserCtxt*>(context); }
ParseState& state_of(void* context) { return *static_cast<ParseState*>(parser_of(context)->_private); }

void refuse(void* context, const char* why) {
  ParseState& state = state_of(context);
  if (!state.refusal) state.refusal = why;
  xmlStopParser(parser_of(context));
}

// False when there are too many; the parser has let go of its input then, texts given to the handler included.
bool count_nodes(void* context, std::size_t added) {
  ParseState& state = state_of(context);
  state.nodes += added;
  if (state.nodes > MAX_XML_NODES) refuse(context, "too many elements");
  return !state.refusal;
}

bool count_element(void* context, int attributes_count, int namespaces_count) {
  ParseState& state = state_of(context);
  xmlParserCtxt* parser = parser_of(context);
  std::uint64_t names = 1 + static_cast<std::uint64_t>(attributes_count);
  state.lookup_steps += names * static_cast<std::uint64_t>(++state.depth + parser->nsNr);
  if (state.depth > MAX_DEPTH || state.lookup_steps > MAX_LOOKUP_STEPS) refuse(context, "elements nested too deeply");
  if (xmlDictSize(parser->dict) > MAX_NAMES) refuse(context, "too many names");
  return !state.refusal && count_nodes(context, 2 * names - 1 + static_cast<std::uint64_t>(namespaces_count));
}

// Whether a node is to be built.
bool wanted(void* context) { return state_of(context).skipped_below == 0; }

bool is_emptied(const ParseState& state, const XmlNode* node) {
  constexpr int PLACE_DEPTH = 3;
  return state.place && state.depth == PLACE_DEPTH && node && node->parent &&
         is_element(node, state.place->uri, state.place->name) &&
         is_element(node->parent, state.place->uri, state.place->parent);
}

void start_element(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri, int namespaces_count,
                   const xmlChar** namespaces, int attributes_count, int defaulted, const xmlChar** attributes) {
  if (!count_element(context, attributes_count, namespaces_count) || !wanted(context)) return;
  xmlSAX2StartElementNs(context, name, prefix, uri, namespaces_count, namespaces, attributes_count, defaulted,
                        attributes);
  ParseState& state = state_of(context);
  const XmlNode* node = parser_of(context)->node;
  if (!is_emptied(state, node)) return;
  state.place = nullptr;
  if (*state.show)
    state.emptied = node;
  else
    state.skipped_below = state.depth;
}

// Every child that is complete: one at a time, but an entity can hold several.
void show_children(void* context) {
  ParseState& state = state_of(context);
  try {
    while (XmlNode* child = state.emptied->children) {
      (*state.show)(child);
      xmlUnlinkNode(child);
      xmlFreeNode(child);
    }
  } catch (...) {
    state.failure = std::current_exception();
    refuse(context, "");
  }
}

void end_element(void* context, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri) {
  ParseState& state = state_of(context);
  if (state.depth-- == state.skipped_below) state.skipped_below = 0;
  if (!wanted(context) || state.refusal) return;
  const XmlNode* ended = parser_of(context)->node;
  xmlSAX2EndElementNs(context, name, prefix, uri);
  if (state.emptied && (ended == state.emptied || ended->parent == state.emptied)) show_children(context);
}

void characters(void* context, const xmlChar* text, int length) {
  const XmlNode* parent = parser_of(context)->node;
  bool goes_on = parent && parent->last && parent->last->type == XML_TEXT_NODE;
  if (wanted(context) && count_nodes(context, goes_on ? 0 : 1)) xmlSAX2Characters(context, text, length);
}

void comment(void* context, const xmlChar* text) {
  if (wanted(context) && count_nodes(context, 1)) xmlSAX2Comment(context, text);
}

void processing_instruction(void* context, const xmlChar* target, const xmlChar* data) {
  if (wanted(context) && count_nodes(context, 1)) xmlSAX2ProcessingInstruction(context, target, data);
}

void cdata_block(void* context, const xmlChar* text, int length) {
  if (wanted(context) && count_nodes(context, 1)) xmlSAX2CDataBlock(context, text, length);
}

// Without the huge option libxml2 watches how far entities blow the content up. Entities need a document
// type declaration, so the option ends where one begins, in whatever encoding it is written.
void internal_subset(void* context, const xmlChar* name, const xmlChar* public_id, const xmlChar* system_id) {
  if (state_of(context).too_long_for_doctype) return refuse(context, "document type declaration in a huge document");
  parser_of(context)->options &= ~XML_PARSE_HUGE;
  xmlSAX2InternalSubset(context, name, public_id, system_id);
}

xmlEntity* entity(void* context, const xmlChar* name) {
  xmlEntity* found = xmlSAX2GetEntity(context, name);
  if (!found || found->etype != XML_EXTERNAL_GENERAL_PARSED_ENTITY) return found;
  refuse(context, "refers to an external entity");
  return nullptr;
}

void unresolved_reference(void* context, const xmlChar*) { refuse(context, "refers to an unknown entity"); }

void attribute_declaration(void* context, const xmlChar*, const xmlChar*, int, int, const xmlChar*,
                           xmlEnumeration* values) {
  xmlFreeEnumeration(values);
  refuse(context, "declares attributes");
}

void print_nothing(void*, const char*, ...) {}

// Installed once for the process: nothing is loaded, nothing is printed.
struct LibraryQuiet {
  LibraryQuiet() {
    xmlInitParser();
    xmlSetExternalEntityLoader([](const char*, const char*, xmlParserCtxt*) -> xmlParserInput* { return nullptr; });
    xmlSetGenericErrorFunc(nullptr, print_nothing);
  }
};

void keep_first_error(void* context, const xmlError& error) {
  std::string& first = state_of(context).first_error;
  if (error.level < XML_ERR_ERROR || !error.message || !first.empty()) return;
  if (error.line > 0) first = "line " + std::to_string(error.line) + ": ";
  std::string_view words = error.message;
  first += trimmed(words.substr(0, words.find('\n')));
}

void install_handlers(xmlSAXHandler& sax) {
  sax.startElementNs = start_element;
  sax.endElementNs = end_element;
  sax.characters = characters;
  sax.ignorableWhitespace = characters;
  sax.comment = comment;
  sax.processingInstruction = processing_instruction;
  sax.cdataBlock = cdata_block;
  sax.internalSubset = internal_subset;
  sax.getEntity = entity;
  sax.reference = unresolved_reference;
  sax.attributeDecl = attribute_declaration;
  // The record is constant in newer versions of the library only.
  sax.serror = [](void* context, auto* error) { keep_first_error(context, *error); };
}

std::string_view text_of(const xmlChar* characters) {
  return characters ? std::string_view(reinterpret_cast<const char*>(characters)) : std::string_view();
}

// The end of the tag or declaration that begins at `at`, and the quoted values in it.
struct Tag {
  std::size_t end;
  int values = 0;
};

Tag scan_tag(std::string_view bytes, std::size_t at) {
  Tag tag{at + 1};
  for (; tag.end < bytes.size() && bytes[tag.end] != '>' && bytes[tag.end] != '<'; ++tag.end) {
    char quote = bytes[tag.end];
    if (quote != '"' && quote != '\'') continue;
    ++tag.values;
    tag.end = std::min(bytes.find(quote, tag.end + 1), bytes.size() - 1);
  }
  return tag;
}

// Looks for tags that would take quadratic time; whether the rest is well-formed is left to the parser.
const char* crowded_tag(std::string_view bytes) {
  auto begins = [&](std::size_t at, std::string_view word) { return bytes.substr(at, word.size()) == word; };
  for (std::size_t at = bytes.find('<'); at != std::string_view::npos; at = bytes.find('<', at)) {
    if (begins(at, "<!--")) {
      at = bytes.find("-->", at + 4);
    } else if (begins(at, "<![CDATA[")) {
      at = bytes.find("]]>", at + 9);
    } else if (begins(at, "<?")) {
      at = bytes.find("?>", at + 2);
    } else {
      Tag tag = scan_tag(bytes, at);
      if (tag.values > MAX_ATTRIBUTES) return "too many attributes";
      if (begins(at, "<!ENTITY") && tag.end - at > MAX_ENTITY_BYTES) return "entity too long";
      at = tag.end;
    }
  }
  return nullptr;
}

// Whether all markup stands there in its ASCII bytes, by the first bytes (XML 1.0, appendix F) and the
// declared encoding.
bool is_ascii_compatible(std::string_view bytes) {
  if (bytes.starts_with("\xEF\xBB\xBF")) bytes.remove_prefix(3);
  if (!bytes.starts_with('<') || bytes.substr(1, 1) == std::string_view("\0", 1)) return false;
  if (!bytes.starts_with("<?xml")) return true;
  std::string declaration = lowered_ascii(bytes.substr(0, std::min(bytes.find("?>"), std::size_t{200})));
  std::size_t at = declaration.find("encoding");
  if (at == std::string::npos) return true;
  at = declaration.find_first_of("\"'", at);
  if (at == std::string::npos) return false;
  std::string_view name = std::string_view(declaration).substr(at + 1);
  for (std::string_view known : {"utf-8", "us-ascii", "iso-8859-", "windows-125"})
    if (name.starts_with(known)) return true;
  return false;
}

const char* reason_against_parsing(std::string_view bytes) {
  if (bytes.empty()) return "empty";
  if (bytes.size() > (std::size_t{1} << 30)) return "too large";
  if (is_ascii_compatible(bytes)) return crowded_tag(bytes);
  return bytes.size() > MAX_BYTES_UNSEEN ? "too large for its encoding" : nullptr;
}

}  // namespace

void XmlDocFree::operator()(_xmlDoc* document) const { xmlFreeDoc(document); }

XmlTree XmlTree::parse(std::string_view bytes, const std::string& what, const XmlPlace* emptied, const ShowNode& show) {
  static const LibraryQuiet quiet;
  if (const char* reason = reason_against_parsing(bytes)) throw Failure(what + ": " + reason);
  std::unique_ptr<xmlParserCtxt, ParserFree> parser(xmlNewParserCtxt());
  if (!parser) throw std::bad_alloc();
  ParseState state;
  state.too_long_for_doctype = bytes.size() > MAX_BYTES_WITH_DOCTYPE;
  state.place = emptied;
  state.show = &show;
  parser->_private = &state;
  install_handlers(*parser->sax);
  std::unique_ptr<_xmlDoc, XmlDocFree> document(
      xmlCtxtReadMemory(parser.get(), bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr,
                        XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_HUGE | XML_PARSE_COMPACT | XML_PARSE_NOERROR |
                            XML_PARSE_NOWARNING));
  if (state.failure) std::rethrow_exception(state.failure);
  if (state.refusal) throw Failure(what + ": " + state.refusal);
  if (!document || !parser->wellFormed || !parser->nsWellFormed) {
    throw Failure(what + ": " + (state.first_error.empty() ? "not well-formed" : state.first_error));
  }
  if (!xmlDocGetRootElement(document.get())) throw Failure(what + ": no element");
  return XmlTree(std::move(document));
}

const XmlNode* XmlTree::root() const { return xmlDocGetRootElement(_document.get()); }

const XmlNode* root_of(const XmlNode* node) { return xmlDocGetRootElement(node->doc); }

std::string_view local_name(const XmlNode* node) { return text_of(node->name); }

bool is_element(const XmlNode* node, std::string_view uri, std::string_view name) {
  return node->type == XML_ELEMENT_NODE && node->ns && local_name(node) == name && text_of(node->ns->href) == uri;
}

const XmlNode* first_child(const XmlNode* parent, std::string_view uri, std::string_view name) {
  const XmlNode* node = parent ? parent->children : nullptr;
  while (node && !is_element(node, uri, name)) node = node->next;
  return node;
}

const XmlNode* next_of(const XmlNode* element, std::string_view uri, std::string_view name) {
  const XmlNode* node = element->next;
  while (node && !is_element(node, uri, name)) node = node->next;
  return node;
}

std::string_view attribute(const XmlNode* element, std::string_view uri, std::string_view name) {
  for (const xmlAttr* at = element->properties; at; at = at->next)
    if (at->ns && text_of(at->name) == name && text_of(at->ns->href) == uri)
      return at->children ? text_of(at->children->content) : std::string_view("");
  return {};
}

}  // namespace brenlow

// The least that a program can do which reads or writes a document with the libraries that are there.

#include <iconv.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <zlib.h>

#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <vector>

#include "bench/rows.h"
#include "documents/file_access.h"
#include "documents/zip_package.h"
#include "terminal/child_process.h"

namespace brenlow::bench {

namespace {

constexpr int PARSE_OPTIONS = XML_PARSE_HUGE | XML_PARSE_COMPACT | XML_PARSE_NONET | XML_PARSE_NOENT;

struct XmlFree {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
  void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
  void operator()(xmlChar* text) const { xmlFree(text); }
};
using Tree = std::unique_ptr<xmlDoc, XmlFree>;

void convert(const std::string& path) {
  std::string bytes = read_file(path, std::size_t{1} << 30);
  std::unique_ptr<char[]> out(new char[bytes.size() * 4 + 4]);
  char* from = bytes.data();
  char* to = out.get();
  std::size_t left = bytes.size(), room = bytes.size() * 4 + 4;
  iconv_t converter = ::iconv_open("UTF-32LE", "UTF-8");
  std::size_t failed = ::iconv(converter, &from, &left, &to, &room);
  ::iconv_close(converter);
  if (failed != 0) throw std::runtime_error("the document is no UTF-8");
}

std::string inflated(const std::string& path) { return read_package_member(path, "content.xml"); }

Tree parsed(const std::string& bytes) {
  return Tree(xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr, PARSE_OPTIONS));
}

// Events that nobody looks at: no tree is built.
void parse_as_events(const std::string& bytes) {
  std::unique_ptr<xmlParserCtxt, XmlFree> parser(xmlNewParserCtxt());
  *parser->sax = {};
  parser->sax->initialized = XML_SAX2_MAGIC;
  parser->sax->startElementNs = [](void*, const xmlChar*, const xmlChar*, const xmlChar*, int, const xmlChar**, int,
                                   int, const xmlChar**) {};
  parser->sax->endElementNs = [](void*, const xmlChar*, const xmlChar*, const xmlChar*) {};
  parser->sax->characters = [](void*, const xmlChar*, int) {};
  xmlCtxtReadMemory(parser.get(), bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr, PARSE_OPTIONS);
}

// At the level that the writer uses.
void serialise_and_deflate(xmlDoc* document) {
  xmlChar* text = nullptr;
  int size = 0;
  xmlDocDumpMemory(document, &text, &size);
  std::unique_ptr<xmlChar, XmlFree> owned(text);
  std::vector<Bytef> packed(compressBound(static_cast<uLong>(size)));
  uLongf packed_size = packed.size();
  compress2(packed.data(), &packed_size, text, static_cast<uLong>(size), 2);
}

}  // namespace

double do_bare_work(const std::string& name, const std::string& path) {
  if (name == "convert") return cpu_of([&] { convert(path); });
  if (name == "inflate and parse") return cpu_of([&] { parsed(inflated(path)); });
  if (name == "inflate and parse as events") return cpu_of([&] { parse_as_events(inflated(path)); });
  if (name == "serialise and deflate") {
    Tree document = parsed(inflated(path));
    return cpu_of([&] { serialise_and_deflate(document.get()); });
  }
  throw std::runtime_error("no such work: " + name);
}

double bare_work(const std::string& name, const std::string& path) {
  auto result = run_child({"/proc/self/exe", "--bare", name, path});
  if (!result || result->status != 0) throw std::runtime_error("failed: " + name);
  return std::strtod(result->output.c_str(), nullptr);
}

}  // namespace brenlow::bench

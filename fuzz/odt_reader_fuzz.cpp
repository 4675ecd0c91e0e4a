// The bytes are tried as a whole package, and as the content.xml and the styles.xml of one. What opens is
// saved over itself and must open again as the same document.

#include <cstdint>
#include <string>

#include "core/failure.h"
#include "documents/file_access.h"
#include "documents/odt_reader.h"
#include "documents/odt_writer.h"
#include "documents/zip_package.h"
#include "fuzz/require.h"
#include "fuzz/scratch_file.h"

namespace {

using namespace brenlow;
using fuzz::require;

void check_document(const std::string& path, const std::string& package) {
  write_file(path, package);
  DocumentTriple document;
  try {
    document = odt_to_rich(path);
  } catch (const Failure&) {
    return;
  }
  require(!document.lines.empty() && document.lines.size() == document.fmt_lines.size());
  try {
    lines_to_odt(document.lines, path, path, document.fmt_lines, document.pagebreak_lines);
  } catch (const Failure&) {
    require(read_file(path, package.size()) == package);
    return;
  }
  // Looks depend on the old styles, the text does not.
  require(odt_to_rich(path).lines == document.lines);
}

std::string package_with(const std::string& member, std::string content) {
  PackageWriter package;
  package.add_deflated(member, std::move(content));
  if (member != "content.xml")
    package.add_stored("content.xml",
                       "<o:d xmlns:o='urn:oasis:names:tc:opendocument:xmlns:office:1.0'><o:body><o:text><p>a</p>"
                       "</o:text></o:body></o:d>");
  return package.finish();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const fuzz::ScratchFile scratch(".odt");
  std::string bytes(reinterpret_cast<const char*>(data), size);
  check_document(scratch.path, bytes);
  check_document(scratch.path, package_with("content.xml", bytes));
  check_document(scratch.path, package_with("styles.xml", bytes));
  return 0;
}

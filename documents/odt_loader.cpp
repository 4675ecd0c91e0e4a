// The program's side of documents/odt_module.h: the functions are those of the library, loaded at the first call.
// Tests link the code itself in place of this source.
#include <dlfcn.h>

#include "core/failure.h"
#include "core/version.h"
#include "documents/odt_module.h"

namespace brenlow {

namespace {

// The library, as the address of what it shows. It stays for good: what it returned may need its code.
const void* load_module() {
  void* library = ::dlopen(BRENLOW_ODT_BESIDE, RTLD_NOW | RTLD_LOCAL);
  if (!library) library = ::dlopen(BRENLOW_ODT_INSTALLED, RTLD_NOW | RTLD_LOCAL);
  const void* shown = library ? ::dlsym(library, "brenlow_odt_module") : nullptr;
  if (shown) return shown;
  const char* reason = ::dlerror();
  throw Failure(std::string("cannot load the part of Brenlow for .odt: ") + (reason ? reason : "unknown reason"));
}

// Throws Failure, and is then tried again at the next call.
const OdtModule& odt_module() {
  static const OdtModule& module = *static_cast<const OdtModule*>(load_module());
  if (module.version != VERSION) throw Failure("Brenlow was replaced by another version while it ran");
  return module;
}

}  // namespace

DocumentTriple odt_to_rich(const std::string& path, KeptContent* kept) { return odt_module().odt_to_rich(path, kept); }

std::string odt_bytes(const LineList& lines, const std::optional<std::string>& source_path, const FormatList& fmt_lines,
                      const IndexSet& pagebreak_lines, KeptContent* kept) {
  return odt_module().odt_bytes(lines, source_path, fmt_lines, pagebreak_lines, kept);
}

void lines_to_odt(const LineList& lines, const std::string& path, const std::optional<std::string>& source_path,
                  const FormatList& fmt_lines, const IndexSet& pagebreak_lines, KeptContent* kept) {
  odt_module().lines_to_odt(lines, path, source_path, fmt_lines, pagebreak_lines, kept);
}

std::string read_package_member(const std::string& path, const std::string& member) {
  return odt_module().read_package_member(path, member);
}

}  // namespace brenlow

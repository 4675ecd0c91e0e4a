#pragma once

#include "documents/odt_reader.h"
#include "documents/odt_writer.h"
#include "documents/zip_package.h"

namespace brenlow {

// What the program calls of the code that needs libzip and libxml2. That code is a library of its own, loaded when
// a package is first read or written: the two libraries bring so many others along that loading them would take
// a third of every start.
struct OdtModule {
  const char* version;  // of the program it belongs to; stays the first member in every version
  decltype(&brenlow::odt_to_rich) odt_to_rich;
  decltype(&brenlow::odt_bytes) odt_bytes;
  decltype(&brenlow::lines_to_odt) lines_to_odt;
  decltype(&brenlow::read_package_member) read_package_member;
};

}  // namespace brenlow

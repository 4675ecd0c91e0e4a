#include "documents/odt_module.h"

#include "core/version.h"

// All that the library shows of itself; documents/odt_loader.cpp looks for the name.
extern "C" [[gnu::visibility("default")]] const brenlow::OdtModule brenlow_odt_module;
const brenlow::OdtModule brenlow_odt_module = {brenlow::VERSION.data(), brenlow::odt_to_rich, brenlow::odt_bytes,
                                               brenlow::lines_to_odt, brenlow::read_package_member};

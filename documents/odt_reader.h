#pragma once

#include <string>

#include "core/document.h"
#include "documents/kept_content.h"

namespace brenlow {

// Reads an OpenDocument Text package (OASIS OpenDocument 1.3, parts 2 and 3). Throws Failure with a text
// for the user, and then nothing has changed. Fills `kept`, if given, for the save that may follow.
DocumentTriple odt_to_rich(const std::string& path, KeptContent* kept = nullptr);

}  // namespace brenlow

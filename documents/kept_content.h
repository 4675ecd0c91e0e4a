#pragma once

#include <optional>
#include <string>

#include "documents/file_access.h"

namespace brenlow {

// What a save over an .odt keeps of its content.xml: all but the text. Taken when the file is read or written, and
// good for as long as the file's stamp is the same; so a save need not read again what can be megabytes.
struct KeptContent {
  std::optional<FileStamp> file;
  std::string xml;
};

}  // namespace brenlow

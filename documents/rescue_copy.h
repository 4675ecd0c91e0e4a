#pragma once

#include <optional>
#include <string>

#include "core/document.h"

namespace brenlow {

struct RescueDocument {
  const LineList& lines;
  const FormatList& fmt_lines;
  const IndexSet& pagebreak_lines;
};

// Writes a document that its user can no longer save, as a new file in its own format: beside its file, else,
// or without a name, in the working folder, else in `home`. A name such as "novel rescued 2026-11-23 001530.odt"
// tells what it is; nothing is ever overwritten. In want of memory it is saved without what the old package held
// beside the text, at the last as plain text. `path` is absent for an unnamed document, which gets
// `default_extension`, without a dot. Returns the path. Throws Failure.
std::string write_rescue_copy(const RescueDocument& document, const std::optional<std::string>& path,
                              const std::string& default_extension, const std::string& home);

}  // namespace brenlow

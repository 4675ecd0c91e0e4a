#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/document.h"
#include "documents/kept_content.h"

namespace brenlow {

// The bytes of an OpenDocument Text package. `source_path` names an existing package whose other members,
// styles and root attributes are kept. What is `kept` of that package spares its content.xml the reading; it becomes
// what is kept of the new one, without a stamp. Throws Failure.
std::string odt_bytes(const LineList& lines, const std::optional<std::string>& source_path, const FormatList& fmt_lines,
                      const IndexSet& pagebreak_lines, KeptContent* kept = nullptr);

// Writes odt_bytes to `path`; all reading is done before the target is touched. Throws Failure; the target is
// then as it was, as far as the system allows.
void lines_to_odt(const LineList& lines, const std::string& path, const std::optional<std::string>& source_path,
                  const FormatList& fmt_lines, const IndexSet& pagebreak_lines, KeptContent* kept = nullptr);

}  // namespace brenlow

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/document.h"

namespace brenlow {

// Whether the lower-cased extension with its dot is one of those edited as plain text.
bool is_plain_text_extension(std::string_view extension);

// The format in which a document of this name is saved: the extension of its path if it is one of ours, else
// `default_extension`, which has no dot. With its dot.
std::string saved_extension(std::string_view path, std::string_view default_extension);

// Reads UTF-8 text, divided at every line boundary of the Unicode Standard (and FS, GS, RS); wrong bytes
// become U+FFFD. Throws Failure.
DocumentTriple txt_to_lines(const std::string& path);
// The lines as UTF-8, divided by "\n", none behind the last.
std::string txt_bytes(const LineList& lines);
// Writes txt_bytes to the file. Throws Failure.
void lines_to_txt(const LineList& lines, const std::string& path);

}  // namespace brenlow

#include "documents/plain_text.h"

#include <algorithm>
#include <cstddef>

#include "core/failure.h"
#include "core/unicode.h"
#include "documents/file_access.h"

namespace brenlow {

namespace {

constexpr std::size_t MAX_FILE_BYTES = std::size_t{1} << 30;
constexpr std::size_t MAX_LINES = std::size_t{64} << 20;

// Where a line ends and where the next begins.
struct LineEnd {
  std::size_t end;
  std::size_t next;
  bool ascii;  // the line holds nothing else
};

// The bytes of the line boundary at `at`, or 0. A lead byte never stands within another character, so the
// three boundaries beyond ASCII can be told by their bytes alone, even in a text that is no UTF-8.
std::size_t boundary_length(std::string_view bytes, std::size_t at) {
  unsigned char byte = static_cast<unsigned char>(bytes[at]);
  if (byte == '\r') return bytes.substr(at, 2) == "\r\n" ? 2 : 1;
  if ((byte >= 0x0A && byte <= 0x0C) || (byte >= 0x1C && byte <= 0x1E)) return 1;
  if (byte == 0xC2 && bytes.substr(at, 2) == "\xC2\x85") return 2;
  if (byte == 0xE2 && (bytes.substr(at, 3) == "\xE2\x80\xA8" || bytes.substr(at, 3) == "\xE2\x80\xA9")) return 3;
  return 0;
}

LineEnd find_line_end(std::string_view bytes, std::size_t start) {
  bool ascii = true;
  for (std::size_t at = start;; ++at) {
    while (at < bytes.size() && static_cast<signed char>(bytes[at]) >= 0x20) ++at;
    if (at == bytes.size()) return {at, at, ascii};
    if (std::size_t length = boundary_length(bytes, at)) return {at, at + length, ascii};
    ascii = ascii && static_cast<signed char>(bytes[at]) >= 0;
  }
}

Text decoded_line(std::string_view bytes, bool ascii, std::u32string& scratch) {
  if (ascii) return Text::build(bytes.size(), [&](char32_t* out) { std::copy(bytes.begin(), bytes.end(), out); });
  if (scratch.size() < bytes.size()) scratch.resize(bytes.size());
  std::size_t length = decode_utf8_into(bytes, scratch.data());
  return Text(std::u32string_view(scratch).substr(0, length));
}

}  // namespace

bool is_plain_text_extension(std::string_view extension) {
  return extension == ".txt" || extension == ".md" || extension == ".fountain";
}

DocumentTriple txt_to_lines(const std::string& path) {
  const std::string bytes = read_file(path, MAX_FILE_BYTES);
  DocumentTriple document;
  document.lines.clear();
  std::u32string scratch;
  for (std::size_t start = 0; start < bytes.size();) {
    LineEnd line = find_line_end(bytes, start);
    document.lines.push_back(
        decoded_line(std::string_view(bytes).substr(start, line.end - start), line.ascii, scratch));
    if (document.lines.size() > MAX_LINES) throw Failure("too many lines");
    start = line.next;
  }
  if (document.lines.empty()) document.lines.emplace_back();
  document.fmt_lines.resize(document.lines.size());
  return document;
}

void lines_to_txt(const std::vector<Text>& lines, const std::string& path) {
  std::size_t characters = lines.size();
  for (const Text& line : lines) characters += line.size();
  std::string bytes;
  bytes.reserve(characters + characters / 16);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i > 0) bytes += '\n';
    for (char32_t character : lines[i].view()) {
      if (character < 0x80)
        bytes += static_cast<char>(character);
      else
        append_utf8(bytes, character);
    }
  }
  write_file(path, bytes);
}

}  // namespace brenlow

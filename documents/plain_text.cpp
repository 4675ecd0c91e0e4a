#include "documents/plain_text.h"

#include <algorithm>
#include <cstddef>

#include "core/failure.h"
#include "core/unicode.h"
#include "documents/file_access.h"
#include "documents/line_storage.h"

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

// The first place from `at` on that is no printable ASCII character.
std::size_t skip_plain(std::string_view bytes, std::size_t at) {
  constexpr std::size_t BLOCK = 32;  // with fixed bounds, so that the compiler can use wide registers
  for (; at + BLOCK <= bytes.size(); at += BLOCK) {
    signed char low = 0x7F;
    for (std::size_t i = 0; i < BLOCK; ++i) low = std::min(low, static_cast<signed char>(bytes[at + i]));
    if (low < 0x20) break;
  }
  while (at < bytes.size() && static_cast<signed char>(bytes[at]) >= 0x20) ++at;
  return at;
}

LineEnd find_line_end(std::string_view bytes, std::size_t start) {
  bool ascii = true;
  for (std::size_t at = start;; ++at) {
    at = skip_plain(bytes, at);
    if (at == bytes.size()) return {at, at, ascii};
    if (std::size_t length = boundary_length(bytes, at)) return {at, at + length, ascii};
    ascii = ascii && static_cast<signed char>(bytes[at]) >= 0;
  }
}

// The lines of a file, one after the other. A line that narrow characters can hold becomes a slice of the
// file's storage: its characters take the place of its bytes, which are never fewer.
class LineReader {
 public:
  explicit LineReader(SharedArray<char> file) : _file(std::move(file)) {}

  Text decoded(std::size_t start, const LineEnd& line) {
    std::size_t size = line.end - start;
    if (line.ascii) return Text::slice(_file, start, size);
    if (_scratch.size() < size) _scratch.resize(size);
    size = decode_utf8_into(std::string_view(_file.data() + start, size), _scratch.data());
    std::u32string_view characters(_scratch.data(), size);
    return narrowed(characters, _file.writable() + start) ? Text::slice(_file, start, size) : Text(characters);
  }

 private:
  SharedArray<char> _file;
  std::u32string _scratch;
};

}  // namespace

bool is_plain_text_extension(std::string_view extension) {
  return extension == ".txt" || extension == ".md" || extension == ".fountain";
}

std::string saved_extension(std::string_view path, std::string_view default_extension) {
  std::string extension = path_extension(path);
  if (extension == ".odt" || is_plain_text_extension(extension)) return extension;
  return "." + std::string(default_extension);
}

DocumentTriple txt_to_lines(const std::string& path) {
  SharedArray<char> file = read_shared_file(path, MAX_FILE_BYTES);
  std::string_view bytes(file.data(), file.size());
  LineReader reader(std::move(file));
  DocumentTriple document;
  document.lines.clear();
  for (std::size_t start = 0; start < bytes.size();) {
    LineEnd line = find_line_end(bytes, start);
    document.lines.push_back(reader.decoded(start, line));
    if (document.lines.size() > MAX_LINES) throw Failure("too many lines");
    start = line.next;
  }
  if (document.lines.empty()) document.lines.emplace_back();
  document.fmt_lines.resize(document.lines.size());
  return document;
}

std::string txt_bytes(const LineList& lines) {
  std::size_t characters = lines.size();
  for (const Text& line : lines) characters += line.size();
  std::string bytes;
  bytes.reserve(characters + characters / 16);
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i > 0) bytes += '\n';
    append_utf8_text(bytes, lines[i]);
  }
  return bytes;
}

void lines_to_txt(const LineList& lines, const std::string& path) {
  write_file(path, txt_bytes(lines), Durability::ON_DISK);
}

}  // namespace brenlow

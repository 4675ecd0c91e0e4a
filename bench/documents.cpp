#include "bench/documents.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <random>
#include <utility>

#include "core/document.h"
#include "documents/odt_writer.h"
#include "documents/plain_text.h"

namespace brenlow::bench {

namespace {

namespace fs = std::filesystem;

// Words out of some thousand, the short ones more often; now and then a letter or a sign beyond ASCII.
class Prose {
 public:
  Prose() {
    for (std::u32string& word : _vocabulary) {
      for (int letter = below(9); letter >= 0; --letter) word += static_cast<char32_t>('a' + below(26));
      if (below(50) == 0) word += U'é';
      if (below(100) == 0) word += U"’s";
    }
    std::sort(_vocabulary.begin(), _vocabulary.end(), [](auto& a, auto& b) { return a.size() < b.size(); });
  }
  int below(int limit) { return static_cast<int>(_random() % static_cast<unsigned>(limit)); }
  const std::u32string& word() {
    int size = static_cast<int>(_vocabulary.size());
    return _vocabulary[static_cast<std::size_t>(std::min(below(size), below(size)))];
  }

 private:
  std::mt19937 _random{1};
  std::vector<std::u32string> _vocabulary{4000};
};

class Writer {
 public:
  explicit Writer(const Kind& kind) : _kind(kind) {
    _document.lines.clear();
    _document.fmt_lines.clear();
  }

  DocumentTriple written(int words) {
    std::vector<int> breaks;
    while (words > 0) {
      if (_prose.below(30) == 0 && !_line.empty()) breaks.push_back(static_cast<int>(_document.lines.size()));
      if (_kind.extension == ".md" && _prose.below(30) == 0) _line = U"# ";
      for (int in_paragraph = std::min(words, 20 + _prose.below(181)); in_paragraph > 0; --in_paragraph, --words)
        _add_word();
      _end_line();
    }
    if (_kind.extension == ".odt") _document.pagebreak_lines = IndexSet::from_sorted(breaks);
    return std::move(_document);
  }

 private:
  // One of 40 words is bold or italic.
  void _add_word() {
    constexpr std::size_t HARD_LINE = 70;
    const std::u32string& word = _prose.word();
    if (_kind.shape == Shape::HARD_LINES && _line.size() + word.size() >= HARD_LINE) _end_line();
    if (!_line.empty() && _line.back() != U' ') _line += U' ';
    bool set_off = _prose.below(40) == 0;
    std::u32string mark(set_off && _kind.extension == ".md" ? std::size_t{1} + _prose.below(2) : 0, U'*');
    int start = static_cast<int>(_line.size());
    _line += mark + word + mark;
    if (set_off && _kind.extension == ".odt")
      _spans.push_back({start, static_cast<int>(_line.size()), 1 + _prose.below(3)});
  }

  void _end_line() {
    _document.lines.emplace_back(_line);
    _document.fmt_lines.push_back(span_list(_spans));
    _line.clear();
    _spans.clear();
  }

  Kind _kind;
  Prose _prose;
  std::u32string _line;
  std::vector<Span> _spans;
  DocumentTriple _document;
};

// Under another name first, so that a document is there as a whole or not at all.
template <class Write>
std::string made_once(const std::string& name, Write&& write) {
  std::string path = work_folder("documents") + "/" + name;
  if (fs::exists(path)) return path;
  write(path + ".part");
  fs::rename(path + ".part", path);
  return path;
}

}  // namespace

std::vector<Kind> all_kinds() {
  std::vector<Kind> kinds;
  for (Shape shape : {Shape::PARAGRAPHS, Shape::HARD_LINES})
    for (const char* extension : {".txt", ".md", ".odt"}) kinds.push_back({shape, extension});
  return kinds;
}

std::string name_of(const Kind& kind) {
  return (kind.shape == Shape::PARAGRAPHS ? "paragraphs" : "hard lines") + (" " + kind.extension);
}

std::string document(const Kind& kind, int words) {
  std::string shape = kind.shape == Shape::PARAGRAPHS ? "paragraphs-" : "lines-";
  return made_once(shape + std::to_string(words) + kind.extension, [&](const std::string& path) {
    DocumentTriple made = Writer(kind).written(words);
    if (kind.extension == ".odt")
      lines_to_odt(made.lines, path, std::nullopt, made.fmt_lines, made.pagebreak_lines);
    else
      lines_to_txt(made.lines, path);
  });
}

std::string megabyte_line() {
  return made_once("megabyte.txt", [](const std::string& path) {
    Prose prose;
    std::u32string line;
    while (line.size() < 1'000'000) line += prose.word() + U' ';
    lines_to_txt({Text(line)}, path);
  });
}

std::string work_folder(const std::string& name) {
  fs::path folder = fs::read_symlink("/proc/self/exe").parent_path() / name;
  fs::create_directories(folder);
  return folder.string();
}

}  // namespace brenlow::bench

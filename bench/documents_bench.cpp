// Opening and saving a document of a million words, each beside the work that no program can leave out: for
// .txt the reading of the file, for .odt inflating and parsing, or deflating. The table's last lines give the
// ratios.

#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "documents/file_access.h"
#include "documents/odt_reader.h"
#include "documents/odt_writer.h"
#include "documents/plain_text.h"
#include "documents/zip_package.h"

namespace {

using namespace brenlow;

constexpr int WORDS = 1'000'000;
constexpr std::size_t ANY_SIZE = std::size_t{1} << 30;

// Paragraphs of 20 to 200 words out of some thousand, a twentieth of them bold or italic, and now and then a
// letter beyond ASCII and a new page.
DocumentTriple novel() {
  std::mt19937 random(1);
  auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  std::vector<std::u32string> vocabulary(4000);
  for (std::u32string& word : vocabulary) {
    for (int letter = 1 + below(8); letter > 0; --letter) word += static_cast<char32_t>('a' + below(26));
    if (below(100) == 0) word += U'é';
  }
  DocumentTriple document;
  document.lines.clear();
  document.fmt_lines.clear();
  std::vector<int> breaks;
  for (int words = 0; words < WORDS;) {
    std::u32string line;
    std::vector<Span> spans;
    for (int in_line = 20 + below(180); in_line > 0; --in_line, ++words) {
      int start = static_cast<int>(line.size());
      line += vocabulary[static_cast<std::size_t>(std::min(below(4000), below(4000)))];
      if (below(40) == 0) spans.push_back({start, static_cast<int>(line.size()), 1 + below(3)});
      line += U' ';
    }
    if (below(50) == 0) breaks.push_back(static_cast<int>(document.lines.size()));
    document.lines.emplace_back(line);
    document.fmt_lines.push_back(span_list(spans));
  }
  document.pagebreak_lines = IndexSet::from_sorted(breaks);
  return document;
}

// The novel in both formats, in a folder that goes with the program.
class Corpus {
 public:
  Corpus() : _folder(std::filesystem::temp_directory_path() / ("brenlow-bench-" + std::to_string(::getpid()))) {
    std::filesystem::create_directory(_folder);
    save_odt(odt);
    lines_to_txt(document.lines, txt);
    content = read_package_member(odt, "content.xml");
  }
  ~Corpus() { std::filesystem::remove_all(_folder); }
  void save_odt(const std::string& path) const {
    lines_to_odt(document.lines, path, std::nullopt, document.fmt_lines, document.pagebreak_lines);
  }

 private:
  std::filesystem::path _folder;

 public:
  const DocumentTriple document = novel();
  const std::string odt = _folder / "novel.odt", txt = _folder / "novel.txt", saved = _folder / "saved";
  std::string content;
};

const Corpus& corpus() {
  static const Corpus made;
  return made;
}

void bare_read(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(read_file(corpus().txt, ANY_SIZE));
}

void open_txt(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(txt_to_lines(corpus().txt));
}

void save_txt(benchmark::State& state) {
  for (auto _ : state) lines_to_txt(corpus().document.lines, corpus().saved);
}

void bare_inflate_and_parse(benchmark::State& state) {
  for (auto _ : state) {
    std::string bytes = read_package_member(corpus().odt, "content.xml");
    std::unique_ptr<xmlDoc, void (*)(xmlDoc*)> tree(
        xmlReadMemory(bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr,
                      XML_PARSE_HUGE | XML_PARSE_COMPACT | XML_PARSE_NONET),
        xmlFreeDoc);
    benchmark::DoNotOptimize(tree.get());
  }
}

void open_odt(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(odt_to_rich(corpus().odt));
}

// At the level that the writer uses.
void bare_deflate(benchmark::State& state) {
  std::vector<Bytef> packed(compressBound(corpus().content.size()));
  for (auto _ : state) {
    uLongf size = packed.size();
    compress2(packed.data(), &size, reinterpret_cast<const Bytef*>(corpus().content.data()), corpus().content.size(),
              2);
    benchmark::DoNotOptimize(size);
  }
}

void save_odt(benchmark::State& state) {
  for (auto _ : state) corpus().save_odt(corpus().saved);
}

// Over a package that is there: its members and its content are read first.
void save_odt_over(benchmark::State& state) {
  const DocumentTriple& document = corpus().document;
  for (auto _ : state)
    lines_to_odt(document.lines, corpus().odt, corpus().odt, document.fmt_lines, document.pagebreak_lines);
}

BENCHMARK(bare_read)->Unit(benchmark::kMillisecond);
BENCHMARK(open_txt)->Unit(benchmark::kMillisecond);
BENCHMARK(save_txt)->Unit(benchmark::kMillisecond);
BENCHMARK(bare_inflate_and_parse)->Unit(benchmark::kMillisecond);
BENCHMARK(open_odt)->Unit(benchmark::kMillisecond);
BENCHMARK(bare_deflate)->Unit(benchmark::kMillisecond);
BENCHMARK(save_odt)->Unit(benchmark::kMillisecond);
BENCHMARK(save_odt_over)->Unit(benchmark::kMillisecond);

// Prints the table and, behind it, how often the bare work fits into each measured one.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) _times[run.benchmark_name()] = run.GetAdjustedCPUTime();
  }
  void Finalize() override {
    for (auto [measured, bare] : {std::pair{"open_txt", "bare_read"}, std::pair{"open_odt", "bare_inflate_and_parse"},
                                  std::pair{"save_odt", "bare_deflate"}, std::pair{"save_odt_over", "bare_deflate"}})
      if (_times.contains(measured) && _times.contains(bare))
        std::printf("%s / %s: %.2f\n", measured, bare, _times[measured] / _times[bare]);
  }

 private:
  std::map<std::string, double> _times;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}

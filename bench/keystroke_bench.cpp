// A letter typed in the middle of a page and of a million words, with everything a key costs: the record of
// the history, the patched map, the word count, the status bar and the drawing. The last line gives the
// ratio of the long document to the page.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "bench/session.h"

namespace {

using namespace brenlow;
using bench::frame;
using bench::Session;

constexpr int PAGE = 300;
constexpr int NOVEL = 1'000'000;

// Paragraphs of 20 to 200 words.
DocumentTriple document_of(int words) {
  std::mt19937 random(1);
  auto pick = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  DocumentTriple triple;
  triple.lines.clear();
  while (words > 0) {
    std::u32string line;
    for (int in_line = std::min(words, pick(20, 200)); in_line > 0; --in_line, --words) {
      if (!line.empty()) line += U' ';
      for (int letter = pick(1, 9); letter > 0; --letter) line += static_cast<char32_t>('a' + pick(0, 25));
    }
    triple.lines.emplace_back(line);
  }
  triple.fmt_lines.resize(triple.lines.size());
  return triple;
}

Session& session() {
  static Session only;
  return only;
}

void open_document(int words) {
  Editor& editor = session().editor();
  editor._reset_for_document(document_of(words), std::nullopt);
  editor.cy = editor._line_count() / 2;
  editor.cx = editor._line_length(editor.cy) / 2;
  editor._ensure_cursor_visible();
  editor.draw();
}

std::map<std::string, std::map<int, double>> measured;

// Times `keys` pressed one after the other, each with its frame; the document is the same again after them.
void press(benchmark::State& state, const char* name, const std::vector<int>& keys) {
  int words = static_cast<int>(state.range(0));
  open_document(words);
  Editor& editor = session().editor();
  auto begin = std::chrono::steady_clock::now();
  for (auto _ : state) {
    for (int key : keys) {
      editor._handle_key(key);
      frame(editor);
    }
  }
  std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
  double per_key = passed.count() / static_cast<double>(state.iterations()) / static_cast<double>(keys.size());
  measured[name][words] = per_key;
  state.counters["us_per_key"] = per_key * 1e6;
}

void letter(benchmark::State& state) { press(state, "letter and Backspace", {'x', 127}); }
void enter(benchmark::State& state) { press(state, "Enter and Backspace", {13, 127}); }
void page_down(benchmark::State& state) { press(state, "PageDown and PageUp", {KEY_NPAGE, KEY_PPAGE}); }

BENCHMARK(letter)->Arg(PAGE)->Arg(NOVEL)->MinTime(0.5);
BENCHMARK(enter)->Arg(PAGE)->Arg(NOVEL)->MinTime(0.5);
BENCHMARK(page_down)->Arg(PAGE)->Arg(NOVEL)->MinTime(0.5);

}  // namespace

int main(int count, char** arguments) {
  std::setlocale(LC_ALL, "C.UTF-8");
  ::benchmark::Initialize(&count, arguments);
  ::benchmark::RunSpecifiedBenchmarks();
  for (auto& [name, times] : measured)
    std::printf("%-22s a million words / a page: %.2f\n", name.c_str(), times[NOVEL] / times[PAGE]);
}

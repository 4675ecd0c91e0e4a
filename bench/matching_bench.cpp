// What a search and the default colours of Markdown cost against a plain pass over the same text: a novel of
// about a million words in paragraphs of one line.

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "core/text.h"
#include "customise/syntax_defaults.h"
#include "customise/syntax_rules.h"
#include "structure/matching.h"

namespace brenlow {
namespace {

std::u32string random_word(std::mt19937& random) {
  constexpr std::u32string_view LETTERS = U"eeeeettttaaaooiinnsshhrrddlluccmmwfgypbvkjéü";
  std::u32string word(2 + random() % 6, U' ');
  for (char32_t& c : word) c = LETTERS[random() % LETTERS.size()];
  switch (random() % 200) {
    case 0:
      return U"*" + word + U"*";
    case 1:
      return U"**" + word + U"**";
    case 2:
      return U"[" + word + U"](https://example.org)";
    default:
      return word;
  }
}

const std::vector<Text>& novel() {
  static const std::vector<Text> lines = [] {
    std::mt19937 random(1);
    std::vector<Text> made;
    for (int words = 0; words < 1'000'000;) {
      std::u32string line = words % 20 == 0 ? U"# " : U"";
      const int count = 20 + static_cast<int>(random() % 180);
      for (int i = 0; i < count; ++i) line += random_word(random) + U" ";
      words += count;
      made.emplace_back(line);
      made.emplace_back();
    }
    return made;
  }();
  return lines;
}

template <class PerLine>
void over_the_novel(benchmark::State& state, PerLine&& per_line) {
  std::int64_t characters = 0;
  for (const Text& line : novel()) characters += line.length();
  for (auto _ : state)
    for (const Text& line : novel()) benchmark::DoNotOptimize(per_line(line));
  state.SetItemsProcessed(state.iterations() * characters);
}

void plain_pass(benchmark::State& state) {
  over_the_novel(state, [](const Text& line) {
    return line.view().visit([](auto characters) {
      std::size_t count = 0;
      for (auto c : characters) count += raw(c) == 'q';
      return count;
    });
  });
}
BENCHMARK(plain_pass)->Unit(benchmark::kMillisecond);

void find(benchmark::State& state) {
  const Needle needle(U"endmarkerqx", state.range(0) != 0);
  over_the_novel(state, [&](const Text& line) { return needle.find(line, 0); });
}
BENCHMARK(find)->ArgName("case_insensitive")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void find_backward(benchmark::State& state) {
  const Needle needle(U"endmarkerqx", true);
  over_the_novel(state, [&](const Text& line) { return needle.rfind(line, line.length()); });
}
BENCHMARK(find_backward)->Unit(benchmark::kMillisecond);

void count_common_word(benchmark::State& state) {
  const Needle needle(U"he", true);
  over_the_novel(state, [&](const Text& line) { return needle.count(line); });
}
BENCHMARK(count_common_word)->Unit(benchmark::kMillisecond);

void markdown_colours(benchmark::State& state) {
  const SyntaxRules rules = parse_syntax_rules(default_syntax_config("md"));
  over_the_novel(state, [&](const Text& line) { return _compute_syn_spans(line.view().str(), rules, {}).size(); });
}
BENCHMARK(markdown_colours)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace brenlow

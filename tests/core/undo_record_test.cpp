#include "core/undo_record.h"

#include <gtest/gtest.h>

#include <random>

namespace brenlow {
namespace {

// What a record is taken of.
struct Edited {
  LineList lines{Text()};
  FormatList fmt_lines{SpanList()};
  IndexSet pagebreak_lines;
  friend bool operator==(const Edited&, const Edited&) = default;
};

UndoRecord record_of(Edited& d, int first, int end, auto&& edit) {
  const int behind = static_cast<int>(d.lines.size()) - end;
  UndoRecord record = open_record(d.lines, d.fmt_lines, d.pagebreak_lines, first, end);
  edit();
  finish_record(record, d.lines, d.fmt_lines, d.pagebreak_lines, static_cast<int>(d.lines.size()) - behind);
  return record;
}

TEST(UndoRecord, BringsBackBothSidesOfAnyChange) {
  std::mt19937 random(11);
  Edited document;
  document.lines.assign(5, Text(U"some words"));
  document.lines[2] = Text(std::u32string(1500, U'a'));
  document.fmt_lines.assign(5, span_list({{1, 3, FMT_BOLD}}));
  document.fmt_lines[2] = span_list({{1, 3, 1}, {700, 800, 2}, {1400, 1500, 3}});
  const Edited before = document;
  auto change = [&] {
    const std::size_t line = random() % document.lines.size();
    switch (random() % 4) {
      case 0:
        document.lines[line] = document.lines[line].spliced(random() % (document.lines[line].size() + 1), 0, U"xy z");
        document.fmt_lines[line] = span_list({{0, 2, 1 + static_cast<int>(random() % 3)}});
        break;
      case 1:
        document.lines.splice(line, 1, {document.lines[line], Text(U"new")});
        document.fmt_lines.splice(line, 1, {document.fmt_lines[line], SpanList()});
        break;
      case 2:
        document.lines.splice(line, 1, std::vector<Text>());
        document.fmt_lines.splice(line, 1, std::vector<SpanList>());
        break;
      default:
        document.pagebreak_lines.insert(1 + static_cast<int>(random() % 5));
    }
  };
  for (int round = 0; round < 500; ++round) {
    document = before;
    const UndoRecord record = record_of(document, 0, 5, [&] {
      for (auto changes = 1 + random() % 4; changes > 0; --changes) change();
    });
    const Edited after = document;
    apply_record(record, false, document.lines, document.fmt_lines, document.pagebreak_lines);
    ASSERT_EQ(document, before);
    apply_record(record, true, document.lines, document.fmt_lines, document.pagebreak_lines);
    ASSERT_EQ(document, after);
  }
}

TEST(UndoRecord, CostsWhatChangedNotWhatItCovers) {
  Edited d;
  for (std::size_t i = 1; i < 50'000; ++i) d.lines.push_back(Text());
  for (std::size_t i = 0; i < 50'000; ++i) d.lines[i] = Text(U"a line of a long novel");
  d.fmt_lines.assign(d.lines.size(), SpanList());
  const UndoRecord scattered = record_of(d, 0, 50'000, [&] {
    d.lines[3] = Text(U"one");
    d.lines[40'000] = Text(U"two");
  });
  EXPECT_EQ(scattered.old_lines.size() + scattered.new_lines.size(), 4U);
  EXPECT_EQ(scattered.word_delta, 2 - 12);
  const UndoRecord deleted = record_of(d, 0, 50'000, [&] {
    d.lines.erase(20'000, 1);
    d.fmt_lines.erase(20'000, 1);
  });
  EXPECT_EQ(deleted.old_lines.size() + deleted.new_lines.size(), 1U);
  d.lines[5] = Text(std::u32string(1'000'000, U'x'));
  const UndoRecord typed = record_of(d, 5, 6, [&] { d.lines[5] = d.lines[5].spliced(500'000, 0, U"y"); });
  std::size_t kept = 0;
  for (const auto& side : {typed.old_lines, typed.new_lines})
    for (const Text& line : side) kept += line.size();
  EXPECT_LT(kept, 10U);
}

}  // namespace
}  // namespace brenlow

#include "core/undo_record.h"

#include <gtest/gtest.h>

#include <random>

namespace brenlow {
namespace {

std::size_t kept_characters(const UndoRecord& record) {
  std::size_t count = 0;
  for (const Text& line : record.old_lines) count += line.size();
  for (const Text& line : record.new_lines) count += line.size();
  return count;
}

struct Random {
  std::mt19937 engine{11};
  int below(int limit) { return static_cast<int>(engine() % static_cast<unsigned>(limit)); }
};

// Changes some lines, characters and formats of the document at random, anywhere.
void change(DocumentTriple& d, Random& random) {
  for (int i = random.below(4); i >= 0; --i) {
    auto at = static_cast<std::size_t>(random.below(static_cast<int>(d.lines.size())));
    switch (random.below(4)) {
      case 0:
        d.lines[at] = d.lines[at].spliced(static_cast<std::size_t>(random.below(d.lines[at].length() + 1)), 0, U"xy z");
        d.fmt_lines[at] = span_list({{0, 2, 1 + random.below(3)}});
        break;
      case 1:
        splice(d.lines, static_cast<int>(at), 1, {d.lines[at], Text(U"new")});
        splice(d.fmt_lines, static_cast<int>(at), 1, {d.fmt_lines[at], SpanList()});
        break;
      case 2:
        if (d.lines.size() == 1) break;
        splice(d.lines, static_cast<int>(at), 1, std::vector<Text>());
        splice(d.fmt_lines, static_cast<int>(at), 1, std::vector<SpanList>());
        break;
      default:
        d.pagebreak_lines.insert(1 + random.below(5));
        break;
    }
  }
}

TEST(UndoRecord, BringsBackBothSidesOfAnyChange) {
  Random random;
  for (int round = 0; round < 500; ++round) {
    DocumentTriple document;
    document.lines.assign(5, Text(U"some words"));
    document.lines[2] = Text(std::u32string(1500, U'a'));
    document.fmt_lines.assign(5, span_list({{1, 3, FMT_BOLD}}));
    document.fmt_lines[2] = span_list({{1, 3, 1}, {700, 800, 2}, {1400, 1500, 3}});
    DocumentTriple before = document;
    UndoRecord record = open_record(document.lines, document.fmt_lines, document.pagebreak_lines, 0,
                                    static_cast<int>(document.lines.size()));
    change(document, random);
    DocumentTriple after = document;
    finish_record(record, document.lines, document.fmt_lines, document.pagebreak_lines,
                  static_cast<int>(document.lines.size()));
    apply_record(record, false, document.lines, document.fmt_lines, document.pagebreak_lines);
    ASSERT_EQ(document, before);
    apply_record(record, true, document.lines, document.fmt_lines, document.pagebreak_lines);
    ASSERT_EQ(document, after);
  }
}

TEST(UndoRecord, CostsWhatChangedNotWhatItCovers) {
  DocumentTriple d;
  d.lines.assign(50'000, Text());
  for (Text& line : d.lines) line = Text(U"a line of a long novel");
  d.fmt_lines.assign(d.lines.size(), SpanList());
  auto covering_all = [&](auto&& edit) {
    UndoRecord record = open_record(d.lines, d.fmt_lines, d.pagebreak_lines, 0, static_cast<int>(d.lines.size()));
    edit();
    finish_record(record, d.lines, d.fmt_lines, d.pagebreak_lines, static_cast<int>(d.lines.size()));
    return record;
  };
  UndoRecord deleted = covering_all([&] {
    d.lines.erase(d.lines.begin() + 20'000);
    d.fmt_lines.pop_back();
  });
  EXPECT_EQ(deleted.old_lines.size() + deleted.new_lines.size(), 1U);
  UndoRecord scattered = covering_all([&] {
    d.lines[3] = Text(U"one");
    d.lines[40'000] = Text(U"two");
  });
  EXPECT_EQ(scattered.old_lines.size() + scattered.new_lines.size(), 4U);
  EXPECT_EQ(scattered.word_delta, 2 - 12);

  d.lines[5] = Text(std::u32string(1'000'000, U'x'));
  UndoRecord typed = open_record(d.lines, d.fmt_lines, d.pagebreak_lines, 5, 6);
  d.lines[5] = d.lines[5].spliced(500'000, 0, U"y");
  finish_record(typed, d.lines, d.fmt_lines, d.pagebreak_lines, 6);
  EXPECT_LT(kept_characters(typed), 10U);
}

}  // namespace
}  // namespace brenlow

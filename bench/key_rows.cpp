#include <malloc.h>

#include <map>
#include <string>

#include "bench/documents.h"
#include "bench/rows.h"
#include "bench/session.h"
#include "documents/odt_reader.h"
#include "documents/plain_text.h"

namespace brenlow::bench {

namespace {

constexpr int TURNS = 7;
constexpr int LETTERS = 40, ENTERS = 20, ARROWS = 10;
constexpr int BACKSPACE = 127, ENTER = 13;

// CPU time of a key with its frame, in milliseconds.
struct KeyTimes {
  double letter, first_enter, enter, join, arrow;
};

double press(Editor& editor, int key, int times) {
  return cpu_of([&] {
           for (int i = 0; i < times; ++i) {
             editor._handle_key(key);
             frame(editor);
           }
         }) /
         times;
}

KeyTimes key_times(Session& session, const DocumentTriple& opened, const std::string& path) {
  Editor& editor = session.show(opened, path);
  press(editor, 'x', 5);
  press(editor, BACKSPACE, 5);
  KeyTimes times{};
  times.letter = press(editor, 'x', LETTERS);
  press(editor, BACKSPACE, LETTERS);
  times.first_enter = press(editor, ENTER, 1);  // brings the room in the lists here, from wherever it was
  press(editor, BACKSPACE, 1);
  times.enter = press(editor, ENTER, ENTERS);
  times.join = press(editor, BACKSPACE, ENTERS);
  for (int pair : {KEY_RIGHT, KEY_DOWN}) {
    press(editor, pair == KEY_RIGHT ? KEY_LEFT : KEY_UP, ARROWS / 2);
    double there = press(editor, pair, ARROWS), back = press(editor, pair == KEY_RIGHT ? KEY_LEFT : KEY_UP, ARROWS);
    times.arrow = std::max({times.arrow, there, back});
  }
  return times;
}

// The figures of one question from all kinds of documents; the worst one makes the row.
class Worst {
 public:
  void add(const std::string& name, const Compared& compared) {
    if (double ratio = compared.ratio(); ratio > _ratio) {
      _ratio = ratio;
      _detail = "worst with " + name + ": " + described(compared);
    }
  }
  Row row(const std::string& question, double goal) const { return {question, _ratio, goal, "", _detail}; }

 private:
  double _ratio = 0;
  std::string _detail;
};

struct KeyQuestions {
  Worst letter, letter_far, split, split_far, arrow;

  void add(const std::string& name, const std::map<int, std::vector<KeyTimes>>& taken) {
    auto compare = [&](int words, double KeyTimes::*key, int bare_words) {
      Compared compared;
      for (const KeyTimes& times : taken.at(words)) compared.ours.push_back(times.*key);
      for (const KeyTimes& times : taken.at(bare_words)) compared.bare.push_back(times.letter);
      return compared;
    };
    letter.add(name, compare(NOVEL, &KeyTimes::letter, PAGE));
    letter_far.add(name, compare(LIBRARY, &KeyTimes::letter, PAGE));
    for (auto key : {&KeyTimes::enter, &KeyTimes::join}) {
      const std::string which = name + (key == &KeyTimes::enter ? ", Enter" : ", Backspace");
      split.add(which, compare(NOVEL, key, NOVEL));
      split_far.add(which, compare(LIBRARY, key, LIBRARY));
    }
    for (int words : {PAGE, NOVEL, LIBRARY})
      arrow.add(name + ", " + std::to_string(words) + " words", compare(words, &KeyTimes::arrow, PAGE));
  }
};

DocumentTriple opened(const std::string& path) {
  return path.ends_with(".odt") ? odt_to_rich(path) : txt_to_lines(path);
}

std::size_t memory_in_use() {
  struct mallinfo2 heap = ::mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

Rows megabyte_rows(Session& session) {
  constexpr int LETTERS_TYPED = 200;
  const std::string path = megabyte_line();
  Editor& editor = session.show(opened(path), path);
  press(editor, 'x', 2);
  std::size_t before = memory_in_use();
  std::vector<double> letters;
  for (int i = 0; i < LETTERS_TYPED; ++i) letters.push_back(press(editor, 'x', 1));
  double added = static_cast<double>(memory_in_use() - before) / 1e6;
  double arrow = std::max(press(editor, KEY_LEFT, ARROWS), press(editor, KEY_UP, ARROWS));
  return {{"a letter into a line of one megabyte", median(letters), 5, "ms", "an arrow " + in_milliseconds(arrow)},
          {"history of 200 of them", added, 20, "MB", ""}};
}

}  // namespace

Rows key_rows() {
  Session session;
  KeyQuestions questions;
  double first_enter = 0;
  for (const Kind& kind : all_kinds()) {
    std::map<int, DocumentTriple> documents;
    for (int words : {PAGE, NOVEL, LIBRARY}) documents.emplace(words, opened(document(kind, words)));
    std::map<int, std::vector<KeyTimes>> taken;
    for (int turn = 0; turn < TURNS; ++turn)
      for (const auto& [words, triple] : documents)
        taken[words].push_back(key_times(session, triple, document(kind, words)));
    questions.add(name_of(kind), taken);
    std::vector<double> first;
    for (const KeyTimes& times : taken.at(LIBRARY)) first.push_back(times.first_enter);
    first_enter = std::max(first_enter, median(first));
  }
  Rows rows{questions.letter.row("a letter, 1M words / one page", 1.2),
            questions.letter_far.row("a letter, 10M words / one page", 1.5),
            questions.split.row("Enter; Backspace that joins / a letter, 1M words", 1.5),
            questions.split_far.row("Enter; Backspace that joins / a letter, 10M words", 4),
            {"the first Enter after opening, 10M words", first_enter, 50, "ms", "the worst kind of document"},
            questions.arrow.row("an arrow key at any length / a letter on one page", 1.2)};
  for (Row& row : megabyte_rows(session)) rows.push_back(std::move(row));
  return rows;
}

}  // namespace brenlow::bench

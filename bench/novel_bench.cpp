// The commands on whole chapters and whole documents, in a novel of a million words with 500 chapters on two
// levels; each with the frame that shows its result. The last column compares with a plain scan of the same
// text that counts one character.

#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "bench/session.h"

namespace {

using namespace brenlow;
using bench::frame;
using bench::Session;

constexpr int WORDS = 1'000'000;
constexpr int CHAPTERS = 500;
constexpr int CHAPTERS_PER_PART = 10;
constexpr int RUNS = 7;  // of which the middle one counts

// Paragraphs of 20 to 200 words; one word of 20 is the frequent one, one of 1500 a name.
DocumentTriple novel() {
  std::mt19937 random(1);
  auto pick = [&](int low, int high) {
    return low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1));
  };
  auto word = [&] {
    if (pick(1, 20) == 1) return std::u32string(U"the");
    if (pick(1, 1500) == 1) return std::u32string(U"Elinor");
    std::u32string letters;
    for (int letter = pick(2, 9); letter > 0; --letter) letters += static_cast<char32_t>('a' + pick(0, 25));
    return letters;
  };
  DocumentTriple triple;
  triple.lines.clear();
  for (int chapter = 0; chapter < CHAPTERS; ++chapter) {
    triple.lines.emplace_back((chapter % CHAPTERS_PER_PART == 0 ? U"# " : U"## ") + word());
    for (int left = WORDS / CHAPTERS; left > 0;) {
      std::u32string line;
      for (int in_line = std::min(left, pick(20, 200)); in_line > 0; --in_line, --left) {
        if (!line.empty()) line += U' ';
        line += word();
      }
      triple.lines.emplace_back(line);
    }
    triple.lines.emplace_back();
  }
  triple.fmt_lines.resize(triple.lines.size());
  return triple;
}

double milliseconds(const std::function<void()>& run) {
  auto begin = std::chrono::steady_clock::now();
  run();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

double middle_of(std::vector<double> times) {
  std::nth_element(times.begin(), times.begin() + static_cast<long>(times.size() / 2), times.end());
  return times[times.size() / 2];
}

double plain_scan(const Editor& editor) {
  std::vector<double> times;
  long found = 0;
  for (int run = 0; run < RUNS; ++run)
    times.push_back(milliseconds([&] {
      for (const Text& line : editor.lines) {
        std::u32string_view text = line.view();
        found += std::count(text.begin(), text.end(), U'e');
      }
    }));
  std::printf("%zu lines; a plain scan: %.2f ms (%ld found)\n", editor.lines.size(), middle_of(times), found / RUNS);
  return middle_of(times);
}

class Commands {
 public:
  explicit Commands(Session& session) : _session(session), _editor(session.editor()) {}

  void letter(int key) {
    _editor._action_mode = true;
    _editor._handle_key(key);
    frame(_editor);
  }
  void key(int key) {
    _editor._handle_key(key);
    frame(_editor);
  }
  void filter(const char* term) {
    _editor._kgrep_term.clear();
    _session.type_ahead(std::string(term) + "\r");
    key(_KEY_CTRL_G);
  }
  // Ends the loop of the find by a key that is never served.
  void find(const char* term, int steps) {
    _editor.search_term.clear();
    std::string typed = std::string(term) + "\r";
    for (int i = 0; i < steps; ++i) typed += "\x1b[C";
    _session.type_ahead(typed + "!");
    letter('f');
    _editor._pending_main_ch = NO_KEY;
  }
  void replace(const char* term, const char* by) {
    _editor.search_term.clear();
    _session.type_ahead(std::string(term) + "\r" + by + "\r");
    letter('r');
  }
  // In the middle of the middle chapter, nothing folded, no filter.
  void start() {
    _editor._reset_folds();
    _editor._undo_stack.clear();
    _editor._redo_stack.clear();
    _editor._invalidate_map();
    _editor.cy = _editor._line_count() / 2;
    _editor.cx = 0;
    frame(_editor);
  }

 private:
  Session& _session;
  Editor& _editor;
};

}  // namespace

int main() {
  std::setlocale(LC_ALL, "C.UTF-8");
  Session session;
  Editor& editor = session.editor();
  editor._reset_for_document(novel(), std::nullopt);
  double scan = plain_scan(editor);
  Commands commands(session);

  struct Case {
    const char* name;
    std::function<void()> before, run, after;
  };
  auto nothing = [] {};
  auto undo = [&] { commands.letter('u'); };
  auto swap = [&] { commands.letter(KEY_DOWN); };
  auto filter = [&] { commands.filter("elinor"); };
  auto replace = [&] { commands.replace("the", "this"); };
  auto fold_all = [&] { commands.letter('*'); };
  const std::vector<Case> cases = {
      {"fold all", nothing, fold_all, nothing},
      {"unfold one", fold_all, [&] { commands.letter('#'); }, nothing},
      {"unfold all", fold_all, fold_all, nothing},
      {"swap two chapters", nothing, swap, undo},
      {"swap two, all folded", fold_all, swap, undo},
      {"undo of a swap", swap, undo, nothing},
      {"filter by a name", nothing, filter, nothing},
      {"letter with the filter", filter, [&] { commands.key('x'); }, undo},
      {"Enter with the filter", filter, [&] { commands.key(13); }, undo},
      {"clear the filter", filter, [&] { commands.key(KEY_ESC); }, nothing},
      {"find, 20 steps on", nothing, [&] { commands.find("elinor", 20); }, nothing},
      {"find what is not there", nothing, [&] { commands.find("elinorx", 0); }, nothing},
      {"replace a frequent word", nothing, replace, undo},
      {"undo of the replacement", replace, undo, nothing},
  };
  for (const Case& c : cases) {
    std::vector<double> times;
    for (int run = 0; run < RUNS; ++run) {
      commands.start();
      c.before();
      times.push_back(milliseconds(c.run));
      c.after();
    }
    std::printf("%-26s %8.2f ms  %7.2f scans   %s\n", c.name, middle_of(times), middle_of(times) / scan,
                editor.message.c_str());
  }
}

#include <gtest/gtest.h>

#include <random>

#include "tests/core/key_cases.h"

namespace brenlow {
namespace {

using test::EditorSession;
using test::expect_key_cases;
using test::print_notation;

constexpr int ENTER = 13, BACKSPACE = 127, DELETE = KEY_DC, PAGE_BREAK = 16, DELETE_LINE = 25;
constexpr int BOLD = 2, COPY = 3, CUT = 24, PASTE = 22, UNDO = 26, REDO = 23;

TEST(Undo, EachStepComesBackWithTheCursorWhereItWas) {
  EditorSession session;
  expect_key_cases(session, {
                                {"a|b", {'x', 'y', UNDO}, "ax|b"},
                                {"a|b", {'x', 'y', UNDO, UNDO}, "a|b"},
                                {"a|b", {'x', 'y', UNDO, UNDO, REDO}, "ax|b"},
                                {"a|b", {'x', UNDO, KEY_END, REDO, KEY_HOME, UNDO}, "a|b"},
                                {"x\n<b>on|e</b>", {ENTER, UNDO}, "x\n<b>on|e</b>"},
                                {"x\n<b>on|e</b>", {ENTER, UNDO, REDO}, "x\n<b>on</b>\n|<b>e</b>"},
                                {"- a|", {ENTER, BACKSPACE, UNDO}, "- a\n- |"},
                                {"a\n⏎|<i>b</i>\n⏎c", {BACKSPACE, UNDO}, "a\n⏎|<i>b</i>\n⏎c"},
                                {"a|\n⏎b", {DELETE, UNDO, REDO}, "a|b"},
                                {"a\n|b", {PAGE_BREAK, UNDO}, "a\n|b"},
                                {"a\n|b", {PAGE_BREAK, UNDO, REDO}, "a\n⏎b\n|"},
                                {"a|\n⏎b\nc", {DELETE_LINE, UNDO}, "a|\n⏎b\nc"},
                                {"a|\n⏎b\nc", {DELETE_LINE, UNDO, REDO}, "|b\n⏎c"},
                                {"^a<b>b</b>c|", {BOLD, UNDO}, "a<b>b</b>c|"},
                                // What is typed next takes the format it lands in.
                                {"x\n<b>bold</b>|", {'y', UNDO, 'z'}, "x\n<b>boldz</b>|"},
                            });
}

TEST(Undo, TellsHowMuchIsLeftAndWhenThereIsNothing) {
  EditorSession session;
  session.press(UNDO);
  EXPECT_EQ(session->message, "Nothing to undo.");
  session.press(REDO);
  EXPECT_EQ(session->message, "Nothing to redo.");
  EXPECT_FALSE(session->modified);
  session.type(U"12345");
  session.press(UNDO);
  EXPECT_EQ(session->message, "Undo. (4 left)");
  session.press({UNDO, REDO});
  EXPECT_EQ(session->message, "Redo. (1 left)");
  session.press({'x', REDO});
  EXPECT_EQ(session->message, "Nothing to redo.") << "what was undone is gone once something else is typed";
  EXPECT_EQ(session.notation(), "1234x|");
}

TEST(Undo, GoingBackToTheSavedTextStillAsksForASave) {
  EditorSession session;
  session.press('x');
  session->modified = false;
  session.press(UNDO);
  EXPECT_TRUE(session->modified);
  session->modified = false;
  session.press(REDO);
  EXPECT_TRUE(session->modified);
}

TEST(Undo, TheOldestOfMoreThanTwoHundredStepsIsDropped) {
  EditorSession session;
  session.type(std::u32string(50, U'a') + std::u32string(200, U'b'));
  for (int i = 0; i < 200; ++i) session.press(UNDO);
  EXPECT_EQ(session->message, "Undo. (0 left)");
  EXPECT_EQ(session.notation(), std::string(50, 'a') + "|");
  session.press(UNDO);
  EXPECT_EQ(session->message, "Nothing to undo.");
  for (int i = 0; i < 200; ++i) session.press(REDO);
  EXPECT_EQ(session->message, "Redo. (0 left)");
  EXPECT_EQ(session.notation(), std::string(50, 'a') + std::string(200, 'b') + "|");
}

TEST(Undo, AStepThatWasNeverFinishedIsDroppedAndTheOneBelowStillServes) {
  EditorSession session;
  session.press('x');
  session->_push_undo(0, 1);
  session.press(UNDO);
  EXPECT_EQ(session->message, "Undo error (incomplete snapshot).");
  EXPECT_EQ(session.notation(), "x|");
  EXPECT_TRUE(session->_redo_stack.empty());
  session.press(UNDO);
  EXPECT_EQ(session.notation(), "|");
}

std::vector<int> folded(EditorSession& session) {
  return {session->_folded_chapters.begin(), session->_folded_chapters.end()};
}

TEST(Undo, FoldsOutsideTheStepStayOnTheirHeadersAndThoseWithinOpen) {
  EditorSession session;
  session.document("one\n|two\n# A\nbody\n# B\nend");
  session.press(BACKSPACE);
  session->_folded_chapters = {1, 3};
  session->_invalidate_map();
  session.press(UNDO);
  EXPECT_EQ(folded(session), (std::vector{2, 4}));
  session.press(REDO);
  EXPECT_EQ(folded(session), (std::vector{1, 3}));

  session.document("x\n# A|\nbody\n# B\nend");
  session.press('!');
  session->_folded_chapters = {1, 3};
  session->_invalidate_map();
  session.press(UNDO);
  EXPECT_EQ(folded(session), std::vector{3}) << "the header within the step";

  session.document("# A\nbody\n# B\nend|");
  session.press(DELETE_LINE);
  session->_folded_chapters = {0, 2};
  session->_invalidate_map();
  session.press(UNDO);
  EXPECT_EQ(folded(session), std::vector<int>()) << "a step over the whole document";
}

TEST(Undo, WhatComesBackInAFoldedChapterIsSeen) {
  for (bool hierarchical : {false, true}) {
    EditorSession session({.rows = 12, .cols = 40});
    session->_fold_hierarchical = hierarchical;
    session.document("intro\n# A\n## B\nbody|\n# C\nend");
    session.press('!');
    session.command('*');
    ASSERT_FALSE(session.draw().shows("body"));
    session.press(UNDO);
    EXPECT_TRUE(session.draw().shows("body")) << hierarchical;
    EXPECT_EQ(session.notation(), "intro\n# A\n## B\nbody|\n# C\nend") << hierarchical;
    EXPECT_FALSE(session.screen().shows("end")) << "a chapter that the step did not touch stays folded";
    session.command('*');
    session.press(REDO);
    EXPECT_TRUE(session.draw().shows("body!")) << hierarchical;
  }
}

TEST(Undo, ASmallStepPatchesTheScreenMapAndALargeOneRebuildsIt) {
  EditorSession session;
  session.document("|start");
  auto clean_after = [&](int key) {
    session->_build_screen_map();
    session.press(key);
    return !session->_map_dirty;
  };
  session.press('x');
  EXPECT_TRUE(clean_after(UNDO));
  EXPECT_TRUE(clean_after(REDO));
  session.press(PAGE_BREAK);
  EXPECT_FALSE(clean_after(UNDO)) << "page breaks moved";
  for (int lines : {18, 19, 1000}) {  // pasted in front of the one line: up to 20 lines are patched
    session.document("|start");
    Editor::_internal_clipboard.assign(static_cast<std::size_t>(lines) + 1, Text(U"pasted"));
    Editor::_internal_clipboard_fmt.assign(static_cast<std::size_t>(lines) + 1, {});
    Editor::_internal_clipboard_pbl = {};
    session.press(PASTE);
    EXPECT_EQ(session->_line_count(), lines + 1);
    EXPECT_EQ(clean_after(UNDO), lines < 20) << lines;
    EXPECT_EQ(session.notation(), "|start");
  }
}

// Types, divides, joins, formats, deletes, copies and pastes at random places, now and then going back and forth
// in the history. A document of before, or of after, must come back as it was at each step.
class RandomSession {
 public:
  RandomSession(unsigned seed, int width) : session({.rows = 12, .cols = width + 2}), random(seed) {
    session.document("|# a chapter\n⏎- an item\n\nsome <b>bold and <i>both</i></b> words in a line\n⏎\n⏎<i>last</i>");
    session->_count_document_words();  // from here on kept by the edits, and checked after each
    documents[0] = session.triple();
  }

  void step() {
    session->_build_screen_map();
    int kind = pick(100);
    if (session->_undo_stack.size() > 150) kind = 99;
    if (kind < 85) {
      place_cursor();
      edit(kind);
      documents[session->_undo_stack.size()] = session.triple();
    } else {
      for (int count = kind == 99 ? 40 : pick(6); count > 0; --count) go(kind < 92 ? REDO : UNDO);
    }
    if (!session->_map_dirty) ++patched;
  }

  void go(int key) {
    std::size_t before = session->_undo_stack.size();
    session.press(key);
    std::size_t now = session->_undo_stack.size();
    if (auto known = documents.find(now); known != documents.end())
      ASSERT_TRUE(session.triple() == known->second) << "from step " << before << " to " << now << "\n"
                                                     << print_notation(session.triple()) << "\ninstead of\n"
                                                     << print_notation(known->second);
  }

  EditorSession session;
  int patched = 0;
  std::map<std::size_t, DocumentTriple> documents;  // by steps in the history; one within a double step is unknown

 private:
  int pick(int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); }

  void place_cursor() {
    if (pick(3) == 0) return;  // types on
    session->_sel_clear();
    session->cy = pick(session->_line_count());
    int length = session->_line_length(session->cy);
    session->cx = std::array{0, length, pick(length + 1)}[static_cast<std::size_t>(pick(3))];
    session->_sync_cur_fmt();
  }

  void select() {
    session->_sel_anchor = {session->cy, session->cx};
    for (int i = pick(8); i >= 0; --i) session.press(pick(2) ? _KEY_SHIFT_RIGHT : _KEY_SHIFT_DOWN);
  }

  void edit(int kind) {
    std::size_t before = session->_undo_stack.size();
    if (kind < 40) {
      session.press(std::array{int{'a'}, int{' '}, int{'-'}, int{'#'}, int{'\''}}[static_cast<std::size_t>(pick(5))]);
    } else if (kind < 50) {
      session.press({BOLD, 'b'});
    } else if (kind < 58) {
      session.press(ENTER);
    } else if (kind < 62) {
      session.press(PAGE_BREAK);
    } else if (kind < 68) {
      session.press(BACKSPACE);
    } else if (kind < 73) {
      session.press(DELETE);
    } else if (kind < 77) {
      session.press(DELETE_LINE);
    } else {
      if (pick(2)) select();
      session.press(std::array{COPY, CUT, PASTE, PASTE, BOLD, DELETE}[static_cast<std::size_t>(pick(6))]);
    }
    for (std::size_t i = before + 1; i < session->_undo_stack.size(); ++i) documents.erase(i);
    if (session->_redo_stack.empty())
      documents.erase(documents.upper_bound(session->_undo_stack.size()), documents.end());
  }

  std::mt19937 random;
};

TEST(Undo, AnyHistoryLeadsBackToTheFirstDocumentAndForwardToTheLast) {
  Editor::_internal_clipboard.clear();
  Editor::_internal_clipboard_fmt.clear();
  Editor::_internal_clipboard_pbl = {};
  for (int width : {1, 7, 40}) {
    for (unsigned seed = 1; seed <= 3; ++seed) {
      SCOPED_TRACE("width " + std::to_string(width) + ", seed " + std::to_string(seed));
      RandomSession random(seed, width);
      for (int i = 0; i < 300 && !testing::Test::HasFailure(); ++i) random.step();
      while (!random.session->_redo_stack.empty() && !testing::Test::HasFailure()) random.go(REDO);
      DocumentTriple last = random.session.triple();
      while (!random.session->_undo_stack.empty() && !testing::Test::HasFailure()) random.go(UNDO);
      EXPECT_TRUE(random.session.triple() == random.documents[0]);
      while (!random.session->_redo_stack.empty() && !testing::Test::HasFailure()) random.go(REDO);
      EXPECT_TRUE(random.session.triple() == last);
      EXPECT_GT(random.patched, 150) << "most steps patch the map that they are compared with";
      if (testing::Test::HasFailure()) return;
    }
  }
}

// Lines and characters that the history alone keeps alive or at least points to.
struct Kept {
  std::size_t lines = 0, characters = 0;
};
Kept kept_by(const std::deque<UndoRecord>& history) {
  Kept kept;
  for (const UndoRecord& record : history)
    for (const std::vector<Text>* side : {&record.old_lines, &record.new_lines}) {
      kept.lines += side->size();
      for (const Text& line : *side) kept.characters += line.size();
    }
  return kept;
}

TEST(Undo, TwoHundredStepsOverABigDocumentKeepWhatTheyChanged) {
  EditorSession session;
  std::string novel;
  for (int i = 0; i < 3000; ++i) novel += "A line of a long novel, number " + std::to_string(i) + ".\n";
  auto open_in_the_middle = [&] {
    session.document(novel);
    session->cy = 1500;
  };
  open_in_the_middle();
  for (int i = 0; i < 200; ++i) session.press(DELETE_LINE);
  Kept kept = kept_by(session->_undo_stack);
  EXPECT_EQ(kept.lines, 200U);
  EXPECT_LT(kept.characters, 200U * 50);

  Editor::_internal_clipboard = {U"pasted", U"", U"words"};
  Editor::_internal_clipboard_fmt = {{}, {}, {}};
  Editor::_internal_clipboard_pbl = {};
  open_in_the_middle();
  for (int i = 0; i < 200; ++i) session.press({PASTE, KEY_DOWN});
  kept = kept_by(session->_undo_stack);
  EXPECT_LE(kept.lines, 200U * 4);
  EXPECT_LT(kept.characters, 200U * 150);

  session.document(std::string(200'000, 'x') + "|" + std::string(200'000, 'x'));
  for (int i = 0; i < 200; ++i) session.press(i % 3 == 0 ? BACKSPACE : int{'y'});
  for (int i = 0; i < 100; ++i) session.press(UNDO);
  EXPECT_LT(kept_by(session->_undo_stack).characters, 1000U);
  EXPECT_LT(kept_by(session->_redo_stack).characters, 1000U);
}

}  // namespace
}  // namespace brenlow

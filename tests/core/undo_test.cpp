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
                                {"a|b", {'x', 'y', UNDO, UNDO, REDO}, "ax|b"},
                                {"x\n<b>on|e</b>", {ENTER, UNDO, REDO}, "x\n<b>on</b>\n|<b>e</b>"},
                                {"a\n⏎|<i>b</i>\n⏎c", {BACKSPACE, UNDO}, "a\n⏎|<i>b</i>\n⏎c"},
                                {"a|\n⏎b\nc", {DELETE_LINE, UNDO, REDO}, "|b\n⏎c"},
                                {"^a<b>b</b>c|", {BOLD, UNDO}, "a<b>b</b>c|"},
                                // What is typed next takes the format it lands in.
                                {"x\n<b>bold</b>|", {'y', UNDO, 'z'}, "x\n<b>boldz</b>|"},
                            });
}

TEST(Undo, TellsHowMuchIsLeftAndAsksForASaveOfWhatCameBack) {
  EditorSession session;
  session.type(U"12345");
  session->modified = false;
  session.press(UNDO);
  EXPECT_EQ(session->message, "Undo. (4 left)");
  EXPECT_TRUE(std::exchange(session->modified, false)) << "no longer the saved text";
  session.press(REDO);
  EXPECT_EQ(session->message, "Redo. (0 left)");
  EXPECT_TRUE(session->modified);
  session.press({UNDO, 'x', REDO});
  EXPECT_EQ(session->message, "Nothing to redo.") << "what was undone is gone once something else is typed";
  EXPECT_EQ(session.notation(), "1234x|");
}

TEST(Undo, TheOldestOfMoreThanTwoHundredStepsIsDropped) {
  EditorSession session;
  session.type(std::u32string(50, U'a') + std::u32string(200, U'b'));
  for (int i = 0; i < 201; ++i) session.press(UNDO);
  EXPECT_EQ(session->message, "Nothing to undo.");
  EXPECT_EQ(session.notation(), std::string(50, 'a') + "|");
}

TEST(Undo, WhatComesBackInAFoldedChapterIsSeen) {
  EditorSession session({.rows = 12, .cols = 40});
  session.document("intro\n# A\n## B\nbody|\n# C\nend");
  session.press('!');
  session.command('*');
  ASSERT_FALSE(session.draw().shows("body"));
  session.press(UNDO);
  EXPECT_TRUE(session.draw().shows("body"));
  EXPECT_FALSE(session.screen().shows("end")) << "a chapter that the step did not touch stays folded";
}

// Types, divides, joins, formats, deletes, copies and pastes at random places. The session checks its screen map,
// its colours and its counts against fresh ones after every key.
TEST(Undo, AnyHistoryLeadsBackToTheFirstDocumentAndForwardToTheLast) {
  Editor::_internal_clipboard.clear();
  Editor::_internal_clipboard_fmt.clear();
  Editor::_internal_clipboard_pbl = {};
  for (unsigned seed = 0; seed < 9; ++seed) {
    EditorSession session({.rows = 12, .cols = std::array{3, 9, 42}[seed % 3]});
    session.document("|# a *chapter*\n⏎- an item\n\nsome <b>bold and <i>both</i></b> words in a line\n⏎\n⏎<i>last</i>" +
                     (seed == 8 ? "\n" + std::string(1'500, 'x') + "<b>y</b> z" : std::string()));
    session->_load_syntax(seed % 2 ? "md" : "odt");
    session->_count_document_words();  // from here on kept by the edits
    const DocumentTriple first = session.triple();
    std::mt19937 random(seed);
    auto pick = [&](int count) { return static_cast<int>(random() % static_cast<unsigned>(count)); };
    auto any_of = [&](std::initializer_list<int> keys) { return keys.begin()[pick(static_cast<int>(keys.size()))]; };
    int patched = 0;
    for (int i = 0; session->_undo_stack.size() < 190 && i < 300; ++i) {
      if (pick(3)) {
        session->_sel_clear();
        session->cy = pick(session->_line_count());
        session->cx = any_of({0, session->_line_length(session->cy), pick(session->_line_length(session->cy) + 1)});
        session->_sync_cur_fmt();
      }
      for (int back = pick(8) ? 0 : pick(6); back > 0; --back) session.press(UNDO);
      for (int select = pick(4) ? 0 : pick(8); select > 0; --select)
        session.press(any_of({_KEY_SHIFT_RIGHT, _KEY_SHIFT_DOWN}));
      session->_build_screen_map();
      for (int ly = 0; ly < session->_line_count() && !session->_syn_dirty; ++ly) session->_syn_spans(ly);
      const DocumentTriple before = session.triple();
      const std::size_t steps = session->_undo_stack.size();
      session.press(any_of({'a', ' ', '-', '#', '\'', 'b', BOLD, BOLD, ENTER, PAGE_BREAK, BACKSPACE, DELETE,
                            DELETE_LINE, COPY, CUT, PASTE, PASTE}));
      const DocumentTriple after = session.triple();
      patched += !session->_map_dirty;
      if (session->_undo_stack.size() == steps) continue;
      while (session->_undo_stack.size() > steps) session.press(UNDO);
      ASSERT_TRUE(session.triple() == before) << print_notation(session.triple()) << " for " << print_notation(before);
      while (!session->_redo_stack.empty()) session.press(REDO);
      ASSERT_TRUE(session.triple() == after) << print_notation(session.triple()) << " for " << print_notation(after);
    }
    const DocumentTriple last = session.triple();
    const std::size_t undone = session->_redo_stack.size();
    while (!session->_undo_stack.empty()) session.press(UNDO);
    EXPECT_TRUE(session.triple() == first) << seed;
    while (session->_redo_stack.size() > undone) session.press(REDO);
    EXPECT_TRUE(session.triple() == last) << seed;
    EXPECT_GT(patched, 75) << "most steps patch the map";
  }
}

TEST(Undo, TwoHundredStepsOverABigDocumentKeepWhatTheyChanged) {
  EditorSession session;
  auto kept_characters = [&] {
    std::size_t count = 0;
    for (const auto* history : {&session->_undo_stack, &session->_redo_stack})
      for (const UndoRecord& record : *history)
        for (const std::vector<Text>* side : {&record.old_lines, &record.new_lines})
          for (const Text& line : *side) count += line.size() + 1;
    return count;
  };
  std::string novel = "|";
  for (int i = 0; i < 3000; ++i) novel += "A line of a long novel, number " + std::to_string(i) + ".\n";
  Editor::_internal_clipboard = {U"pasted", U"", U"words"};
  Editor::_internal_clipboard_fmt = {{}, {}, {}};
  Editor::_internal_clipboard_pbl = {};
  for (int key : {DELETE_LINE, PASTE}) {
    session.document(novel);
    for (int i = 0; i < 200; ++i) session.press({key, KEY_DOWN});
    EXPECT_LT(kept_characters(), 200U * 150) << key;
  }
  session.document(std::string(200'000, 'x') + "|" + std::string(200'000, 'x'));
  for (int i = 0; i < 200; ++i) session.press(i % 3 == 0 ? BACKSPACE : int{'y'});
  for (int i = 0; i < 100; ++i) session.press(UNDO);
  EXPECT_LT(kept_characters(), 2000U);
}

}  // namespace
}  // namespace brenlow

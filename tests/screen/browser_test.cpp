#include <filesystem>

#include "customise/recent_files.h"
#include "tests/support/dialogs.h"

namespace brenlow::test {
namespace {

using namespace keys;

using Rows = std::vector<std::string>;

constexpr const char* OPEN_KEYS = " ↑↓ move   Enter/→ open   ←/Bksp parent   / search   R recent   ESC cancel";
constexpr const char* SEARCH_KEYS = "   / new search   ESC clear   ↑↓ move   Enter open";

// The last frame of the browser that the keys, then ESC until it closes, found.
Rows browse(EditorSession& session, const std::string& typed, int letter = 'o', int escapes = 1) {
  command(session, letter, typed + times(escapes, ESC));
  return session.screen().all_rows();
}

std::string selected(const Rows& rows) {
  for (const std::string& row : rows)
    if (row.starts_with(">")) return row.substr(1, row.find("  ") - 1);
  return "(none)";
}

std::string opened(EditorSession& session, const std::string& typed) {
  std::string told = command(session, 'o', typed);
  return told.starts_with("Opened: ") ? told.substr(8) : told;
}

TEST(Browser, ShowsTheFoldersAndDocumentsOfTheOpenFilesFolder) {
  const std::string long_name(60, 'n');
  EditorSession session({.path = "docs/main.txt",
                         .home_files = {{"docs/main.txt", "x"},
                                        {"docs/" + long_name + ".md", std::string(2048, 'x')},
                                        {"docs/Zebra/a.txt", ""},
                                        {"docs/ant/a.txt", ""},
                                        {"docs/picture.png", ""},
                                        {"docs/.hidden.md", ""}}});
  Rows wide = browse(session, DOWN);
  EXPECT_EQ(wide[0], " Open: " + session.home().file("docs"));
  EXPECT_EQ(wide[1], " ../");
  EXPECT_TRUE(wide[2].starts_with(">ant/ "));
  EXPECT_TRUE(wide[3].starts_with(" Zebra/ "));
  EXPECT_TRUE(wide[4].starts_with(" main.txt" + std::string(42 + 2 + 5, ' ') + "1B  20")) << wide[4];
  EXPECT_TRUE(wide[5].starts_with(" " + long_name.substr(0, 49) + "…     2.0K  20")) << wide[5];
  EXPECT_EQ(wide[6], "");
  EXPECT_EQ(wide[23], OPEN_KEYS);
  EXPECT_EQ(session.screen().attributes(2), std::string(78, '4'));
  EXPECT_EQ(session.screen().attributes(3), "");
  resize_once_open(session, 10, 30);
  Rows narrow = browse(session, "");
  EXPECT_TRUE(narrow[5].starts_with(" nnnnnnnnn…     2.0K  20")) << session.screen().picture();
  EXPECT_TRUE(narrow[4].starts_with(" main.txt         1B  20")) << narrow[4];
  EXPECT_EQ(session->message, "Open cancelled.");
  session->_hide_dotfiles = false;
  EXPECT_TRUE(browse(session, "", 'd')[4].starts_with(" .hidden.md"));
  EXPECT_TRUE(session.screen().row(0).starts_with(" Insert document: /"));
}

TEST(Browser, GoesUpToTheFolderJustLeftAndDownAgain) {
  EditorSession session(
      {.path = "docs/main.txt", .home_files = {{"docs/main.txt", "x"}, {"docs/inner/b.md", "b"}, {"zoo.txt", "z"}}});
  for (const std::string& up : {LEFT, BACKSPACE, ENTER, RIGHT, std::string("\x08")}) {
    EXPECT_EQ(selected(browse(session, up)), "docs/");
    EXPECT_EQ(session.screen().row(0), " Open: " + session.home().path().string());
  }
  EXPECT_EQ(browse(session, LEFT + ENTER + DOWN + RIGHT)[0], " Open: " + session.home().file("docs/inner"));
  EXPECT_EQ(opened(session, LEFT + ENTER + DOWN + RIGHT + DOWN + ENTER), "b.md");
  EXPECT_EQ(session->filepath, session.home().file("docs/inner/b.md"));
  Rows root = browse(session, times(40, LEFT));
  EXPECT_EQ(root[0], " Open: /");
  EXPECT_FALSE(root[1].starts_with(">../"));
}

TEST(Browser, AFolderThatCannotBeReadShowsTheWayOutOnly) {
  EditorSession session({.path = "gone/main.txt", .home_files = {{"a.txt", "x"}}});
  Rows rows = browse(session, times(3, DOWN) + PAGE_UP + PAGE_DOWN);
  EXPECT_EQ(selected(rows), "../");
  EXPECT_EQ(rows[2], "");
  EXPECT_EQ(rows[5], "");
  EXPECT_EQ(browse(session, ENTER)[0], " Open: " + session.home().path().string());
}

TEST(Browser, TypingSelectsTheFirstNameThatBeginsSo) {
  EditorSession session(
      {.path = "a.txt", .home_files = {{"a.txt", ""}, {"Notes.md", ""}, {"notes_two.md", ""}, {"Über.txt", ""}}});
  EXPECT_EQ(selected(browse(session, "NOT", 'o', 2)), "Notes.md");
  EXPECT_EQ(opened(session, "notes_t" + ENTER), "notes_two.md");
  EXPECT_EQ(session.screen().row(23), " Search: notes_t_");
  EXPECT_EQ(selected(browse(session, "notes_x" + BACKSPACE + "t", 'o', 2)), "notes_two.md");
  EXPECT_EQ(selected(browse(session, "a" + BACKSPACE + ".", 'o', 2)), "../");
  EXPECT_EQ(selected(browse(session, "notzz" + DOWN, 'o', 2)), "notes_two.md") << "no match leaves the selection";
  EXPECT_EQ(opened(session, "notes" + ESC + ENTER), "Notes.md");
  EXPECT_EQ(opened(session, "n" + BACKSPACE + BACKSPACE + ESC), "Open cancelled.") << "then Backspace goes up";
}

TEST(Browser, FindsFilesByTheirContent) {
  EditorSession session({.path = "a.txt",
                         .home_files = {{"a.txt", "sea"},
                                        {"b.md", "Sea and sea\nSEA"},
                                        {"c.fountain", "land"},
                                        {"no.odt", "sea"},
                                        {"sub/d.txt", "sea"}}});
  EXPECT_EQ(selected(browse(session, "/sea\r" + ESC)), "../") << "ESC goes back to the folder";
  EXPECT_EQ(session.screen().row(23), OPEN_KEYS);
  EXPECT_EQ(opened(session, "/land\r" + ENTER), "c.fountain");
  EXPECT_EQ(opened(session, "/land\r" + std::string("/sea\r") + DOWN + ENTER), "a.txt");
  EXPECT_EQ(selected(browse(session, "/sea\r" + LEFT)), "../");
  EXPECT_EQ(selected(browse(session, "/sea\r" + BACKSPACE)), "../");
  EXPECT_EQ(opened(session, "/sky\r" + times(5, DOWN) + ENTER), "a.txt") << "without hits the folder stays";
  EXPECT_EQ(session.screen().row(23), " Search: No matches for 'sky'_");
  EXPECT_EQ(browse(session, "/" + ESC)[23], OPEN_KEYS);
  EXPECT_EQ(browse(session, "/" + ENTER)[23], OPEN_KEYS);
  command(session, 'o', "/sea\r" + DOWN + ENTER);
  Rows hits = session.screen().all_rows();
  EXPECT_TRUE(hits[1].starts_with(" b.md") && hits[1].ends_with("  (3 hits)")) << session.screen().picture();
  EXPECT_TRUE(hits[2].starts_with(">a.txt") && hits[2].ends_with("  (1 hit)"));
  EXPECT_EQ(hits[23], std::string(" Search: sea") + SEARCH_KEYS);
}

TEST(Browser, RecentFilesOpenFromAnyFolder) {
  EditorSession session({.path = "a.txt", .home_files = {{"a.txt", "a"}, {"one/b.md", "b"}, {"two/c.txt", "c"}}});
  EXPECT_EQ(opened(session, "R" + END + times(6, DOWN) + ENTER), "a.txt");
  EXPECT_EQ(session.screen().row(23), " Search: No recently opened files yet_");
  for (const char* name : {"one/b.md", "two/c.txt", "gone.txt"})
    add_recent_file(session->_machine.files, session.home().file(name));
  EXPECT_EQ(opened(session, "R" + DOWN + ENTER), "b.md");
  Rows rows = session.screen().all_rows();
  EXPECT_TRUE(rows[1].starts_with(" c.txt")) << session.screen().picture();
  EXPECT_NE(rows[1].find("  " + session.home().file("two").substr(0, 17)), std::string::npos);
  EXPECT_TRUE(rows[2].starts_with(">b.md"));
  EXPECT_EQ(rows[23], " Recent files (latest first)   ↑↓ move   Enter open   ←/Bksp back to folder   ES");
  EXPECT_EQ(opened(session, "Rc" + ENTER), "c.txt");
  for (const std::string& back : {LEFT, BACKSPACE, ESC, "c" + ESC + ESC})
    EXPECT_EQ(browse(session, "R" + back)[23], OPEN_KEYS);
}

TEST(Browser, TheFilenameLineIsEditedLikeAPrompt) {
  EditorSession session({.path = "draft.txt", .home_files = {{"draft.txt", "old"}, {"sub/other.md", ""}}});
  auto saved_as = [&](const std::string& typed) {
    command(session, 'a', typed);
    return std::filesystem::path(*session->filepath).lexically_relative(session.home().path()).string();
  };
  EXPECT_EQ(browse(session, "", 'a')[23], " ↑↓ move   Enter enter dir/use name   Tab edit filename   ESC cancel");
  EXPECT_EQ(session.screen().row(22), " Filename: draft.txt");
  EXPECT_EQ(browse(session, TAB, 'a')[23], " Type filename   Enter confirm   Tab back to list   ESC cancel");
  EXPECT_EQ(session.screen().cursor_col(), 20);
  EXPECT_EQ(session.screen().cursor_row(), 22);
  EXPECT_EQ(session.screen().attributes(22), std::string(20, '4') + "r" + std::string(59, '4'));
  EXPECT_EQ(session->message, "Save As cancelled.");
  EXPECT_EQ(saved_as(TAB + "new.txt" + ENTER), "new.txt");
  EXPECT_EQ(saved_as(TAB + HOME + "é" + DELETE + END + BACKSPACE + "m" + UP + ENTER), "éew.txm.odt");
  EXPECT_EQ(saved_as(TAB + times(3, BACKSPACE) + "   " + ENTER + "b.md  " + ENTER), "b.md") << "blanks are no name";
  EXPECT_EQ(saved_as("sub" + ENTER + TAB + "\xC3\xA9.md" + TAB + TAB + ENTER), "sub/é.md");
  EXPECT_EQ(saved_as(TAB + session.home().file("far.txt") + ENTER), "far.txt");
  EXPECT_EQ(saved_as("other" + ESC + TAB + TAB + ESC), "far.txt");
  EXPECT_FALSE(std::filesystem::exists(session.home().file("other")));
}

TEST(Browser, AFileChosenInSaveAsIsANameFirst) {
  EditorSession session({.path = "docs/draft.txt",
                         .home_files = {{"docs/draft.txt", "text"}, {"docs/a.md", "a"}, {"docs/sub/b.md", "b"}}});
  EXPECT_EQ(browse(session, DOWN + DOWN, 'a')[22], " Filename: a.md");
  for (const std::string& choose : {ENTER, RIGHT}) {
    command(session, 'a', DOWN + DOWN + choose + ESC);
    EXPECT_EQ(session.screen().row(23), " Type filename   Enter confirm   Tab back to list   ESC cancel");
    EXPECT_EQ(read_bytes(session.home().file("docs/a.md")), "a");
  }
  EXPECT_EQ(command(session, 'a', DOWN + DOWN + ENTER + ENTER + "n"), "Save cancelled.");
  EXPECT_EQ(command(session, 'a', DOWN + DOWN + ENTER + LEFT + LEFT + LEFT + "2" + ENTER), "Saved (MD): a2.md");
  add_recent_file(session->_machine.files, session.home().file("docs/sub/b.md"));
  EXPECT_EQ(command(session, 'a', "R" + ENTER + ENTER + "y"), "Saved (MD): b.md");
  EXPECT_EQ(read_bytes(session.home().file("docs/sub/b.md")), "text");
}

TEST(Browser, NamesThatAreNoUtf8MeanTheirVeryFile) {
  const std::string one = "bad\xFE.txt", two = "bad\xFF.txt";
  EditorSession session(
      {.path = "docs/z.txt", .home_files = {{"docs/z.txt", "z"}, {"docs/" + one, "one"}, {"docs/" + two, "two"}}});
  Rows rows = browse(session, "", 'o');
  EXPECT_TRUE(rows[2].starts_with(" bad\uFFFD.txt ")) << rows[2];
  EXPECT_EQ(command(session, 'o', times(2, DOWN) + ENTER), "Opened: " + two);
  EXPECT_EQ(session.notation(), "|two");
  EXPECT_NE(session.draw().row(0).find("bad\uFFFD.txt"), std::string::npos);
  session.type(U"2 ");
  EXPECT_EQ(command(session, 's'), "Saved (TXT): " + two);
  EXPECT_EQ(read_bytes(session.home().file("docs/" + two)), "2 two");
  session.type(U"+");
  EXPECT_EQ(command(session, 'a', TAB + END + "x" + BACKSPACE + ENTER), "Saved (TXT): " + two)
      << "the prefill is the open file";
  EXPECT_EQ(command(session, 'a', DOWN + ENTER + ENTER + "y"), "Saved (TXT): " + one);
  EXPECT_TRUE(session.screen().shows("'bad\uFFFD.txt' already exists. Overwrite? [y/n]:"));
  EXPECT_EQ(read_bytes(session.home().file("docs/" + one)), "2 +two");
  EXPECT_EQ(command(session, 'a', TAB + END + times(3, BACKSPACE) + "md" + ENTER), "Saved (MD): bad\uFFFD.md")
      << "an edited name is what it shows";
}

}  // namespace
}  // namespace brenlow::test

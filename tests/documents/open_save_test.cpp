#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <random>
#include <regex>

#include "core/unicode.h"
#include "customise/recent_files.h"
#include "documents/odt_reader.h"
#include "documents/odt_writer.h"
#include "tests/support/dialogs.h"
#include "tests/support/faults.h"

namespace brenlow::test {
namespace {

using namespace keys;

constexpr const char* FORMAT_QUESTION = "Formatting (bold/italic/page breaks) will be lost. Save anyway? [y/n]:";

// Writes the document of a notation as a package, to `name` in the home folder.
std::string write_odt(EditorSession& session, const std::string& name, std::string_view notation) {
  DocumentTriple document = parse_notation(notation).document;
  std::string path = session.home().write(name, "");
  std::filesystem::remove(path);
  lines_to_odt(document.lines, path, std::nullopt, document.fmt_lines, document.pagebreak_lines);
  return path;
}

// Opens or inserts a file, by its name, with the browser. The working folder must be its folder.
std::string choose(EditorSession& session, int letter, const std::string& name, const std::string& before = {}) {
  return command(session, letter, before + name + ENTER);
}

std::string save_as(EditorSession& session, const std::string& path, const std::string& answers = {}) {
  return command(session, 'a', TAB + path + ENTER + answers);
}

TEST(Save, TheNameDecidesTheFormat) {
  EditorSession session;
  WorkingFolder in_home(session.home().path());
  const std::vector<std::tuple<std::string, std::string, std::string>> cases = {
      {"odt", "plain", "Saved (ODT): plain.odt"},
      {"md", "plain", "Saved (MD): plain.md"},
      {"txt", "UP.TXT", "Saved (TXT): UP.TXT"},
      {"txt", "a.Md", "Saved (MD): a.Md"},
      {"odt", "a.fountain", "Saved (FOUNTAIN): a.fountain"},
      {"md", "a.odt", "Saved (ODT): a.odt"},
      {"odt", "a.rtf", "Unknown extension '.rtf' — saved as ODT: a.rtf.odt"},
      {"md", "a.rtf", "Unknown extension '.rtf' — saved as MD: a.rtf.md"},
      {"fountain", ".profile", "Saved (FOUNTAIN): .profile.fountain"},
  };
  for (const auto& [default_extension, typed, told] : cases) {
    session->_default_extension = default_extension;
    session->filepath.reset();
    session.document("a\nb|");
    session->modified = true;
    EXPECT_EQ(command(session, 's', typed + ENTER), told);
    EXPECT_EQ(session.screen().row(23),
              " Save as (.odt/.txt/.md/.fountain, default: ." + default_extension + "): " + typed);
    EXPECT_FALSE(session->modified);
    std::string name = told.substr(told.rfind(' ') + 1);
    EXPECT_EQ(session->filepath, name) << "as typed, in the working folder";
    EXPECT_EQ(load_recent_files(session->_machine.files).at(0), session.home().file(name));
    std::string bytes = read_bytes(session.home().file(name));
    EXPECT_EQ(bytes.substr(0, 4), path_extension(name) == ".odt" ? "PK\x03\x04" : "a\nb") << name;
    std::filesystem::remove(session.home().file(name));
  }
}

TEST(Save, AsksBeforeSomethingIsLost) {
  EditorSession session({.home_files = {{"old.txt", "old"}, {"old.odt", "no package"}}});
  WorkingFolder in_home(session.home().path());
  session.document("<b>bold</b>|");
  session->modified = true;
  for (const std::string& answer : {ENTER, ESC, std::string("xn"), std::string("N")}) {
    EXPECT_EQ(save_as(session, "new.txt", answer), "Save cancelled.");
    EXPECT_TRUE(session.screen().shows(FORMAT_QUESTION)) << session.screen().picture();
    EXPECT_EQ(save_as(session, "old.odt", answer), "Save cancelled.");
    EXPECT_TRUE(session.screen().shows("'old.odt' already exists. Overwrite? [y/n]:")) << session.screen().picture();
    EXPECT_EQ(save_as(session, "old.txt", "y" + answer), "Save cancelled.") << "two questions, the second refused";
  }
  EXPECT_EQ(command(session, 's', ESC), "Save cancelled.");
  EXPECT_EQ(command(session, 's', ENTER), "Save cancelled.");
  EXPECT_EQ(command(session, 'a', ESC), "Save As cancelled.");
  EXPECT_TRUE(session->modified);
  EXPECT_EQ(session->filepath, std::nullopt);
  EXPECT_FALSE(std::filesystem::exists("new.txt"));
  EXPECT_EQ(read_bytes("old.txt"), "old");
  EXPECT_EQ(save_as(session, "old.txt", "yY"), "Saved (TXT): old.txt");
  EXPECT_EQ(read_bytes("old.txt"), "bold");
  EXPECT_EQ(command(session, 's', "y"), "Saved (TXT): old.txt") << "the open file is no other file";
  EXPECT_EQ(save_as(session, "../" + session.home().path().filename().string() + "/old.txt", "y"),
            "Saved (TXT): old.txt");
  session.document("plain|");
  session->pagebreak_lines = {};
  EXPECT_EQ(save_as(session, "plain.txt"), "Saved (TXT): plain.txt") << "nothing to lose, nothing asked";
}

TEST(Save, AFailureIsToldAndLeavesTheOldFileAndTheTextAsTheyWere) {
  EditorSession session({.home_files = {{"file.txt", "old"}, {"odd.odt", "no package"}}});
  WorkingFolder in_home(session.home().path());
  session.home().folder("folder.txt");
  session.document("text|");
  session.type(U"!");
  const std::vector<std::tuple<std::string, std::string, std::string>> cases = {
      {"none/a.odt", "", "No such file or directory"},
      {"none/a.txt", "", "No such file or directory"},
      {"file.txt/a.txt", "", "Not a directory"},
      {"folder.txt", "y", "Is a directory"},
      {"folder.txt/", "", "names no file"},
      {"odd.odt", "y", ""},
      {"/proc/a.txt", "", ""},
      {std::string(300, 'n') + ".md", "", "File name too long"}};
  for (const auto& [path, answers, reason] : cases) {
    std::string told = save_as(session, path, answers);
    EXPECT_TRUE(told.starts_with("Save error: ") && told.size() > 12 && told.ends_with(reason)) << told;
    EXPECT_TRUE(session->modified);
    EXPECT_EQ(session->filepath, std::nullopt);
    EXPECT_EQ(session.notation(), "text!|");
  }
  EXPECT_EQ(read_bytes("file.txt"), "old");
  EXPECT_EQ(read_bytes("odd.odt"), "no package");
  EXPECT_EQ(save_as(session, "good.txt"), "Saved (TXT): good.txt") << "and the next save goes well";
}

// A document too large for the disk it lies on is saved in vain, then with room: what was told, or what went wrong.
std::string save_on_a_full_disk(const std::string& folder) {
  if (!mount_small_disk(folder, 64 << 10)) return NOT_TO_BE_HAD;
  EditorSession session;
  WorkingFolder in_disk(folder);
  session.document("small|");
  for (const char* name : {"old.txt", "old.odt"}) save_as(session, name);
  const std::string old_package = read_bytes("old.odt");
  std::mt19937 random(1);
  std::u32string text;  // that does not pack well
  while (text.size() < 200000) text += static_cast<char32_t>('!' + random() % 90);
  session->_set_line(0, Text(text));
  session.press({KEY_HOME, 'x'});
  std::string told;
  for (const char* name : {"old.txt", "new.txt", "new.odt"})
    told += save_as(session, name, std::string(name) == "old.txt" ? "y" : "") + "\n";
  session->filepath = folder + "/old.odt";
  told += command(session, 's') + "\n";
  if (!session->modified || session->_line(0).view() != U"x" + text) return "the session has lost the text";
  if (read_bytes("old.odt") != old_package || read_bytes("old.txt") != "small") return "an old file is damaged";
  if (std::filesystem::exists("new.txt") || std::filesystem::exists("new.odt")) return "a broken file is left";
  session->_set_line(0, Text(U"shorter"));
  told += command(session, 's');
  return session->modified ? "still marked as modified" : told;
}

TEST(Save, AFullDiskLosesNeitherTheOldFileNorTheText) {
  TemporaryFolder folder;
  const std::string told = apart([&] { return save_on_a_full_disk(folder.path()); });
  if (told == NOT_TO_BE_HAD) GTEST_SKIP() << told;
  EXPECT_EQ(told, std::string(times(4, "Save error: No space left on device\n")) + "Saved (ODT): old.odt");
}

TEST(Save, WhateverBecameOfTheFileMeanwhileTheTextIsSavedOrKept) {
  EditorSession session({.path = "a.odt"});
  const std::string path = session.home().file("a.odt");
  session.type(U"text");
  command(session, 's');
  const std::string package = read_bytes(path);
  const std::vector<std::pair<std::string, std::function<void()>>> changes = {
      {"Saved (ODT): a.odt", [] {}},  // removed
      {"Saved (ODT): a.odt", [&] { std::filesystem::create_symlink("elsewhere.odt", path); }},
      {"Saved (ODT): a.odt", [&] { write_bytes(path, package); }},
      {"Save error: Is a directory", [&] { std::filesystem::create_directory(path); }},
      {"Save error: not a regular file", [&] { ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0); }},
      {"Save error: Too many levels of symbolic links", [&] { std::filesystem::create_symlink("a.odt", path); }},
      {"Save error: Not a zip archive", [&] { write_bytes(path, "somebody's work"); }}};
  for (const auto& [told, change] : changes) {
    session.type(U"!");
    std::filesystem::remove_all(path);
    change();
    EXPECT_EQ(command(session, 's'), told);
    EXPECT_EQ(session->modified, told.starts_with("Save error"));
    if (!session->modified) EXPECT_EQ(odt_to_rich(path).lines, session->lines);
  }
  EXPECT_EQ(read_bytes(path), "somebody's work");
  EXPECT_EQ(session.notation(), "text!!!!!!!|");
  EXPECT_TRUE(std::filesystem::exists(session.home().file("elsewhere.odt")));
}

TEST(Open, ReplacesTheDocumentAndAllThatBelongedToIt) {
  EditorSession session({.path = "a.txt", .home_files = {{"a.txt", "# one\r\ntwo"}, {"b.txt", "a\r\nb\n"}}});
  write_odt(session, "c.odt", "<b>bold</b>\n⏎<i>page</i>");
  session.press({KEY_DOWN, KEY_END});
  session.type(U"x");
  session.press(_KEY_SHIFT_LEFT);
  ASSERT_TRUE(session->_sel_anchor);
  EXPECT_EQ(choose(session, 'o', "c.odt", "n"), "Opened: c.odt");
  EXPECT_EQ(session.notation(), "|<b>bold</b>\n⏎<i>page</i>");
  EXPECT_EQ(session->filepath, session.home().file("c.odt"));
  EXPECT_FALSE(session->modified || session->_sel_anchor || session->scroll_y != 0);
  EXPECT_EQ(session->_cur_fmt, FMT_BOLD);
  EXPECT_EQ(command(session, 'u'), "Nothing to undo.");
  EXPECT_EQ(load_recent_files(session->_machine.files).at(0), session.home().file("c.odt"));
  EXPECT_EQ(choose(session, 'o', "b.txt"), "Opened: b.txt");
  EXPECT_EQ(session.notation(), "|a\nb");
  EXPECT_EQ(command(session, 's'), "Saved (TXT): b.txt");
  EXPECT_EQ(read_bytes(session.home().file("b.txt")), "a\nb");
}

TEST(Open, UnsavedTextIsKeptUnlessTheUserLetsItGo) {
  EditorSession session({.path = "a.txt", .home_files = {{"a.txt", "old"}, {"b.txt", "other"}}});
  session.type(U"new ");
  for (const std::string& answer : {std::string("c"), ESC, ENTER, "n" + ESC}) {
    EXPECT_EQ(command(session, 'o', answer), "Open cancelled.");
    EXPECT_EQ(session.notation(), "new |old");
  }
  command(session, 'o', "c");
  EXPECT_TRUE(session.screen().shows(" Unsaved changes. Save before opening? [y/n/c]"));
  session->filepath.reset();
  EXPECT_EQ(command(session, 'o', "y" + ESC), "Save cancelled.") << "no save, no opening";
  session->filepath = session.home().file("none/a.txt");
  EXPECT_EQ(command(session, 'o', "Y"), "Save error: No such file or directory");
  session->filepath = session.home().file("a.txt");
  EXPECT_EQ(choose(session, 'o', "b.txt", "y"), "Opened: b.txt");
  EXPECT_EQ(read_bytes(session.home().file("a.txt")), "new old");
}

TEST(Open, WhatCannotBeOpenedLeavesTheDocumentAlone) {
  EditorSession session({.path = "a.txt", .home_files = {{"a.txt", "text"}, {"bad.odt", "no"}, {"notes", "plain"}}});
  std::filesystem::create_symlink("nowhere", session.home().file("link.txt"));
  add_recent_file(session->_machine.files, session.home().file("notes"));
  session.press({KEY_END});
  const std::string before = session.notation();
  EXPECT_EQ(choose(session, 'o', "link.txt"), "File not found: " + session.home().file("link.txt"));
  EXPECT_EQ(choose(session, 'd', "link.txt"), "File not found: " + session.home().file("link.txt"));
  EXPECT_TRUE(choose(session, 'o', "bad.odt").starts_with("Open error: "));
  EXPECT_TRUE(choose(session, 'd', "bad.odt").starts_with("Insert error: "));
  EXPECT_TRUE(command(session, 'o', "R" + ENTER).starts_with("Open error: ")) << "without an extension it is an .odt";
  EXPECT_EQ(command(session, 'd', "R" + ENTER), "Unsupported format '' — use .odt, .txt, .md, or .fountain");
  add_recent_file(session->_machine.files, session.home().write("a.RTF", ""));
  EXPECT_EQ(command(session, 'd', "R" + ENTER), "Unsupported format '.rtf' — use .odt, .txt, .md, or .fountain");
  EXPECT_EQ(command(session, 'd', ESC), "Insert cancelled.");
  EXPECT_EQ(session.notation(), before);
  EXPECT_EQ(session->filepath, session.home().file("a.txt"));
  EXPECT_FALSE(session->modified);
  EXPECT_EQ(command(session, 'u'), "Nothing to undo.");
}

TEST(CreateDocument, NamesItAndAsksForTheOldOne) {
  EditorSession session({.path = "docs/a.md", .home_files = {{"docs/a.md", "old"}}});
  session.type(U"x");
  for (const std::string& answer : {std::string("c"), ESC, ENTER})
    EXPECT_EQ(command(session, 'n', answer), "Create document cancelled.");
  EXPECT_TRUE(session.screen().shows(" Unsaved changes — save before creating new document? (y/n/c)"));
  EXPECT_EQ(session.notation(), "x|old");
  session->_default_extension = "fountain";
  std::string told = command(session, 'n', "y");
  std::smatch parts;
  ASSERT_TRUE(std::regex_match(told, parts,
                               std::regex("New document: (\\d{8}-\\d{6}\\.fountain)"
                                          "  \\(not yet saved — press ESC S to save\\)")))
      << told;
  EXPECT_EQ(read_bytes(session.home().file("docs/a.md")), "xold");
  EXPECT_EQ(session->filepath, session.home().file("docs/" + parts[1].str())) << "beside the last document";
  EXPECT_EQ(session.notation(), "|");
  EXPECT_FALSE(session->modified || std::filesystem::exists(*session->filepath));
  session->_newdoc_timestamp = false;
  session.type(U"lost");
  session->_cur_fmt = FMT_BOLD;
  EXPECT_EQ(command(session, 'n', "n"), "New document  (not yet saved — press ESC S to save)");
  EXPECT_EQ(session->filepath, std::nullopt);
  EXPECT_EQ(session.notation(), "|");
  EXPECT_EQ(session->_cur_fmt, 0);
  EXPECT_EQ(command(session, 'u'), "Nothing to undo.");
}

TEST(InsertDocument, LandsBetweenTheHalvesOfTheLineAndIsUndoneAtOnce) {
  struct Case {
    std::string before, inserted, after, told;
  };
  const std::vector<Case> cases = {
      {"<b>one |two</b>\n⏎next", "x<i>y</i>", "<b>one </b>x<i>y</i>|<b>two</b>\n⏎next", "Inserted 1 line from in.odt"},
      {"0\n1\n2\n3\n4\n<b>le|ft</b>\n⏎z", "a\n⏎<i>b</i>\nc", "0\n1\n2\n3\n4\n<b>le</b>a\n⏎<i>b</i>\nc|<b>ft</b>\n⏎z",
       "Inserted 3 lines from in.odt"},
      {"a\n⏎|b", "x\ny", "a\nx\ny|b", "Inserted 2 lines from in.odt"},
      {"a\n⏎|b", "⏎x\ny", "a\n⏎x\ny|b", "Inserted 2 lines from in.odt"},
      {"|a\n⏎b", "⏎x\n⏎y", "x\n⏎y|a\n⏎b", "Inserted 2 lines from in.odt"},
      {"a|", "\n\n", "a\n\n|", "Inserted 3 lines from in.odt"},
      {"a|b", "", "a|b", "Document is empty, nothing inserted."},
  };
  EditorSession session;
  WorkingFolder in_home(session.home().path());
  for (const Case& c : cases) {
    write_odt(session, "in.odt", c.inserted);
    session.document(c.before);
    EXPECT_EQ(choose(session, 'd', "in.odt"), c.told);
    EXPECT_EQ(session.notation(), c.after);
    EXPECT_EQ(session->modified, c.before != c.after);
    session.draw();
    command(session, 'u');
    EXPECT_EQ(session.notation(), c.before);
    command(session, 'w');
    EXPECT_EQ(session.notation(), c.after);
  }
}

TEST(InsertDocument, TheLineFilterAndFoldsFollow) {
  EditorSession session({.home_files = {{"in.md", "sea\nland"}}});
  WorkingFolder in_home(session.home().path());
  session.document("sea|\nsky\n# head\nbody");
  session->_folded_chapters = {2};
  session.type_ahead("sea\r");
  session.press(_KEY_CTRL_G);
  ASSERT_EQ(session->_kgrep_folds, (IndexSet{1, 2, 3}));
  session.type_ahead("in.md\r");
  session->_dispatch_action("insert_document");
  EXPECT_EQ(print_notation(session.triple()), "seasea\nland\nsky\n# head\nbody");
  EXPECT_EQ(session->_folded_chapters, IndexSet{3});
  EXPECT_EQ(session->_kgrep_folds, (IndexSet{1, 2, 3, 4}));
  session->_check_session();
}

TEST(Documents, SurviveEditingSavingOpeningAndInserting) {
  EditorSession session;
  WorkingFolder in_home(session.home().path());
  write_odt(session, "first.odt", "Dear <b>Ada</b>,\n⏎the <i>second</i> page");
  write_odt(session, "third.odt", "some <b>more</b>\n⏎<i>pages</i>");
  EXPECT_EQ(choose(session, 'o', "first.odt"), "Opened: first.odt");
  session.press({KEY_DOWN, KEY_END});
  session.type(U" é 日本");
  const std::string edited = "Dear <b>Ada</b>,\n⏎the <i>second</i> page é 日本|";
  EXPECT_EQ(session.notation(), edited);
  EXPECT_EQ(save_as(session, "copy.md", "y"), "Saved (MD): copy.md");
  EXPECT_EQ(session.notation(), edited) << "the session keeps what the file cannot hold";
  EXPECT_EQ(choose(session, 'o', "copy.md"), "Opened: copy.md");
  EXPECT_EQ(session.notation(), "|Dear Ada,\nthe second page é 日本");
  EXPECT_EQ(choose(session, 'o', "first.odt"), "Opened: first.odt");
  const std::string opened = "|Dear <b>Ada</b>,\n⏎the <i>second</i> page";
  EXPECT_EQ(session.notation(), opened) << "saving under another name leaves the first file";
  session.press({KEY_DOWN, KEY_HOME});
  for (int i = 0; i < 7; ++i) session.press(KEY_RIGHT);
  session.type(U"!");
  const std::string typed = "Dear <b>Ada</b>,\n⏎the <i>sec!|ond</i> page";
  EXPECT_EQ(session.notation(), typed);
  EXPECT_EQ(choose(session, 'd', "third.odt"), "Inserted 2 lines from third.odt");
  const std::string inserted = "Dear <b>Ada</b>,\nthe <i>sec!</i>some <b>more</b>\n⏎<i>pages|ond</i> page";
  EXPECT_EQ(session.notation(), inserted);
  EXPECT_EQ(save_as(session, "first.odt", ""), "Saved (ODT): first.odt");
  EXPECT_EQ(command(session, 'u'), "Undo. (1 left)");
  EXPECT_EQ(session.notation(), typed);
  EXPECT_EQ(command(session, 'u'), "Undo. (0 left)");
  EXPECT_EQ(print_notation(session.triple()), opened.substr(1));
  EXPECT_TRUE(session->modified) << "undone past what was saved";
  EXPECT_EQ(choose(session, 'o', "first.odt", "n"), "Opened: first.odt");
  EXPECT_EQ(print_notation(session.triple()), print_notation(parse_notation(inserted).document));
}

TEST(Documents, AnyDocumentComesBackAsItWasSaved) {
  EditorSession session;
  WorkingFolder in_home(session.home().path());
  std::mt19937 random(20260);
  const std::u32string alphabet = U"ab  \t<&>\"'é—日\U0001F600#-*\u00A0\u0301";
  auto below = [&](std::size_t limit) { return static_cast<int>(random() % limit); };
  for (int round = 0; round < 60; ++round) {
    DocumentTriple made{.lines = {}, .fmt_lines = {}, .pagebreak_lines = {}};
    for (int line = 0, count = 1 + below(8); line < count; ++line) {
      std::u32string text;
      std::vector<unsigned char> masks;
      for (int i = below(14); i > 0; --i) {
        text += alphabet[static_cast<std::size_t>(below(alphabet.size()))];
        masks.push_back(i % 3 == 0 || masks.empty() ? static_cast<unsigned char>(below(4)) : masks.back());
      }
      made.lines.emplace_back(text);
      made.fmt_lines.push_back(spans_from_masks(masks));
      if (line > 0 && below(3) == 0) made.pagebreak_lines.insert(line);
    }
    session->_reset_for_document(made, session.home().file("any.odt"));
    ASSERT_EQ(command(session, 's'), "Saved (ODT): any.odt");
    ASSERT_EQ(choose(session, 'o', "any.odt"), "Opened: any.odt");
    EXPECT_EQ(print_notation(session.triple()), print_notation(made)) << "round " << round;
    EXPECT_EQ(session.triple().pagebreak_lines, made.pagebreak_lines);

    const bool formatted = session->_has_formatting();
    session->filepath = session.home().file("any.txt");
    ASSERT_EQ(command(session, 's', formatted ? "y" : ""), "Saved (TXT): any.txt");
    ASSERT_EQ(choose(session, 'o', "any.txt"), "Opened: any.txt");
    made.fmt_lines.assign(made.lines.size(), {});
    made.pagebreak_lines = {};
    // A text file has no last line that is empty.
    if (made.lines.size() > 1 && made.lines.back().empty()) made.lines.pop_back();
    EXPECT_EQ(print_notation(session.triple()), print_notation(made)) << "round " << round;
  }
}

}  // namespace
}  // namespace brenlow::test

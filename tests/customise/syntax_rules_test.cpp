#include "customise/syntax_rules.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "core/unicode.h"
#include "tests/support/temporary_folder.h"

namespace brenlow {
namespace {

std::string name_of(const StyleSpec& style) {
  if (style.kind == StyleSpec::Kind::inverse) return "inverse";
  if (style.kind == StyleSpec::Kind::color) return std::to_string(style.color);
  return std::to_string(style.r) + "," + std::to_string(style.g) + "," + std::to_string(style.b);
}

TEST(SyntaxRules, ANewUserGetsTheDefaultRulesForAllFourKinds) {
  test::TemporaryFolder home;
  struct Case {
    std::string_view extension;
    std::u32string_view line;
    std::string_view coloured;
    SpanList spans = {};
  };
  const Case cases[] = {
      {"md", U"# A **b**", "# A **b**=6;"},
      {"md", U"a ***b*** **c** _d_ `e` [f](g) ![h](i)", "***b***=3;**c**=3;_d_=3;`e`=2;[f](g)=6;![h](i)=6;"},
      {"md", U"- item", "- item=4;"},
      {"md", U"> quote", "> quote=5;"},
      {"md", U"---", "---=136,136,136;"},
      {"fountain", U"INT. HOUSE - DAY", "INT. HOUSE - DAY=6;"},
      {"fountain", U"JOHN", "JOHN=3;"},
      {"fountain", U"(softly)", "(softly)=5;"},
      {"fountain", U"then [[a note]] ends", "[[a note]]=136,136,136;"},
      {"fountain", U"Title: Big Fish", "Title: Big Fish=2;"},
      {"fountain", U"and so CUT TO:", "TO:=4;"},
      {"txt", U"a TODO, no TODOS", "TODO=1;"},
      {"odt", U"plain bold both italic", "both=5;bold=3;italic=6;plain =7; =7; =7;",
       span_list({{6, 10, FMT_BOLD}, {11, 15, FMT_BOLD | FMT_ITALIC}, {16, 99, FMT_ITALIC}})},
      // The word keeps the gap around it without colour.
      {"odt", U"a TODO bold", "TODO=1;bold=3;", span_list({{7, 11, FMT_BOLD}})}};
  for (const Case& c : cases) {
    std::string coloured;
    for (const SyntaxSpan& span :
         _compute_syn_spans(c.line, load_syntax_config(config_files(home.path()), c.extension), c.spans))
      coloured += encode_utf8(c.line.substr(static_cast<std::size_t>(span.start),
                                            static_cast<std::size_t>(span.end - span.start))) +
                  "=" + name_of(span.style) + ";";
    EXPECT_EQ(coloured, c.coloured);
  }
}

TEST(SyntaxRules, AFileOfTheUsersOwnIsUsedAndNeverOverwritten) {
  test::TemporaryFolder home;
  const ConfigFiles files = config_files(home.path());
  for (const char* none : {".rtf", "", ".."}) EXPECT_TRUE(load_syntax_config(files, none).empty());
  EXPECT_FALSE(std::filesystem::exists(files.CONFIG_DIR));
  EXPECT_EQ(load_syntax_config(files, ".TXT").size(), 1U);
  EXPECT_TRUE(std::filesystem::exists(files.CONFIG_DIR + "/txt.conf"));
  const std::string own = "pattern = a:b\nstyle = RED\n";  // "=" separates only where the line has no ":"
  test::write_bytes(files.CONFIG_DIR + "/md.conf", own);
  EXPECT_TRUE(load_syntax_config(files, "md").empty());
  EXPECT_EQ(test::read_bytes(files.CONFIG_DIR + "/md.conf"), own);
  test::write_bytes(files.CONFIG_DIR + "/rtf.conf", "pattern: @BOLD@\nstyle: inverse");
  const SyntaxRules rules = load_syntax_config(files, "Rtf");
  ASSERT_EQ(rules.size(), 1U);
  EXPECT_TRUE(!rules[0].pattern && rules[0].format == FormatKind::bold);

  home.write(".config/outside.conf", "pattern: a\nstyle: red\n");
  std::filesystem::create_directories(files.CONFIG_DIR + "/dir.conf");
  ASSERT_EQ(::mkfifo((files.CONFIG_DIR + "/pipe.conf").c_str(), 0600), 0);
  test::write_bytes(files.CONFIG_DIR + "/nul.conf", std::string("pattern: a\0\nstyle: red\n", 23));
  for (const char* none : {"/../outside", "dir", "pipe", "nul"})
    EXPECT_TRUE(load_syntax_config(files, none).empty()) << none;
  EXPECT_TRUE(load_syntax_config(config_files("/dev/null"), "md").empty());
}

TEST(SyntaxRules, SectionsGiveARuleWhenTheyHaveAPatternAndAStyle) {
  for (const auto& [text, styles] :
       {std::pair("\xEF\xBB\xBFpattern: a\r\nstyle: red\r\n[x]\r\nPATTERN: b\r\nStyle: #0aF0fF\r\n", "1;10,240,255;"),
        {"[x]\nstyle: red\n[y]\npattern: a\n[z]\n", ""},
        {"pattern: a\nstyle: red\nstyle: nonsense\n", ""},
        {"pattern: (\npattern: a\n;x\n# style: red\nstyle = green\nother: 1\nno separator\n", "2;"},
        {"[bad]\npattern: (\nstyle: red\n[good]\npattern: \xFF|a\nstyle: blue", "4;"},
        {"pattern: a:b=c\nstyle=  InVerse ", "inverse;"},
        {"pattern: a\nstyle: FF8000\n[]\npattern: a\nstyle: White", "255,128,0;7;"}}) {
    std::string found;
    for (const SyntaxRule& rule : parse_syntax_rules(text)) found += name_of(rule.style) + ";";
    EXPECT_EQ(found, styles) << text;
  }
  for (std::string_view bad : {"", "#", "#12345", "#1234567", "#12345g", "pink", "#ff 800"})
    EXPECT_FALSE(_parse_style_spec(bad)) << bad;
}

}  // namespace
}  // namespace brenlow

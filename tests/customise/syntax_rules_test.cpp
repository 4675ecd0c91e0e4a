#include "customise/syntax_rules.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "core/colours.h"
#include "core/unicode.h"
#include "tests/support/temporary_folder.h"

namespace brenlow {

namespace {

using test::TemporaryFolder;

std::string color_name(const StyleSpec& style) {
  if (style.kind == StyleSpec::Kind::inverse) return "inverse";
  if (style.kind == StyleSpec::Kind::color) return std::to_string(style.color);
  return std::to_string(style.r) + "," + std::to_string(style.g) + "," + std::to_string(style.b);
}

// "text=colour" for each span of the line that the default rules of the extension give.
std::string coloured(std::string_view extension, std::u32string_view line, const SpanList& spans = {}) {
  static TemporaryFolder home;
  std::string out;
  for (const SyntaxSpan& span :
       _compute_syn_spans(line, load_syntax_config(config_files(home.path()), extension), spans))
    out += encode_utf8(
               line.substr(static_cast<std::size_t>(span.start), static_cast<std::size_t>(span.end - span.start))) +
           "=" + color_name(span.style) + ";";
  return out;
}

}  // namespace

TEST(SyntaxRules, a_new_user_gets_the_default_rules_for_all_four_kinds) {
  EXPECT_EQ(coloured("md", U"# A **b**"), "# A **b**=6;");
  EXPECT_EQ(coloured("md", U"a ***b*** **c** _d_ `e` [f](g) ![h](i)"),
            "***b***=3;**c**=3;_d_=3;`e`=2;[f](g)=6;![h](i)=6;");
  EXPECT_EQ(coloured("md", U"- item"), "- item=4;");
  EXPECT_EQ(coloured("md", U"> quote"), "> quote=5;");
  EXPECT_EQ(coloured("md", U"---"), "---=136,136,136;");
  EXPECT_EQ(coloured("fountain", U"INT. HOUSE - DAY"), "INT. HOUSE - DAY=6;");
  EXPECT_EQ(coloured("fountain", U"JOHN"), "JOHN=3;");
  EXPECT_EQ(coloured("fountain", U"(softly)"), "(softly)=5;");
  EXPECT_EQ(coloured("fountain", U"then [[a note]] ends"), "[[a note]]=136,136,136;");
  EXPECT_EQ(coloured("fountain", U"Title: Big Fish"), "Title: Big Fish=2;");
  EXPECT_EQ(coloured("fountain", U"and so CUT TO:"), "TO:=4;");
  EXPECT_EQ(coloured("txt", U"a TODO, no TODOS"), "TODO=1;");
  EXPECT_EQ(coloured("odt", U"plain bold both italic",
                     span_list({{6, 10, FMT_BOLD}, {11, 15, FMT_BOLD | FMT_ITALIC}, {16, 99, FMT_ITALIC}})),
            "both=5;bold=3;italic=6;plain =7; =7; =7;");
  // The word keeps the gap around it without colour.
  EXPECT_EQ(coloured("odt", U"a TODO bold", span_list({{7, 11, FMT_BOLD}})), "TODO=1;bold=3;");
}

TEST(SyntaxRules, a_file_of_the_users_own_is_used_and_never_overwritten) {
  TemporaryFolder home;
  const ConfigFiles files = config_files(home.path());
  EXPECT_TRUE(load_syntax_config(files, ".rtf").empty());
  EXPECT_TRUE(load_syntax_config(files, "").empty());
  EXPECT_TRUE(load_syntax_config(files, "..").empty());
  EXPECT_FALSE(std::filesystem::exists(files.CONFIG_DIR));

  EXPECT_EQ(load_syntax_config(files, ".TXT").size(), 1U);
  EXPECT_TRUE(std::filesystem::exists(files.CONFIG_DIR + "/txt.conf"));
  const std::string own = "pattern = a:b\nstyle = RED\n";
  test::write_bytes(files.CONFIG_DIR + "/md.conf", own);
  test::write_bytes(files.CONFIG_DIR + "/rtf.conf", "pattern: @BOLD@\nstyle: inverse");
  // "=" separates only where the line has no ":".
  EXPECT_TRUE(load_syntax_config(files, "md").empty());
  EXPECT_EQ(test::read_bytes(files.CONFIG_DIR + "/md.conf"), own);
  const SyntaxRules rules = load_syntax_config(files, "Rtf");
  ASSERT_EQ(rules.size(), 1U);
  EXPECT_EQ(rules[0].pattern, nullptr);
  EXPECT_EQ(rules[0].format, FormatKind::bold);

  home.write("outside.conf", "pattern: a\nstyle: red\n");
  EXPECT_TRUE(load_syntax_config(files, "x/../../../outside").empty());
}

TEST(SyntaxRules, sections_give_a_rule_when_they_have_a_pattern_and_a_style) {
  auto styles = [](std::string_view text) {
    std::string out;
    for (const SyntaxRule& rule : parse_syntax_rules(text)) out += color_name(rule.style) + ";";
    return out;
  };
  EXPECT_EQ(styles("\xEF\xBB\xBFpattern: a\r\nstyle: red\r\n[x]\r\nPATTERN: b\r\nStyle: #0aF0fF\r\n"), "1;10,240,255;");
  EXPECT_EQ(styles("[x]\nstyle: red\n[y]\npattern: a\n[z]\n"), "");
  EXPECT_EQ(styles("pattern: a\nstyle: red\nstyle: nonsense\n"), "");
  EXPECT_EQ(styles("pattern: (\npattern: a\n;x\n# style: red\nstyle = green\nother: 1\nno separator\n"), "2;");
  EXPECT_EQ(styles("[bad]\npattern: (\nstyle: red\n[good]\npattern: \xFF|a\nstyle: blue"), "4;");
  EXPECT_EQ(styles("pattern: a:b=c\nstyle=cyan"), "6;");

  EXPECT_EQ(_parse_style_spec("  InVerse "), StyleSpec{});
  EXPECT_EQ(_parse_style_spec("#ff8000"), (StyleSpec{StyleSpec::Kind::rgb, 0, 255, 128, 0}));
  EXPECT_EQ(_parse_style_spec("FF8000"), (StyleSpec{StyleSpec::Kind::rgb, 0, 255, 128, 0}));
  EXPECT_EQ(_parse_style_spec("White"), (StyleSpec{StyleSpec::Kind::color, COLOR_WHITE, 0, 0, 0}));
  for (std::string_view bad : {"", "#", "#12345", "#1234567", "#12345g", "pink", "#ff 800"})
    EXPECT_FALSE(_parse_style_spec(bad)) << bad;
}

TEST(SyntaxRules, what_is_no_rule_file_means_no_colours) {
  TemporaryFolder home;
  const ConfigFiles files = config_files(home.path());
  std::filesystem::create_directories(files.CONFIG_DIR + "/md.conf");
  ASSERT_EQ(::mkfifo((files.CONFIG_DIR + "/txt.conf").c_str(), 0600), 0);
  test::write_bytes(files.CONFIG_DIR + "/odt.conf", std::string("pattern: a\0\nstyle: red\n", 23));
  test::write_bytes(files.CONFIG_DIR + "/big.conf", "pattern: a\nstyle: red\n" + std::string(64 << 20, '#'));
  for (std::string_view extension : {"md", "txt", "odt", "big"})
    EXPECT_TRUE(load_syntax_config(files, extension).empty()) << extension;
  EXPECT_TRUE(load_syntax_config(config_files("/dev/null"), "md").empty());
}

}  // namespace brenlow

#include "customise/expansions.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/keys.h"
#include "tests/support/temporary_folder.h"

using namespace brenlow;
using brenlow::test::TemporaryFolder;

namespace {

struct ExpansionsTest : testing::Test {
  TemporaryFolder home;
  ConfigFiles files = config_files(home.path().string());

  Expansions load(const std::string& complaints = "") {
    testing::internal::CaptureStderr();
    Expansions expansions = _load_expansions(files);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), complaints);
    return expansions;
  }
};

std::map<int, std::u32string> bound(const std::map<char32_t, std::u32string>& texts) {
  std::map<int, std::u32string> by_token;
  for (const auto& [character, text] : texts) by_token[_KEY_EXPANSION_ALT_BASE + static_cast<int>(character)] = text;
  return by_token;
}

}  // namespace

TEST_F(ExpansionsTest, AFreshFileDefinesNothingAndReadsWithoutComplaints) {
  for (int start = 0; start < 2; ++start) {
    const Expansions expansions = load();
    EXPECT_TRUE(expansions.texts.empty());
    EXPECT_EQ(expansions.key, KEY_ESC);
    EXPECT_TRUE(std::filesystem::is_regular_file(files.EXPANSIONS_FILE));
  }
}

TEST_F(ExpansionsTest, TextsKeepTheirLetterCaseInnerQuotesAndBlanks) {
  home.write(".config/brenlow/expansions.conf",
             "\xEF\xBB\xBF[settings]\r\nexpansion_key: 'F3'\r\n"
             "a: small\nA: \"  She said \"no: never\"  \"\n.: \"’\"\n\xC3\xA9: ''quoted''\n"
             "B: first\nB: \"\nC = caf\xE9\nB: last\n");
  const Expansions expansions = load();
  EXPECT_EQ(expansions.key, _KEY_F[2]);
  EXPECT_EQ(expansions.texts, bound({{U'a', U"small"},
                                     {U'A', U"  She said \"no: never\"  "},
                                     {U'.', U"’"},
                                     {U'é', U"'quoted'"},
                                     {U'B', U"last"},
                                     {U'C', U"caf\uFFFD"}}));
}

TEST_F(ExpansionsTest, LinesWithoutSenseAreNamedAndIgnored) {
  home.write(".config/brenlow/expansions.conf",
             "AB: two\n: none\nC: \"\"\nD:\nnonsense\n\xFF: x\nexpansion_key: ALT\nE: kept\n");
  const Expansions expansions = load(
      "brenlow: expansions.conf line 1: unrecognised shortcut 'AB', ignored\n"
      "brenlow: expansions.conf line 2: unrecognised shortcut '', ignored\n"
      "brenlow: expansions.conf line 3: empty replacement text for 'C', ignored\n"
      "brenlow: expansions.conf line 4: empty replacement text for 'D', ignored\n"
      "brenlow: expansions.conf line 6: unrecognised shortcut '\uFFFD', ignored\n"
      "brenlow: expansions.conf: unrecognised expansion_key 'ALT', using ESC\n");
  EXPECT_EQ(expansions.key, KEY_ESC);
  EXPECT_EQ(expansions.texts, bound({{U'E', U"kept"}}));
}

TEST_F(ExpansionsTest, AFolderInPlaceOfTheFileIsToldAndIgnored) {
  std::filesystem::create_directories(files.EXPANSIONS_FILE);
  testing::internal::CaptureStderr();
  EXPECT_TRUE(_load_expansions(files).texts.empty());
  EXPECT_TRUE(testing::internal::GetCapturedStderr().starts_with("brenlow: could not read expansions.conf: "));
}

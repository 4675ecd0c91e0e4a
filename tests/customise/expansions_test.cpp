#include "customise/expansions.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "core/keys.h"
#include "core/unicode.h"
#include "tests/support/temporary_folder.h"

using namespace brenlow;

namespace {

struct ExpansionsTest : testing::Test {
  test::TemporaryFolder home;
  ConfigFiles files = config_files(home.path().string());

  // "KEY TEXT" line by line in the order of the keys.
  std::string load(int key, const std::string& complaints) {
    testing::internal::CaptureStderr();
    const Expansions expansions = _load_expansions(files);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), complaints);
    EXPECT_EQ(expansions.key, key);
    std::u32string all;
    for (const auto& [token, text] : expansions.texts)
      all += static_cast<char32_t>(token - _KEY_EXPANSION_ALT_BASE) + (U" " + text) + U"\n";
    return encode_utf8(all);
  }
};

}  // namespace

TEST_F(ExpansionsTest, TextsKeepTheirLetterCaseInnerQuotesAndBlanks) {
  for (int start = 0; start < 2; ++start) EXPECT_EQ(load(KEY_ESC, ""), "") << "a fresh file defines nothing";
  home.write(".config/brenlow/expansions.conf",
             "\xEF\xBB\xBF[settings]\r\nexpansion_key: 'F3'\r\na: small\nA: \"  She said \"no: never\"  \"\n.: \"’\"\n"
             "é: ''quoted''\nB: first\nB: \"\nC = caf\xE9\nB: last\n");
  EXPECT_EQ(load(_KEY_F[2], ""), ". ’\nA   She said \"no: never\"  \nB last\nC caf\uFFFD\na small\né 'quoted'\n");
}

TEST_F(ExpansionsTest, LinesWithoutSenseAreNamedAndIgnored) {
  home.write(".config/brenlow/expansions.conf",
             "AB: two\n: none\nC: \"\"\nD:\nnonsense\n\xFF: x\nexpansion_key: ALT\nE: kept\n");
  EXPECT_EQ(load(KEY_ESC,
                 "brenlow: expansions.conf line 1: unrecognised shortcut 'AB', ignored\n"
                 "brenlow: expansions.conf line 2: unrecognised shortcut '', ignored\n"
                 "brenlow: expansions.conf line 3: empty replacement text for 'C', ignored\n"
                 "brenlow: expansions.conf line 4: empty replacement text for 'D', ignored\n"
                 "brenlow: expansions.conf line 6: unrecognised shortcut '\uFFFD', ignored\n"
                 "brenlow: expansions.conf: unrecognised expansion_key 'ALT', using ESC\n"),
            "E kept\n");
  std::filesystem::remove(files.EXPANSIONS_FILE);
  std::filesystem::create_directories(files.EXPANSIONS_FILE);
  EXPECT_EQ(load(KEY_ESC, "brenlow: could not read expansions.conf: Is a directory\n"), "");
}

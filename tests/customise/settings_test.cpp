#include "customise/settings.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/temporary_folder.h"

using namespace brenlow;
using brenlow::test::read_bytes;
using brenlow::test::write_bytes;

namespace {

struct SettingsTest : testing::Test {
  test::TemporaryFolder home;
  ConfigFiles files = config_files(home.path().string());
  void SetUp() override { std::filesystem::create_directories(files.CONFIG_DIR); }
};

using Entries = std::vector<std::pair<std::string, Setting>>;

}  // namespace

TEST_F(SettingsTest, WhatAUserTypedIsReadHoweverItIsSpelt) {
  EXPECT_EQ(parse_settings("\xEF\xBB\xBFmargin_left = 010\r\n  # margin_right: 5\r\n; margin_right: 6\n[runtime]\n"
                           "margin_top:10\ncursor_blink: YES\ntypewriter: no\nkgrep_highlight: Inverse\na = b: c = d\n"
                           "url: http://x:1\nno separator here\nbig: 99999999999999999999\nsigned: +7\n"
                           "not_signed: +-7\nempty:\nmargin_left: -3")
                .entries(),
            (Entries{{"margin_left", -3LL},
                     {"margin_top", 10LL},
                     {"cursor_blink", true},
                     {"typewriter", false},
                     {"kgrep_highlight", "Inverse"},
                     {"a = b", "c = d"},
                     {"url", "http://x:1"},
                     {"big", "99999999999999999999"},
                     {"signed", 7LL},
                     {"not_signed", "+-7"},
                     {"empty", ""}}));
}

TEST_F(SettingsTest, ARewriteKeepsEveryValueAndPutsUnknownKeysLast) {
  SettingsMap cfg = parse_settings("my_key: my value\ncursor_blink: false\nmargin_left: 250\nfont_size: 14\n");
  cfg.set("name", "two\nlines");
  save_config(files, cfg);
  const std::string text = read_bytes(files.CONFIG_FILE);
  EXPECT_TRUE(text.ends_with(
      "newdoc_timestamp: yes\n\n\n[runtime]\n# Values written automatically by Brenlow — do not edit by hand.\n"
      "my_key: my value\nfont_size: 14\nname: two lines\n"));
  EXPECT_NE(text.find("# yes (default)  no\ncursor_blink: no\n\n# Left margin"), std::string::npos);
  EXPECT_NE(text.find("margin_left: 250\n"), std::string::npos);
  EXPECT_NE(text.find("margin_bottom: 0\n\n\n[editing]\n# Typewriter"), std::string::npos);
  persist_setting(files, "margin_right", 12LL);
  SettingsMap again = load_config(files);
  EXPECT_FALSE(complete_config(again)) << "a written file is complete";
  EXPECT_EQ(setting_margin(again, "margin_right"), 12);
  again.set("margin_right", 0LL);
  EXPECT_EQ(settings_file_text(again), text);

  SettingsMap fresh;
  EXPECT_TRUE(complete_config(fresh));
  EXPECT_EQ(settings_file_text(fresh), settings_file_text({}));
}

TEST_F(SettingsTest, SettingsOfAnEarlierVersionAreTakenOverOnce) {
  for (const std::string& broken :
       {std::string("[1, 2]"), std::string("{\"a\": "), std::string("{\"a\": \"\xFF\"}"), std::string(1 << 20, '[')}) {
    write_bytes(files.CONFIG_FILE_OLD, broken);
    EXPECT_TRUE(load_config(files).entries().empty());
    EXPECT_EQ(read_bytes(files.CONFIG_FILE_OLD), broken);
    EXPECT_FALSE(std::filesystem::exists(files.CONFIG_FILE));
  }
  write_bytes(files.CONFIG_FILE_OLD,
              R"({"zeta": 1.5, "typewriter": true, "margin_left": 7, "kgrep_case": "sensitive", "alpha": 3,
                  "nested": {"typewriter": false}, "list": [1, 2], "nothing": null, "a:b": 1, "[x": 1})");
  const SettingsMap cfg = load_config(files);
  EXPECT_FALSE(std::filesystem::exists(files.CONFIG_FILE_OLD));
  EXPECT_TRUE(setting_is_yes(cfg, "typewriter", false));
  EXPECT_EQ(setting_text(cfg, "kgrep_case", ""), "sensitive");
  EXPECT_TRUE(read_bytes(files.CONFIG_FILE).ends_with("by hand.\nzeta: 1.5\nalpha: 3\n"));
  write_bytes(files.CONFIG_FILE_OLD, R"({"margin_left": 50})");
  EXPECT_EQ(setting_margin(load_config(files), "margin_left"), 7);
}

#include "customise/settings.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "core/failure.h"
#include "customise/conf_file.h"
#include "tests/support/temporary_folder.h"

using namespace brenlow;
using brenlow::test::read_bytes;
using brenlow::test::TemporaryFolder;
using brenlow::test::write_bytes;

namespace {

struct SettingsTest : testing::Test {
  TemporaryFolder home;
  ConfigFiles files = config_files(home.path().string());
  void SetUp() override { std::filesystem::create_directories(files.CONFIG_DIR); }
};

using Entries = std::vector<std::pair<std::string, Setting>>;

}  // namespace

TEST_F(SettingsTest, WhatAUserTypedIsReadHoweverItIsSpelt) {
  write_bytes(files.CONFIG_FILE,
              "\xEF\xBB\xBFmargin_left = 010\r\n"
              "  # margin_right: 5\r\n"
              "; margin_right: 6\n[runtime]\nmargin_top:10\n"
              "cursor_blink: YES\ntypewriter: no\nkgrep_highlight: Inverse\n"
              "a = b: c = d\nurl: http://x:1\nno separator here\n"
              "big: 99999999999999999999\nsigned: +7\nnot_signed: +-7\nempty:\nmargin_left: -3");
  const Entries expected = {{"margin_left", -3LL},
                            {"margin_top", 10LL},
                            {"cursor_blink", true},
                            {"typewriter", false},
                            {"kgrep_highlight", "Inverse"},
                            {"a = b", "c = d"},
                            {"url", "http://x:1"},
                            {"big", "99999999999999999999"},
                            {"signed", 7LL},
                            {"not_signed", "+-7"},
                            {"empty", ""}};
  EXPECT_EQ(load_config(files).entries(), expected);
}

TEST_F(SettingsTest, OddValuesFallBackOneByOne) {
  const SettingsMap cfg = parse_settings(
      "left: 250\nright: -3\ntop: wide\nbottom: true\nhuge: 99999999999999999999\n"
      "default_extension: ..MD\ncursor_type: Bar\ncursor_blink: no\n"
      "t1: yes\nt2: maybe\nt3: 1\nt4: FALSE\nfont_size: 12pt\n");
  EXPECT_EQ(setting_margin(cfg, "left"), 100);
  EXPECT_EQ(setting_margin(cfg, "right"), 0);
  EXPECT_EQ(setting_margin(cfg, "top"), 0);
  EXPECT_EQ(setting_margin(cfg, "bottom"), 1);
  EXPECT_EQ(setting_margin(cfg, "huge"), 100);
  EXPECT_EQ(setting_margin(cfg, "missing"), 0);
  EXPECT_EQ(setting_integer(cfg, "font_size", 14), 14);
  EXPECT_EQ(setting_extension(cfg), "md");
  EXPECT_EQ(setting_extension(parse_settings("default_extension: rtf")), "odt");
  EXPECT_EQ(setting_cursor_shape(cfg), 6);
  EXPECT_EQ(setting_cursor_shape(parse_settings("cursor_type: diamond\ncursor_blink: 0")), 2);
  EXPECT_EQ(setting_cursor_shape({}), 1);

  struct Reading {
    const char* key;
    bool is_yes, is_not_no, truth;
  };
  for (const Reading& reading : {Reading{"t1", true, true, true}, Reading{"t2", false, true, true},
                                 Reading{"t3", false, true, true}, Reading{"t4", false, false, false}}) {
    EXPECT_EQ(setting_is_yes(cfg, reading.key, !reading.is_yes), reading.is_yes) << reading.key;
    EXPECT_EQ(setting_is_not_no(cfg, reading.key, !reading.is_not_no), reading.is_not_no) << reading.key;
    EXPECT_EQ(setting_truth(cfg, reading.key, !reading.truth), reading.truth) << reading.key;
  }
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
  EXPECT_NE(text.find("margin_bottom: 0\n\n\n[editing]\n# Typewriter"), std::string::npos);

  const SettingsMap again = load_config(files);
  EXPECT_EQ(settings_file_text(again), text);
  for (const auto& [key, value] : cfg.entries())
    if (key != "name") {
      ASSERT_NE(again.find(key), nullptr) << key;
      EXPECT_EQ(*again.find(key), value) << key;
    }
}

TEST_F(SettingsTest, AFreshFileIsCompleteAndAChangeOfOneKeyLosesNoOther) {
  SettingsMap cfg;
  EXPECT_TRUE(complete_config(cfg));
  EXPECT_FALSE(complete_config(cfg));
  EXPECT_EQ(settings_file_text(cfg), settings_file_text({}));
  save_config(files, cfg);
  SettingsMap loaded = load_config(files);
  EXPECT_FALSE(complete_config(loaded));

  persist_setting(files, "margin_left", 12LL);
  persist_setting(files, "console_font", "ter-132n");
  EXPECT_EQ(setting_margin(load_config(files), "margin_left"), 12);
  EXPECT_EQ(setting_text(load_config(files), "console_font", ""), "ter-132n");
  EXPECT_EQ(load_config(files).entries().size(), cfg.entries().size() + 1);
}

TEST_F(SettingsTest, SettingsOfAnEarlierVersionAreTakenOverOnce) {
  write_bytes(files.CONFIG_FILE_OLD,
              R"({"zeta": 1.5, "typewriter": true, "margin_left": 7, "kgrep_case": "sensitive", "alpha": 3,
                  "nested": {"typewriter": false}, "list": [1, 2], "nothing": null, "a:b": 1, "[x": 1})");
  const SettingsMap cfg = load_config(files);
  EXPECT_FALSE(std::filesystem::exists(files.CONFIG_FILE_OLD));
  EXPECT_TRUE(setting_is_yes(cfg, "typewriter", false));
  EXPECT_EQ(setting_margin(cfg, "margin_left"), 7);
  EXPECT_EQ(setting_text(cfg, "kgrep_case", ""), "sensitive");
  const std::string text = read_bytes(files.CONFIG_FILE);
  EXPECT_TRUE(text.ends_with("by hand.\nzeta: 1.5\nalpha: 3\n")) << text;

  write_bytes(files.CONFIG_FILE_OLD, R"({"margin_left": 50})");
  EXPECT_EQ(setting_margin(load_config(files), "margin_left"), 7);
}

TEST_F(SettingsTest, ABrokenOldFileIsLeftWhereItIs) {
  for (const std::string& broken : {std::string("[1, 2]"), std::string("{\"a\": "), std::string("5"),
                                    std::string("{\"a\": \"\xFF\"}"), std::string(1 << 20, '[')}) {
    write_bytes(files.CONFIG_FILE_OLD, broken);
    EXPECT_TRUE(load_config(files).entries().empty());
    EXPECT_EQ(read_bytes(files.CONFIG_FILE_OLD), broken);
    EXPECT_FALSE(std::filesystem::exists(files.CONFIG_FILE));
  }
}

TEST_F(SettingsTest, AFileThatIsNoSettingsFileCountsAsEmptyWithoutAWord) {
  testing::internal::CaptureStderr();
  std::filesystem::create_directory(files.CONFIG_FILE);
  EXPECT_TRUE(load_config(files).entries().empty());
  EXPECT_THROW(save_config(files, {}), Failure);
  persist_setting(files, "margin_left", 5LL);
  EXPECT_TRUE(std::filesystem::is_directory(files.CONFIG_FILE));
  std::filesystem::remove(files.CONFIG_FILE);

  ASSERT_EQ(mkfifo(files.CONFIG_FILE.c_str(), 0600), 0);
  EXPECT_TRUE(load_config(files).entries().empty());
  std::filesystem::remove(files.CONFIG_FILE);

  write_bytes(files.CONFIG_FILE, std::string("\x7F"
                                             "ELF\0a: b\n",
                                             10));
  EXPECT_TRUE(load_config(files).entries().empty());
  write_bytes(files.CONFIG_FILE, std::string(CONF_FILE_LIMIT, '\n') + "a: b\n");
  EXPECT_TRUE(load_config(files).entries().empty());

  std::string many;
  for (int i = 0; i < 100000; ++i) many += "k" + std::to_string(i) + ": 1\n";
  write_bytes(files.CONFIG_FILE, many);
  EXPECT_EQ(load_config(files).entries().size(), 100000U);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

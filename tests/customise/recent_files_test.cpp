#include "customise/recent_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/temporary_folder.h"

using namespace brenlow;
using brenlow::test::read_bytes;
using Paths = std::vector<std::string>;

namespace {

struct RecentFilesTest : testing::Test {
  test::TemporaryFolder home;
  ConfigFiles files = config_files(home.path().string());
};

}  // namespace

TEST_F(RecentFilesTest, TheLatestTwentyThatStillExistStayAndOneFileIsListedOnce) {
  Paths expected;
  for (int i = 0; i < 21; ++i) {
    expected.insert(expected.begin(), home.write(std::to_string(i) + ".txt", ""));
    add_recent_file(files, expected.front());
  }
  expected.pop_back();
  EXPECT_EQ(load_recent_files(files), expected);
  std::rotate(expected.begin(), expected.begin() + 7, expected.begin() + 8);  // 13.txt
  for (const std::string& spelling :
       {std::filesystem::relative(expected.front()).string(), home.file("none/.././13.txt")}) {
    add_recent_file(files, spelling);
    EXPECT_EQ(load_recent_files(files), expected) << spelling;
  }
  std::filesystem::remove(expected[4]);
  expected.erase(expected.begin() + 4);
  EXPECT_EQ(load_recent_files(files), expected);
  add_recent_file(files, expected[0]);
  EXPECT_EQ(parse_recent_files(read_bytes(files.RECENT_FILES_FILE)), expected);
}

TEST_F(RecentFilesTest, EveryFileNameComesBackByteForByte) {
  const Paths paths = {"/tmp/\xC3\xA9t\xC3\xA9 \"\\\n.odt", "/tmp/caf\xE9.txt", "/\xF0\x9F\x98\x80\xF0\x9F",
                       "/\xF4\x8F\xBE\x80\xFF\x80", "/\xED\xA0\x80"};
  const std::string json = recent_files_json(paths);
  EXPECT_TRUE(std::ranges::all_of(json, [](char c) { return c >= 0x20 && c < 0x7F; })) << json;
  EXPECT_EQ(parse_recent_files(json), paths);
}

TEST_F(RecentFilesTest, AListOfAnotherShapeCountsAsEmpty) {
  for (const std::string& text : {std::string(), std::string("{\"a\": \"/\"}"), std::string("[\"/\""),
                                  std::string("[\"/\\u0000\", \"\", 5, null, [\"/\"]]"), std::string("\"/\""),
                                  std::string(1 << 20, '[') + std::string(1 << 20, ']')}) {
    home.write(".config/brenlow/recent_files.json", text);
    EXPECT_TRUE(load_recent_files(files).empty()) << text.substr(0, 40);
  }
  std::filesystem::remove(files.RECENT_FILES_FILE);
  std::filesystem::create_directory(files.RECENT_FILES_FILE);
  add_recent_file(files, home.path().string());
  EXPECT_TRUE(load_recent_files(files).empty());
}

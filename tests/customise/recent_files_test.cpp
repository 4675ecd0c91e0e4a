#include "customise/recent_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "tests/support/temporary_folder.h"

using namespace brenlow;
using brenlow::test::read_bytes;
using brenlow::test::TemporaryFolder;
using Paths = std::vector<std::string>;

namespace {

struct RecentFilesTest : testing::Test {
  TemporaryFolder home;
  ConfigFiles files = config_files(home.path().string());
};

}  // namespace

TEST_F(RecentFilesTest, TheLatestTwentyStayAndOneFileIsListedOnce) {
  Paths expected;
  for (int i = 0; i < 21; ++i) {
    expected.insert(expected.begin(), home.write(std::to_string(i) + ".txt", ""));
    add_recent_file(files, expected.front());
  }
  expected.pop_back();
  EXPECT_EQ(load_recent_files(files), expected);

  const std::string moved = expected[7];  // 13.txt
  expected.erase(expected.begin() + 7);
  expected.insert(expected.begin(), moved);
  add_recent_file(files, std::filesystem::relative(moved).string());
  EXPECT_EQ(load_recent_files(files), expected);
  add_recent_file(files, home.file("none/.././13.txt"));
  EXPECT_EQ(load_recent_files(files), expected);
}

TEST_F(RecentFilesTest, ADeletedFileLeavesTheListOnLoadAndTheFileWithTheNextAddition) {
  const std::string gone = home.write("gone.odt", ""), kept = home.write("kept.odt", "");
  save_recent_files(files, {gone, kept});
  std::filesystem::remove(gone);
  EXPECT_EQ(load_recent_files(files), Paths{kept});
  EXPECT_NE(read_bytes(files.RECENT_FILES_FILE).find("gone"), std::string::npos);
  add_recent_file(files, kept);
  EXPECT_EQ(read_bytes(files.RECENT_FILES_FILE).find("gone"), std::string::npos);
}

TEST_F(RecentFilesTest, EveryFileNameComesBackByteForByte) {
  const Paths paths = {"/tmp/\xC3\xA9t\xC3\xA9 \"\\\n.odt", "/tmp/caf\xE9.txt", "/\xF0\x9F\x98\x80\xF0\x9F",
                       "/\xF4\x8F\xBE\x80\xFF\x80", "/\xED\xA0\x80"};
  const std::string json = recent_files_json(paths);
  EXPECT_TRUE(std::ranges::all_of(json, [](char c) { return c >= 0x20 && c < 0x7F; })) << json;
  EXPECT_EQ(parse_recent_files(json), paths);
  const std::string latin = home.write("caf\xE9.txt", "");
  add_recent_file(files, latin);
  EXPECT_EQ(load_recent_files(files), Paths{latin});
}

TEST_F(RecentFilesTest, AListOfAnotherShapeCountsAsEmpty) {
  for (const std::string& text :
       {std::string(), std::string("{\"a\": \"/\"}"), std::string("[\"/\""),
        std::string("[\"/\\u0000\", \"\", 5, null, [\"/\"]]"), std::string("\"/\""), std::string(1 << 20, '['),
        std::string(1 << 20, '[') + std::string(1 << 20, ']'), std::string("[\"\xFF\"]")}) {
    home.write(".config/brenlow/recent_files.json", text);
    EXPECT_TRUE(load_recent_files(files).empty()) << text.substr(0, 40);
  }
  std::filesystem::remove(files.RECENT_FILES_FILE);
  std::filesystem::create_directory(files.RECENT_FILES_FILE);
  add_recent_file(files, home.path().string());
  EXPECT_TRUE(load_recent_files(files).empty());
}

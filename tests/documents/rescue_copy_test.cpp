#include "documents/rescue_copy.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <regex>

#include "core/failure.h"
#include "documents/odt_reader.h"
#include "documents/odt_writer.h"
#include "documents/zip_package.h"
#include "tests/support/faults.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/working_folder.h"

namespace brenlow::test {
namespace {

namespace fs = std::filesystem;

const LineList LINES{U"one", U"two"};
const FormatList PLAIN{SpanList(), SpanList()}, BOLD{span_list({{0, 3, FMT_BOLD}}), SpanList()};

// The path within the folder of a copy that was written there, its date and time as "*".
std::string told(const TemporaryFolder& folder, const std::string& path) {
  std::string name = fs::relative(path, folder.path()).string();
  return std::regex_replace(name, std::regex("rescued \\d{4}-\\d\\d-\\d\\d \\d{6}"), "*");
}

TEST(RescueCopy, LiesBesideItsFileUnderANameOfItsOwn) {
  TemporaryFolder folder;
  const WorkingFolder inside(folder.folder("work"));
  auto rescue = [&](const std::optional<std::string>& path, const FormatList& formats = PLAIN) {
    return told(folder, write_rescue_copy({LINES, formats, {}}, path, "md", folder.folder("home")));
  };
  EXPECT_EQ(rescue(folder.folder("deep") + "/novel.ODT"), "deep/novel *.odt");
  EXPECT_EQ(rescue("../deep/Zoë's notes.txt"), "deep/Zoë's notes *.txt");
  EXPECT_EQ(rescue("scene.fountain"), "work/scene *.fountain");
  EXPECT_EQ(rescue("notes.rtf"), "work/notes.rtf *.md") << "as a save would name it";
  EXPECT_EQ(rescue(".odt"), "work/.odt *.md");
  EXPECT_EQ(rescue(std::nullopt), "work/unnamed *.md");
  EXPECT_EQ(rescue("gone/novel.md"), "work/novel *.md");
  EXPECT_EQ(rescue("notes.txt", BOLD), "work/notes.txt *.odt") << "its format cannot hold what is bold";
  std::string longest;
  while (longest.size() < 250) longest += "é";
  const std::string cut = rescue(longest + "a.md");
  EXPECT_TRUE(cut.starts_with("work/éé") && cut.ends_with("é *.md")) << cut;
  fs::remove_all(folder.file("work"));
  EXPECT_EQ(rescue(std::nullopt), "home/unnamed *.md");
  EXPECT_EQ(rescue(folder.file("gone/novel.md")), "home/novel *.md");
}

TEST(RescueCopy, OverwritesNothingAndIsNoMoreReadableThanItsFile) {
  TemporaryFolder folder;
  const std::string path = folder.write("novel.txt", "old");
  ASSERT_EQ(::chmod(path.c_str(), 0400), 0);
  for (int copies = 1; copies <= 20; ++copies) {
    const std::string copy = write_rescue_copy({LINES, PLAIN, {}}, path, "odt", "/");
    EXPECT_EQ(read_bytes(copy), "one\ntwo");
    EXPECT_EQ(fs::status(copy).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), fs::directory_iterator()), copies + 1);
  }
  EXPECT_EQ(read_bytes(path), "old");
}

TEST(RescueCopy, KeepsThePackageOfItsFileUnlessThatIsNone) {
  TemporaryFolder folder;
  const std::string path = folder.file("novel.odt");
  PackageWriter package;
  package.add_stored("mimetype", "application/vnd.oasis.opendocument.text");
  package.add_deflated("Pictures/a.png", "picture");
  write_bytes(path, package.finish());
  for (bool broken : {false, true}) {
    if (broken) write_bytes(path, "no package");
    const std::string copy = write_rescue_copy({LINES, BOLD, {1}}, path, "txt", "/");
    const DocumentTriple read = odt_to_rich(copy);
    EXPECT_EQ(LineList(read.lines), LINES);
    EXPECT_EQ(FormatList(read.fmt_lines), BOLD);
    EXPECT_EQ(read.pagebreak_lines, IndexSet{1});
    EXPECT_EQ(PackageReader::from_file(copy).has("Pictures/a.png"), !broken);
  }
}

TEST(RescueCopy, GoesElsewhereFromAFullDiskAndTellsWhenNoPlaceIsLeft) {
  TemporaryFolder folder;
  const std::string small = folder.folder("small");
  const std::string told_of = apart([&]() -> std::string {
    if (!mount_small_disk(small, 8192)) return NOT_TO_BE_HAD;
    const WorkingFolder inside(small);
    const LineList text{Text(std::u32string(100'000, U'x'))};
    const std::string copy = write_rescue_copy({text, PLAIN, {}}, small + "/novel.txt", "odt", folder.folder("home"));
    if (!fs::is_empty(small)) return "a broken file is left";
    try {
      write_rescue_copy({text, PLAIN, {}}, small + "/novel.txt", "odt", small);
    } catch (const Failure& failure) {
      if (std::string(failure.what()).find("No space left on device") != std::string::npos) return told(folder, copy);
    }
    return "no place was left, and nothing told";
  });
  if (told_of == NOT_TO_BE_HAD) GTEST_SKIP() << told_of;
  EXPECT_EQ(told_of, "home/novel *.txt");
}

}  // namespace
}  // namespace brenlow::test

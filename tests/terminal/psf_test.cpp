#include "terminal/psf.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/temporary_folder.h"
#include "tests/terminal/font_files.h"

namespace brenlow {
namespace {

using test::gzipped;
using test::psf1;
using test::psf2;
using test::psf2_header;

std::string shape(const std::optional<PsfInfo>& info) {
  if (!info) return "no font";
  return std::to_string(info->width) + "x" + std::to_string(info->height) + ", " + std::to_string(info->count) +
         " of " + std::to_string(info->glyph_size) + " at " + std::to_string(info->offset);
}

TEST(Psf, FontsOfBothVersionsAreUnderstoodPackedAndPlain) {
  EXPECT_EQ(shape(psf_info_of(psf1(200, true) + "unicode table")), "8x200, 512 of 200 at 4");
  EXPECT_EQ(shape(psf_info_of(psf2(12, 24) + "unicode table")), "12x24, 256 of 48 at 32");
  EXPECT_EQ(shape(psf_info_of(psf2_header(40, 1, 3, 2, 9) + "12345678glyphs")), "no font") << "two bytes a row";
  const std::string longer_header = psf2_header(40, 1, 4, 2, 9) + "12345678glyph data";
  EXPECT_EQ(shape(psf_info_of(longer_header)), "9x2, 1 of 4 at 40");
  EXPECT_EQ(psf_glyphs(*psf_info_of(longer_header), longer_header), "glyp");

  const test::TemporaryFolder folder;
  EXPECT_EQ(shape(_psf_info(folder.write("a.psf", psf1(14)))), "8x14, 256 of 14 at 4");
  EXPECT_EQ(shape(_psf_info(folder.write("a.psf.gz", gzipped(psf2(16, 32))))), "16x32, 256 of 64 at 32");
}

TEST(Psf, HeadersThatLieAreNoFonts) {
  const std::uint32_t most = 0xFFFFFFFF;
  const std::string glyphs(4096, 'g');  // psf2_header(32, 256, 16, 16, 8) would tell the truth about them
  for (const std::string& liar :
       {std::string("\x36"), psf1(16).substr(0, 4 + 16 * 256 - 1), psf1(0), psf2(8, 16).substr(0, 31),
        psf2_header(32, 0, 16, 16, 8) + glyphs, psf2_header(32, 256, 0, 16, 8) + glyphs,
        psf2_header(32, 256, 16, 0, 8) + glyphs, psf2_header(32, 256, 16, 16, 0) + glyphs,
        psf2_header(32, 257, 16, 16, 8) + glyphs, psf2_header(31, 256, 16, 16, 8) + glyphs,
        psf2_header(most, 256, 16, 16, 8) + glyphs, psf2_header(32, most, most, 16, 8) + glyphs,
        psf2_header(32, 1, 16, 0x80000000, 16) + glyphs})
    EXPECT_EQ(shape(psf_info_of(liar)), "no font") << testing::PrintToString(liar.substr(0, 40));
}

TEST(Psf, DamagedPackedAndEndlessFilesAreRefused) {
  const test::TemporaryFolder folder;
  const std::string packed = gzipped(psf1(16));
  for (std::size_t size = 0; size < packed.size(); ++size)
    ASSERT_FALSE(gunzip(packed.substr(0, size), 1 << 20)) << size;
  EXPECT_EQ(gunzip(packed, psf1(16).size()), psf1(16));
  EXPECT_FALSE(gunzip(packed, psf1(16).size() - 1));
  EXPECT_EQ(gunzip(packed + packed + std::string(512, '\0'), 1 << 20), psf1(16) + psf1(16)) << "members, then padding";
  EXPECT_FALSE(gunzip(packed + packed.substr(0, 20), 1 << 20));
  EXPECT_FALSE(_read_font_bytes(folder.write("bomb.psf.gz", gzipped(std::string(FONT_FILE_LIMIT + 1, '\0')))));
  ASSERT_EQ(::mkfifo(folder.file("pipe.psf").c_str(), 0600), 0);
  for (const char* name : {"pipe.psf", "absent.psf", "."}) EXPECT_FALSE(_read_font_bytes(folder.file(name))) << name;
}

}  // namespace
}  // namespace brenlow

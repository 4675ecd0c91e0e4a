#include "documents/odt_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "core/failure.h"
#include "documents/odt_format.h"
#include "documents/odt_reader.h"
#include "tests/documents/packages.h"
#include "tests/support/notation.h"

namespace brenlow::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

void save(std::string_view notation, const std::string& path, bool over = false) {
  DocumentTriple document = parse_notation(notation).document;
  lines_to_odt(document.lines, path, over ? std::optional(path) : std::nullopt, document.fmt_lines,
               document.pagebreak_lines);
}

std::string content_of(const std::string& path) { return member_of(path, "content.xml").content; }

std::string failure_of_saving_over(const std::string& path) {
  try {
    save("new", path, true);
    return "saved";
  } catch (const Failure& failure) {
    return failure.what();
  }
}

// The children of office:text as they stand in the file.
std::string body_of(const std::string& path) {
  std::string content = content_of(path);
  std::size_t start = content.find("<office:text>") + 13;
  return content.substr(start, content.find("</office:text>") - start);
}

TEST(OdtWriter, ANewPackageHoldsItsMembersInTheFormatsOrder) {
  TemporaryFolder folder;
  std::string path = folder.file("a.odt");
  save("a <b>b", path);
  std::vector<Member> members = list_package(path);
  std::vector<std::string> names;
  for (const Member& member : members) {
    names.push_back(member.name);
    EXPECT_EQ(member.stored, member.name == "mimetype") << member.name;
  }
  EXPECT_THAT(names, ElementsAre("mimetype", "styles.xml", "META-INF/manifest.xml", "content.xml", "meta.xml"));
  // Programs that look at the first bytes find the type there (part 2, section 3.3): no extra field, and the
  // time stamp that means none.
  std::string bytes = read_bytes(path);
  EXPECT_EQ(bytes.substr(10, 4), std::string("\0\0\x21\0", 4));
  EXPECT_EQ(bytes.substr(28, 2), std::string("\0\0", 2));
  EXPECT_EQ(bytes.substr(30, 47), "mimetypeapplication/vnd.oasis.opendocument.text");
  EXPECT_THAT(make_meta_xml(86400 * 365), HasSubstr("<meta:creation-date>1971-01-01T00:00:00</meta:creation-date>\n"
                                                    "    <dc:date>1971-01-01T00:00:00</dc:date>\n"
                                                    "    <meta:generator>brenlow_1.2/1.0</meta:generator>"));
}

TEST(OdtWriter, LinesBecomeParagraphsAndSpansSegments) {
  TemporaryFolder folder;
  std::string path = folder.file("a.odt");
  save("", path);
  EXPECT_EQ(body_of(path), R"(<text:p text:style-name="Standard"></text:p>)");
  EXPECT_THAT(content_of(path), HasSubstr("<office:automatic-styles></office:automatic-styles><office:body>"));
  save("<b>a</b> <& two  spaces\t\n⏎<i>b<b>c</b></i>", path);
  EXPECT_EQ(body_of(path),
            R"(<text:p text:style-name="Standard"><text:span text:style-name="T_Bold">a</text:span> &lt;&amp; two  )"
            "spaces\t</text:p>"
            R"(<text:p text:style-name="P_PageBreak"><text:span text:style-name="T_Italic">b</text:span>)"
            R"(<text:span text:style-name="T_BoldItalic">c</text:span></text:p>)");
}

TEST(OdtWriter, OverlappingAndOverlongSpansNeitherDoubleNorLoseText) {
  TemporaryFolder folder;
  std::mt19937 random(7);
  auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  for (int round = 0; round < 50; ++round) {
    std::vector<Text> lines;
    std::vector<SpanList> spans;
    DocumentTriple expected;
    expected.lines.clear();
    expected.fmt_lines.clear();
    std::vector<int> breaks;
    for (int i = 0; i <= below(6); ++i) {
      std::u32string line;
      for (int k = below(30); k > 0; --k) line += U"ab <&>\"\t\r\u0085\u2028é漢😀"[below(14)];
      std::vector<Span> made;
      for (int k = below(4); k > 0; --k) {
        int start = below(30);
        made.push_back({start, start + below(12), 1 + below(3)});
      }
      lines.emplace_back(line);
      spans.push_back(span_list(made));
      expected.lines.emplace_back(line);
      expected.fmt_lines.push_back(_merge_spans(spans_within(spans.back(), 0, static_cast<int>(line.size())).view()));
      if (below(3) == 0) breaks.push_back(i);
    }
    expected.pagebreak_lines = IndexSet::from_sorted(breaks);
    std::string path = folder.file("a.odt");
    lines_to_odt(lines, path, round > 0 ? std::optional(path) : std::nullopt, spans, expected.pagebreak_lines);
    EXPECT_EQ(print_notation(odt_to_rich(path)), print_notation(expected)) << "round " << round;
    EXPECT_EQ(odt_to_rich(path), expected) << "round " << round;
  }
}

TEST(OdtWriter, CharactersThatXmlCannotHoldAreReplacedSoThatTheFileOpens) {
  TemporaryFolder folder;
  std::string path = folder.file("a.odt");
  std::u32string line = U"a";
  line += {0, 0x1B, 0xD800, 0xFFFE, 0xFFFF, 0x110000, 0x7F, 0x10FFFF};
  lines_to_odt({Text(line), Text(U"b")}, path, std::nullopt, {}, {});
  DocumentTriple read = odt_to_rich(path);
  EXPECT_EQ(read.lines[0], Text(U"a\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD\u007F\U0010FFFF"));
  EXPECT_EQ(read.lines.size(), 2u);
}

TEST(OdtWriter, OtherMembersOfThePackageStayAsTheyWere) {
  TemporaryFolder folder;
  for (const char* sample : {"/office.odt", "/web_page.odt"}) {
    std::string path = folder.write("a.odt", read_bytes(std::string(BRENLOW_TEST_DATA) + sample));
    auto others = [&] {
      std::vector<Member> members = list_package(path);
      std::erase_if(members, [](const Member& one) {
        return one.name == "mimetype" || one.name == "content.xml" || one.name == "meta.xml";
      });
      return members;
    };
    std::vector<Member> before = others();
    DocumentTriple document = odt_to_rich(path);
    for (int times = 0; times < 2; ++times) save(print_notation(document), path, true);
    EXPECT_TRUE(others() == before) << sample;
    EXPECT_EQ(list_package(path).front().name, "mimetype");
    EXPECT_EQ(list_package(path).back().name, "meta.xml");
    EXPECT_EQ(odt_to_rich(path), document) << sample;
  }
}

TEST(OdtWriter, TimeStampsStayInTheHourThatSummerTimeSkips) {
  TemporaryFolder folder;
  std::string path = make_package(folder.file("a.odt"), {{"content.xml", content_xml("")}, {"picture", "p", true}});
  std::string bytes = read_bytes(path);
  const std::string skipped("\x00\x15\x7F\x58", 4);  // 2024-03-31 02:40 as DOS time and date
  std::size_t central = bytes.rfind("PK\1\2");
  bytes.replace(central + 12, 4, skipped);
  write_bytes(path, bytes);
  ::setenv("TZ", "Europe/Berlin", 1);
  ::tzset();
  save("new", path, true);
  ::unsetenv("TZ");
  ::tzset();
  bytes = read_bytes(path);
  EXPECT_EQ(bytes.substr(bytes.find("PK\1\2", bytes.find("PK\1\2") + 1) + 12, 4), skipped);
}

TEST(OdtWriter, TheRestOfTheOldContentStaysWithThePrefixesOfTheFormat) {
  TemporaryFolder folder;
  std::string path = make_package(
      folder.file("a.odt"),
      {{"content.xml",
        "<o:document-content xmlns:o='urn:oasis:names:tc:opendocument:xmlns:office:1.0' o:version='1.2' "
        "xmlns:s='urn:oasis:names:tc:opendocument:xmlns:style:1.0' xmlns:text='urn:example:text' text:kept='&lt;&#10;'>"
        "<text:fonts><deep xmlns='urn:example:deep' xml:id='i'>a&amp;b<!--c--><![CDATA[<d>]]></deep></text:fonts>"
        "<o:automatic-styles><s:style s:name='T_Bold'/></o:automatic-styles><o:body><o:before/>"
        "<o:text o:kept='1'>old<o:gone/></o:text><o:behind/></o:body></o:document-content>"}});
  for (int times = 0; times < 2; ++times) save("<b>a</b>\n⏎b", path, true);
  std::string content = content_of(path);
  EXPECT_THAT(content, HasSubstr("<office:document-content xmlns:office="));
  EXPECT_THAT(content, HasSubstr(R"(xmlns:ns0="urn:example:text")"));
  EXPECT_THAT(content, HasSubstr(R"( office:version="1.2" ns0:kept="&lt;&#10;">)"));
  EXPECT_THAT(content, HasSubstr(R"(<ns0:fonts><ns1:deep xml:id="i">a&amp;b<!--c-->&lt;d&gt;</ns1:deep></ns0:fonts>)"));
  EXPECT_THAT(content, HasSubstr(R"(<office:automatic-styles><style:style style:name="T_Bold"/><style:style )"
                                 R"(style:name="T_Italic" style:family="text">)"));
  EXPECT_THAT(content, HasSubstr(R"(<office:body><office:before/><office:text office:kept="1"><text:p )"));
  EXPECT_THAT(content, HasSubstr("</text:p></office:text><office:behind/></office:body></office:document-content>"));
  EXPECT_THAT(content, Not(HasSubstr(">old")));
  for (const char* name : {"T_Bold", "T_Italic", "T_BoldItalic", "P_PageBreak"}) {
    std::string declared = std::string("<style:style style:name=\"") + name + "\"";
    EXPECT_EQ(content.find(declared), content.rfind(declared)) << name;
    EXPECT_THAT(content, HasSubstr(declared));
  }
  EXPECT_EQ(print_notation(odt_to_rich(path)), "a\n⏎b") << "the old T_Bold is not bold";
}

TEST(OdtWriter, ContentKeptInMemoryIsUsedOnlyWhileTheFileHoldsIt) {
  TemporaryFolder folder;
  std::string path = folder.file("a.odt"), reread = folder.file("b.odt");
  KeptContent kept;
  DocumentTriple document = parse_notation("<b>a</b>\n⏎b").document;
  auto save_both = [&] {
    lines_to_odt(document.lines, path, path, document.fmt_lines, document.pagebreak_lines, &kept);
    lines_to_odt(document.lines, reread, reread, document.fmt_lines, document.pagebreak_lines);
    return content_of(path) == content_of(reread);
  };
  for (const char* sample : {"/office.odt", "/web_page.odt", "/office.odt"}) {
    std::string bytes = read_bytes(std::string(BRENLOW_TEST_DATA) + sample);
    write_bytes(path, bytes);
    write_bytes(reread, bytes);
    EXPECT_TRUE(save_both()) << sample << " was written by another program";
    EXPECT_TRUE(save_both()) << sample << " as written";
    DocumentTriple opened = odt_to_rich(path, &kept);
    EXPECT_EQ(opened, document);
    EXPECT_TRUE(save_both()) << sample << " as opened";
  }
}

TEST(OdtWriter, ATargetThatCannotBeKeptIsNotOverwritten) {
  TemporaryFolder folder;
  auto kept = [&](const std::string& path, const std::string& words) {
    std::string before = read_bytes(path);
    EXPECT_EQ(failure_of_saving_over(path), words);
    EXPECT_EQ(read_bytes(path), before);
  };
  kept(folder.write("text.odt", "no package"), "Not a zip archive");
  kept(folder.write("empty.odt", ""), "Not a zip archive");
  kept(make_package(folder.file("cut.odt"), {{"content.xml", "<a><b></a>"}}),
       "content.xml: line 1: Opening and ending tag mismatch: b line 1 and a");
  kept(make_package(folder.file("secret.odt"),
                    {{"content.xml", "\1\2\3"}, {"META-INF/manifest.xml", "<manifest:encryption-data/>"}}),
       "the document is encrypted");

  for (const std::vector<Member>& members :
       {std::vector<Member>{{"picture", "p"}}, std::vector<Member>{{"content.xml", "<a/>"}, {"picture", "p"}}}) {
    std::string path = make_package(folder.file("other.odt"), members);
    EXPECT_EQ(failure_of_saving_over(path), "saved");
    EXPECT_EQ(print_notation(odt_to_rich(path)), "new");
    EXPECT_EQ(member_of(path, "picture").content, "p");
  }
}

}  // namespace
}  // namespace brenlow::test

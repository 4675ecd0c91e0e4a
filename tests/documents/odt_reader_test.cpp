#include "documents/odt_reader.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include "core/failure.h"
#include "tests/documents/packages.h"
#include "tests/support/notation.h"

namespace brenlow::test {
namespace {

const std::string BOLD = R"(fo:font-weight="bold")";
const std::string ITALIC = R"(fo:font-style="italic")";

std::string read(const std::string& path) { return print_notation(odt_to_rich(path)); }

// The document of these members, in the notation.
std::string read_members(const std::vector<Member>& members) {
  TemporaryFolder folder;
  return read(make_package(folder.file("a.odt"), members));
}

std::string read_body(std::string_view body, std::string_view styles = "", std::string_view styles_member = "") {
  std::vector<Member> members{{"content.xml", content_xml(body, styles)}};
  if (!styles_member.empty()) members.push_back({"styles.xml", std::string(styles_member)});
  return read_members(members);
}

std::string failure_of(const std::vector<Member>& members) {
  try {
    return "opened: " + read_members(members);
  } catch (const Failure& failure) {
    return failure.what();
  }
}

std::string failure_of_body(std::string_view body) { return failure_of({{"content.xml", content_xml(body)}}); }

TEST(OdtReader, DocumentsOfOtherProgramsKeepTextFormatsAndPageBreaks) {
  EXPECT_EQ(read(BRENLOW_TEST_DATA "/office.odt"),
            "# A chapter\n"
            "Plain, <b>bold</b> and <i>both</i>; a\ttab, three   spaces, a\n"
            "second line.\n"
            "<b>A bold paragraph with </b><i>both</i><b> in it.</b>\n"
            "<i>Bold and italic by its style.</i>\n"
            "⏎On a new page: café, “quotes”.\n"
            "\n"
            " behind a picture\n"
            "⏎Bold on a third page.");
  EXPECT_EQ(read(BRENLOW_TEST_DATA "/web_page.odt"),
            "A heading of the first rank\n"
            "Plain, <b>bold</b>, <i>italic</i>, <b><i>both</i></b>, <b>bold </b>not<b> bold</b>. café — “quotes”\n"
            "<b>Second </b><i>rank</i>\n"
            "one\ntwo\n<b>three</b>\n"
            "⏎On a new page\n"
            " behind a picture\n"
            "a <b>link</b>");
}

TEST(OdtReader, TextIsFoundWhereverItStandsInAParagraph) {
  struct Case {
    const char* body;
    const char* document;
  };
  const Case cases[] = {
      {"", ""},
      {"<text:p/><text:p/>", "\n"},
      {"<text:p>a<text:line-break/>b<text:tab/>c<text:s/>d<text:s text:c=' 3 '/>e</text:p>", "a\nb\tc d   e"},
      {"<text:p>a<text:s text:c='-4'/><text:s text:c='0'/>b<text:s text:c='+1'/></text:p>", "ab "},
      {"<text:p>a<text:a>link<text:note>1<text:p>note</text:p></text:note></text:a>b</text:p>", "alink1noteb"},
      {"<x:h>head</x:h><p>bare</p><text:p>a<x:s/><x:tab/><x:line-break/>b</text:p>", "head\nbare\na \t\nb"},
      {"<text:list><text:p>lost</text:p></text:list>between<text:p>kept</text:p>", "kept"},
      {"<text:p>a<!-- c -->b<?p i?>c<![CDATA[<&>]]>d&#233;</text:p>", "abc\\<&>dé"},
      {"<text:p>line feed\nin the file</text:p>", "line feed\nin the file"},
      {"<text:p><text:s><text:span>lost</text:span></text:s>a</text:p>", " a"},
  };
  for (const Case& one : cases) EXPECT_EQ(read_body(one.body), one.document) << one.body;
}

TEST(OdtReader, ABodyWithoutATextIsOneEmptyLine) {
  std::string root = "<office:document-content" + std::string(NAMESPACES) + ">";
  EXPECT_EQ(read_members({{"content.xml", root + "</office:document-content>"}}), "");
  EXPECT_EQ(read_members({{"content.xml", root + "<office:body/></office:document-content>"}}), "");
}

TEST(OdtReader, SpansReplaceWhatComesInOrNameWhatTheyAre) {
  std::string styles = text_style("B", BOLD) + text_style("I", ITALIC) + text_style("Plain", "");
  auto span = [](const std::string& name, const std::string& inner) {
    return "<text:span text:style-name='" + name + "'>" + inner + "</text:span>";
  };
  auto paragraph = [](const std::string& name, const std::string& inner) {
    return "<text:p text:style-name='" + name + "'>" + inner + "</text:p>";
  };
  EXPECT_EQ(read_body(paragraph("B", "a" + span("Plain", "b" + span("I", "c") + "d") + "e"), styles),
            "<b>a</b>b<i>c</i>d<b>e</b>");
  EXPECT_EQ(read_body(paragraph("B", "a" + span("Some_ITALIC_1", "b")), styles), "<b>a<i>b</i></b>");
  EXPECT_EQ(read_body(paragraph("unknown", span("myBoldItalic", "a") + span("other", "b")), styles),
            "<b><i>a</i></b>b");
  EXPECT_EQ(read_body("<text:p><text:span fo:font-weight='bold' fo:font-style='oblique'>a<text:span "
                      "fo:font-weight='400'>b</text:span><text:span fo:font-style='normal'>c</text:span></text:span>"
                      "</text:p>"),
            "<b><i>a</i></b><i>b</i><b>c</b>");
  EXPECT_EQ(read_body(paragraph("B", "a<text:a>" + span("I", "b<text:s/>") + "c</text:a><text:line-break/>d"), styles),
            "<b>a</b><i>b </i><b>c</b>\n<b>d</b>");
}

TEST(OdtReader, StylesInheritWithinTheirFile) {
  auto looks = [](const std::string& style, const std::string& styles, const std::string& common = "") {
    return read_body("<text:p text:style-name='" + style + "'>a</text:p>", styles, common);
  };
  std::string parents = text_style("B", BOLD) + text_style("I", ITALIC);
  EXPECT_EQ(looks("C", text_style("C", "", "B") + parents), "<b>a</b>");
  EXPECT_EQ(looks("C", text_style("C", "fo:font-weight='700'", "B") + parents), "<b>a</b>");
  EXPECT_EQ(looks("C", text_style("C", "fo:font-weight='700'", "I") + parents), "<i>a</i>");
  EXPECT_EQ(looks("C", text_style("C", "fo:font-weight='300' fo:font-style='normal'", "B") + parents), "a");
  EXPECT_EQ(looks("A", text_style("A", ITALIC, "Z") + text_style("Z", "", "A")), "<i>a</i>");
  EXPECT_EQ(looks("Z", text_style("A", "", "Z") + text_style("Z", "", "A")), "a");
  EXPECT_EQ(looks("C", text_style("C", "", "B"), styles_xml(text_style("B", BOLD))), "a");
  EXPECT_EQ(looks("B", text_style("B", BOLD), styles_xml(text_style("B", ""))), "a");
  EXPECT_EQ(looks("B", text_style("B", BOLD), "<broken"), "<b>a</b>");

  // Styles that only follow the text count as well.
  std::string late = content_xml("<text:p text:style-name='B'>a</text:p>", text_style("B", ITALIC));
  std::size_t section = late.find("<office:automatic-styles>"), body = late.find("<office:body>");
  std::string moved = late.substr(section, body - section);
  late.erase(section, moved.size()).insert(late.find("</office:document-content>"), moved);
  EXPECT_EQ(read_members({{"content.xml", late}}), "<i>a</i>");

  // Eleven levels of parents count, a twelfth does not.
  auto chain = [](int parent_levels) {
    std::string styles;
    for (int i = 0; i < parent_levels; ++i)
      styles += text_style("S" + std::to_string(i), "", "S" + std::to_string(i + 1));
    return styles + text_style("S" + std::to_string(parent_levels), BOLD);
  };
  EXPECT_EQ(looks("S0", chain(10)), "<b>a</b>");
  EXPECT_EQ(looks("S0", chain(11)), "a");
  EXPECT_EQ(looks("S1", chain(11)), "a") << "remembered from the way that was too long";
}

TEST(OdtReader, PageBreaksMarkTheFirstLineAndAreNotInherited) {
  std::string styles =
      "<style:style style:name='P'><style:paragraph-properties fo:break-before='page'/></style:style>"
      "<style:style style:name='Q' style:parent-style-name='P'/>"
      "<style:style style:name='R'><style:paragraph-properties fo:break-after='page'/></style:style>";
  EXPECT_EQ(read_body("<text:p text:style-name='P'>a<text:line-break/>b</text:p><text:p text:style-name='Q'>c</text:p>"
                      "<text:h text:style-name='R'>d</text:h><text:p text:style-name='Common'/><text:p>e</text:p>",
                      styles,
                      styles_xml("<style:style style:name='Common'><style:paragraph-properties "
                                 "fo:break-before='page'/></style:style>")),
            "⏎a\nb\nc\nd\n⏎\ne");
}

TEST(OdtReader, OtherPrefixesMeanTheSame) {
  EXPECT_EQ(
      read_members({{"content.xml",
                     "<document-content xmlns='urn:oasis:names:tc:opendocument:xmlns:office:1.0' "
                     "xmlns:t='urn:oasis:names:tc:opendocument:xmlns:text:1.0' "
                     "xmlns:text='urn:oasis:names:tc:opendocument:xmlns:style:1.0' "
                     "xmlns:office='urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0'><automatic-styles>"
                     "<text:style text:name='B'><text:text-properties office:font-weight='bold'/></text:style>"
                     "</automatic-styles><body><text><t:p>a<t:span t:style-name='B'>b</t:span></t:p></text></body>"
                     "</document-content>"}}),
      "a<b>b</b>");
}

TEST(OdtReader, EntitiesHaveTheirValueButNothingIsFetchedOrMultiplied) {
  auto with_entities = [](const std::string& declarations, const std::string& body) {
    return std::vector<Member>{{"content.xml", "<!DOCTYPE x [" + declarations + "]>" + content_xml(body)}};
  };
  EXPECT_EQ(read_members(with_entities("<!ENTITY a 'x&b;'><!ENTITY b '<text:tab/>y'>", "<text:p>1&a;2</text:p>")),
            "1x\ty2");
  EXPECT_EQ(read_members(with_entities("<!ENTITY p '<text:p>x</text:p>,<text:p>y&q;</text:p>'><!ENTITY q '?'>",
                                       "&p;<text:p>z</text:p>&p;<text:p>&q;</text:p>&p;")),
            "x\ny?\nz\nx\ny?\n?\nx\ny?");

  TemporaryFolder folder;
  std::string secret = folder.write("secret.txt", "secret");
  EXPECT_EQ(failure_of(with_entities("<!ENTITY e SYSTEM 'file://" + secret + "'>", "<text:p>&e;</text:p>")),
            "content.xml: refers to an external entity");
  std::string parameter = folder.write("secret.dtd", "<!ENTITY e 'secret'>");
  std::string outcome =
      failure_of(with_entities("<!ENTITY % p SYSTEM 'file://" + parameter + "'> %p;", "<text:p>&e;</text:p>"));
  EXPECT_EQ(outcome.find("secret"), std::string::npos) << outcome;

  std::string laughs = "<!ENTITY l0 'lol'>";
  for (int i = 1; i <= 12; ++i) {
    laughs += "<!ENTITY l" + std::to_string(i) + " '";
    for (int k = 0; k < 10; ++k) laughs += "&l" + std::to_string(i - 1) + ";";
    laughs += "'>";
  }
  EXPECT_EQ(failure_of(with_entities(laughs, "<text:p>&l12;</text:p>")).substr(0, 12), "content.xml:");
  std::string quadratic = "<text:p>";
  for (int i = 0; i < 20'000; ++i) quadratic += "&a;";
  EXPECT_EQ(failure_of(with_entities("<!ENTITY a '" + std::string(100'000, 'a') + "'>", quadratic + "</text:p>"))
                .substr(0, 12),
            "content.xml:");
}

TEST(OdtReader, WhatCannotBeADocumentIsRefusedInWords) {
  EXPECT_EQ(failure_of_body("<text:p>a<text:s text:c='x'/></text:p>"), "text:c is not a number: \"x\"");
  for (std::string count : {"", "1.5", "+-1", "--1", "0x10"})
    EXPECT_EQ(failure_of_body("<text:p><text:s text:c='" + count + "'/></text:p>"),
              "text:c is not a number: \"" + count + "\"");
  for (std::string count : {"2000000000", "99999999999999999999999"})
    EXPECT_EQ(failure_of_body("<text:p><text:s text:c='" + count + "'/></text:p>"),
              "text:c asks for too many spaces: " + count);
  std::string tenth = "<text:s text:c='7000000'/>";
  EXPECT_EQ(failure_of_body("<text:p>" + tenth + tenth + tenth + tenth + tenth + tenth + tenth + tenth + tenth + tenth +
                            "</text:p>"),
            "text:c asks for too many spaces: 7000000");
  EXPECT_EQ(failure_of_body("<text:p>a"), "content.xml: line 1: Opening and ending tag mismatch: p line 1 and text");
  EXPECT_EQ(failure_of_body("<text:p>&nowhere;</text:p>"), "content.xml: line 1: Entity 'nowhere' not defined");
  EXPECT_EQ(failure_of({{"content.xml", ""}}), "content.xml: empty");
  EXPECT_EQ(failure_of({{"mimetype", "a"}}), "content.xml: missing from the package");
  EXPECT_EQ(failure_of({{"content.xml", "\x93noise"}, {"META-INF/manifest.xml", "<manifest:encryption-data/>"}}),
            "the document is encrypted");
}

TEST(OdtReader, DeepAndLongDocumentsOpenOrFailWithoutHarm) {
  auto nested = [](std::size_t depth) {
    std::string body = "<text:p>";
    for (std::size_t i = 0; i < depth; ++i) body += "<text:span>";
    body += "x";
    for (std::size_t i = 0; i < depth; ++i) body += "</text:span>";
    return body + "</text:p>";
  };
  EXPECT_EQ(read_body(nested(10'000)), "x");
  EXPECT_EQ(failure_of_body(nested(300'000)), "content.xml: elements nested too deeply");
  std::string crowded = "<text:p";
  for (int i = 0; i < 500'000; ++i) crowded += " a" + std::to_string(i) + "=''";
  EXPECT_EQ(failure_of_body(crowded + "/>"), "content.xml: too many attributes");
  std::string names;
  for (int i = 0; i < 110'000; ++i) names += "<a" + std::to_string(i) + "/>";
  EXPECT_EQ(failure_of_body(names), "content.xml: too many names");
  std::string siblings = "<text:list>";
  for (int i = 0; i < 19'000; ++i) siblings += "<a>";
  for (int i = 0; i < 400'000; ++i) siblings += "<x:b/>";
  EXPECT_EQ(failure_of_body(siblings), "content.xml: elements nested too deeply");
  std::string twenty_megabytes(20'000'000, 'a');
  TemporaryFolder folder;
  std::string path =
      make_package(folder.file("a.odt"), {{"content.xml", content_xml("<text:p>" + twenty_megabytes + "</text:p>")}});
  EXPECT_EQ(odt_to_rich(path).lines[0].size(), twenty_megabytes.size());
}

TEST(OdtReader, FilesThatAreNoPackagesAreRefusedWithoutWaiting) {
  TemporaryFolder folder;
  auto failure = [](const std::string& path) -> std::string {
    try {
      odt_to_rich(path);
      return "opened";
    } catch (const Failure& caught) {
      return caught.what();
    }
  };
  EXPECT_EQ(failure(folder.write("text.odt", "only text")), "Not a zip archive");
  EXPECT_EQ(failure(folder.write("empty.odt", "")), "Not a zip archive");
  EXPECT_EQ(failure(folder.folder("folder.odt")), "Is a directory");
  EXPECT_EQ(failure(folder.file("none.odt")), "No such file or directory");
  EXPECT_EQ(failure("/dev/null"), "not a regular file");
  ASSERT_EQ(::mkfifo(folder.file("pipe.odt").c_str(), 0600), 0);
  EXPECT_EQ(failure(folder.file("pipe.odt")), "not a regular file");

  // Every cut of a package and every damage to a byte opens or fails, and nothing else.
  std::string good =
      read_bytes(make_package(folder.file("good.odt"), {{"content.xml", content_xml("<text:p>abc</text:p>")}}));
  int opened = 0;
  for (std::size_t i = 0; i < good.size(); ++i) {
    EXPECT_NE(failure(folder.write("cut.odt", good.substr(0, i))), "opened") << i;
    std::string damaged = good;
    damaged[i] = static_cast<char>(damaged[i] ^ 0x55);
    opened += failure(folder.write("damaged.odt", damaged)) == "opened";
  }
  EXPECT_LT(opened, static_cast<int>(good.size()) / 2);
}

}  // namespace
}  // namespace brenlow::test

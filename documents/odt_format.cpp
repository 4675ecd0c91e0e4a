#include "documents/odt_format.h"

#include "core/failure.h"
#include "core/version.h"

namespace brenlow {

const std::string_view MINIMAL_CONTENT = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document-content
  xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
  xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0"
  xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0"
  xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"
  office:version="1.3">
  <office:body>
    <office:text>
      <text:p text:style-name="Standard"></text:p>
    </office:text>
  </office:body>
</office:document-content>)";

const std::string_view MINIMAL_STYLES = R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document-styles
  xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
  xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0"
  xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0"
  office:version="1.3">
  <office:styles>
    <style:style style:name="Standard" style:family="paragraph" style:class="text">
      <style:text-properties fo:font-size="12pt"/>
    </style:style>
  </office:styles>
</office:document-styles>)";

const std::string_view MINIMAL_MANIFEST = R"(<?xml version="1.0" encoding="UTF-8"?>
<manifest:manifest xmlns:manifest="urn:oasis:names:tc:opendocument:xmlns:manifest:1.0">
  <manifest:file-entry manifest:media-type="application/vnd.oasis.opendocument.text" manifest:full-path="/"/>
  <manifest:file-entry manifest:media-type="text/xml" manifest:full-path="content.xml"/>
  <manifest:file-entry manifest:media-type="text/xml" manifest:full-path="styles.xml"/>
  <manifest:file-entry manifest:media-type="text/xml" manifest:full-path="meta.xml"/>
</manifest:manifest>)";

std::string make_meta_xml(std::time_t now) {
  std::tm utc{};
  char stamp[32];
  gmtime_r(&now, &utc);
  std::strftime(stamp, sizeof stamp, "%Y-%m-%dT%H:%M:%S", &utc);
  return std::string(R"(<?xml version="1.0" encoding="UTF-8"?>
<office:document-meta
  xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
  xmlns:meta="urn:oasis:names:tc:opendocument:xmlns:meta:1.0"
  xmlns:dc="http://purl.org/dc/elements/1.1/"
  office:version="1.3">
  <office:meta>
    <meta:creation-date>)")
      .append(stamp)
      .append("</meta:creation-date>\n    <dc:date>")
      .append(stamp)
      .append("</dc:date>\n    <meta:generator>brenlow_")
      .append(VERSION)
      .append("/1.0</meta:generator>\n  </office:meta>\n</office:document-meta>");
}

XmlTree read_content(const PackageReader& package, const ShowNode& show) {
  static constexpr XmlPlace OFFICE_TEXT{NS_OFFICE, "body", "text"};
  std::string bytes = package.read("content.xml");
  try {
    return XmlTree::parse(bytes, "content.xml", &OFFICE_TEXT, show);
  } catch (const Failure&) {
    // Encrypted members look like members full of noise; only the manifest tells (part 2, section 3.4.1).
    const std::string manifest = "META-INF/manifest.xml";
    if (package.has(manifest) && package.read(manifest).find("encryption-data") != std::string::npos)
      throw Failure("the document is encrypted");
    throw;
  }
}

const XmlNode* find_office_text(const XmlNode* root) {
  return first_child(first_child(root, NS_OFFICE, "body"), NS_OFFICE, "text");
}

}  // namespace brenlow

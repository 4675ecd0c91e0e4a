#pragma once

#include <array>
#include <ctime>
#include <string>
#include <string_view>
#include <utility>

#include "documents/xml_tree.h"
#include "documents/zip_package.h"

// The vocabulary that the reader and the writer share (OASIS OpenDocument 1.3, parts 2 and 3).
namespace brenlow {

inline constexpr std::string_view NS_OFFICE = "urn:oasis:names:tc:opendocument:xmlns:office:1.0";
inline constexpr std::string_view NS_TEXT = "urn:oasis:names:tc:opendocument:xmlns:text:1.0";
inline constexpr std::string_view NS_STYLE = "urn:oasis:names:tc:opendocument:xmlns:style:1.0";
inline constexpr std::string_view NS_FO = "urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0";
inline constexpr std::string_view NS_DC = "http://purl.org/dc/elements/1.1/";
inline constexpr std::string_view NS_META = "urn:oasis:names:tc:opendocument:xmlns:meta:1.0";

// Prefix and URI, as they stand in every content.xml that is written.
inline constexpr std::array<std::pair<std::string_view, std::string_view>, 6> NS{
    {{"office", NS_OFFICE}, {"text", NS_TEXT}, {"style", NS_STYLE}, {"fo", NS_FO}, {"dc", NS_DC}, {"meta", NS_META}}};

inline constexpr std::string_view ODT_MIME_TYPE = "application/vnd.oasis.opendocument.text";

extern const std::string_view MINIMAL_CONTENT;
extern const std::string_view MINIMAL_STYLES;
extern const std::string_view MINIMAL_MANIFEST;

// The text of meta.xml; both of its dates are `now`, in UTC.
std::string make_meta_xml(std::time_t now = std::time(nullptr));

// The parsed content.xml of a package with an office:text that is empty: its children are only shown. Throws
// Failure, which says so when the package is encrypted.
XmlTree read_content(const PackageReader& package, const ShowNode& show = {});

// The element that holds the paragraphs: office:text in office:body below the root; null without one.
const XmlNode* find_office_text(const XmlNode* root);

}  // namespace brenlow

#pragma once

#include <zip.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace brenlow::test {

struct Member {
  std::string name;
  std::string content;
  bool stored = false;
  // The packed form and the DOS time as found; not used when a package is made.
  std::string packed = {};
  time_t time = 1'000'000'000;

  friend bool operator==(const Member&, const Member&) = default;
};

// A package of any members, in their order, as some other program might write it.
inline std::string make_package(const std::string& path, const std::vector<Member>& members) {
  zip_t* archive = zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr);
  for (const Member& member : members) {
    zip_source_t* source = zip_source_buffer(archive, member.content.data(), member.content.size(), 0);
    zip_int64_t index = zip_file_add(archive, member.name.c_str(), source, ZIP_FL_ENC_GUESS);
    if (index < 0) throw std::runtime_error(zip_strerror(archive));
    zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), member.stored ? ZIP_CM_STORE : ZIP_CM_DEFLATE,
                             9);
    zip_file_set_mtime(archive, static_cast<zip_uint64_t>(index), member.time, 0);
  }
  if (zip_close(archive) != 0) throw std::runtime_error(zip_strerror(archive));
  return path;
}

inline std::string read_member(zip_t* archive, zip_uint64_t index, zip_flags_t flags) {
  zip_stat_t status;
  zip_stat_index(archive, index, 0, &status);
  std::string bytes((flags & ZIP_FL_COMPRESSED) ? status.comp_size : status.size, '\0');
  std::unique_ptr<zip_file_t, int (*)(zip_file_t*)> file(zip_fopen_index(archive, index, flags), zip_fclose);
  if (!file || zip_fread(file.get(), bytes.data(), bytes.size()) != static_cast<zip_int64_t>(bytes.size()))
    throw std::runtime_error("unreadable member");
  return bytes;
}

inline std::vector<Member> list_package(const std::string& path) {
  std::unique_ptr<zip_t, void (*)(zip_t*)> archive(zip_open(path.c_str(), ZIP_RDONLY, nullptr), zip_discard);
  if (!archive) throw std::runtime_error("no package: " + path);
  std::vector<Member> members;
  for (zip_uint64_t i = 0; i < static_cast<zip_uint64_t>(zip_get_num_entries(archive.get(), 0)); ++i) {
    zip_stat_t status;
    zip_stat_index(archive.get(), i, 0, &status);
    members.push_back({status.name, read_member(archive.get(), i, 0), status.comp_method == ZIP_CM_STORE,
                       read_member(archive.get(), i, ZIP_FL_COMPRESSED), status.mtime});
  }
  return members;
}

inline Member member_of(const std::string& path, std::string_view name) {
  for (const Member& member : list_package(path))
    if (member.name == name) return member;
  throw std::runtime_error("no member " + std::string(name));
}

inline constexpr std::string_view NAMESPACES =
    R"( xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0")"
    R"( xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0")"
    R"( xmlns:style="urn:oasis:names:tc:opendocument:xmlns:style:1.0")"
    R"( xmlns:fo="urn:oasis:names:tc:opendocument:xmlns:xsl-fo-compatible:1.0")"
    R"( xmlns:x="urn:example:other")";

// content.xml around the children of office:text and of office:automatic-styles.
inline std::string content_xml(std::string_view body, std::string_view styles = "") {
  return std::string("<office:document-content")
      .append(NAMESPACES)
      .append("><office:automatic-styles>")
      .append(styles)
      .append("</office:automatic-styles><office:body><office:text>")
      .append(body)
      .append("</office:text></office:body></office:document-content>");
}

inline std::string styles_xml(std::string_view styles) {
  return std::string("<office:document-styles")
      .append(NAMESPACES)
      .append("><office:styles>")
      .append(styles)
      .append("</office:styles></office:document-styles>");
}

// A style with the attributes `properties` for its text.
inline std::string text_style(const std::string& name, const std::string& properties, const std::string& parent = "") {
  return "<style:style style:name=\"" + name + "\" style:parent-style-name=\"" + parent + "\"><style:text-properties " +
         properties + "/></style:style>";
}

}  // namespace brenlow::test

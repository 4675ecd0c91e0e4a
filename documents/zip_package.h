#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct zip;
struct zip_source;

namespace brenlow {

// What a member may unpack to, whatever its package says about it.
inline constexpr std::size_t MAX_MEMBER_BYTES = std::size_t{256} << 20;

struct ZipDiscard {
  void operator()(zip* archive) const;
};
using ZipHandle = std::unique_ptr<zip, ZipDiscard>;

// A ZIP archive opened for reading.
class PackageReader {
 public:
  // Opens the file and reads its directory; members are read on demand. Throws Failure.
  static PackageReader from_file(const std::string& path);
  // The same for an archive held in memory. Throws Failure.
  static PackageReader from_bytes(std::string bytes);

  bool has(const std::string& member) const;
  // Unpacks a member of at most MAX_MEMBER_BYTES and checks its sum. Throws Failure.
  std::string read(const std::string& member) const;

 private:
  friend class PackageWriter;
  explicit PackageReader(ZipHandle archive) : _archive(std::move(archive)) {}

  std::unique_ptr<std::string> _bytes;  // at a fixed address, because the archive reads from it
  ZipHandle _archive;
  std::vector<std::string> _stamps;  // time and date of every member as found; empty if not told
};

// Composes a ZIP archive in memory, member by member in their final order.
class PackageWriter {
 public:
  PackageWriter();
  ~PackageWriter();
  PackageWriter(const PackageWriter&) = delete;
  PackageWriter& operator=(const PackageWriter&) = delete;

  // A stored member with the time stamp 1980-01-01 00:00:00.
  void add_stored(const std::string& name, std::string content);
  void add_deflated(const std::string& name, std::string content);
  // Takes over every member that `skipped` does not name, as it is: packed bytes, name, time, method,
  // attributes, extra fields and comment. `old` must outlive finish().
  void copy_members(const PackageReader& old, const std::vector<std::string_view>& skipped);
  // The bytes of the archive; nothing can be added afterwards. Throws Failure.
  std::string finish();

 private:
  std::uint64_t _add(const std::string& name, zip_source* content, unsigned name_encoding);
  std::uint64_t _add_content(const std::string& name, std::string content);
  void _copy_member(const PackageReader& old, std::uint64_t index);
  void _set_stamps(std::string& bytes, std::int64_t count) const;

  std::vector<std::unique_ptr<std::string>> _contents;  // read by finish()
  zip_source* _target;                                  // one reference of ours, one of the archive
  ZipHandle _archive;
  std::vector<std::pair<std::uint64_t, std::string>> _stamps;  // member and its time and date
};

// One member of the package at `path`. Throws Failure.
std::string read_package_member(const std::string& path, const std::string& member);

}  // namespace brenlow

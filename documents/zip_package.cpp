#include "documents/zip_package.h"

#include <zip.h>

#include <algorithm>

#include "core/failure.h"
#include "core/unicode.h"
#include "documents/file_access.h"

namespace brenlow {

namespace {

struct SourceFree {
  void operator()(zip_source* source) const { zip_source_free(source); }
};
using SourceHandle = std::unique_ptr<zip_source, SourceFree>;

struct FileClose {
  void operator()(zip_file_t* file) const { zip_fclose(file); }
};

// An error record of libzip that is finished with its scope.
class ZipError {
 public:
  ZipError() { zip_error_init(&_error); }
  explicit ZipError(int code) { zip_error_init_with_code(&_error, code); }
  ~ZipError() { zip_error_fini(&_error); }
  ZipError(const ZipError&) = delete;
  ZipError& operator=(const ZipError&) = delete;
  zip_error_t* get() { return &_error; }
  Failure failure() { return Failure(zip_error_strerror(&_error)); }

 private:
  zip_error_t _error;
};

Failure member_failure(const std::string& member, const std::string& words) { return Failure(member + ": " + words); }

// libzip takes a file without any byte for an archive without any member.
void refuse_no_members(zip* archive) {
  if (zip_get_num_entries(archive, 0) == 0) throw ZipError(ZIP_ER_NOZIP).failure();
}

unsigned little_endian(std::string_view bytes, std::size_t at, int count) {
  unsigned value = 0;
  for (int i = count - 1; i >= 0; --i)
    value = (value << 8) | static_cast<unsigned char>(bytes[at + static_cast<std::size_t>(i)]);
  return value;
}

// Where the records of the members begin in the central directory (PKWARE APPNOTE 6.3, section 4.3.12), or
// nothing when they are not as many as `count`: an archive beyond 4 GiB or an unusual comment.
std::vector<std::size_t> central_records(std::string_view bytes, std::int64_t count) {
  constexpr std::size_t END_SIZE = 22, HEADER_SIZE = 46;
  std::size_t end = bytes.rfind("PK\5\6");
  if (end == std::string_view::npos || end + END_SIZE > bytes.size()) return {};
  std::size_t at = little_endian(bytes, end + 16, 4);
  std::vector<std::size_t> records;
  while (at < end && end - at >= HEADER_SIZE && bytes.substr(at, 4) == "PK\1\2") {
    records.push_back(at);
    at += HEADER_SIZE + little_endian(bytes, at + 28, 2) + little_endian(bytes, at + 30, 2) +
          little_endian(bytes, at + 32, 2);
  }
  if (records.size() != static_cast<std::size_t>(count)) records.clear();
  return records;
}

// DOS time and date in the records of the central directory and in the local headers.
constexpr std::size_t CENTRAL_STAMP = 12, LOCAL_STAMP = 10, STAMP_SIZE = 4, LOCAL_HEADER_SIZE = 30;

}  // namespace

void ZipDiscard::operator()(zip* archive) const { zip_discard(archive); }

PackageReader PackageReader::from_file(const std::string& path) {
  FileDescriptor file = open_regular_file(path);
  int code = 0;
  ZipHandle archive(zip_fdopen(file.get(), 0, &code));
  if (!archive) throw ZipError(code).failure();
  file.release();  // closed by libzip, which reads from a copy of its own
  refuse_no_members(archive.get());
  return PackageReader(std::move(archive));
}

PackageReader PackageReader::from_bytes(std::string bytes) {
  auto kept = std::make_unique<std::string>(std::move(bytes));
  ZipError error;
  SourceHandle source(zip_source_buffer_create(kept->data(), kept->size(), 0, error.get()));
  if (!source) throw error.failure();
  ZipHandle archive(zip_open_from_source(source.get(), ZIP_RDONLY, error.get()));
  if (!archive) throw error.failure();
  static_cast<void>(source.release());  // the archive owns it now
  refuse_no_members(archive.get());

  PackageReader reader(std::move(archive));
  for (std::size_t record : central_records(*kept, zip_get_num_entries(reader._archive.get(), 0)))
    reader._stamps.push_back(kept->substr(record + CENTRAL_STAMP, STAMP_SIZE));
  reader._bytes = std::move(kept);
  return reader;
}

bool PackageReader::has(const std::string& member) const {
  return zip_name_locate(_archive.get(), member.c_str(), 0) >= 0;
}

std::string PackageReader::read(const std::string& member) const {
  zip_int64_t index = zip_name_locate(_archive.get(), member.c_str(), 0);
  if (index < 0) throw member_failure(member, "missing from the package");
  zip_stat_t status;
  zip_stat_init(&status);
  if (zip_stat_index(_archive.get(), static_cast<zip_uint64_t>(index), 0, &status) != 0)
    throw member_failure(member, zip_strerror(_archive.get()));
  std::size_t told = (status.valid & ZIP_STAT_SIZE) ? static_cast<std::size_t>(status.size) : 0;
  if (told > MAX_MEMBER_BYTES) throw member_failure(member, "larger than 256 MiB");
  std::unique_ptr<zip_file_t, FileClose> file(zip_fopen_index(_archive.get(), static_cast<zip_uint64_t>(index), 0));
  if (!file) throw member_failure(member, zip_strerror(_archive.get()));

  // The told size only saves steps, and not more than a little memory is trusted to it.
  constexpr std::size_t TRUSTED = std::size_t{16} << 20;
  std::string bytes(std::min(told + 1, TRUSTED), '\0');
  for (std::size_t filled = 0;;) {
    zip_int64_t got = zip_fread(file.get(), bytes.data() + filled, bytes.size() - filled);
    if (got < 0) throw member_failure(member, zip_file_strerror(file.get()));
    filled += static_cast<std::size_t>(got);
    if (filled > MAX_MEMBER_BYTES) throw member_failure(member, "larger than 256 MiB");
    if (got == 0) {
      bytes.resize(filled);
      return bytes;
    }
    if (filled == bytes.size()) bytes.resize(std::min(bytes.size() * 2, MAX_MEMBER_BYTES + 1));
  }
}

PackageWriter::PackageWriter() {
  ZipError error;
  SourceHandle target(zip_source_buffer_create(nullptr, 0, 0, error.get()));
  if (!target) throw error.failure();
  _archive.reset(zip_open_from_source(target.get(), ZIP_TRUNCATE, error.get()));
  if (!_archive) throw error.failure();
  zip_source_keep(target.get());
  _target = target.release();
}

PackageWriter::~PackageWriter() {
  _archive.reset();
  zip_source_free(_target);
}

std::uint64_t PackageWriter::_add(const std::string& name, zip_source* content, unsigned name_encoding) {
  SourceHandle owned(content);
  if (!owned) throw member_failure(name, zip_strerror(_archive.get()));
  zip_int64_t index = zip_file_add(_archive.get(), name.c_str(), owned.get(), name_encoding);
  if (index < 0) throw member_failure(name, zip_strerror(_archive.get()));
  static_cast<void>(owned.release());  // the archive owns it now
  return static_cast<std::uint64_t>(index);
}

std::uint64_t PackageWriter::_add_content(const std::string& name, std::string content) {
  const std::string& kept = *_contents.emplace_back(std::make_unique<std::string>(std::move(content)));
  return _add(name, zip_source_buffer(_archive.get(), kept.data(), kept.size(), 0), ZIP_FL_ENC_UTF_8);
}

void PackageWriter::add_stored(const std::string& name, std::string content) {
  std::uint64_t index = _add_content(name, std::move(content));
  if (zip_set_file_compression(_archive.get(), index, ZIP_CM_STORE, 0) != 0)
    throw member_failure(name, zip_strerror(_archive.get()));
  _stamps.emplace_back(index, std::string("\0\0\x21\0", STAMP_SIZE));
}

void PackageWriter::add_deflated(const std::string& name, std::string content) {
  // Level 2 takes an eighth of the time of level 9, libzip's default, for a sixth more bytes of prose.
  constexpr zip_uint32_t LEVEL = 2;
  std::uint64_t index = _add_content(name, std::move(content));
  if (zip_set_file_compression(_archive.get(), index, ZIP_CM_DEFLATE, LEVEL) != 0)
    throw member_failure(name, zip_strerror(_archive.get()));
}

void PackageWriter::copy_members(const PackageReader& old, const std::vector<std::string_view>& skipped) {
  zip_uint64_t count = static_cast<zip_uint64_t>(zip_get_num_entries(old._archive.get(), 0));
  for (zip_uint64_t index = 0; index < count; ++index) {
    const char* name = zip_get_name(old._archive.get(), index, ZIP_FL_ENC_RAW);
    if (!name) throw Failure(zip_strerror(old._archive.get()));
    if (std::find(skipped.begin(), skipped.end(), name) != skipped.end()) continue;
    // Of members with the same name libzip only finds the first, here as everywhere.
    if (zip_name_locate(_archive.get(), name, ZIP_FL_ENC_RAW) < 0) _copy_member(old, index);
  }
}

void PackageWriter::_copy_member(const PackageReader& old, std::uint64_t index) {
  zip* from = old._archive.get();
  std::string name = zip_get_name(from, index, ZIP_FL_ENC_RAW);
  auto check = [&](zip* archive, bool good) {
    if (!good) throw member_failure(name, zip_strerror(archive));
  };
  zip_stat_t status;
  zip_stat_init(&status);
  check(from, zip_stat_index(from, index, 0, &status) == 0);

  unsigned encoding = decode_utf8_strict(name) ? ZIP_FL_ENC_UTF_8 : ZIP_FL_ENC_CP437;
  zip_source_t* packed = zip_source_zip(_archive.get(), from, index, ZIP_FL_COMPRESSED, 0, -1);
  std::uint64_t at = _add(name, packed, encoding);
  // Asked for nothing, libzip keeps every method but "stored", which it would deflate.
  if (status.comp_method == ZIP_CM_STORE)
    check(_archive.get(), zip_set_file_compression(_archive.get(), at, ZIP_CM_STORE, 0) == 0);
  check(_archive.get(), zip_file_set_mtime(_archive.get(), at, status.mtime, 0) == 0);
  if (!old._stamps.empty()) _stamps.emplace_back(at, old._stamps[index]);

  zip_uint8_t system = 0;
  zip_uint32_t attributes = 0;
  if (zip_file_get_external_attributes(from, index, 0, &system, &attributes) == 0)
    check(_archive.get(), zip_file_set_external_attributes(_archive.get(), at, 0, system, attributes) == 0);
  zip_uint32_t length = 0;
  if (const char* comment = zip_file_get_comment(from, index, &length, ZIP_FL_ENC_RAW); comment && length > 0)
    check(_archive.get(), zip_file_set_comment(_archive.get(), at, comment, static_cast<zip_uint16_t>(length), 0) == 0);
  for (zip_flags_t where : {ZIP_FL_LOCAL, ZIP_FL_CENTRAL}) {
    int fields = zip_file_extra_fields_count(from, index, where);
    for (int i = 0; i < fields; ++i) {
      zip_uint16_t id = 0, size = 0;
      const zip_uint8_t* data = zip_file_extra_field_get(from, index, static_cast<zip_uint16_t>(i), &id, &size, where);
      check(from, data != nullptr);
      check(_archive.get(),
            zip_file_extra_field_set(_archive.get(), at, id, ZIP_EXTRA_FIELD_NEW, data, size, where) == 0);
    }
  }
}

std::string PackageWriter::finish() {
  std::int64_t count = zip_get_num_entries(_archive.get(), 0);
  if (zip_close(_archive.get()) != 0) throw Failure(zip_strerror(_archive.get()));
  (void)_archive.release();  // freed by the successful close

  auto failure = [&] { return Failure(zip_error_strerror(zip_source_error(_target))); };
  zip_stat_t status;
  if (zip_source_stat(_target, &status) != 0 || zip_source_open(_target) != 0) throw failure();
  std::string bytes(static_cast<std::size_t>(status.size), '\0');
  std::size_t filled = 0;
  while (filled < bytes.size()) {
    zip_int64_t got = zip_source_read(_target, bytes.data() + filled, bytes.size() - filled);
    if (got <= 0) break;
    filled += static_cast<std::size_t>(got);
  }
  bool complete = filled == bytes.size();
  zip_source_close(_target);
  if (!complete) throw failure();
  _set_stamps(bytes, count);
  return bytes;
}

// libzip takes time stamps by way of the local time zone, which loses the hour that summer time skips and
// dates that are none; so they are put into the finished archive.
void PackageWriter::_set_stamps(std::string& bytes, std::int64_t count) const {
  const std::vector<std::size_t> records = central_records(bytes, count);
  if (records.empty()) return;
  for (const auto& [index, stamp] : _stamps) {
    std::size_t local = little_endian(bytes, records[index] + 42, 4);
    if (local + LOCAL_HEADER_SIZE > bytes.size()) continue;
    bytes.replace(records[index] + CENTRAL_STAMP, STAMP_SIZE, stamp);
    bytes.replace(local + LOCAL_STAMP, STAMP_SIZE, stamp);
  }
}

std::string read_package_member(const std::string& path, const std::string& member) {
  return PackageReader::from_file(path).read(member);
}

}  // namespace brenlow

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/shared_array.h"

namespace brenlow {

// Owner of an open file descriptor.
class FileDescriptor {
 public:
  explicit FileDescriptor(int number) : _number(number) {}
  FileDescriptor(FileDescriptor&& other) noexcept : _number(other.release()) {}
  FileDescriptor& operator=(FileDescriptor&&) = delete;
  ~FileDescriptor();
  int get() const { return _number; }
  int release();

 private:
  int _number;  // -1: none
};

// Opens a regular file for reading. Folders, pipes, sockets and devices are refused in words and never
// block. Throws Failure.
FileDescriptor open_regular_file(const std::string& path);

// The bytes of a regular file of at most `limit` bytes. Folders, pipes and devices are refused and never
// block. Throws Failure.
std::string read_file(const std::string& path, std::size_t limit);
// The same, in storage that the lines of a document can share.
SharedArray<char> read_shared_file(const std::string& path, std::size_t limit);

// Tells a file from every other and from itself after a change: device, number, size, and the time of the last
// change as precisely as the system keeps it.
using FileStamp = std::array<std::int64_t, 5>;
// That of the file behind all links; nothing where none is.
std::optional<FileStamp> file_stamp(const std::string& path);

// Whether written content has reached the disk when the call returns, or is left to the system to write out.
enum class Durability { ON_DISK, LATER };

// Replaces the content of `path` in place, keeping its owner, mode and links. The space is reserved before
// the first old byte is overwritten and every write, flush and close is checked; on a failure the old
// content is there as before, and a file that was not there is gone again. Throws Failure.
void write_file(const std::string& path, std::string_view bytes, Durability durability = Durability::ON_DISK);

// Makes a file with this content, on the disk when the call returns. False where a file is already.
// Throws Failure; nothing is then left behind.
bool write_new_file(const std::string& path, std::string_view bytes, unsigned mode);

}  // namespace brenlow

#include "documents/file_access.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>
#include <system_error>
#include <utility>

#include "core/failure.h"
#include "core/signals.h"

namespace brenlow {

namespace {

Failure failure_of(int error_number) { return Failure(std::generic_category().message(error_number)); }

void refuse_special(const struct stat& status) {
  if (S_ISDIR(status.st_mode)) throw failure_of(EISDIR);
  if (!S_ISREG(status.st_mode)) throw Failure("not a regular file");
}

// The status behind all links; nothing where no file is. Asked before a file is opened, because opening
// alone can wait (a pipe) or act (a device).
std::optional<struct stat> status_of(const std::string& path) {
  struct stat status;
  if (::stat(path.c_str(), &status) == 0) return status;
  if (errno == ENOENT) return std::nullopt;
  throw failure_of(errno);
}

constexpr unsigned NEW_FILE_MODE = 0666;  // less what the user's mask takes away

FileDescriptor open_any(const std::string& path, int flags, unsigned mode = NEW_FILE_MODE) {
  return FileDescriptor(::open(path.c_str(), flags | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, mode));
}

FileDescriptor open_checked(const std::string& path, int flags) {
  FileDescriptor file = open_any(path, flags);
  if (file.get() < 0) throw failure_of(errno);
  struct stat status;
  if (::fstat(file.get(), &status) != 0) throw failure_of(errno);
  refuse_special(status);
  return file;
}

// The size that the system tells, for a file that may be read.
std::size_t size_within(int file, std::size_t limit) {
  struct stat status;
  if (::fstat(file, &status) != 0) throw failure_of(errno);
  std::size_t size = static_cast<std::size_t>(status.st_size);
  if (size > limit) throw failure_of(EFBIG);
  return size;
}

// Reads `size` bytes from `position` on; fewer only where the file ends.
std::size_t read_at(int file, std::size_t position, char* out, std::size_t size) {
  std::size_t filled = 0;
  while (filled < size) {
    ssize_t got = ::pread(file, out + filled, size - filled, static_cast<off_t>(position + filled));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) throw failure_of(errno);
    if (got == 0) break;
    filled += static_cast<std::size_t>(got);
  }
  return filled;
}

// Reads from the file's start until `limit` bytes or the end; the size told by the system is only a hint.
std::string read_up_to(int file, std::size_t limit, std::size_t size_hint) {
  constexpr std::size_t STEP = 1 << 16;
  std::string bytes;
  bytes.resize(std::min(limit, size_hint + 1));
  std::size_t filled = 0;
  while (filled < limit) {
    if (filled == bytes.size()) bytes.resize(std::min(limit, bytes.size() * 2 + STEP));
    std::size_t room = bytes.size() - filled;
    std::size_t got = read_at(file, filled, bytes.data() + filled, room);
    filled += got;
    if (got < room) break;
  }
  bytes.resize(filled);
  return bytes;
}

// 0 or the error number; `written` is how far it came.
int write_at_start(int file, std::string_view bytes, std::size_t& written) {
  written = 0;
  while (written < bytes.size()) {
    std::size_t step = std::min<std::size_t>(bytes.size() - written, INT_MAX / 2);
    ssize_t count = ::pwrite(file, bytes.data() + written, step, static_cast<off_t>(written));
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return count < 0 ? errno : EIO;
    written += static_cast<std::size_t>(count);
  }
  return 0;
}

// Makes sure that `size` bytes have room, without changing the file's size. Where the file system cannot
// reserve, it is left to the writing to find out.
int reserve([[maybe_unused]] int file, std::size_t size) {
  struct rlimit limit;
  if (::getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY && size > limit.rlim_cur) return EFBIG;
#ifdef __linux__
  int error = 0;
  if (size == 0) return 0;
  do {
    error = ::fallocate(file, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)) == 0 ? 0 : errno;
  } while (error == EINTR);
  if (error == ENOSPC || error == EDQUOT || error == EFBIG || error == EIO) return error;
#endif
  return 0;
}

int shrink_to(int file, std::size_t size) { return ::ftruncate(file, static_cast<off_t>(size)) == 0 ? 0 : errno; }

// Waits until the disk has it. What cannot be flushed, such as some network folders, counts as flushed.
int flush_to_disk(int file) {
  int result = 0;
  do {
#if defined(__APPLE__)
    result = ::fcntl(file, F_FULLFSYNC) == 0 ? 0 : ::fsync(file);
#elif defined(__linux__)
    result = ::fdatasync(file);
#else
    result = ::fsync(file);
#endif
  } while (result != 0 && errno == EINTR);
  return result == 0 || errno == EINVAL || errno == ENOTSUP || errno == ENOSYS ? 0 : errno;
}

// Network file systems report a failed write when a descriptor is closed; closing a second one first
// tells it while the old content can still be put back.
int flush_to_system(int file) {
  int second = ::fcntl(file, F_DUPFD_CLOEXEC, 0);
  if (second < 0) return errno;
  return ::close(second) == 0 ? 0 : errno;
}

int write_whole(int file, std::string_view bytes, Durability durability, std::size_t& written) {
  if (int error = write_at_start(file, bytes, written)) return error;
  if (int error = shrink_to(file, bytes.size())) return error;
  return durability == Durability::ON_DISK ? flush_to_disk(file) : flush_to_system(file);
}

int close_checked(FileDescriptor file) { return ::close(file.release()) == 0 || errno == EINTR ? 0 : errno; }

// A new file is on the disk only when its folder knows of it. A folder that may not be read is left alone.
int flush_folder_of(const std::string& path) {
  std::size_t slash = path.rfind('/');
  std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  FileDescriptor opened = open_any(folder, O_RDONLY | O_DIRECTORY);
  return opened.get() < 0 ? 0 : flush_to_disk(opened.get());
}

// Fills a file that was just made; takes it away again on a failure.
void fill_new(FileDescriptor file, const std::string& path, std::string_view bytes, Durability durability) {
  int error = reserve(file.get(), bytes.size());
  if (!error) {
    std::size_t written = 0;
    error = write_whole(file.get(), bytes, durability, written);
  }
  if (int close_error = close_checked(std::move(file)); !error) error = close_error;
  if (!error && durability == Durability::ON_DISK) error = flush_folder_of(path);
  if (!error) return;
  ::unlink(path.c_str());
  throw failure_of(error);
}

void overwrite(const std::string& path, std::string_view bytes, Durability durability) {
  FileDescriptor file = open_checked(path, O_RDWR);
  struct stat status;
  if (::fstat(file.get(), &status) != 0) throw failure_of(errno);
  std::size_t old_size = static_cast<std::size_t>(status.st_size);
  auto storage = std::make_unique_for_overwrite<char[]>(old_size);
  const std::string_view old(storage.get(), read_at(file.get(), 0, storage.get(), old_size));
  if (int error = reserve(file.get(), bytes.size())) {
    shrink_to(file.get(), old_size);  // gives back what was reserved behind the end
    throw failure_of(error);
  }
  std::size_t written = 0;
  if (int error = write_whole(file.get(), bytes, durability, written)) {
    // Once all was written, the end of a longer old content may have been cut off too.
    std::string_view damaged = old.substr(0, written < bytes.size() ? written : old_size);
    bool restored = shrink_to(file.get(), old_size) == 0 && write_at_start(file.get(), damaged, written) == 0;
    flush_to_disk(file.get());
    std::string words = std::generic_category().message(error);
    throw Failure(restored ? words : words + "; the old content could not be put back");
  }
  if (int close_error = close_checked(std::move(file))) throw failure_of(close_error);
}

// Where a link that leads nowhere points to, so that the link is kept and the file behind it is made.
std::string link_target(const std::string& path) {
  std::string at = path;
  for (int links = 0; links < 40; ++links) {
    char target[PATH_MAX];
    ssize_t length = ::readlink(at.c_str(), target, sizeof target);
    if (length < 0) return at;
    std::string_view next(target, static_cast<std::size_t>(length));
    std::size_t slash = at.rfind('/');
    bool relative = next.empty() || next[0] != '/';
    at = (relative && slash != std::string::npos ? at.substr(0, slash + 1) : std::string()).append(next);
  }
  throw failure_of(ELOOP);
}

}  // namespace

FileDescriptor::~FileDescriptor() {
  if (_number >= 0) ::close(_number);
}

int FileDescriptor::release() { return std::exchange(_number, -1); }

FileDescriptor open_regular_file(const std::string& path) {
  std::optional<struct stat> status = status_of(path);
  if (!status) throw failure_of(ENOENT);
  refuse_special(*status);
  return open_checked(path, O_RDONLY);
}

std::string read_file(const std::string& path, std::size_t limit) {
  FileDescriptor file = open_regular_file(path);
  std::string bytes = read_up_to(file.get(), limit + 1, size_within(file.get(), limit));
  if (bytes.size() > limit) throw failure_of(EFBIG);
  return bytes;
}

SharedArray<char> read_shared_file(const std::string& path, std::size_t limit) {
  FileDescriptor file = open_regular_file(path);
  std::size_t size = size_within(file.get(), limit);
  std::size_t filled = 0;
  auto bytes = SharedArray<char>::build(size, [&](char* out) { filled = read_at(file.get(), 0, out, size); });
  char further = 0;
  if (filled == size && read_at(file.get(), size, &further, 1) == 0) return bytes;
  // The size told by the system was not true, or the file is changing.
  std::string whole = read_up_to(file.get(), limit + 1, size);
  if (whole.size() > limit) throw failure_of(EFBIG);
  return SharedArray<char>(whole);
}

std::optional<FileStamp> file_stamp(const std::string& path) {
  struct stat status;
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
#ifdef __APPLE__
  const timespec& changed = status.st_ctimespec;
#else
  const timespec& changed = status.st_ctim;
#endif
  return FileStamp{static_cast<std::int64_t>(status.st_dev), static_cast<std::int64_t>(status.st_ino), status.st_size,
                   changed.tv_sec, changed.tv_nsec};
}

void write_file(const std::string& path, std::string_view bytes, Durability durability) {
  const SignalSetting too_large_may_fail(SIGXFSZ, SIG_IGN);
  std::optional<struct stat> status = status_of(path);
  if (status) {
    refuse_special(*status);
    return overwrite(path, bytes, durability);
  }
  std::string target = link_target(path);
  fill_new(open_checked(target, O_WRONLY | O_CREAT | O_EXCL), target, bytes, durability);
}

bool write_new_file(const std::string& path, std::string_view bytes, unsigned mode) {
  const SignalSetting too_large_may_fail(SIGXFSZ, SIG_IGN);
  FileDescriptor file = open_any(path, O_WRONLY | O_CREAT | O_EXCL, mode);
  if (file.get() < 0 && errno == EEXIST) return false;
  if (file.get() < 0) throw failure_of(errno);
  fill_new(std::move(file), path, bytes, Durability::ON_DISK);
  return true;
}

}  // namespace brenlow

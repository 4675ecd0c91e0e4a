#include "tests/support/faults.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#ifdef __linux__
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#endif

#include <array>
#include <cerrno>
#include <cstdio>
#include <stdexcept>

#include "terminal/descriptor.h"

namespace brenlow::test {

#ifdef __linux__
namespace {

bool write_line(const char* path, const std::string& line) {
  const Descriptor file(::open(path, O_WRONLY | O_CLOEXEC));
  return ::write(file.get(), line.data(), line.size()) == static_cast<ssize_t>(line.size());
}

// Namespaces in which this process may mount; its user stays who it was.
bool enter_namespaces() {
  const std::string user = std::to_string(::geteuid());
  const std::string group = std::to_string(::getegid());
  return ::unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0 && write_line("/proc/self/setgroups", "deny") &&
         write_line("/proc/self/uid_map", user + " " + user + " 1") &&
         write_line("/proc/self/gid_map", group + " " + group + " 1");
}

}  // namespace
#endif

std::string apart(const std::function<std::string()>& action) {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  const Descriptor from(ends[0]);
  Descriptor into(ends[1]);
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child < 0) throw std::runtime_error("no process");
  if (child == 0) {
    std::string told;
    try {
      told = action();
    } catch (const std::exception& failure) {
      told = std::string("an exception: ") + failure.what();
    }
    ::_exit(::write(into.get(), told.data(), told.size()) == static_cast<ssize_t>(told.size()) ? 0 : 1);
  }
  into = Descriptor();
  std::string told;
  std::array<char, 4096> bytes;
  while (const ssize_t count = ::read(from.get(), bytes.data(), bytes.size())) {
    if (count > 0) told.append(bytes.data(), static_cast<std::size_t>(count));
    if (count < 0 && errno != EINTR) break;
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  return status == 0 ? told : "the process ended with wait status " + std::to_string(status) + " " + told;
}

#ifdef __linux__
bool fail_calls(SystemCall call, int error) {
  const unsigned number = call == SystemCall::RESERVE    ? SYS_fallocate
                          : call == SystemCall::WRITE_AT ? SYS_pwrite64
                                                         : SYS_fdatasync;
  std::array<sock_filter, 4> rules = {{
      BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, number, 0, 1),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | static_cast<unsigned>(error)),
      BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  }};
  const sock_fprog program{static_cast<unsigned short>(rules.size()), rules.data()};
  return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

bool mount_small_disk(const std::string& folder, std::size_t bytes) {
  const std::string size = "size=" + std::to_string(bytes);
  return enter_namespaces() && ::mount("tmpfs", folder.c_str(), "tmpfs", 0, size.c_str()) == 0;
}

bool make_disk_read_only(const std::string& folder) {
  return ::mount("tmpfs", folder.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, "") == 0;
}
#else
bool fail_calls(SystemCall, int) { return false; }
bool mount_small_disk(const std::string&, std::size_t) { return false; }
bool make_disk_read_only(const std::string&) { return false; }
#endif

}  // namespace brenlow::test

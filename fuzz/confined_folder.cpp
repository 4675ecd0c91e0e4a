#include "fuzz/confined_folder.h"

#include <fcntl.h>
#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <exception>
#include <system_error>

namespace brenlow::fuzz {

namespace {

ConfinedFolder* entered = nullptr;

void checked(int result, const char* what) {
  if (result != 0) throw std::system_error(errno, std::generic_category(), what);
}

Descriptor open_folder(const char* path) { return Descriptor(::open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC)); }

}  // namespace

ConfinedFolder::ConfinedFolder() : _outer_root(open_folder("/")), _outer_folder(open_folder(".")) {
  // Without the right to do it, a process gets it in a user name space of its own.
  if (::geteuid() != 0) checked(::unshare(CLONE_NEWUSER), "unshare");
  enter();
  leave();
  // An exception that nobody catches is a finding too.
  std::set_terminate([] {
    leave_confinement();
    std::abort();
  });
}

void ConfinedFolder::enter() {
  checked(::chroot(path().c_str()), "chroot");
  _inside = true;
  entered = this;
  checked(::chdir("/"), "chdir");
}

void ConfinedFolder::leave() {
  if (!_inside) return;
  _inside = false;
  entered = nullptr;
  checked(::fchdir(_outer_root.get()), "fchdir");
  checked(::chroot("."), "chroot");
  checked(::fchdir(_outer_folder.get()), "fchdir");
}

void leave_confinement() {
  if (entered) entered->leave();
}

}  // namespace brenlow::fuzz

// Called by the sanitizers before they report.
extern "C" void __asan_on_error() { brenlow::fuzz::leave_confinement(); }    // NOLINT(bugprone-reserved-identifier)
extern "C" void __ubsan_on_report() { brenlow::fuzz::leave_confinement(); }  // NOLINT(bugprone-reserved-identifier)

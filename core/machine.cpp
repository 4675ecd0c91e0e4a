#include "core/machine.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace brenlow {

std::string home_folder() {
  if (const char* home = std::getenv("HOME"); home && *home) return home;
  const ::passwd* user = ::getpwuid(::getuid());
  return user ? user->pw_dir : "/";
}

}  // namespace brenlow

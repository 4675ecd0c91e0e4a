#include "terminal/descriptor.h"

#include <fcntl.h>
#include <unistd.h>

namespace brenlow {

Descriptor::~Descriptor() {
  if (_number >= 0) ::close(_number);
}

Descriptor open_without_waiting(const std::string& path, int access) {
  return Descriptor(::open(path.c_str(), access | O_NOCTTY | O_CLOEXEC | O_NONBLOCK));
}

}  // namespace brenlow

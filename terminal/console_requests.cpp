#include "terminal/console_requests.h"

#include <fcntl.h>
#include <sys/ioctl.h>

#include "terminal/descriptor.h"

namespace brenlow {

bool console_ioctl(const std::string& tty, unsigned long request, void* argument) {
  const Descriptor terminal = open_without_waiting(tty, O_RDONLY);
  return terminal && ::ioctl(terminal.get(), request, argument) >= 0;
}

}  // namespace brenlow

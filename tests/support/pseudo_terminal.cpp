#include "tests/support/pseudo_terminal.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>

#include <cerrno>
#include <cstdlib>
#include <sstream>
#include <system_error>

namespace brenlow::test {

namespace {

int checked(int result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

}  // namespace

PseudoTerminal::PseudoTerminal(int rows, int cols)
    : _master(checked(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC), "posix_openpt")) {
  checked(::grantpt(master()), "grantpt");
  checked(::unlockpt(master()), "unlockpt");
  _path = ::ptsname(master());
  _slave = Descriptor(checked(::open(_path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC), _path.c_str()));
  resize(rows, cols);
}

void PseudoTerminal::resize(int rows, int cols) const {
  winsize size{};
  size.ws_row = static_cast<unsigned short>(rows);
  size.ws_col = static_cast<unsigned short>(cols);
  checked(::ioctl(master(), TIOCSWINSZ, &size), "TIOCSWINSZ");
}

std::string PseudoTerminal::modes() const {
  ::termios found{};
  checked(::tcgetattr(slave(), &found), "tcgetattr");
  std::ostringstream text;
  text << std::hex << "input " << found.c_iflag << " output " << found.c_oflag << " control " << found.c_cflag
       << " local " << found.c_lflag << " characters";
  for (cc_t character : found.c_cc) text << ' ' << int{character};
  return text.str();
}

}  // namespace brenlow::test

#pragma once

#include <string>

namespace brenlow {

// Requests of the Linux console (ioctl_console(2)), as numbers so that they compile elsewhere too.
inline constexpr unsigned long KDGETMODE_REQUEST = 0x4B3B;  // text or graphics mode; only a console knows it
inline constexpr unsigned long PIO_CONSOLEFONT = 0x4B6C;    // load a font
inline constexpr unsigned long TIOCLINUX_REQUEST = 0x541C;  // the first byte of the argument names the service

// Sends a request to the terminal device, opened for reading; false when it is missing or refuses.
bool console_ioctl(const std::string& tty, unsigned long request, void* argument);

}  // namespace brenlow

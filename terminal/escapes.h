#pragma once

#include <string>
#include <string_view>

namespace brenlow {

// ESC "]" code ";" payload, ended by the string terminator ESC "\".
std::string _osc(int code, std::string_view payload);
// The sequence wrapped so that tmux hands it to the terminal outside.
std::string _dcs_passthrough(std::string_view sequence);
// Redefines a palette slot, each share of the colour from 0 to 255; true when the sequence was written to the
// terminal device. Not on the Linux console and in GNU screen, which would print it.
bool _send_osc4_color(int index, int r, int g, int b, const std::string& tty = "/dev/tty");
// The closest of the eight basic colours, a COLOR_* number.
int _nearest_named_color(int r, int g, int b);
// Writes bytes straight to the terminal device, past the screen library's buffer; false on any failure. A
// pipe in its place is refused, since writing to it could block.
bool write_to_terminal(std::string_view bytes, const std::string& tty);

}  // namespace brenlow

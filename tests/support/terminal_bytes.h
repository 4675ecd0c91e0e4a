#pragma once

#include <string>
#include <string_view>

namespace brenlow::test {

// Looks through everything that a session has written to its terminal, an xterm, for what it must never write: a
// control sequence that the screen library and the session have no use for, bytes that are no UTF-8, and
// characters that a terminal does not print in cells of their own. Tells about the first one; empty if there is none.
std::string foreign_output(std::string_view output);

}  // namespace brenlow::test

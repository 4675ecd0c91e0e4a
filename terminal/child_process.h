#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brenlow {

struct ChildResult {
  int status = -1;       // exit status; -1 when it was killed or could not be run
  std::string output{};  // standard output, when asked for
  bool timed_out = false;
};

struct ChildOptions {
  std::string_view input{};                               // written to standard input, which is then closed
  std::optional<std::chrono::milliseconds> time_limit{};  // absent: no limit
  bool capture = true;                                    // collect standard output; else it is discarded
  std::string search_path{};                              // in place of PATH when not empty
  std::size_t output_limit = std::size_t{64} << 20;       // bytes; a child that prints more is killed
  // For a tool that asks the terminal something: it stays in the session's process group, because the system
  // stops any other that reads from the terminal. Past the limit its own children are then not killed with it.
  bool uses_terminal = false;
};

// Runs a program without a shell and waits for its end: `arguments[0]` is looked up on the search path.
// Standard error is discarded, no descriptor is inherited, and no child is left behind: one that runs past
// the limit is killed. A program that stops reading its input does no harm, and neither does one that leaves
// a helper in the background: what counts is the program's own end. Nothing if it is not installed.
std::optional<ChildResult> run_child(const std::vector<std::string>& arguments, const ChildOptions& options = {});

// The full path of a program on the search path (PATH when empty), or nothing. A name with a slash is a path.
std::optional<std::string> find_program(const std::string& name, const std::string& search_path = {});

}  // namespace brenlow

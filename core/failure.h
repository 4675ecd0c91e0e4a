#pragma once

#include <stdexcept>
#include <string>

namespace brenlow {

// The one failure that tools throw: its text is meant for the user, shown behind the fixed prefix of
// the command that called ("Save error: " and the like).
struct Failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// What to tell the user of any failure.
std::string reason_of(const std::exception& failure);

// `what` and the system's words for `error_number` behind a colon.
Failure system_failure(const std::string& what, int error_number);

}  // namespace brenlow

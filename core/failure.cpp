#include "core/failure.h"

#include <new>
#include <system_error>

namespace brenlow {

std::string reason_of(const std::exception& failure) {
  return dynamic_cast<const std::bad_alloc*>(&failure) ? "not enough memory" : failure.what();
}

Failure system_failure(const std::string& what, int error_number) {
  return Failure(what + ": " + std::generic_category().message(error_number));
}

}  // namespace brenlow

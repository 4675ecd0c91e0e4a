#include "core/failure.h"

#include <system_error>

namespace brenlow {

Failure system_failure(const std::string& what, int error_number) {
  return Failure(what + ": " + std::generic_category().message(error_number));
}

}  // namespace brenlow

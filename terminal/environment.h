#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace brenlow {

// The value of an environment variable, which may be empty; nothing when it is not set.
inline std::optional<std::string> environment(const char* name) {
  const char* value = std::getenv(name);
  return value ? std::optional<std::string>(value) : std::nullopt;
}

}  // namespace brenlow

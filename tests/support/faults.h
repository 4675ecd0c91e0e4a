#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

// Ways to let the system itself fail, for a process that a test makes for it.
namespace brenlow::test {

// Runs `action` in a process of its own, so that what it takes away from its process harms no other test;
// the text that it returns, or words about how the process ended.
std::string apart(const std::function<std::string()>& action);

enum class SystemCall { RESERVE, WRITE_AT, FLUSH };
// From now on the call fails with `error` in this process. False where the system does not let a process have that.
bool fail_calls(SystemCall call, int error);

// Puts a file system of this many bytes in memory onto the folder, for this process alone, which must have one
// thread. False where the system does not let a process have that.
bool mount_small_disk(const std::string& folder, std::size_t bytes);
bool make_disk_read_only(const std::string& folder);

// What `apart` returns when the system does not let a test have the fault; the test is then to be skipped.
inline const std::string NOT_TO_BE_HAD = "the system does not let a process have this fault";

}  // namespace brenlow::test

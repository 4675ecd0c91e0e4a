#include "terminal/battery.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <vector>

#include "core/unicode.h"
#include "terminal/descriptor.h"

namespace brenlow {

namespace {

const std::string MAINS = "AC";

[[noreturn]] void fail(const std::string& path) { throw std::system_error(errno, std::generic_category(), path); }

// A property of a power supply without blanks at its ends. One short read: for each the kernel asks the device,
// and its own files never hold more than some words.
std::string read_property(const std::filesystem::path& path) {
  const Descriptor file = open_without_waiting(path.string(), O_RDONLY);
  struct stat info {};
  if (!file || ::fstat(file.get(), &info) != 0) fail(path.string());
  if (!S_ISREG(info.st_mode)) throw std::system_error(std::make_error_code(std::errc::invalid_argument));
  std::array<char, 256> buffer;
  ssize_t count = 0;
  do count = ::read(file.get(), buffer.data(), buffer.size());
  while (count < 0 && errno == EINTR);
  if (count < 0) fail(path.string());
  return std::string(trimmed(std::string_view(buffer.data(), static_cast<std::size_t>(count))));
}

// Throws std::system_error.
std::string first_answer(const std::string& power_supply_dir) {
  std::vector<std::filesystem::path> supplies;
  for (const auto& entry : std::filesystem::directory_iterator(power_supply_dir)) supplies.push_back(entry.path());
  std::ranges::sort(supplies);
  for (const auto& supply : supplies) {
    std::error_code no_directory;
    if (!std::filesystem::is_directory(supply, no_directory)) continue;
    const std::string type = read_property(supply / "type");
    if (type == "Battery") {
      const std::string capacity = read_property(supply / "capacity");
      const std::string status = read_property(supply / "status");
      return status == "Charging" || status == "Full" ? MAINS : capacity + "%";
    }
    if (type == "Mains" && read_property(supply / "online") == "1") return MAINS;
  }
  return MAINS;
}

}  // namespace

std::string _get_battery_status(const std::string& power_supply_dir) {
  try {
    return first_answer(power_supply_dir);
  } catch (const std::system_error&) {
    return MAINS;
  }
}

}  // namespace brenlow

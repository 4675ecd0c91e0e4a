#pragma once

#include <string>

namespace brenlow {

// The charge of the first battery, such as "57%"; "AC" while it charges, when it is full, and wherever nothing
// is known of one. Takes a few short reads of files that the kernel makes up at once.
std::string _get_battery_status(const std::string& power_supply_dir = "/sys/class/power_supply");

}  // namespace brenlow

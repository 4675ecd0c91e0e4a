#include "terminal/battery.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/temporary_folder.h"

namespace brenlow {
namespace {

TEST(Battery, ThePercentageIsToldOnBatteryAloneAndNothingHoldsTheSessionUp) {
  const test::TemporaryFolder folder, battery;
  const auto status = [&] { return _get_battery_status(folder.path()); };
  EXPECT_EQ(_get_battery_status("/nonexistent") + status(), "ACAC");
  folder.write("A0", "a file, no supply");
  folder.write("A1/type", "UPS\n");
  folder.write("A2/type", "Mains\n");
  battery.write("type", "Battery\n");
  battery.write("capacity", "57\n");
  // The kernel's entries are links to folders elsewhere.
  std::filesystem::create_directory_symlink(battery.path(), folder.file("B0"));
  for (const auto& [online, state, told] :
       {std::tuple("0", "Charging", "AC"), std::tuple("0", "Full", "AC"), std::tuple("0", "Not charging", "57%"),
        std::tuple("1", "Discharging", "AC"), std::tuple("0", "Discharging", "57%")}) {
    folder.write("A2/online", online + std::string("\n"));
    battery.write("status", state + std::string("\n"));
    EXPECT_EQ(status(), told) << online << state;
  }
  std::filesystem::create_directory(folder.file("A3"));
  EXPECT_EQ(status(), "AC") << "a supply without a type ends the search";
  ASSERT_EQ(::mkfifo(folder.file("A3/type").c_str(), 0600), 0);
  EXPECT_EQ(status(), "AC");
}

}  // namespace
}  // namespace brenlow

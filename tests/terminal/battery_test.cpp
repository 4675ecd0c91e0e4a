#include "terminal/battery.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/support/temporary_folder.h"

namespace brenlow {
namespace {

using test::TemporaryFolder;

void add_battery(const TemporaryFolder& folder, const std::string& name, const std::string& capacity,
                 const std::string& status) {
  folder.write(name + "/type", "Battery\n");
  folder.write(name + "/capacity", capacity + "\n");
  folder.write(name + "/status", status + "\n");
}

TEST(Battery, TheFirstSupplyThatHasAnAnswerGivesIt) {
  const TemporaryFolder folder;
  EXPECT_EQ(_get_battery_status(folder.path()), "AC");
  folder.write("A0", "a file, no supply");
  std::filesystem::create_symlink("nowhere", folder.path() / "A1");
  folder.write("A2/type", "UPS\n");
  folder.write("A3/type", "Mains\n");
  folder.write("A3/online", "0\n");
  // The kernel's entries are links to folders elsewhere.
  const TemporaryFolder devices;
  add_battery(devices, "battery", "57", "Discharging");
  std::filesystem::create_directory_symlink(devices.file("battery"), folder.file("B0"));
  add_battery(folder, "B1", "99", "Discharging");
  EXPECT_EQ(_get_battery_status(folder.path()), "57%");
  add_battery(devices, "battery", "57", "Not charging");
  EXPECT_EQ(_get_battery_status(folder.path()), "57%");
  add_battery(devices, "battery", "57", "Charging");
  EXPECT_EQ(_get_battery_status(folder.path()), "AC");
  add_battery(devices, "battery", "100", "Full");
  EXPECT_EQ(_get_battery_status(folder.path()), "AC");
  add_battery(devices, "battery", "57", "Discharging");
  folder.write("A3/online", "1\n");
  EXPECT_EQ(_get_battery_status(folder.path()), "AC");
}

TEST(Battery, WhatCannotBeReadCountsAsMainsPowerAndHoldsNobodyUp) {
  EXPECT_EQ(_get_battery_status("/nonexistent"), "AC");
  const TemporaryFolder folder;
  add_battery(folder, "B1", "40", "Discharging");
  EXPECT_EQ(_get_battery_status(folder.path()), "40%");
  std::filesystem::create_directory(folder.file("B0"));
  EXPECT_EQ(_get_battery_status(folder.path()), "AC") << "a supply without a type ends the search";
  ASSERT_EQ(::mkfifo(folder.file("B0/type").c_str(), 0600), 0);
  EXPECT_EQ(_get_battery_status(folder.path()), "AC");
  std::filesystem::remove(folder.file("B0/type"));
  std::filesystem::create_symlink("/dev/zero", folder.file("B0/type"));
  EXPECT_EQ(_get_battery_status(folder.path()), "AC");
}

}  // namespace
}  // namespace brenlow

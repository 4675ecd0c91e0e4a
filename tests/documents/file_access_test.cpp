#include "documents/file_access.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "core/failure.h"
#include "tests/support/faults.h"
#include "tests/support/temporary_folder.h"

namespace brenlow::test {
namespace {

template <class Action>
std::string failure_of(Action&& action) {
  try {
    action();
    return "";
  } catch (const Failure& failure) {
    return failure.what();
  }
}

TEST(FileAccess, OverwritingKeepsTheFileItselfAndTheLinkToIt) {
  TemporaryFolder folder;
  std::string path = folder.write("a.txt", "a long old content");
  std::string link = folder.file("link.txt");
  std::filesystem::create_symlink("a.txt", link);
  std::filesystem::create_hard_link(path, folder.file("other.txt"));
  ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
  for (std::string content : {"short", "", "a content that is longer than the old one was"}) {
    write_file(link, content);
    EXPECT_EQ(read_file(path, 1000), content);
    EXPECT_EQ(read_bytes(folder.file("other.txt")), content);
  }
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms{0640});

  std::filesystem::create_directory(folder.file("deep"));
  std::filesystem::create_symlink("deep/new.txt", folder.file("dangling.txt"));
  write_file(folder.file("dangling.txt"), "new");
  EXPECT_EQ(read_bytes(folder.file("deep/new.txt")), "new");
}

TEST(FileAccess, WhatIsNoRegularFileIsRefusedWithoutWaiting) {
  TemporaryFolder folder;
  std::string pipe = folder.file("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  auto reading = [](const std::string& path) { return failure_of([&] { read_file(path, 100); }); };
  auto writing = [](const std::string& path) { return failure_of([&] { write_file(path, "x"); }); };
  EXPECT_EQ(reading(folder.path()), "Is a directory");
  EXPECT_EQ(writing(folder.path()), "Is a directory");
  EXPECT_EQ(reading(pipe), "not a regular file");
  EXPECT_EQ(writing(pipe), "not a regular file");
  EXPECT_EQ(writing("/dev/full"), "not a regular file");
  EXPECT_EQ(reading(folder.file("none")), "No such file or directory");
  EXPECT_EQ(writing(folder.file("none/none")), "No such file or directory");
  EXPECT_EQ(reading(folder.write("big", std::string(101, 'x'))), "File too large");
  EXPECT_EQ(reading(folder.write("fits", std::string(100, 'x'))), "");
}

// Saves over a file and as a new file, with contents shorter and longer than the old one, and tells what became
// of them: "" if each time the save failed with `reason` and the old content was left.
std::string failing_saves(const TemporaryFolder& folder, const std::string& reason) {
  const std::string path = folder.file("old.txt"), fresh = folder.file("new.txt");
  const std::string before = read_bytes(path);
  for (std::size_t size : {std::size_t{60'000}, before.size() / 2}) {
    std::string told = failure_of([&] { write_file(path, std::string(size, 'x')); });
    if (told != reason) return "told: " + told;
    if (read_bytes(path) != before) return "the old content is damaged by " + std::to_string(size) + " bytes";
    told = failure_of([&] { write_file(fresh, std::string(size, 'x')); });
    if (told != reason) return "told of a new file: " + told;
    if (std::filesystem::exists(fresh)) return "a broken file is left";
  }
  return "";
}

TEST(FileAccess, AFailedWriteLeavesTheOldContentWhateverFails) {
  struct Fault {
    SystemCall call;
    int error;
    std::string reason;
  };
  TemporaryFolder folder;
  folder.write("old.txt", std::string(10'000, 'o') + "end");
  for (const Fault& fault :
       {Fault{SystemCall::RESERVE, EDQUOT, "Disk quota exceeded"},
        Fault{SystemCall::RESERVE, EIO, "Input/output error"}, Fault{SystemCall::WRITE_AT, EIO, "Input/output error"},
        Fault{SystemCall::FLUSH, EIO, "Input/output error"},
        Fault{SystemCall::FLUSH, ENOSPC, "No space left on device"},
        Fault{SystemCall::FLUSH, EDQUOT, "Disk quota exceeded"}}) {
    const std::string told = apart(
        [&] { return fail_calls(fault.call, fault.error) ? failing_saves(folder, fault.reason) : NOT_TO_BE_HAD; });
    if (told == NOT_TO_BE_HAD) GTEST_SKIP() << told;
    EXPECT_EQ(told, "") << static_cast<int>(fault.call) << " " << fault.reason;
  }
}

TEST(FileAccess, AFullDiskLeavesTheOldContentAlsoWhereNoRoomCanBeReserved) {
  TemporaryFolder folder;
  for (bool reservable : {true, false}) {
    const std::string told = apart([&]() -> std::string {
      if (!mount_small_disk(folder.path(), 64 << 10)) return NOT_TO_BE_HAD;
      if (!reservable && !fail_calls(SystemCall::RESERVE, EOPNOTSUPP)) return NOT_TO_BE_HAD;
      folder.write("old.txt", std::string(10'000, 'o') + "end");
      folder.write("filler", std::string(40'000, 'f'));
      std::string before = read_bytes(folder.file("old.txt"));
      for (const char* name : {"old.txt", "new.txt"}) {
        std::string reason = failure_of([&] { write_file(folder.file(name), std::string(60'000, 'x')); });
        if (reason != "No space left on device") return "told: " + reason;
      }
      if (read_bytes(folder.file("old.txt")) != before) return "the old content is damaged";
      if (std::filesystem::exists(folder.file("new.txt"))) return "a broken file is left";
      write_file(folder.file("old.txt"), std::string(12'000, 'x'));
      if (!make_disk_read_only(folder.path())) return "not made read-only";
      return failure_of([&] { write_file(folder.file("old.txt"), "x"); }) +
             failure_of([&] { write_file(folder.file("new.txt"), "x"); });
    });
    if (told == NOT_TO_BE_HAD) GTEST_SKIP() << told;
    EXPECT_EQ(told, "Read-only file systemRead-only file system") << "room can be reserved: " << reservable;
  }
}

TEST(FileAccess, AFileOfAnotherUserOrWithoutTheRightToWriteIsLeftAlone) {
  TemporaryFolder folder;
  const std::string own = folder.write("own.txt", "old"), locked = folder.write("locked/a.txt", "old");
  ASSERT_EQ(::chmod(own.c_str(), 0444), 0);
  ASSERT_EQ(::chmod(folder.file("locked").c_str(), 0), 0);
  ASSERT_EQ(::chmod(folder.path().c_str(), 0755), 0);
  const std::string told = apart([&]() -> std::string {
    constexpr uid_t NOBODY = 65534;
    if (::geteuid() == 0 && ::setuid(NOBODY) != 0) return "still root";
    std::string reasons;
    for (const std::string& path : {own, locked, folder.file("locked/new.txt")})
      reasons += failure_of([&] { write_file(path, "new"); }) + ";";
    return reasons;
  });
  EXPECT_EQ(told, "Permission denied;Permission denied;Permission denied;");
  EXPECT_EQ(read_bytes(own), "old");
}

// A limit that was lowered since the file was written, too: more than it can then be neither written nor lost.
TEST(FileAccess, AFileSizeLimitNeitherEndsTheProcessNorCostsTheOldContent) {
  TemporaryFolder folder;
  folder.write("old.txt", std::string(10'000, 'o') + "end");
  const std::string told = apart([&]() -> std::string {
    const struct rlimit small = {4'000, RLIM_INFINITY};
    if (::setrlimit(RLIMIT_FSIZE, &small) != 0) return "no limit";
    return failing_saves(folder, "File too large");
  });
  EXPECT_EQ(told, "");
}

}  // namespace
}  // namespace brenlow::test

#include "documents/file_access.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "core/failure.h"
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

TEST(FileAccess, WithoutRoomTheOldFileStaysAndANewOneIsGoneAgain) {
  TemporaryFolder folder;
  std::string path = folder.write("a.txt", "old content");
  struct rlimit before;
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
  struct rlimit small = before;
  small.rlim_cur = 1 << 16;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
  std::string over = failure_of([&] { write_file(path, std::string(1 << 20, 'x')); });
  std::string fresh = failure_of([&] { write_file(folder.file("new.txt"), std::string(1 << 20, 'x')); });
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
  EXPECT_EQ(over, "File too large");
  EXPECT_EQ(fresh, "File too large");
  EXPECT_EQ(read_bytes(path), "old content");
  EXPECT_FALSE(std::filesystem::exists(folder.file("new.txt")));
}

}  // namespace
}  // namespace brenlow::test

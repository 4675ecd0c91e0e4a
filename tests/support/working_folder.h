#pragma once

#include <filesystem>

namespace brenlow::test {

// A working folder for the time of a test.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::filesystem::path& path) { std::filesystem::current_path(path); }
  ~WorkingFolder() { std::filesystem::current_path(_before); }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;

 private:
  std::filesystem::path _before = std::filesystem::current_path();
};

}  // namespace brenlow::test

#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace brenlow::test {

// A folder of its own for one test, removed with all it holds.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return _path; }
  std::string file(std::string_view name) const { return (_path / name).string(); }
  // Creates the folder `name` within.
  std::string folder(std::string_view name) const;
  // Creates the file `name` within, and the folders on the way to it; returns its path.
  std::string write(std::string_view name, std::string_view bytes) const;

 private:
  std::filesystem::path _path;
};

// Bytes of a whole file; throws std::runtime_error if it cannot be read or written.
std::string read_bytes(const std::filesystem::path& path);
void write_bytes(const std::filesystem::path& path, std::string_view bytes);

}  // namespace brenlow::test

#pragma once

#include <unistd.h>

#include <filesystem>
#include <string>

namespace brenlow::fuzz {

// A file for the whole run of a target, gone with it.
class ScratchFile {
 public:
  explicit ScratchFile(const std::string& extension)
      : path(std::filesystem::temp_directory_path() / ("brenlow-fuzz-" + std::to_string(::getpid()) + extension)) {}
  ~ScratchFile() { std::filesystem::remove(path); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  const std::string path;
};

}  // namespace brenlow::fuzz

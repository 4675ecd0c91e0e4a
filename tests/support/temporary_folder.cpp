#include "tests/support/temporary_folder.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

namespace brenlow::test {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::string name = (fs::temp_directory_path() / "brenlow-test-XXXXXX").string();
  if (!::mkdtemp(name.data())) throw std::system_error(errno, std::generic_category(), name);
  _path = name;
}

TemporaryFolder::~TemporaryFolder() {
  // A test may have taken away the right to write; removal needs it back.
  std::error_code ignored;
  for (auto it = fs::recursive_directory_iterator(_path, ignored); it != fs::recursive_directory_iterator();
       it.increment(ignored))
    if (it->is_directory(ignored) && !it->is_symlink(ignored))
      fs::permissions(it->path(), fs::perms::owner_all, fs::perm_options::add, ignored);
  fs::remove_all(_path, ignored);
}

std::string TemporaryFolder::folder(std::string_view name) const {
  fs::create_directories(_path / name);
  return file(name);
}

std::string TemporaryFolder::write(std::string_view name, std::string_view bytes) const {
  fs::create_directories((_path / name).parent_path());
  write_bytes(_path / name, bytes);
  return file(name);
}

std::string read_bytes(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw std::runtime_error("cannot read " + path.string());
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void write_bytes(const fs::path& path, std::string_view bytes) {
  std::ofstream out(path, std::ios::binary | std::ios::trunc);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out.flush()) throw std::runtime_error("cannot write " + path.string());
}

}  // namespace brenlow::test

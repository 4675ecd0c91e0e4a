#pragma once

#include <string>
#include <utility>

namespace brenlow {

// Owns a file descriptor and closes it; -1 stands for none.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : _number(number) {}
  Descriptor(Descriptor&& other) noexcept : _number(std::exchange(other._number, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    Descriptor taken(std::move(other));
    std::swap(_number, taken._number);
    return *this;
  }
  ~Descriptor();

  int get() const { return _number; }
  explicit operator bool() const { return _number >= 0; }

 private:
  int _number = -1;
};

// Opens without waiting for anybody and without adopting a terminal: a pipe that nobody reads fails or stays
// empty in place of blocking. `access` is O_RDONLY, O_WRONLY or O_RDWR, with O_APPEND if wanted. The descriptor
// is in non-blocking mode.
Descriptor open_without_waiting(const std::string& path, int access);

}  // namespace brenlow

#pragma once

#include <string>

#include "terminal/descriptor.h"

namespace brenlow::test {

// Both ends of a pseudo terminal. No child inherits them.
class PseudoTerminal {
 public:
  PseudoTerminal(int rows, int cols);

  int master() const { return _master.get(); }
  int slave() const { return _slave.get(); }
  const std::string& path() const { return _path; }
  void resize(int rows, int cols) const;
  // The terminal goes away: who reads from the slave comes to the end.
  void hang_up() { _master = Descriptor(); }
  // The modes (echo, signals, line endings, control characters) as a text to compare and to print.
  std::string modes() const;

 private:
  Descriptor _master, _slave;
  std::string _path;
};

}  // namespace brenlow::test

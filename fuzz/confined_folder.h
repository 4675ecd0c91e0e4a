#pragma once

#include <string>

#include "terminal/descriptor.h"
#include "tests/support/temporary_folder.h"

namespace brenlow::fuzz {

// A folder that is the whole file system while the process is inside: keys by chance can then neither read nor write
// anything else. Where a failure ends the process, it ends outside, so that the input is kept where the caller wants.
class ConfinedFolder {
 public:
  // Throws std::system_error where the system does not let a process be confined.
  ConfinedFolder();
  ConfinedFolder(const ConfinedFolder&) = delete;
  ConfinedFolder& operator=(const ConfinedFolder&) = delete;

  std::string path() const { return _folder.path().string(); }
  void enter();
  void leave();

 private:
  test::TemporaryFolder _folder;
  Descriptor _outer_root, _outer_folder;
  bool _inside = false;
};

// Leaves the folder that the process is in, if it is in one.
void leave_confinement();

}  // namespace brenlow::fuzz

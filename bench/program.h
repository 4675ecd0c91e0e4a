#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

#include "terminal/descriptor.h"

namespace brenlow::bench {

// The program as people run it, on a pseudo terminal of 50 x 120 with a home folder that holds the settings.
class Program {
 public:
  explicit Program(const std::vector<std::string>& arguments = {});
  ~Program();
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  // Types the keys and reads until the program has nothing more to do or to show; returns the milliseconds until it
  // showed the last.
  double until_idle(std::string_view keys = {});
  double cpu() const;  // milliseconds that it has used so far
  std::size_t resident_bytes() const;
  // Ends it at once; returns its milliseconds of CPU time, those of the programs that it has run included.
  double stop();

 private:
  bool _waits() const;

  pid_t _pid = -1;
  Descriptor _terminal;
};

}  // namespace brenlow::bench

#pragma once

#include "bench/measuring.h"

namespace brenlow::bench {

// What a key costs, with its frame, in documents of all kinds and lengths.
Rows key_rows();
// What a command costs in a million words.
Rows command_rows();
// What the whole program costs in a process of its own: start, open, save, memory, a paste into the terminal.
Rows program_rows();

// Milliseconds of CPU time that work takes which a row is compared with, in a process of its own.
double bare_work(const std::string& name, const std::string& path);
// The same in this process.
double do_bare_work(const std::string& name, const std::string& path);

}  // namespace brenlow::bench

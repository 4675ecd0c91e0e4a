#include "terminal/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>

#include "core/signals.h"
#include "terminal/descriptor.h"
#include "terminal/environment.h"

extern char** environ;  // NOLINT(readability-redundant-declaration): not every <unistd.h> has it

namespace brenlow {

namespace {

using Clock = std::chrono::steady_clock;

// How long to wait for the streams before the child is asked whether it has ended. Its end alone wakes nobody:
// a helper that it left behind may hold the streams open. Doubles while nothing happens.
constexpr std::chrono::milliseconds SHORTEST_PAUSE{1};
constexpr std::chrono::milliseconds LONGEST_PAUSE{16};

// A descriptor above the three standard ones, closed on exec, so that arranging those three in the child
// cannot hit it even if the session was started without them.
Descriptor out_of_the_way(Descriptor descriptor) {
  if (!descriptor) return descriptor;
  if (descriptor.get() <= STDERR_FILENO) return Descriptor(::fcntl(descriptor.get(), F_DUPFD_CLOEXEC, 3));
  ::fcntl(descriptor.get(), F_SETFD, FD_CLOEXEC);
  return descriptor;
}

struct Pipe {
  Descriptor from;
  Descriptor into;
  explicit operator bool() const { return from && into; }
};

Pipe make_pipe() {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) return {};
  Descriptor from(ends[0]);
  Descriptor into(ends[1]);
  return {out_of_the_way(std::move(from)), out_of_the_way(std::move(into))};
}

void stop_blocking(const Descriptor& descriptor) {
  ::fcntl(descriptor.get(), F_SETFL, ::fcntl(descriptor.get(), F_GETFL) | O_NONBLOCK);
}

// The session's ends of the child's streams; closed when there is nothing more to move.
struct Streams {
  Descriptor input;
  Descriptor output;
};

// A running child. It is killed and waited for at the latest by the destructor.
class Child {
 public:
  Child(pid_t pid, bool leads_group) : _pid(pid), _leads_group(leads_group) {}
  Child(Child&& other) noexcept
      : _pid(std::exchange(other._pid, -1)), _leads_group(other._leads_group), _status(other._status) {}
  Child& operator=(Child&&) = delete;
  ~Child() { kill(); }

  bool ended() { return _pid < 0 || _reap(WNOHANG); }
  void wait() {
    if (_pid >= 0) _reap(0);
  }
  void kill() {
    if (_pid < 0) return;
    ::kill(_leads_group ? -_pid : _pid, SIGKILL);
    wait();
  }
  int status() const { return _status; }

 private:
  bool _reap(int flags) {
    int state = 0;
    pid_t reaped = 0;
    do reaped = ::waitpid(_pid, &state, flags);
    while (reaped < 0 && errno == EINTR);
    if (reaped == 0) return false;
    if (reaped == _pid && WIFEXITED(state)) _status = WEXITSTATUS(state);
    _pid = -1;
    return true;
  }

  pid_t _pid;  // -1 once it has been waited for
  bool _leads_group;
  int _status = -1;
};

// How the child begins: its three streams, nothing else open, signals as a fresh process has them.
class Beginning {
 public:
  Beginning() {
    ::posix_spawn_file_actions_init(&_actions);
    ::posix_spawnattr_init(&_attributes);
  }
  Beginning(const Beginning&) = delete;
  Beginning& operator=(const Beginning&) = delete;
  ~Beginning() {
    ::posix_spawn_file_actions_destroy(&_actions);
    ::posix_spawnattr_destroy(&_attributes);
  }

  void set_streams(int input, int output, int error) {
    ::posix_spawn_file_actions_adddup2(&_actions, input, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&_actions, output, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&_actions, error, STDERR_FILENO);
    _close_the_rest();
  }

  // The session ignores some signals and blocks others, which a program would inherit.
  void set_process(bool leads_group) {
    sigset_t all;
    sigset_t none;
    sigfillset(&all);
    sigemptyset(&none);
    ::posix_spawnattr_setsigdefault(&_attributes, &all);
    ::posix_spawnattr_setsigmask(&_attributes, &none);
    int flags = POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK;
    if (leads_group) flags |= POSIX_SPAWN_SETPGROUP;  // into a group of its own: 0 is the default
    ::posix_spawnattr_setflags(&_attributes, static_cast<short>(flags));
  }

  // The process number, or nothing when the system cannot run the file.
  std::optional<pid_t> start(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<char*> words;
    for (const std::string& argument : arguments) words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    pid_t pid = -1;
    if (::posix_spawn(&pid, program.c_str(), &_actions, &_attributes, words.data(), environ) != 0) return std::nullopt;
    return pid;
  }

 private:
  void _close_the_rest() {
#if defined(__GLIBC__) && (__GLIBC__ > 2 || __GLIBC_MINOR__ >= 34)
    ::posix_spawn_file_actions_addclosefrom_np(&_actions, STDERR_FILENO + 1);
#else
    std::error_code failure;
    std::filesystem::directory_iterator open_ones("/dev/fd", failure);
    for (; !failure && open_ones != std::filesystem::directory_iterator(); open_ones.increment(failure)) {
      const int number = std::atoi(open_ones->path().filename().c_str());
      const int flags = ::fcntl(number, F_GETFD);
      if (number > STDERR_FILENO && flags >= 0 && !(flags & FD_CLOEXEC))
        ::posix_spawn_file_actions_addclose(&_actions, number);
    }
#endif
  }

  posix_spawn_file_actions_t _actions;
  posix_spawnattr_t _attributes;
};

std::optional<Child> start_child(const std::string& program, const std::vector<std::string>& arguments,
                                 const ChildOptions& options, Streams& ours) {
  const Descriptor nothing = out_of_the_way(Descriptor(::open("/dev/null", O_RDWR | O_CLOEXEC)));
  Pipe input;
  Pipe output;
  if (!options.input.empty()) input = make_pipe();
  if (options.capture) output = make_pipe();
  if (!nothing || (!options.input.empty() && !input) || (options.capture && !output)) return std::nullopt;

  Beginning beginning;
  beginning.set_streams(input ? input.from.get() : nothing.get(), output ? output.into.get() : nothing.get(),
                        nothing.get());
  beginning.set_process(!options.uses_terminal);
  const auto pid = beginning.start(program, arguments);
  if (!pid) return std::nullopt;
  ours = {std::move(input.into), std::move(output.from)};
  if (ours.input) stop_blocking(ours.input);
  if (ours.output) stop_blocking(ours.output);
  return std::optional<Child>(std::in_place, *pid, !options.uses_terminal);
}

// Waits until a stream can move bytes, at most for `pause`; whether one can.
bool wait_for(const Streams& ours, std::chrono::milliseconds pause) {
  std::array<pollfd, 2> streams{pollfd{ours.input.get(), POLLOUT, 0}, pollfd{ours.output.get(), POLLIN, 0}};
  return ::poll(streams.data(), streams.size(), static_cast<int>(pause.count())) > 0;
}

// Writes what the pipe takes now and closes it behind the last byte, or if nobody reads any more.
void feed(Descriptor& input, std::string_view& unwritten) {
  const ssize_t count = ::write(input.get(), unwritten.data(), unwritten.size());
  if (count < 0 && (errno == EAGAIN || errno == EINTR)) return;
  unwritten.remove_prefix(count < 0 ? unwritten.size() : static_cast<std::size_t>(count));
  if (unwritten.empty()) input = Descriptor();
}

// Reads what is there, up to some kilobytes; false when nothing is there now. Closes the pipe at its end.
bool collect(Descriptor& output, std::string& collected) {
  std::array<char, 65536> buffer;
  ssize_t count = 0;
  do count = ::read(output.get(), buffer.data(), buffer.size());
  while (count < 0 && errno == EINTR);
  if (count < 0 && errno == EAGAIN) return false;
  if (count <= 0) {
    output = Descriptor();
    return false;
  }
  collected.append(buffer.data(), static_cast<std::size_t>(count));
  return true;
}

// Moves input and output at the same time until the child has ended. True when it ended by itself and
// printed no more than it may; a session that is asked to end does not wait for it.
bool converse(Child& child, Streams& ours, const ChildOptions& options, Clock::time_point begun, ChildResult& result) {
  std::string_view unwritten = options.input;
  auto pause = SHORTEST_PAUSE;
  while (!child.ended()) {
    if (options.time_limit && Clock::now() - begun >= *options.time_limit) {
      result.timed_out = true;
      return false;
    }
    if (noted_end_signal() != 0) return false;
    pause = wait_for(ours, pause) ? SHORTEST_PAUSE : std::min(pause * 2, LONGEST_PAUSE);
    if (ours.input) feed(ours.input, unwritten);
    if (ours.output) collect(ours.output, result.output);
    if (result.output.size() > options.output_limit) return false;
  }
  while (ours.output && collect(ours.output, result.output))
    if (result.output.size() > options.output_limit) return false;
  return true;
}

bool is_program(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && ::access(path.c_str(), X_OK) == 0;
}

}  // namespace

std::optional<std::string> find_program(const std::string& name, const std::string& search_path) {
  if (name.empty()) return std::nullopt;
  if (name.find('/') != std::string::npos) return is_program(name) ? std::optional(name) : std::nullopt;
  const std::string folders = search_path.empty() ? environment("PATH").value_or("/usr/bin:/bin") : search_path;
  for (std::size_t start = 0; start <= folders.size();) {
    const std::size_t end = std::min(folders.find(':', start), folders.size());
    // An empty entry stands for the current folder.
    std::string path = (end == start ? "." : folders.substr(start, end - start)) + "/" + name;
    if (is_program(path)) return path;
    start = end + 1;
  }
  return std::nullopt;
}

std::optional<ChildResult> run_child(const std::vector<std::string>& arguments, const ChildOptions& options) {
  if (arguments.empty()) return std::nullopt;
  const auto program = find_program(arguments[0], options.search_path);
  if (!program) return std::nullopt;
  // Writing to a child that has stopped reading must fail instead of ending the session, and the system must
  // keep the exit status even if whoever started the session ignores the end of children.
  const SignalSetting write_may_fail(SIGPIPE, SIG_IGN);
  const SignalSetting status_is_kept(SIGCHLD, SIG_DFL);
  const auto begun = Clock::now();
  ChildResult result;
  Streams ours;
  auto child = start_child(*program, arguments, options, ours);
  if (child && converse(*child, ours, options, begun, result)) result.status = child->status();
  return result;
}

}  // namespace brenlow

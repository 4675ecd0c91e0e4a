#pragma once

#include <csignal>

namespace brenlow {

// Unwinds the session when the system asks for its end or its terminal has gone. Not an std::exception, so
// that a command that catches every failure does not swallow it.
struct EndRequest {
  int signal;  // SIGHUP stands for the terminal as well
};

// From now on the signals that ask for an end (SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU) are noted instead of
// ending the process, but for those that are ignored already, as under nohup. The ones that would end it for a
// failed write are ignored, so that the write fails.
void note_end_signals();
// The last of them that came, or 0.
int noted_end_signal();
// From now on they do nothing, and a process in the background may write to its terminal: what remains to be
// done is done to its end.
void ignore_end_signals();

// Holds these signals back for as long as it lives.
class EndSignalsBlocked {
 public:
  EndSignalsBlocked();
  EndSignalsBlocked(const EndSignalsBlocked&) = delete;
  EndSignalsBlocked& operator=(const EndSignalsBlocked&) = delete;
  ~EndSignalsBlocked();
  const sigset_t& before() const { return _before; }

 private:
  sigset_t _before;
};

// Sets what a signal does for as long as it lives.
class SignalSetting {
 public:
  SignalSetting(int signal, void (*handler)(int));
  SignalSetting(const SignalSetting&) = delete;
  SignalSetting& operator=(const SignalSetting&) = delete;
  ~SignalSetting();

 private:
  int _signal;
  bool _changed;
  struct sigaction _before {};
};

}  // namespace brenlow

#include "core/signals.h"

#include <array>

namespace brenlow {

namespace {

constexpr std::array END_SIGNALS = {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGXCPU};

volatile std::sig_atomic_t noted = 0;

void note(int signal) { noted = signal; }

// Without SA_RESTART, so that what waits comes back.
bool set_handler(int signal, void (*handler)(int), struct sigaction* before = nullptr) {
  struct sigaction action {};
  action.sa_handler = handler;
  sigemptyset(&action.sa_mask);
  return ::sigaction(signal, &action, before) == 0;
}

}  // namespace

void note_end_signals() {
  noted = 0;
  for (int signal : END_SIGNALS) {
    struct sigaction before {};
    if (set_handler(signal, note, &before) && before.sa_handler == SIG_IGN) set_handler(signal, SIG_IGN);
  }
  for (int signal : {SIGPIPE, SIGXFSZ}) set_handler(signal, SIG_IGN);
}

int noted_end_signal() { return noted; }

void ignore_end_signals() {
  for (int signal : END_SIGNALS) set_handler(signal, SIG_IGN);
  set_handler(SIGTTOU, SIG_IGN);
  noted = 0;
}

EndSignalsBlocked::EndSignalsBlocked() {
  sigset_t end_signals;
  sigemptyset(&end_signals);
  for (int signal : END_SIGNALS) sigaddset(&end_signals, signal);
  ::sigprocmask(SIG_BLOCK, &end_signals, &_before);
}

EndSignalsBlocked::~EndSignalsBlocked() { ::sigprocmask(SIG_SETMASK, &_before, nullptr); }

SignalSetting::SignalSetting(int signal, void (*handler)(int)) : _signal(signal) {
  _changed = set_handler(signal, handler, &_before);
}

SignalSetting::~SignalSetting() {
  if (_changed) ::sigaction(_signal, &_before, nullptr);
}

}  // namespace brenlow

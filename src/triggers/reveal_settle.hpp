// A reveal's settling time, shared by the reveal, its check and the auto-lock.
// From the moment the check succeeds (password accepted, biometric passed)
// until the settle ends, leaving the app still locks, although the auto-lock
// is otherwise held back then; and a reveal whose check succeeded before such
// a lock does not reveal afterwards.
#pragma once

#include "sys/process_state.hpp"

namespace triggers {

struct RevealSettle {
  bool checking = false;             // a reveal's check is under way
  bool settling = false;             // that check succeeded; the settle has not ended
  bool lockedWhileSettling = false;  // the app left meanwhile and was locked
};

inline RevealSettle& revealSettle() { return sys::state<RevealSettle>(); }

// The reveal's check succeeded (called by the check; nothing for other checks).
inline void revealCheckSucceeded() {
  RevealSettle& s = revealSettle();
  if (s.checking) s.settling = true;
}

}  // namespace triggers

// QBExtraHooks: keeps secret contacts out of the host's other places while the
// secrets are hidden: the forward picker and its recent-forward row, the
// contacts list and its sections, contact search, and the Moments timeline.
// Each replacement asks the host's original and then removes secret entries
// from the answer (or vetoes a secret candidate). Nothing is cached: every
// call decides from the live hidden state and secret list.
#pragma once

#include "rt/types.hpp"

namespace hiding {

struct QBExtraHooks {
  // Installs the twelve replacements, once per process.
  static void install();

  // The building blocks, exposed for tests.
  // A secret entry: a non-empty username string, or any object whose
  // username is non-empty, that the secret list holds.
  static bool isSecretEntry(rt::Id entry);
  // While hiding, a new array of the non-secret elements of an array, in
  // order, mutable when the host's was; an array without a secret, anything
  // else, and everything while not hiding come back as they are.
  static rt::Id filterArray(rt::Id value);
  // While hiding, filters the arrays of a mutable dictionary in place, and
  // the dictionaries inside it the same way. Immutable ones are left alone.
  static void filterDictionaryInPlace(rt::Id dictionary);
};

// The most Moments items examined per call while hiding.
inline constexpr long kMomentsScanCap = 500;

// Receiver keys that may hold a search logic's result dictionaries, in the
// order they are tried.
inline constexpr const char* kSearchDictionaryKeys[] = {
    "dicSearchResult", "m_dicSearchResult", "_dicSearchResult", "dicSection", "m_dicSection"};

}  // namespace hiding

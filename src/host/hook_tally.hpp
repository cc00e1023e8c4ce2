// The count of host methods the system meant to hook in this process and of
// those it did, with the names of the ones skipped because the host's types
// differ from the hook's. Start-up reports it in one line, so a build whose
// types moved shows at once what no longer works.
#pragma once

#include <string>
#include <vector>

#include "rt/types.hpp"

namespace host {

// A host method whose types a hook fitted, with the hook's types.
struct HookFit {
  std::string label;  // "-[Class selector]"
  std::string hookTypes;
};

struct HookTally {
  long tried = 0;  // the host had the method
  long installed = 0;
  std::vector<std::string> skipped;  // "-[Class selector]"
  std::vector<HookFit> fitted;       // what a check of a host build compares with
};

HookTally& hookTally();

// "-[Class selector]" or "+[Class selector]".
std::string methodLabel(rt::Class cls, rt::SEL sel, bool classMethod);

// Whether the host method `m` takes the call `hookTypes` describes
// (rt::sameCallTypes); a method without an encoding is taken on trust.
bool hostTakes(rt::Method m, const std::string& hookTypes);

// Counts one install attempt on a host method that exists. When the types
// differ, logs the skip line with both encodings and returns false.
bool checkHookTypes(rt::Class cls, rt::Method m, bool classMethod, const std::string& hookTypes);
// Counts the outcome of an attempt that passed the type check.
void noteHookInstalled(rt::Class cls, rt::SEL sel, bool classMethod, bool ok);

// "[QB] hooks installed N of M" with the skipped ones named.
void logHookTally();

}  // namespace host

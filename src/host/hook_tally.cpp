#include "host/hook_tally.hpp"

#include "rt/encoding.hpp"
#include "rt/runtime.hpp"
#include "sys/log.hpp"
#include "sys/process_state.hpp"

namespace host {

HookTally& hookTally() { return sys::state<HookTally>(); }

std::string methodLabel(rt::Class cls, rt::SEL sel, bool classMethod) {
  return std::string(classMethod ? "+[" : "-[") + std::string(rt::className(cls)) + " " +
         std::string(rt::selName(sel)) + "]";
}

bool hostTakes(rt::Method m, const std::string& hookTypes) {
  const char* types = m ? rt::typeEncoding(m) : nullptr;
  return !types || rt::sameCallTypes(hookTypes, rt::normalizedEncoding(types));
}

bool checkHookTypes(rt::Class cls, rt::Method m, bool classMethod, const std::string& hookTypes) {
  HookTally& t = hookTally();
  ++t.tried;
  std::string label = methodLabel(cls, rt::methodName(m), classMethod);
  if (hostTakes(m, hookTypes)) {
    t.fitted.push_back({std::move(label), hookTypes});
    return true;
  }
  // The host keeps its own method: calling it through the hook's types would
  // be undefined on the phone.
  sys::log("[QB] hook skipped %@: host types %@, hook types %@", label,
           std::string(rt::typeEncoding(m)), hookTypes);
  t.skipped.push_back(std::move(label));
  return false;
}

void noteHookInstalled(rt::Class cls, rt::SEL sel, bool classMethod, bool ok) {
  HookTally& t = hookTally();
  if (ok)
    ++t.installed;
  else
    t.skipped.push_back(methodLabel(cls, sel, classMethod));
}

void logHookTally() {
  const HookTally& t = hookTally();
  std::string skipped;
  for (const auto& s : t.skipped) skipped += (skipped.empty() ? "" : ", ") + s;
  if (skipped.empty())
    sys::log("[QB] hooks installed %ld of %ld", t.installed, t.tried);
  else
    sys::log("[QB] hooks installed %ld of %ld, skipped: %@", t.installed, t.tried, skipped);
}

}  // namespace host

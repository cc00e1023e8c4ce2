// Hook<R(A...)>: one host method the system has replaced, with the host's
// original kept beside it, and the one failure policy every replacement body
// runs under:
//   - the host's original answers at most once per call;
//   - when the replacement's own work raises (probing, filtering, remapping),
//     the step's "ex: %@" line is logged when it has one, and the call is
//     answered by the host's original for the unchanged arguments (or, when
//     the body had already asked the original, by that answer; or by
//     `fallback` when no original is stored);
//   - when the host's original itself raises, that is the host's exception: it
//     leaves the replacement unchanged, as it would without the library.
// Four ways in, one per kind of host hook: an instance method replaced in
// place, an instance method exchanged with a `qb_` method, a class method whose
// implementation is set directly, and a class method added to the metaclass
// and exchanged. The hook lives in its subsystem's process state, so a new
// process starts with nothing installed. Installed hooks are only read, so
// calls from the host's other threads are safe. The original is published
// before the host's method changes: a host thread that reaches the
// replacement the moment it is in place must already find the original.
// Each way in first compares the hook's C++ signature with the host method's
// type encoding (rt::sameCallTypes): a host whose method takes other types
// keeps it, with one log line naming both encodings, since calling it through
// the hook's types would be undefined on the phone.
#pragma once

#include <atomic>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>

#include "host/hook_tally.hpp"
#include "host/runtime_toolkit.hpp"
#include "rt/exception.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sys/guarded.hpp"
#include "sys/log.hpp"

namespace host {

template <typename Sig>
class Hook;

template <typename R, typename... A>
class Hook<R(A...)> {
 public:
  using Replacement = R (*)(rt::Id, rt::SEL, A...);
  using Fallback = std::conditional_t<std::is_void_v<R>, std::monostate, R>;

  // The answer when no original is stored (a class method that was never
  // there, a replacement reached before install finished).
  Fallback fallback{};

  Hook() = default;
  explicit Hook(Fallback whenMissing) : fallback(whenMissing) {}
  Hook(const Hook& other)
      : fallback(other.fallback), imp_(other.imp_.load()), sel_(other.sel_),
        exchangedWith_(other.exchangedWith_.load()) {}
  Hook& operator=(const Hook& other) {
    fallback = other.fallback;
    imp_ = other.imp_.load();
    sel_ = other.sel_;
    exchangedWith_ = other.exchangedWith_.load();
    return *this;
  }

  // The encoding of the calls this hook makes and takes: "v@:@q".
  static const std::string& hookTypes() { return rt::signature<R, A...>(); }
  // Whether the host method `m` has this hook's types (no log, no count).
  static bool fits(rt::Method m) { return hostTakes(m, hookTypes()); }

  // replace:sel:newIMP:store: on an instance method of `cls`.
  bool replace(rt::Class cls, std::string_view selector, Replacement fn) {
    rt::IMP slot = nullptr;
    rt::SEL s = rt::sel(selector);
    rt::Method host = cls ? rt::getInstanceMethod(cls, s) : nullptr;
    if (host && !checkHookTypes(cls, host, false, hookTypes())) return false;
    rt::IMP before = imp();
    if (host) imp_.store(rt::methodImplementation(host), std::memory_order_release);
    bool ok = QBRuntime::replace(cls, s, reinterpret_cast<rt::IMP>(fn), &slot);
    if (host) noteHookInstalled(cls, s, false, ok);
    imp_.store(ok ? slot : before, std::memory_order_release);
    if (ok) sel_ = s;
    return ok;
  }

  // The class method `selector` of `cls` gets `fn` as its implementation
  // (method_setImplementation on class_getClassMethod). False when the class
  // has no such class method.
  bool setClassMethod(rt::Class cls, std::string_view selector, Replacement fn) {
    rt::Method m = cls ? rt::getClassMethod(cls, rt::sel(selector)) : nullptr;
    if (!m || !checkHookTypes(cls, m, true, hookTypes())) return false;
    sel_ = rt::sel(selector);
    imp_.store(rt::methodImplementation(m), std::memory_order_release);
    rt::IMP old = rt::setImplementation(m, reinterpret_cast<rt::IMP>(fn));
    imp_.store(old, std::memory_order_release);
    noteHookInstalled(cls, sel_, true, old != nullptr);
    return old != nullptr;
  }

  // swizzleInstance:original:swizzled:. `fn` is added to `owner` (the class
  // that carries the system's category methods, UIViewController for screen
  // hooks) under `qbSelector`, then exchanged with `selector` on `cls`; the
  // host's code is reached afterwards by sending `qbSelector`.
  bool swizzle(rt::Class owner, rt::Class cls, std::string_view selector,
               std::string_view qbSelector, Replacement fn) {
    if (!owner || !cls) return false;
    rt::SEL qb = rt::sel(qbSelector);
    rt::Method host = rt::getInstanceMethod(cls, rt::sel(selector));
    if (host && !checkHookTypes(cls, host, false, hookTypes())) return false;
    sel_ = rt::sel(selector);
    rt::addMethod(owner, qb, fn);
    exchangedWith_.store(qb, std::memory_order_release);
    QBRuntime::swizzleInstance(cls, sel_, qb);
    bool ok = markExchanged(rt::getInstanceMethod(cls, rt::sel(selector)), fn);
    if (host) noteHookInstalled(cls, sel_, false, ok);
    return ok;
  }

  // A class method added to the metaclass under `qbSelector` with the host's
  // type encoding `types`, then exchanged with the class method `selector`.
  bool exchangeClassMethod(rt::Class cls, std::string_view selector, std::string_view qbSelector,
                           Replacement fn, const char* types) {
    rt::Method host = cls ? rt::getClassMethod(cls, rt::sel(selector)) : nullptr;
    if (!host || !checkHookTypes(cls, host, true, hookTypes())) return false;
    rt::SEL qb = rt::sel(qbSelector);
    sel_ = rt::sel(selector);
    rt::Class meta = rt::classOf(rt::toId(cls));
    bool ok = rt::addMethod(meta, qb, reinterpret_cast<rt::IMP>(fn), types);
    if (ok) {
      exchangedWith_.store(qb, std::memory_order_release);
      rt::exchangeImplementations(host, rt::getClassMethod(cls, qb));
      ok = markExchanged(rt::getClassMethod(cls, rt::sel(selector)), fn);
    }
    noteHookInstalled(cls, sel_, true, ok);
    return ok;
  }

  bool installed() const { return imp() != nullptr || exchangedWith() != nullptr; }
  // The host's selector this hook answers (null until installed).
  rt::SEL selector() const { return sel_; }

  // The host's own answer, outside any policy. Only for an installed hook.
  R original(rt::Id self, rt::SEL cmd, A... args) const {
    if (rt::SEL qb = exchangedWith()) return rt::send<R>(self, qb, args...);
    return rt::call<R>(imp(), self, cmd, args...);
  }

  // The host's answer, or the fallback when nothing is stored.
  R originalOr(rt::Id self, rt::SEL cmd, A... args) const {
    if (installed()) return original(self, cmd, args...);
    if constexpr (!std::is_void_v<R>) return fallback;
  }

  // Handed to a body: asks the host's original, once. Calling it again gives
  // the first answer back rather than asking the host twice.
  class Original {
   public:
    bool available() const { return hook_.installed(); }
    R operator()(A... args) {
      if (called_) return answer();
      called_ = true;
      try {
        if constexpr (std::is_void_v<R>) {
          hook_.originalOr(self_, cmd_, args...);
        } else {
          value_ = hook_.originalOr(self_, cmd_, args...);
          return value_;
        }
      } catch (...) {
        raised_ = true;
        throw;
      }
    }

   private:
    friend class Hook;
    Original(const Hook& h, rt::Id self, rt::SEL cmd) : hook_(h), self_(self), cmd_(cmd) {}
    R answer() const {
      if constexpr (!std::is_void_v<R>) return value_;
    }
    const Hook& hook_;
    rt::Id self_;
    rt::SEL cmd_;
    bool called_ = false;
    bool raised_ = false;
    [[no_unique_address]] Fallback value_{};
  };

  // Runs `body(original)` under the policy above; `exLine` is the step's
  // "… ex: %@" log line.
  template <typename Body>
  R run(sys::ExLine exLine, Body&& body, rt::Id self, rt::SEL cmd, A... args) const {
    Original original(*this, self, cmd);
    try {
      return body(original);
    } catch (...) {
      if (original.raised_) throw;
      sys::logCaught(exLine);
    }
    if (original.called_) return original.answer();
    return originalOr(self, cmd, args...);
  }

 private:
  // The qb_ name was published before the exchange; it is withdrawn when the
  // exchange did not happen, since sending it would then reach the replacement.
  bool markExchanged(rt::Method now, Replacement fn) {
    if (now && rt::methodImplementation(now) == reinterpret_cast<rt::IMP>(fn)) return true;
    exchangedWith_.store(nullptr, std::memory_order_release);
    return false;
  }
  rt::IMP imp() const { return imp_.load(std::memory_order_acquire); }
  rt::SEL exchangedWith() const { return exchangedWith_.load(std::memory_order_acquire); }

  std::atomic<rt::IMP> imp_ = nullptr;
  rt::SEL sel_ = nullptr;
  std::atomic<rt::SEL> exchangedWith_ = nullptr;
};

// Steps that are not hook bodies are guarded the same way.
using sys::ExLine;
using sys::guarded;
using sys::logCaught;
using sys::quietly;

}  // namespace host

// Who keeps an object alive. A borrowed Id is valid for the call it came in;
// what the system keeps beyond that, across a delay, a gesture or an alert
// callback, it keeps in a Strong (as ARC's __strong) or a Weak (__weak: reads
// nil once the object is gone). What it makes with alloc/init or new it
// adopts into a Strong until it hands the object to an owner. The system
// never retains or releases by hand: only these two types do.
#pragma once

#include <utility>

#include "rt/types.hpp"

namespace rt {

namespace detail {
// objc_retain / objc_release. Nil does nothing. Releasing the last owner
// deallocates the object.
Id retain(Id obj);
void release(Id obj);
// objc_storeWeak: the weak slot at `slot` (which holds nil or what an earlier
// storeWeak put there) now reads `obj`, and nil once it is deallocated.
void storeWeak(Id* slot, Id obj);
// objc_loadWeakRetained: the slot's object, retained, or nil.
Id loadWeakRetained(Id* slot);
}  // namespace detail

class Strong {
 public:
  Strong() = default;
  explicit Strong(Id obj) : obj_(detail::retain(obj)) {}
  // Takes over the +1 that alloc/init, new or copy returned, without retaining.
  static Strong adopt(Id obj) {
    Strong s;
    s.obj_ = obj;
    return s;
  }
  Strong(const Strong& other) : obj_(detail::retain(other.obj_)) {}
  Strong(Strong&& other) noexcept : obj_(std::exchange(other.obj_, nullptr)) {}
  Strong& operator=(Strong other) noexcept {
    std::swap(obj_, other.obj_);
    return *this;
  }
  ~Strong() { detail::release(obj_); }

  Id get() const { return obj_; }
  explicit operator bool() const { return obj_ != nullptr; }
  void reset() { Strong().swap(*this); }
  void swap(Strong& other) noexcept { std::swap(obj_, other.obj_); }

 private:
  Id obj_ = nullptr;
};

class Weak {
 public:
  Weak() = default;
  explicit Weak(Id obj) { detail::storeWeak(&slot_, obj); }
  Weak(const Weak& other) { detail::storeWeak(&slot_, other.lock().get()); }
  Weak& operator=(const Weak& other) {
    if (this != &other) detail::storeWeak(&slot_, other.lock().get());
    return *this;
  }
  ~Weak() { detail::storeWeak(&slot_, nullptr); }

  // The object, kept alive for as long as the Strong lives; empty once it is gone.
  Strong lock() const { return Strong::adopt(detail::loadWeakRetained(&slot_)); }

 private:
  // Written by the runtime when the object is deallocated.
  mutable Id slot_ = nullptr;
};

}  // namespace rt

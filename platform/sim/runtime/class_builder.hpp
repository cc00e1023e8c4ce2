// Defining simulated classes from C++: the Foundation classes and the simulated
// host app's classes are built with this. Methods get their type encodings
// from their C++ function types.
#pragma once

#include <string>
#include <string_view>

#include "rt/runtime.hpp"
#include "rt/send.hpp"

namespace sim {

class ClassBuilder {
 public:
  // Starts a class; `super` empty makes a root class. An existing registered
  // class of that name is extended instead (methods only).
  explicit ClassBuilder(std::string_view name, std::string_view super = "NSObject");

  ClassBuilder& ivar(std::string_view name, std::string_view types);

  template <typename R, typename... A>
  ClassBuilder& method(std::string_view sel, R (*fn)(rt::Id, rt::SEL, A...)) {
    rt::addMethod(cls_, rt::sel(sel), fn);
    return *this;
  }
  template <typename R, typename... A>
  ClassBuilder& classMethod(std::string_view sel, R (*fn)(rt::Id, rt::SEL, A...)) {
    rt::addClassMethod(cls_, rt::sel(sel), fn);
    return *this;
  }
  // A method with an explicit (possibly offset-carrying) encoding, as a host
  // binary declares it.
  ClassBuilder& rawMethod(std::string_view sel, rt::IMP imp, const char* types);

  // Registers the class (if new) and returns it.
  rt::Class build();
  rt::Class cls() const { return cls_; }

 private:
  rt::Class cls_ = nullptr;
  bool existing_ = false;
};

}  // namespace sim

// Defining a host class the way the current host build has it: a class the
// build lacks is not defined, a method it lacks is left out, and a method made
// to raise raises whenever its implementation is reached.
#pragma once

#include <string>

#include "sim/hostapp/host_app.hpp"
#include "sim/runtime/class_builder.hpp"

namespace hostapp {

class HostClass {
 public:
  HostClass(HostApp& app, std::string name, std::string super = "NSObject");

  bool defined() const { return builder_ != nullptr; }

  HostClass& ivar(const std::string& name, const std::string& types) {
    if (builder_) builder_->ivar(name, types);
    return *this;
  }
  template <typename R, typename... A>
  HostClass& method(const std::string& sel, R (*fn)(rt::Id, rt::SEL, A...)) {
    if (builder_ && !app_.build.lacksMethod(name_, sel)) {
      builder_->method(sel, fn);
      note(sel, reinterpret_cast<rt::IMP>(fn));
    }
    return *this;
  }
  template <typename R, typename... A>
  HostClass& classMethod(const std::string& sel, R (*fn)(rt::Id, rt::SEL, A...)) {
    if (builder_ && !app_.build.lacksMethod(name_, "+" + sel) &&
        !app_.build.lacksMethod(name_, sel)) {
      builder_->classMethod(sel, fn);
      note("+" + sel, reinterpret_cast<rt::IMP>(fn));
    }
    return *this;
  }
  rt::Class build();

 private:
  void note(const std::string& sel, rt::IMP imp);

  HostApp& app_;
  std::string name_;
  std::unique_ptr<sim::ClassBuilder> builder_;
};

}  // namespace hostapp

#include "sim/runtime/class_builder.hpp"

#include <cstdio>
#include <cstdlib>

namespace sim {

ClassBuilder::ClassBuilder(std::string_view name, std::string_view super) {
  if (rt::Class found = rt::getClass(name)) {
    cls_ = found;
    existing_ = true;
    return;
  }
  rt::Class superCls = super.empty() ? nullptr : rt::getClass(super);
  if (!super.empty() && !superCls) {
    std::fprintf(stderr, "ClassBuilder: superclass %.*s of %.*s is not defined\n",
                 int(super.size()), super.data(), int(name.size()), name.data());
    std::abort();
  }
  cls_ = rt::allocateClassPair(superCls, name);
}

ClassBuilder& ClassBuilder::ivar(std::string_view name, std::string_view types) {
  std::string t(types);
  rt::addIvar(cls_, name, t.c_str());
  return *this;
}

ClassBuilder& ClassBuilder::rawMethod(std::string_view sel, rt::IMP imp, const char* types) {
  rt::addMethod(cls_, rt::sel(sel), imp, types);
  return *this;
}

rt::Class ClassBuilder::build() {
  if (!existing_) rt::registerClassPair(cls_);
  return cls_;
}

}  // namespace sim

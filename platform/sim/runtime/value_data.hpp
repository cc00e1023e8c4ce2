// The C++ state behind Foundation's value objects (strings, numbers,
// collections, index paths, dates) and the handles of their classes. The
// runtime keeps them because it interns the constants (equal strings, small
// numbers, index paths) and each process's runtime knows its Foundation
// classes; the simulated Foundation (frameworks/foundation) defines the
// classes and their selectors.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "base/value.hpp"
#include "rt/types.hpp"

namespace sim {

struct StringData {
  std::string utf8;
};
struct NumberData {
  base::Value value;  // Bool, Integer or Real
};
struct ArrayData {
  std::vector<rt::Id> items;
};
struct DictionaryData {
  std::vector<std::pair<rt::Id, rt::Id>> entries;  // insertion order
};
struct SetData {
  std::vector<rt::Id> items;
};
struct IndexPathData {
  long row = 0;
  long section = 0;
};
struct DateData {
  double referenceSeconds = 0;
};

struct FoundationClasses {
  rt::Class object = nullptr, string = nullptr, number = nullptr, null = nullptr, array = nullptr,
            mutableArray = nullptr, dictionary = nullptr, mutableDictionary = nullptr,
            set = nullptr, indexPath = nullptr, date = nullptr;
};

}  // namespace sim

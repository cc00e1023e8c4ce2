// NSNull, NSIndexPath and NSDate.
#include <cmath>
#include <cstdio>
#include <ctime>
#include <string>

#include "rt/foundation.hpp"
#include "rt/send.hpp"
#include "sim/runtime/class_builder.hpp"
#include "sim/frameworks/foundation/foundation.hpp"
#include "sim/runtime/runtime.hpp"
#include "sys/clock.hpp"

namespace sim {
namespace {

using rt::Id;
using rt::SEL;

Id nullSingleton(Id, SEL) { return rt::null(); }
Id nullDescription(Id, SEL) { return rt::str("<null>"); }

const IndexPathData& path(Id self) { return *native<IndexPathData>(self); }
long row(Id self, SEL) { return path(self).row; }
long section(Id self, SEL) { return path(self).section; }
bool pathEqual(Id self, SEL, Id other) {
  const IndexPathData* o = native<IndexPathData>(other);
  return o && o->row == path(self).row && o->section == path(self).section;
}
unsigned long pathHash(Id self, SEL) {
  return (unsigned long)(path(self).section * 1000003 + path(self).row);
}
Id pathDescription(Id self, SEL) {
  return rt::str("<NSIndexPath> {length = 2, path = " + std::to_string(path(self).section) + " - " +
                 std::to_string(path(self).row) + "}");
}
Id indexPathForRow(Id, SEL, long r, long s) { return rt::indexPath(r, s); }

double seconds(Id self) { return native<DateData>(self)->referenceSeconds; }
double sinceReference(Id self, SEL) { return seconds(self); }
double since1970(Id self, SEL) { return seconds(self) + 978307200.0; }
bool dateEqual(Id self, SEL, Id other) {
  const DateData* o = native<DateData>(other);
  return o && o->referenceSeconds == seconds(self);
}
Id dateDescription(Id self, SEL) {
  std::time_t t = std::time_t(std::floor(since1970(self, nullptr)));
  std::tm tm{};
  gmtime_r(&t, &tm);
  char buf[48];
  std::strftime(buf, sizeof buf, "%Y-%m-%d %H:%M:%S +0000", &tm);
  return rt::str(buf);
}
Id dateNow(Id, SEL) { return rt::now(); }
Id dateWithReference(Id, SEL, double s) { return rt::dateWithReferenceSeconds(s); }

}  // namespace

void registerMiscValues(Runtime& rtm) {
  FoundationClasses& f = rtm.foundation;
  f.null = ClassBuilder("NSNull")
               .classMethod("null", nullSingleton)
               .method("description", nullDescription)
               .build();
  f.indexPath = ClassBuilder("NSIndexPath")
                    .classMethod("indexPathForRow:inSection:", indexPathForRow)
                    .classMethod("indexPathForItem:inSection:", indexPathForRow)
                    .method("row", row)
                    .method("item", row)
                    .method("section", section)
                    .method("isEqual:", pathEqual)
                    .method("hash", pathHash)
                    .method("description", pathDescription)
                    .build();
  f.date = ClassBuilder("NSDate")
               .classMethod("date", dateNow)
               .classMethod("dateWithTimeIntervalSinceReferenceDate:", dateWithReference)
               .method("timeIntervalSinceReferenceDate", sinceReference)
               .method("timeIntervalSince1970", since1970)
               .method("isEqual:", dateEqual)
               .method("description", dateDescription)
               .build();
}

}  // namespace sim

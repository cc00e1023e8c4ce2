// Moments: the timeline items (WCDataItem), the facade that serves them by
// index (WCFacade), and the timeline screen (WCTimeLineViewController), which
// asks for the count and then for each item, top to bottom.
#include <map>

#include "sim/hostapp/host_class.hpp"
#include "sim/hostapp/surfaces.hpp"
#include "rt/foundation.hpp"
#include "rt/runtime.hpp"
#include "rt/send.hpp"
#include "sim/runtime/runtime.hpp"

namespace hostapp {
namespace {

using rt::Id;
using rt::SEL;

HostModel& model() { return HostApp::current().model; }

Id itemUsername(Id self, SEL) { return rt::ivarNamed(self, "username"); }

// One item object per timeline entry for the life of the process.
struct TimelineCache {
  std::map<long, Id> items;
};

unsigned long countOfTimelineDataItem(Id, SEL) { return model().moments.size(); }

Id getTimelineDataItemOfIndex(Id self, SEL, long index) {
  const std::vector<Moment>& moments = model().moments;
  rt::Class cls = rt::getClass("WCDataItem");
  if (index < 0 || index >= long(moments.size()) || !cls) return nullptr;
  const Moment& m = moments[std::size_t(index)];
  if (!sim::native<TimelineCache>(self)) self->native = TimelineCache{};
  Id& item = sim::native<TimelineCache>(self)->items[m.serial];
  if (!item) {
    item = rt::send<Id>(cls, "new");
    rt::setIvarNamed(item, "username", rt::str(m.username));
    rt::setIvarNamed(item, "contentDesc", rt::str(m.text));
  }
  return item;
}

std::vector<Id> timelineItems() {
  std::vector<Id> shown;
  Id facade = hostService("WCFacade");
  if (facade && rt::respondsTo(facade, rt::sel("countOfTimelineDataItem"))) {
    unsigned long n = rt::send<unsigned long>(facade, "countOfTimelineDataItem");
    bool canFetch = rt::respondsTo(facade, rt::sel("getTimelineDataItemOfIndex:"));
    for (unsigned long i = 0; i < n; ++i) {
      Id item = canFetch ? rt::send<Id>(facade, "getTimelineDataItemOfIndex:", long(i)) : nullptr;
      shown.push_back(item ? item : rt::null());
    }
  }
  return shown;
}

void timelineViewDidLoad(Id self, SEL) {
  rt::setIvarNamed(self, "m_items", rt::array(timelineItems()));
}

}  // namespace

void defineMomentsClasses(HostApp& app) {
  HostClass(app, "WCDataItem")
      .ivar("username", "@")
      .ivar("contentDesc", "@")
      .method("username", itemUsername)
      .build();
  HostClass(app, "WCFacade")
      .method("countOfTimelineDataItem", countOfTimelineDataItem)
      .method("getTimelineDataItemOfIndex:", getTimelineDataItemOfIndex)
      .build();
  HostClass(app, kMomentsScreenClass, "UIViewController")
      .ivar("m_items", "@")
      .method("viewDidLoad", timelineViewDidLoad)
      .build();
}

std::optional<std::vector<std::string>> momentsAnswer() {
  if (!rt::getClass(kMomentsScreenClass)) return std::nullopt;
  std::vector<std::string> out;
  for (Id item : timelineItems()) out.push_back(contactUsername(item));
  return out;
}

}  // namespace hostapp

// The one implementation behind every target-action the backend installs.
#include "trampoline.h"

#include "bridge.h"

@implementation QBTrampoline
- (void)fire:(id)sender {
  ios::shielded("action", [&] {
    if (action) action(sender);
  });
}
@end

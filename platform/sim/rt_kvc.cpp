#include "rt/kvc.hpp"

#include "rt/foundation.hpp"
#include "rt/send.hpp"

namespace rt {

Id valueForKey(Id obj, std::string_view key) { return send<Id>(obj, "valueForKey:", str(key)); }

void setValueForKey(Id obj, Id value, std::string_view key) { send<void>(obj, "setValue:forKey:", value, str(key)); }

}  // namespace rt

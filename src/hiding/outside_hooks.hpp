// QBOutsideHooks: keeps the secrets out of the records the system keeps about
// the app outside it, which anyone holding the phone can read without opening
// the app: the interactions donated for suggestions (the share sheet, Siri)
// and the app's searchable items. Hidden or revealed alike, a donation or an
// item that names a secret (outside_match.hpp) never reaches the system; when
// a contact becomes secret, what was left for it before is deleted.
#pragma once

#include "rt/types.hpp"

namespace hiding {

struct QBOutsideHooks {
  // Installs the two filters and follows the secret set, once per process.
  // At load, so that the host's first donation and index are filtered.
  static void install();

  // The building blocks, exposed for tests and the benchmark.
  static bool donationNamesSecret(rt::Id interaction);
  // The items of an NSArray of CSSearchableItem that name no secret: the
  // same array when none does, else a new one.
  static rt::Id itemsWithoutSecrets(rt::Id items);
};

// Where the secret set the outside records were last cleaned for is kept,
// under the Documents folder: a contact made secret while the library was not
// running is cleaned at the next start.
inline constexpr const char* kOutsideFile = "/Quenby/outside.plist";

}  // namespace hiding

// Darwin notifications (notify(3)): a name one process posts and any other
// watches, with nothing carried but the fact. A watch is a shared-memory
// check, far cheaper than looking at a file.
// On iOS: notify_post, notify_register_check and notify_check.
#pragma once

#include <string>

namespace sys {

// notify_post(name).
void postDarwinNotification(const std::string& name);
// notify_register_check(name, &token): a token to check; -1 when none could
// be had.
int watchDarwinNotification(const std::string& name);
// notify_check(token, &posted): whether the name was posted since the last
// check of this token (the first check says yes). An invalid token always
// says yes, so a caller falls back to looking for itself.
bool darwinNotificationPosted(int token);

}  // namespace sys

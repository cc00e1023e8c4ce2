// What iOS keeps about the app outside its process, where anyone holding the
// phone can read it without opening the app: Notification Center (what the
// lock screen lists), the suggestion store fed by donated interactions (the
// share sheet's and Siri's people) and the app's part of the search index.
// Plain data on the device, so it outlives every process. Safe from any
// thread: the frameworks write it from their own queues.
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "base/value.hpp"

namespace sim {

struct DeliveredNotification {
  std::string identifier;  // the request's; a later one with the same replaces it
  std::string from;        // whose message it announces, as the person reads it
  std::string title, body, threadIdentifier;
  base::Value userInfo;
};

struct Donation {
  std::string groupIdentifier;
  std::string conversationIdentifier;
  // The people the interaction names: the sender's and each recipient's
  // handle, or custom identifier when it has no handle.
  std::vector<std::string> people;
};

struct SearchItem {
  std::string uniqueIdentifier, domainIdentifier;
  std::string title, displayName, contentDescription;
  std::vector<std::string> keywords;
};

class SystemRecords {
 public:
  static constexpr std::size_t kSuggestionLimit = 8;

  // --- Notification Center, newest first.
  void deliver(DeliveredNotification n);
  // Removes exactly the identifiers given; unknown ones are ignored.
  void removeDelivered(const std::vector<std::string>& identifiers);
  std::vector<DeliveredNotification> delivered() const;

  // --- Donated interactions, most recent first.
  void donate(Donation d);
  void deleteDonations(const std::vector<std::string>& groupIdentifiers);
  void deleteAllDonations();
  std::vector<Donation> donations() const;
  // Who the share sheet suggests: each donation's conversation (else its
  // first person), most recent first, without repeats, at most 8.
  std::vector<std::string> suggestions() const;

  // --- The app's searchable items (an item indexed again replaces itself).
  void index(std::vector<SearchItem> items);
  void deleteItems(const std::vector<std::string>& uniqueIdentifiers);
  void deleteDomains(const std::vector<std::string>& domainIdentifiers);
  void deleteAllItems();
  std::vector<SearchItem> items() const;
  // What a system search for `text` finds: items whose title, display name,
  // description or a keyword contains it, ignoring case (ASCII), in index order.
  std::vector<SearchItem> search(const std::string& text) const;

 private:
  mutable std::mutex mutex_;
  std::vector<DeliveredNotification> delivered_;
  std::vector<Donation> donations_;
  std::vector<SearchItem> items_;
};

}  // namespace sim

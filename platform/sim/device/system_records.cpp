#include "sim/device/system_records.hpp"

#include <algorithm>
#include <cctype>

namespace sim {
namespace {

bool listed(const std::vector<std::string>& list, const std::string& s) {
  return std::find(list.begin(), list.end(), s) != list.end();
}

std::string folded(std::string s) {
  for (char& c : s) c = char(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

bool mentions(const std::string& field, const std::string& foldedText) {
  return !foldedText.empty() && folded(field).find(foldedText) != std::string::npos;
}

}  // namespace

void SystemRecords::deliver(DeliveredNotification n) {
  std::lock_guard lock(mutex_);
  std::erase_if(delivered_, [&](const auto& d) { return d.identifier == n.identifier; });
  delivered_.insert(delivered_.begin(), std::move(n));
}

void SystemRecords::removeDelivered(const std::vector<std::string>& identifiers) {
  std::lock_guard lock(mutex_);
  std::erase_if(delivered_, [&](const auto& d) { return listed(identifiers, d.identifier); });
}

std::vector<DeliveredNotification> SystemRecords::delivered() const {
  std::lock_guard lock(mutex_);
  return delivered_;
}

void SystemRecords::donate(Donation d) {
  std::lock_guard lock(mutex_);
  donations_.insert(donations_.begin(), std::move(d));
}

void SystemRecords::deleteDonations(const std::vector<std::string>& groupIdentifiers) {
  std::lock_guard lock(mutex_);
  std::erase_if(donations_, [&](const Donation& d) {
    return !d.groupIdentifier.empty() && listed(groupIdentifiers, d.groupIdentifier);
  });
}

void SystemRecords::deleteAllDonations() {
  std::lock_guard lock(mutex_);
  donations_.clear();
}

std::vector<Donation> SystemRecords::donations() const {
  std::lock_guard lock(mutex_);
  return donations_;
}

std::vector<std::string> SystemRecords::suggestions() const {
  std::lock_guard lock(mutex_);
  std::vector<std::string> people;
  for (const Donation& d : donations_) {
    std::string who = !d.conversationIdentifier.empty() ? d.conversationIdentifier
                      : d.people.empty()                ? ""
                                                        : d.people.front();
    if (who.empty() || listed(people, who)) continue;
    people.push_back(who);
    if (people.size() == kSuggestionLimit) break;
  }
  return people;
}

void SystemRecords::index(std::vector<SearchItem> items) {
  std::lock_guard lock(mutex_);
  for (SearchItem& item : items) {
    auto same = std::find_if(items_.begin(), items_.end(), [&](const SearchItem& i) {
      return i.uniqueIdentifier == item.uniqueIdentifier;
    });
    if (same != items_.end())
      *same = std::move(item);
    else
      items_.push_back(std::move(item));
  }
}

void SystemRecords::deleteItems(const std::vector<std::string>& uniqueIdentifiers) {
  std::lock_guard lock(mutex_);
  std::erase_if(items_,
                [&](const auto& i) { return listed(uniqueIdentifiers, i.uniqueIdentifier); });
}

void SystemRecords::deleteDomains(const std::vector<std::string>& domainIdentifiers) {
  std::lock_guard lock(mutex_);
  // A domain also takes its subdomains ("chats" takes "chats.alice"), as the
  // search index does.
  std::erase_if(items_, [&](const SearchItem& i) {
    for (const std::string& d : domainIdentifiers)
      if (!d.empty() && (i.domainIdentifier == d || i.domainIdentifier.rfind(d + ".", 0) == 0))
        return true;
    return false;
  });
}

void SystemRecords::deleteAllItems() {
  std::lock_guard lock(mutex_);
  items_.clear();
}

std::vector<SearchItem> SystemRecords::items() const {
  std::lock_guard lock(mutex_);
  return items_;
}

std::vector<SearchItem> SystemRecords::search(const std::string& text) const {
  std::lock_guard lock(mutex_);
  std::string f = folded(text);
  std::vector<SearchItem> found;
  for (const SearchItem& i : items_) {
    bool hit =
        mentions(i.title, f) || mentions(i.displayName, f) || mentions(i.contentDescription, f);
    for (const std::string& k : i.keywords) hit = hit || mentions(k, f);
    if (hit) found.push_back(i);
  }
  return found;
}

}  // namespace sim

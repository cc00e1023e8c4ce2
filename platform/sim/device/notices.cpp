#include "sim/device/notices.hpp"

namespace sim {

void Notices::begin(std::string from, std::string kind, std::string text, double secondOfDay) {
  std::lock_guard lock(mutex_);
  Announcement a;
  a.from = std::move(from);
  a.kind = std::move(kind);
  a.text = std::move(text);
  a.secondOfDay = secondOfDay;
  list_.push_back(std::move(a));
}

Announcement& Notices::open() {
  if (list_.empty())
    list_.push_back(Announcement{"", "message", "", "", false, 0, false, false, 0});
  return list_.back();
}

std::string Notices::openFrom() const {
  std::lock_guard lock(mutex_);
  return list_.empty() ? "" : list_.back().from;
}

void Notices::banner(const std::string& where) {
  std::lock_guard lock(mutex_);
  open().banner = where;
}

void Notices::sound() {
  std::lock_guard lock(mutex_);
  open().sound = true;
}

void Notices::vibrate() {
  std::lock_guard lock(mutex_);
  ++open().vibrations;
}

void Notices::ring() {
  std::lock_guard lock(mutex_);
  open().ringing = true;
}

bool Notices::endCall(const std::string& from) {
  std::lock_guard lock(mutex_);
  for (auto it = list_.rbegin(); it != list_.rend(); ++it) {
    if (!it->ringing || (!from.empty() && it->from != from)) continue;
    it->ringing = false;
    it->ended = true;
    return true;
  }
  return false;
}

bool Notices::ringing(const std::string& from) const {
  auto call = latestCall(from);
  return call && call->ringing;
}

bool Notices::anyRinging() const {
  std::lock_guard lock(mutex_);
  for (const Announcement& a : list_)
    if (a.ringing) return true;
  return false;
}

std::optional<Announcement> Notices::latest(const std::string& from) const {
  std::lock_guard lock(mutex_);
  for (auto it = list_.rbegin(); it != list_.rend(); ++it)
    if (it->from == from) return *it;
  return std::nullopt;
}

std::optional<Announcement> Notices::latestCall(const std::string& from) const {
  std::lock_guard lock(mutex_);
  for (auto it = list_.rbegin(); it != list_.rend(); ++it)
    if (it->from == from && it->isCall()) return *it;
  return std::nullopt;
}

std::vector<Announcement> Notices::all() const {
  std::lock_guard lock(mutex_);
  return list_;
}

void Notices::clear() {
  std::lock_guard lock(mutex_);
  list_.clear();
}

}  // namespace sim

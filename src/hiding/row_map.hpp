// RowMap: which host row each shown row of a filtered list is, walked once
// per version of the host's list and then answered in constant time per row
// (the walk from the top for every row made a full pass quadratic).
//
// A map answers only while what it was walked under still holds (RowMapKey):
// the same list (getter, owner, section), the same host count, no flush since
// (every refresh of the filter, soft reload and rebuild flushes), the same
// settings revision, and less than the filtered count's 0.45 s. On top of
// that each reuse re-reads one host entry it relies on and compares it with
// what the walk saw: the row it answers with, or the last one walked before
// walking on, and for a count the first and the last. A host that rebuilt its
// list, moved a chat to the top or whose getter now raises is therefore
// walked again, or fails as the walk would have. A change that keeps the
// count and every entry re-read (a chat swapped for another under the same
// row) lives at most the lifetime, as the filtered count always could.
// Entries are compared by address only; they are not kept alive.
#pragma once

#include <cstdint>
#include <vector>

#include "rt/types.hpp"

namespace hiding {

inline constexpr double kRowMapLife_s = 0.45;

struct RowMapKey {
  const void* getter = nullptr;  // which stored original the walk fetches with
  rt::Id owner = nullptr;
  long section = 0;
  long hostCount = 0;  // what the host's count getter answered
  long limit = 0;      // how far the walk goes (the count, or a scan cap)
  std::uint64_t flushes = 0;
  std::uint64_t revision = 0;
  friend bool operator==(const RowMapKey&, const RowMapKey&) = default;
};

class RowMap {
 public:
  // The host index of shown row `row`, or -1 past the end (and for a negative
  // row). `fetch(i)` is the host's entry at index i and may raise: a raise
  // leaves what was walked so far and reaches the caller, as it would have
  // from the walk. `hides(entry)` is the filter's test.
  template <typename Fetch, typename Hides>
  long hostRow(const RowMapKey& key, double now, long row, Fetch&& fetch, Hides&& hides) {
    if (reuse(key, now)) {
      bool known = row >= 0 && row < long(shown_.size());
      if (!sameAt(known ? shown_[std::size_t(row)] : walked() - 1, fetch)) restart(key, now);
    }
    while ((row < 0 || row >= long(shown_.size())) && walked() < key.limit) step(fetch, hides);
    return row >= 0 && row < long(shown_.size()) ? shown_[std::size_t(row)] : -1;
  }

  // How many of the host's entries up to the limit the filter leaves.
  template <typename Fetch, typename Hides>
  long shownCount(const RowMapKey& key, double now, Fetch&& fetch, Hides&& hides) {
    if (reuse(key, now) && !(sameAt(0, fetch) && sameAt(walked() - 1, fetch))) restart(key, now);
    while (walked() < key.limit) step(fetch, hides);
    return long(shown_.size());
  }

  // What the host gave at index i when last asked: after hostRow answered
  // i, the host's entry there now.
  rt::Id entryAt(long i) const { return entries_[std::size_t(i)]; }

 private:
  long walked() const { return long(entries_.size()); }

  // Whether the map fits `key` at `now` and holds something to check;
  // otherwise it is emptied for `key`.
  bool reuse(const RowMapKey& key, double now) {
    if (live_ && key_ == key && now - walkedAt_ < kRowMapLife_s && now >= walkedAt_ &&
        !entries_.empty())
      return true;
    restart(key, now);
    return false;
  }
  void restart(const RowMapKey& key, double now) {
    key_ = key;
    walkedAt_ = now;
    live_ = true;
    entries_.clear();
    shown_.clear();
  }
  template <typename Fetch>
  bool sameAt(long i, Fetch& fetch) const {
    return fetch(i) == entries_[std::size_t(i)];
  }
  template <typename Fetch, typename Hides>
  void step(Fetch& fetch, Hides& hides) {
    long i = walked();
    rt::Id entry = fetch(i);
    bool hidden = hides(entry);
    entries_.push_back(entry);
    if (!hidden) shown_.push_back(i);
  }

  RowMapKey key_;
  double walkedAt_ = 0;
  bool live_ = false;
  std::vector<rt::Id> entries_;  // the host's entry at each index walked
  std::vector<long> shown_;      // the host index of each shown row
};

}  // namespace hiding

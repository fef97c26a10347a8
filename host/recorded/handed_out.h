// Objects that a machine hands out. A module may let go of one without closing it, and in places
// does so on purpose: on Windows it then stays open as long as the process, here as long as the
// machine.
#pragma once

#include <set>

namespace host {

class HandedOut;

/// The objects that nobody has closed yet; deletes them in the end.
class HandedOutList {
 public:
  HandedOutList() = default;
  HandedOutList(const HandedOutList&) = delete;
  HandedOutList& operator=(const HandedOutList&) = delete;
  ~HandedOutList();

 private:
  friend class HandedOut;
  std::set<HandedOut*> open;
};

/// Is in its machine's list as long as it lives. The list must outlive it.
class HandedOut {
 public:
  explicit HandedOut(HandedOutList& list) : list(list) { list.open.insert(this); }
  HandedOut(const HandedOut&) = delete;
  HandedOut& operator=(const HandedOut&) = delete;
  virtual ~HandedOut() { list.open.erase(this); }

 private:
  HandedOutList& list;
};

inline HandedOutList::~HandedOutList() {
  while (!open.empty()) delete *open.begin();
}

}  // namespace host

// What a machine hands out and a module may let go without closing it, as it deliberately does here
// and there: on Windows such an object stays open as long as the process; here as long as the
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

/// Stands in its machine's list from its making to its end. The list must outlive it.
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

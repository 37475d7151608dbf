// A store may keep changes in groups: what a change did lasts once its group has been kept, and has not
// happened when the group could not be kept.
#pragma once

#include <string>

namespace tidyfold {

class Group_Watcher {
 public:
  virtual ~Group_Watcher() = default;
  // A group that holds changes is about to be kept.
  virtual void Group_Ending() = 0;
  // Between the two, for a store that can say so: a single change of the group that has not happened, though
  // the others have, and why, in a sentence for a person; and an item that got another EntryID with a change,
  // which its object could not tell yet. By the EntryID that the item had.
  virtual void Not_Kept(const std::string& /*store_id*/, const std::string& /*entry_id*/,
                        const std::string& /*reason*/) {}
  virtual void Renamed(const std::string& /*store_id*/, const std::string& /*entry_id*/,
                       const std::string& /*new_entry_id*/) {}
  // Every change to the store since its group before has been kept, except those named, or none of them has
  // happened. Not called for a group without changes. Must not throw or change a store.
  virtual void Group_Ended(const std::string& store_id, bool kept) = 0;
};

class Change_Groups {
 public:
  virtual ~Change_Groups() = default;
  // Ends the group of every store, also where one fails; throws the first failure's Automation_Error. A group
  // also ends in front of a change when it has grown large, and with a change whose failure undoes it.
  virtual void Commit_Pending() = 0;
  // At a yield, where nobody needs to know yet: likewise, but a store that does more changes at once faster
  // than one by one may let them wait for others. False where some wait.
  virtual bool Commit_Due() {
    Commit_Pending();
    return true;
  }
  // Whom to tell; at most one, nullptr for nobody. The watcher must outlive the watching.
  virtual void Watch(Group_Watcher* watcher) = 0;
};

}  // namespace tidyfold

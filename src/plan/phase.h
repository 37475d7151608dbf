// What the program is doing, as one value with its transitions in one place.
#pragma once

#include <functional>
#include <vector>

namespace tidyfold {

enum class Phase {
  Idle,
  Building,    // the tree is being read; nothing can be used
  Loading,     // items are being read; everything can be used
  Stopping,    // loading ends at its next yield
  Asking,      // a run's questions are open; nothing has been changed
  Cleaning,    // a run, or the taking back of one, is under way
  Cancelling,  // it ends after the item that it is at
  Store_Gone,  // what is under way ends because the store cannot be reached any more
};

// Phases nest, because a yield lets handlers run in the middle of longer work: a run may begin while items
// load, and when it has ended, loading goes on. What was entered last is the phase of the program.
class Program_Phase {
 public:
  // Leaves what it entered when it goes, however it goes.
  class Scope {
   public:
    Scope(Program_Phase& owner, Phase phase);
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    ~Scope();

   private:
    Program_Phase& owner_;
    std::size_t depth_;
  };

  Phase Now() const { return nested_.empty() ? Phase::Idle : nested_.back().now; }
  bool Is_Idle() const { return nested_.empty(); }
  // Whether building or loading is under way, possibly further out.
  bool Is_Loading() const;
  // Whether a run is under way, from its first question to its last step.
  bool Is_Run() const;
  // The run may remove things: every loop of a run ends when this turns false.
  bool Processing() const { return Now() == Phase::Cleaning; }

  // The transitions within a scope. Each does nothing where it does not apply.
  void Begin_Cleaning();  // Asking -> Cleaning
  void Cancel_Run();      // Cleaning -> Cancelling; Asking -> Cancelling
  void Stop_Loading();    // Loading -> Stopping, also further out
  void Tree_Is_There();   // Building -> Loading
  void Lose_Store();      // all that is under way -> Store_Gone

  // Runs after every change.
  std::function<void()> changed;

 private:
  struct Level {
    Phase begun, now;
  };

  void Set(Level& level, Phase value);
  void Tell() const {
    if (changed) changed();
  }

  std::vector<Level> nested_;
};

}  // namespace tidyfold

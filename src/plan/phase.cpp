#include "plan/phase.h"

#include <algorithm>

namespace tidyfold {

Program_Phase::Scope::Scope(Program_Phase& owner, Phase phase) : owner_(owner), depth_(owner.nested_.size()) {
  owner_.nested_.push_back({phase, phase});
  owner_.Tell();
}

Program_Phase::Scope::~Scope() {
  owner_.nested_.resize(depth_);
  owner_.Tell();
}

void Program_Phase::Set(Level& level, Phase value) {
  if (level.now == value) return;
  level.now = value;
  Tell();
}

bool Program_Phase::Is_Loading() const {
  return std::any_of(nested_.begin(), nested_.end(), [](const Level& level) {
    return level.begun == Phase::Building || level.begun == Phase::Loading;
  });
}

bool Program_Phase::Is_Run() const {
  return std::any_of(nested_.begin(), nested_.end(), [](const Level& level) {
    return level.begun == Phase::Asking || level.begun == Phase::Cleaning;
  });
}

void Program_Phase::Begin_Cleaning() {
  if (Now() == Phase::Asking) Set(nested_.back(), Phase::Cleaning);
}

void Program_Phase::Cancel_Run() {
  if (Now() == Phase::Cleaning || Now() == Phase::Asking) Set(nested_.back(), Phase::Cancelling);
}

void Program_Phase::Stop_Loading() {
  for (Level& level : nested_)
    if (level.now == Phase::Loading || level.now == Phase::Building) Set(level, Phase::Stopping);
}

void Program_Phase::Tree_Is_There() {
  if (Now() == Phase::Building) Set(nested_.back(), Phase::Loading);
}

void Program_Phase::Lose_Store() {
  for (Level& level : nested_) Set(level, Phase::Store_Gone);
}

}  // namespace tidyfold

// A flag that is set for as long as something lasts, however it ends.
#pragma once

namespace tidyfold {

class Flag_Scope {
 public:
  explicit Flag_Scope(bool& flag) : flag_(flag) { flag_ = true; }
  Flag_Scope(const Flag_Scope&) = delete;
  Flag_Scope& operator=(const Flag_Scope&) = delete;
  ~Flag_Scope() { flag_ = false; }

 private:
  bool& flag_;
};

}  // namespace tidyfold

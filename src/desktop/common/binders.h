// The binders of one window, in the order of their creation.
#pragma once

#include <memory>
#include <utility>
#include <vector>

#include "desktop/common/control_binder.h"

namespace tidyfold {

class Binders {
 public:
  template <class Binder, class... Arguments>
  Binder& Add(Arguments&&... arguments) {
    auto binder = std::make_unique<Binder>(std::forward<Arguments>(arguments)...);
    Binder& added = *binder;
    binders_.push_back(std::move(binder));
    return added;
  }
  // Updates all widgets from their models.
  void Show() {
    for (const auto& binder : binders_) binder->Show();
  }
  void Clear() { binders_.clear(); }

 private:
  std::vector<std::unique_ptr<Control_Binder>> binders_;
};

}  // namespace tidyfold

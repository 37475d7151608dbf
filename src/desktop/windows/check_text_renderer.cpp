#include "desktop/common/check_text_renderer.h"

#include <utility>

namespace tidyfold {

namespace {

class Check_Text_Renderer : public wxDataViewCheckIconTextRenderer {
 public:
  explicit Check_Text_Renderer(Tick_Handler ticked) : ticked_(std::move(ticked)) {}

  bool ActivateCell(const wxRect& cell, wxDataViewModel* model, const wxDataViewItem& item, unsigned column,
                    const wxMouseEvent* mouse) override {
    // The base class finds the check box and calls SetValue, which only notifies the model. Nothing is
    // toggled here.
    (void)wxDataViewCheckIconTextRenderer::ActivateCell(cell, model, item, column, mouse);
    return true;
  }

 private:
  Tick_Handler ticked_;
};

}  // namespace

// wxWidgets' accessible objects know no ticks, so that nothing is ever asked for.
wxDataViewRenderer* New_Check_Text_Renderer(Tick_Handler clicked, Tick_Handler) {
  return new Check_Text_Renderer(std::move(clicked));
}

}  // namespace tidyfold

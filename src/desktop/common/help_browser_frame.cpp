#include "desktop/common/help_browser_frame.h"

#include <wx/artprov.h>
#include <wx/display.h>
#include <wx/frame.h>
#include <wx/panel.h>
#include <wx/timer.h>
#include <wx/toolbar.h>
#include <wx/webview.h>

#include <memory>
#include <utility>

#include "desktop/common/application_icon.h"
#include "desktop/common/control_binder.h"
#include "desktop/common/page_engine.h"
#include "desktop/common/scale.h"
#include "desktop/common/system_look.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

namespace {

// Unscaled pixels. The smallest height that the model keeps is 5010 twips, which is 334 pixels.
constexpr int smallest_width = 320, smallest_height = 334;
// How often, and how many times at most, a question looks whether its window has come to the front.
constexpr int look_pace = 20, most_looks = 50;  // milliseconds

class Page_Frame : public wxFrame, public Help_Browser_Frame {
 public:
  explicit Page_Frame(Help_Browser_Window& model)
      : wxFrame(nullptr, wxID_ANY, To_Wx(model.frmHelpBrowser.Caption())),
        model_(model),
        scale_(*this),
        surface_(new wxPanel(this)),
        view_(wxWebView::New(surface_, wxID_ANY, wxString())) {
    SetName(To_Wx(model_.frmHelpBrowser.Name()));
    SetIcons(Application_Icons());
    if (view_ == nullptr) return;
    // A page is what the site says now, or a message that it cannot be reached; never an old copy.
    Keep_No_Pages();
    Build_Tools();
    SetMinClientSize(FromDIP(wxSize(smallest_width, smallest_height)));
    SetClientSize(Size_Of_Model());
    CentreOnScreen();
    binder_ = std::make_unique<Control_Binder>(model_.WebBrowser1, *view_);
    binder_->Follow_Position(scale_);

    view_->Bind(wxEVT_WEBVIEW_ERROR, [this](wxWebViewEvent& event) {
      if (event.GetInt() != wxWEBVIEW_NAV_ERR_USER_CANCELLED) Failed(event.GetURL(), event.GetString());
    });
    view_->Bind(wxEVT_WEBVIEW_TITLE_CHANGED, [this](wxWebViewEvent& event) {
      const wxString caption = To_Wx(model_.frmHelpBrowser.Caption()), title = event.GetString();
      SetTitle(title.empty() || title == caption ? caption : title + " - " + caption);
    });
    view_->Bind(wxEVT_WEBVIEW_LOADED, [this](wxWebViewEvent& event) {
      Enable_Tools();
      if (const unsigned status = Status_Of_Answer(*view_); status >= 400)
        Failed(event.GetURL(), wxString::Format("The site answered with status %u.", status));
    });
    failure_.Bind(wxEVT_TIMER, [this](wxTimerEvent&) { Tell_Failure(); });
    Bind(wxEVT_SIZE, [this](wxSizeEvent& event) {
      event.Skip();
      Take_Size();
    });
    Bind(wxEVT_CLOSE_WINDOW, [this](wxCloseEvent& event) {
      if (event.CanVeto()) event.Veto();
      tidyfold::Raise(model_.frmHelpBrowser.Close);
    });
    Bind(wxEVT_CHAR_HOOK, [this](wxKeyEvent& event) {
      event.GetKeyCode() == WXK_ESCAPE ? static_cast<void>(Close()) : event.Skip();
    });
  }

  bool Has_View() const { return view_ != nullptr; }

  // wxWidgets deletes the frame a little later, when the model may have gone.
  void End() override {
    failure_.Stop();
    binder_.reset();
    Destroy();
  }

  void Load(const std::string& address) override {
    view_->LoadURL(To_Wx(address));
    if (!IsShown()) return;
    Restore();
    wxFrame::Raise();
  }

  void Show_Form() override {
    const wxSize wanted = Size_Of_Model();
    if (!taking_size_ && wanted != GetClientSize()) {
      // Cut down to the screen; the model takes over the real size, for that is what is kept.
      wxSize size = wanted;
      size.DecTo(wxDisplay(this).GetClientArea().GetSize() - (GetSize() - GetClientSize()));
      size.IncTo(GetMinClientSize());
      SetClientSize(size);
      if (size != wanted) Tell_Size(size);
    }
    if (model_.frmHelpBrowser.Visible() == IsShown()) return;
    Show(model_.frmHelpBrowser.Visible());
    view_->SetFocus();
  }

 private:
  void Build_Tools() {
    wxToolBar& tools = *CreateToolBar(wxTB_HORIZONTAL | wxTB_FLAT | Tool_Bar_Style());
    const auto add = [&](wxWindowID id, const wxString& label, const wxArtID& picture, const wxString& tip) {
      tools.AddTool(id, label, wxArtProvider::GetBitmapBundle(picture, wxART_TOOLBAR), tip);
    };
    add(wxID_BACKWARD, "Back", wxART_GO_BACK, "Back to the page before");
    add(wxID_FORWARD, "Forward", wxART_GO_FORWARD, "On to the page that was left");
    add(wxID_REFRESH, "Load Again", wxART_REFRESH, "Load this page again");
    tools.Realize();
    Bind(
        wxEVT_TOOL, [this](wxCommandEvent&) { view_->GoBack(); }, wxID_BACKWARD);
    Bind(
        wxEVT_TOOL, [this](wxCommandEvent&) { view_->GoForward(); }, wxID_FORWARD);
    Bind(
        wxEVT_TOOL, [this](wxCommandEvent&) { view_->LoadURL(view_->GetCurrentURL()); }, wxID_REFRESH);
    Enable_Tools();
  }

  void Enable_Tools() {
    GetToolBar()->EnableTool(wxID_BACKWARD, view_->CanGoBack());
    GetToolBar()->EnableTool(wxID_FORWARD, view_->CanGoForward());
  }

  // The question that follows runs an event loop of its own, which must not run inside the view's handler.
  // It belongs above this window, which may not be in front yet.
  void Failed(const wxString& address, const wxString& reason) {
    failed_address_ = From_Wx(address);
    failed_reason_ = From_Wx(reason);
    looks_left_ = most_looks;
    failure_.Start(look_pace);
  }

  void Tell_Failure() {
    if (!Is_In_Front(*this) && --looks_left_ > 0) return;
    failure_.Stop();
    tidyfold::Raise(model_.WebBrowser1.NavigateError, failed_address_, failed_reason_);
  }

  wxSize Size_Of_Model() const {
    return {scale_.Pixels(model_.frmHelpBrowser.Width()), scale_.Pixels(model_.frmHelpBrowser.Height())};
  }

  void Tell_Size(const wxSize& client) {
    const bool outer = std::exchange(taking_size_, true);
    model_.frmHelpBrowser.Set_Width(scale_.To_Twips(client.x));
    model_.frmHelpBrowser.Set_Height(scale_.To_Twips(client.y));
    taking_size_ = outer;
  }

  void Take_Size() {
    if (!model_.frmHelpBrowser.Visible() || IsIconized() || GetClientSize() == Size_Of_Model()) return;
    Tell_Size(GetClientSize());
    tidyfold::Raise(model_.frmHelpBrowser.Resize);
  }

  Help_Browser_Window& model_;
  Scale scale_;
  wxPanel* surface_;
  wxWebView* view_;
  std::unique_ptr<Control_Binder> binder_;
  bool taking_size_ = false;
  wxTimer failure_;
  int looks_left_ = 0;
  std::string failed_address_, failed_reason_;
};

}  // namespace

Help_Browser_Frame* Make_Help_Browser_Frame(Help_Browser_Window& model) {
  if (!Has_Page_Engine()) return nullptr;
  auto* const frame = new Page_Frame(model);
  if (frame->Has_View()) return frame;
  frame->End();
  return nullptr;
}

}  // namespace tidyfold

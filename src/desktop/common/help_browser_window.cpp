#include "desktop/common/help_browser_window.h"

#include <wx/app.h>
#include <wx/artprov.h>
#include <wx/display.h>
#include <wx/log.h>
#include <wx/panel.h>
#include <wx/timer.h>
#include <wx/toolbar.h>
#include <wx/utils.h>
#ifdef TIDYFOLD_WEB_VIEW
#include <wx/webview.h>
#ifdef __WXGTK__
#include <webkit2/webkit2.h>
#elif defined(__WXMSW__)
#include <wx/dynlib.h>
#endif
#endif

#include <memory>
#include <utility>

#include "desktop/common/application_icon.h"
#include "desktop/common/control_binder.h"
#include "desktop/common/text_conversion.h"

namespace tidyfold {

#ifdef TIDYFOLD_WEB_VIEW

namespace {

// Unscaled pixels. A window lower than this would not come back in its size.
constexpr int smallest_width = 320, smallest_height = 334;
// How long a question waits for the window that it belongs to, where that never comes to the front.
constexpr int look_pace = 20, most_looks = 50;  // milliseconds

// What the toolkit's view stands on.
bool Has_Page_Engine() {
#ifdef __WXMSW__
  // A view can be made without it, but never shows a page.
  const wxDynamicLibrary engine("mshtml.dll", wxDL_DEFAULT | wxDL_QUIET);
  if (!engine.IsLoaded()) return false;
#endif
  return wxWebView::IsBackendAvailable(wxWebViewBackendDefault);
}

}  // namespace

class Help_Browser_Frame : public wxFrame {
 public:
  static Help_Browser_Frame* Make(Help_Browser_Window& model) {
    if (!Has_Page_Engine()) return nullptr;
    auto* const frame = new Help_Browser_Frame(model);
    if (frame->view_ != nullptr) return frame;
    frame->End();
    return nullptr;
  }

  // The frame itself goes a little later, when the model may have gone.
  void End() {
    failure_.Stop();
    binder_.reset();
    Destroy();
  }

  void Load(const std::string& address) { view_->LoadURL(To_Wx(address)); }

  void Show_Form() {
    const wxSize wanted = Size_Of_Model();
    if (!taking_size_ && wanted != GetClientSize()) {
      // Cut down to the screen, and the model told, for its size is what is kept.
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
  explicit Help_Browser_Frame(Help_Browser_Window& model)
      : wxFrame(nullptr, wxID_ANY, To_Wx(model.frmHelpBrowser.Caption())),
        model_(model),
        scale_(*this),
        surface_(new wxPanel(this)),
        view_(wxWebView::New(surface_, wxID_ANY, wxString())) {
    SetName(To_Wx(model_.frmHelpBrowser.Name()));
    SetIcons(Application_Icons());
    if (view_ == nullptr) return;
#ifdef __WXGTK__
    // Nothing is kept of earlier visits: what shows is what the site says now, or that it cannot be reached.
    webkit_web_context_set_cache_model(webkit_web_context_get_default(), WEBKIT_CACHE_MODEL_DOCUMENT_VIEWER);
#endif
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
      if (const unsigned status = Status_Of_Answer(); status >= 400)
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

  void Build_Tools() {
#ifdef __WXMSW__
    // The toolkit has no pictures of its own for all of them there.
    constexpr long looks = wxTB_TEXT | wxTB_NOICONS;
#else
    constexpr long looks = 0;
#endif
    wxToolBar& tools = *CreateToolBar(wxTB_HORIZONTAL | wxTB_FLAT | looks);
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

  // A site that has no such page sends one of its own that says so. 0 where it is not known: for a file, or
  // where the toolkit does not tell.
  unsigned Status_Of_Answer() {
#ifdef __WXGTK__
    WebKitWebResource* const page =
        webkit_web_view_get_main_resource(WEBKIT_WEB_VIEW(view_->GetNativeBackend()));
    WebKitURIResponse* const answer = page == nullptr ? nullptr : webkit_web_resource_get_response(page);
    return answer == nullptr ? 0 : webkit_uri_response_get_status_code(answer);
#else
    return 0;
#endif
  }

  // The question that follows runs an event loop of its own, which must not run inside the view's handler;
  // and it belongs above this window, which may not be in front yet.
  void Failed(const wxString& address, const wxString& reason) {
    failed_address_ = From_Wx(address);
    failed_reason_ = From_Wx(reason);
    looks_left_ = most_looks;
    failure_.Start(look_pace);
  }

  void Tell_Failure() {
    if (!Is_In_Front() && --looks_left_ > 0) return;
    failure_.Stop();
    tidyfold::Raise(model_.WebBrowser1.NavigateError, failed_address_, failed_reason_);
  }

  bool Is_In_Front() {
#ifdef __WXGTK__
    return gtk_window_is_active(GTK_WINDOW(GetHandle())) != FALSE;  // the toolkit says so too early
#else
    return IsActive();
#endif
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

#else

class Help_Browser_Frame : public wxFrame {
 public:
  static Help_Browser_Frame* Make(Help_Browser_Window&) { return nullptr; }
  void End() {}
  void Load(const std::string&) {}
  void Show_Form() {}
};

#endif

Help_Browser_Binder::Help_Browser_Binder(Help_Browser_Window& model, Message_Box& message_box)
    : model_(model), message_box_(message_box) {
  model_.frmHelpBrowser.changed = [this] { Show_Form(); };
  model_.WebBrowser1.Navigating = [this](const std::string& address) { Navigate(address); };
}

Help_Browser_Binder::~Help_Browser_Binder() {
  model_.frmHelpBrowser.changed = nullptr;
  model_.WebBrowser1.Navigating = nullptr;
  if (frame_ != nullptr) frame_->End();
}

void Help_Browser_Binder::Show_Form() {
  if (!model_.frmHelpBrowser.Loaded()) {
    if (frame_ != nullptr) std::exchange(frame_, nullptr)->End();
    return;
  }
  if (frame_ == nullptr) frame_ = Help_Browser_Frame::Make(model_);
  if (frame_ != nullptr) frame_->Show_Form();
}

void Help_Browser_Binder::Navigate(const std::string& address) {
  if (frame_ == nullptr) {
    wxTheApp->CallAfter([this, address] { Show_In_System_Browser(address); });
    return;
  }
  frame_->Load(address);
  if (frame_->IsShown()) {
    frame_->Restore();
    frame_->Raise();
  }
}

void Help_Browser_Binder::Show_In_System_Browser(const std::string& address) {
  model_.frmHelpBrowser.Unload();
  const auto starts = [&address] {
    const wxLogNull told_below;
    return wxLaunchDefaultBrowser(To_Wx(address));
  };
  if (!starts()) {
    Raise(model_.WebBrowser1.NavigateError, address, std::string("No Web browser could be started."));
    return;
  }
  message_box_.Show(
      "Tidyfold has no window of its own for Web pages here. The page opens in your Web browser:\r\n" +
      address);
}

}  // namespace tidyfold

#include "stores/automation/busy_filter.h"

namespace tidyfold::com {

namespace {

// Long enough for a send and receive or for a box that is answered at once; short enough for the person who
// waits at the window.
constexpr DWORD patience = 20000;  // milliseconds
constexpr DWORD pause = 100;       // below this, the system would not wait at all
constexpr DWORD give_up = static_cast<DWORD>(-1);

class Filter : public IMessageFilter {
 public:
  virtual ~Filter() = default;
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) override {
    if (object == nullptr) return E_POINTER;
    *object = nullptr;
    if (!IsEqualIID(wanted, IID_IUnknown) && !IsEqualIID(wanted, IID_IMessageFilter)) return E_NOINTERFACE;
    AddRef();
    *object = static_cast<IMessageFilter*>(this);
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  DWORD STDMETHODCALLTYPE HandleInComingCall(DWORD, HTASK, DWORD, LPINTERFACEINFO) override {
    return SERVERCALL_ISHANDLED;
  }
  DWORD STDMETHODCALLTYPE RetryRejectedCall(HTASK, DWORD elapsed, DWORD) override {
    return elapsed < patience ? pause : give_up;
  }
  // Nobody's handler runs inside a call into the store; the system keeps painting and activation alive.
  DWORD STDMETHODCALLTYPE MessagePending(HTASK, DWORD, DWORD) override { return PENDINGMSG_WAITDEFPROCESS; }

 private:
  ULONG references_ = 1;
};

}  // namespace

Busy_Filter::Busy_Filter() : filter_(new Filter) {
  CoRegisterMessageFilter(filter_.Get(), before_.Receive());
}

Busy_Filter::~Busy_Filter() {
  CoRegisterMessageFilter(before_.Get(), nullptr);
}

bool Busy_Filter::Wait_To_Call_Again(DWORD elapsed) {
  const DWORD wait = filter_->RetryRejectedCall(nullptr, elapsed, SERVERCALL_RETRYLATER);
  if (wait == give_up) return false;
  // Other programs' calls and the system's own messages are still served.
  HANDLE never = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  DWORD index = 0;
  CoWaitForMultipleHandles(0, wait, 1, &never, &index);
  CloseHandle(never);
  return true;
}

}  // namespace tidyfold::com

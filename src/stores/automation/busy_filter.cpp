#include "stores/automation/busy_filter.h"

#include "stores/automation/com_object.h"

namespace tidyfold::com {

namespace {

constexpr DWORD pause = 100;  // milliseconds; the system retries at once below this
constexpr DWORD give_up = static_cast<DWORD>(-1);
constexpr ULONGLONG time_to_unwind = 2000;  // milliseconds

class Filter : public Com_Object<IMessageFilter> {
 public:
  Filter(DWORD patience, const Busy_Filter& owner) : patience_(patience), owner_(owner) {}
  DWORD STDMETHODCALLTYPE HandleInComingCall(DWORD, HTASK, DWORD, LPINTERFACEINFO) override {
    return SERVERCALL_ISHANDLED;
  }
  DWORD STDMETHODCALLTYPE RetryRejectedCall(HTASK, DWORD elapsed, DWORD) override {
    return elapsed < patience_ && !owner_.Is_Impatient() ? pause : give_up;
  }
  // No event handler may run inside a call into the store; painting and activation still work.
  DWORD STDMETHODCALLTYPE MessagePending(HTASK, DWORD, DWORD) override { return PENDINGMSG_WAITDEFPROCESS; }

 private:
  DWORD patience_;
  const Busy_Filter& owner_;
};

}  // namespace

Busy_Filter::Busy_Filter(std::chrono::milliseconds patience)
    : filter_(new Filter(static_cast<DWORD>(patience.count()), *this)) {
  CoRegisterMessageFilter(filter_.Get(), before_.Receive());
}

Busy_Filter::~Busy_Filter() {
  CoRegisterMessageFilter(before_.Get(), nullptr);
}

void Busy_Filter::Lose_Patience() {
  impatient_until_ = GetTickCount64() + time_to_unwind;
}

bool Busy_Filter::Wait_To_Call_Again(DWORD elapsed) {
  const DWORD wait = filter_->RetryRejectedCall(nullptr, elapsed, SERVERCALL_RETRYLATER);
  if (wait == give_up) return false;
  // Incoming calls and the system's own messages are served meanwhile.
  HANDLE never = CreateEventW(nullptr, TRUE, FALSE, nullptr);
  DWORD index = 0;
  CoWaitForMultipleHandles(0, wait, 1, &never, &index);
  CloseHandle(never);
  return true;
}

}  // namespace tidyfold::com

// Only the thread of a window can destroy it. When another one lets go of it, the window is emptied
// and gets a last message, in which its own thread destroys it; the module stays until then, and
// that is for good.
#include "services/telephony/MessageWindow.h"

#include "services/telephony/ModuleReference.h"

namespace telephonyservice {
namespace {

constexpr LPCSTR kClassName = "WireletTelephonyService";

constexpr UINT kDeliver = WM_APP;
constexpr UINT kEndWindow = WM_APP + 1;

// The class goes with its last window: its procedure must not outlive the module. Fails harmlessly
// while there are others.
void ForgetClass() {
    UnregisterClassA(kClassName, nullptr);
}

} // namespace

CMessageWindow::CMessageWindow(Delivery delivery) {
    const WNDCLASSA windowClass{OnMessage, kClassName};
    // Fails when the class is known already, and then it is this one.
    RegisterClassA(&windowClass);
    m_hWindow = CreateWindowExA(0, kClassName, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                nullptr, nullptr);
    if (m_hWindow != nullptr)
        SetWindowLongPtrA(m_hWindow, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(delivery));
}

CMessageWindow::~CMessageWindow() {
    if (m_hWindow == nullptr)
        return;
    if (!DestroyWindow(m_hWindow) && IsWindow(m_hWindow)) {
        SetWindowLongPtrA(m_hWindow, GWLP_USERDATA, 0);
        // Its procedure is still to be called.
        HoldModule(true);
        PostMessageA(m_hWindow, kEndWindow, 0, 0);
    }
    ForgetClass();
}

void CMessageWindow::Post(DWORD number) const {
    PostMessageA(m_hWindow, kDeliver, number, 0);
}

LRESULT CMessageWindow::OnMessage(HWND window, UINT message, WPARAM number, LPARAM parameter) {
    if (message == kEndWindow) {
        DestroyWindow(window);
        ForgetClass();
        return 0;
    }
    const auto delivery = reinterpret_cast<Delivery>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (message != kDeliver || delivery == nullptr)
        return DefWindowProcA(window, message, number, parameter);
    delivery(static_cast<DWORD>(number));
    return 0;
}

} // namespace telephonyservice

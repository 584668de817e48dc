#include "framework/dialog.h"

#include "framework/window.h"

namespace framework {

namespace {

SIZE outerSize(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return {area.right - area.left, area.bottom - area.top};
}

bool programEnds() {
    MSG message;
    return PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE) != 0;
}

}  // namespace

Dialog::Dialog(UINT templateId, HWND parent, HINSTANCE resources)
    : templateId_(templateId), parent_(parent), resources_(resources) {}

Dialog::~Dialog() {
    if (handle_)
        DestroyWindow(handle_);
}

std::intptr_t Dialog::DoModal() {
    failure_ = nullptr;
    const std::intptr_t result = DialogBoxParamW(resources_, MAKEINTRESOURCEW(templateId_), parent_, dispatch,
                                                 reinterpret_cast<LPARAM>(this));
    handle_ = nullptr;
    if (failure_)
        std::rethrow_exception(std::exchange(failure_, nullptr));
    if (result == 0)  // the parent is no window, or the message loop ended
        return programEnds() ? IDCANCEL : -1;
    return result;
}

std::wstring Dialog::controlText(int id) const {
    return textOf(control(id));
}

void Dialog::setControlText(int id, const std::wstring& text) {
    SetDlgItemTextW(handle_, id, text.c_str());
}

void Dialog::enableControl(int id, bool enabled) {
    EnableWindow(control(id), enabled);
}

void Dialog::focusControl(int id) {
    // By the dialog's own message, which keeps the default button true.
    SendMessageW(handle_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(control(id)), TRUE);
}

void Dialog::end(std::intptr_t result) {
    EndDialog(handle_, result);
}

void Dialog::anchor(int controlId, unsigned edges) {
    smallest_ = outerSize(handle_);
    anchors_.add(handle_, controlId, edges);
}

void Dialog::setIcon(HICON icon) {
    SendMessageW(handle_, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icon));
    SendMessageW(handle_, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon));
}

INT_PTR CALLBACK Dialog::dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        reinterpret_cast<Dialog*>(lParam)->handle_ = window;
    }
    auto* const self = reinterpret_cast<Dialog*>(GetWindowLongPtrW(window, DWLP_USER));
    return self ? self->receive(message, wParam, lParam) : FALSE;
}

INT_PTR Dialog::receive(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == failureMessage()) {
        fail(*reinterpret_cast<const std::exception_ptr*>(lParam));
        SetWindowLongPtrW(handle_, DWLP_MSGRESULT, 1);
        return TRUE;
    }
    try {
        const INT_PTR handled = handleMessage(message, wParam, lParam);
        if (message == WM_NCDESTROY)
            handle_ = nullptr;
        return handled;
    } catch (...) {
        fail(std::current_exception());
    }
    return FALSE;
}

// The first failure counts: what fails afterwards may only follow from it.
void Dialog::fail(std::exception_ptr failure) {
    if (!failure_)
        failure_ = failure;
    EndDialog(handle_, IDABORT);
}

INT_PTR Dialog::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG: return onInitDialog();
        case WM_COMMAND: return command(LOWORD(wParam), HIWORD(wParam));
        case WM_NOTIFY: return notify(*reinterpret_cast<const NMHDR*>(lParam));
        case WM_SIZE:
            if (wParam != SIZE_MINIMIZED)
                anchors_.apply();
            return FALSE;
        case WM_GETMINMAXINFO:
            if (smallest_.cx == 0)
                return FALSE;
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {smallest_.cx, smallest_.cy};
            return TRUE;
        default: return FALSE;
    }
}

bool Dialog::command(int id, int code) {
    if (const auto found = commands_.find({id, code}); found != commands_.end()) {
        found->second();
        return true;
    }
    // Return and Escape come without a control that was clicked.
    if (id == IDOK && code == BN_CLICKED) {
        onOK();
        return true;
    }
    if (id == IDCANCEL && code == BN_CLICKED) {
        onCancel();
        return true;
    }
    return false;
}

bool Dialog::notify(const NMHDR& header) {
    const auto found = notifications_.find({static_cast<int>(header.idFrom), static_cast<int>(header.code)});
    if (found == notifications_.end())
        return false;
    const LRESULT result = found->second(header);
    SetWindowLongPtrW(handle_, DWLP_MSGRESULT, result);
    return true;
}

}  // namespace framework

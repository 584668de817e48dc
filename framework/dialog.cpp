#include "framework/dialog.h"

#include "framework/exception.h"
#include "framework/window.h"

#include <cstring>

namespace framework {

namespace {

SIZE outerSize(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return {area.right - area.left, area.bottom - area.top};
}

// Size of the client area that the template asks for, in dialog units.
SIZE templateUnits(HINSTANCE resources, UINT id) {
    const HRSRC resource = FindResourceW(resources, MAKEINTRESOURCEW(id), RT_DIALOG);
    const HGLOBAL loaded = resource ? LoadResource(resources, resource) : nullptr;
    const auto* const bytes = loaded ? static_cast<const char*>(LockResource(loaded)) : nullptr;
    if (!bytes)
        return {};
    // Extended templates begin with these two numbers and have longer fields.
    const bool extended = std::memcmp(bytes, "\x01\x00\xff\xff", 4) == 0;
    std::int16_t units[2];
    std::memcpy(units, bytes + (extended ? 22 : 14), sizeof units);
    return {units[0], units[1]};
}

// An exception that nobody will see. One that was thrown by pointer would leak.
void release(std::exception_ptr failure) {
    try {
        std::rethrow_exception(failure);
    } catch (CException* exception) {
        exception->Delete();
    } catch (...) {
        // goes with the last reference
    }
}

}  // namespace

Dialog::Dialog(UINT templateId, HWND parent, HINSTANCE resources)
    : templateId_(templateId), parent_(parent), resources_(resources) {}

Dialog::~Dialog() {
    if (handle_)
        DestroyWindow(handle_);
}

std::intptr_t Dialog::DoModal() {
    if (handle_)
        return -1;
    failure_ = nullptr;
    result_.reset();
    created_ = false;
    // Its result does not tell a dialog that could not be created from one whose message loop ended.
    DialogBoxParamW(resources_, MAKEINTRESOURCEW(templateId_), parent_, dispatch,
                    reinterpret_cast<LPARAM>(this));
    handle_ = nullptr;
    if (failure_)
        std::rethrow_exception(std::exchange(failure_, nullptr));
    if (result_)
        return *result_;
    return created_ ? IDCANCEL : -1;
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
    if (const HWND window = control(id))
        SendMessageW(handle_, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(window), TRUE);
}

void Dialog::end(std::intptr_t result) {
    result_ = result;
    EndDialog(handle_, result);
}

void Dialog::anchor(int controlId, unsigned edges) {
    anchors_.add(handle_, controlId, edges);
}

void Dialog::setIcon(HICON icon) {
    SendMessageW(handle_, WM_SETICON, ICON_SMALL, reinterpret_cast<LPARAM>(icon));
    SendMessageW(handle_, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon));
}

INT_PTR CALLBACK Dialog::dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, lParam);
        reinterpret_cast<Dialog*>(lParam)->started(window);
    }
    auto* const self = reinterpret_cast<Dialog*>(GetWindowLongPtrW(window, DWLP_USER));
    return self ? self->receive(message, wParam, lParam) : FALSE;
}

void Dialog::started(HWND window) {
    handle_ = window;
    created_ = true;
    const SIZE units = templateUnits(resources_, templateId_);
    RECT area = {0, 0, units.cx, units.cy};
    MapDialogRect(window, &area);
    AdjustWindowRectEx(&area, static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)), FALSE,
                       static_cast<DWORD>(GetWindowLongPtrW(window, GWL_EXSTYLE)));
    templateSize_ = {area.right - area.left, area.bottom - area.top};
    // The system has cut off what the screen has no room for, with whatever lies there: the drafter could not
    // reach it by moving the window.
    const SIZE size = outerSize(window);
    if (size.cx < templateSize_.cx || size.cy < templateSize_.cy)
        SetWindowPos(window, nullptr, 0, 0, templateSize_.cx, templateSize_.cy,
                     SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
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
    if (failure_)
        release(std::move(failure));
    else
        failure_ = std::move(failure);
    EndDialog(handle_, IDABORT);
}

INT_PTR Dialog::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_INITDIALOG: return onInitDialog();
        case WM_COMMAND: return command(LOWORD(wParam), HIWORD(wParam));
        case WM_NOTIFY: return notify(*reinterpret_cast<const NMHDR*>(lParam));
        case WM_SIZE:
            if (wParam != SIZE_MINIMIZED) {
                anchors_.apply();
                onResized();
            }
            return FALSE;
        case WM_GETMINMAXINFO:  // counts more than the largest size, that of the screen
            reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {templateSize_.cx, templateSize_.cy};
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

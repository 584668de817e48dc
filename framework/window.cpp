#include "framework/window.h"

#include "framework/instance.h"

#include <commctrl.h>

#include <utility>

namespace framework {

Window::~Window() {
    detach();
}

void Window::attach(HWND window) {
    detach();
    if (SetWindowSubclass(window, dispatch, reinterpret_cast<UINT_PTR>(this),
                          reinterpret_cast<DWORD_PTR>(this))) {
        handle_ = window;
    }
}

void Window::detach() {
    if (const HWND window = std::exchange(handle_, nullptr))
        RemoveWindowSubclass(window, dispatch, reinterpret_cast<UINT_PTR>(this));
}

std::wstring Window::text() const {
    return textOf(handle_);
}

void Window::setText(const std::wstring& text) {
    SetWindowTextW(handle_, text.c_str());
}

bool Window::createChild(const wchar_t* className, const std::wstring& text, DWORD style, DWORD extendedStyle,
                         const RECT& area, HWND parent, int id) {
    const HWND window =
        CreateWindowExW(extendedStyle, className, text.c_str(), style | WS_CHILD, area.left, area.top,
                        area.right - area.left, area.bottom - area.top, parent,
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), ownInstance(), nullptr);
    if (window)
        attach(window);
    return handle_ != nullptr;
}

LRESULT Window::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return defaultHandling(message, wParam, lParam);
}

LRESULT Window::defaultHandling(UINT message, WPARAM wParam, LPARAM lParam) {
    return DefSubclassProc(handle_, message, wParam, lParam);
}

LRESULT CALLBACK Window::dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                  DWORD_PTR object) {
    auto* const self = reinterpret_cast<Window*>(object);
    LRESULT result = 0;
    try {
        result = self->handleMessage(message, wParam, lParam);
    } catch (...) {
        failDialogOf(window, std::current_exception());
    }
    if (message != WM_NCDESTROY)
        return result;
    RemoveWindowSubclass(window, dispatch, id);
    self->handle_ = nullptr;
    try {
        self->onDestroyed();
    } catch (...) {
        failDialogOf(window, std::current_exception());
    }
    return result;
}

std::wstring textOf(HWND window) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    const int length = GetWindowTextW(window, text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

UINT failureMessage() {
    static const UINT message = RegisterWindowMessageW(L"framework.failure");
    return message;
}

void failDialogOf(HWND window, std::exception_ptr failure) {
    const auto taken = [&failure](HWND candidate) {
        return SendMessageW(candidate, failureMessage(), 0, reinterpret_cast<LPARAM>(&failure)) == 1;
    };
    for (HWND candidate = window; candidate; candidate = GetParent(candidate)) {
        if (taken(candidate))
            return;
    }
    // A list that drops down belongs to no window.
    for (HWND candidate = GetActiveWindow(); candidate; candidate = GetParent(candidate)) {
        if (taken(candidate))
            return;
    }
    std::terminate();
}

}  // namespace framework

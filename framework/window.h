#pragma once

// A window whose messages an object handles.

#include <windows.h>

#include <exception>
#include <string>

namespace framework {

// Handles the messages of a window that exists already, whatever its class, before the class's own procedure
// does. An exception that leaves a handler ends the dialog around the window and comes out of its DoModal:
// exceptions cannot pass through the system's message dispatch.
//
// The window and the object may go in either order.
class Window {
public:
    Window() = default;
    virtual ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    // Null when there is no window.
    HWND handle() const { return handle_; }
    // window: of this thread. What was attached before is detached.
    void attach(HWND window);
    void detach();

    std::wstring text() const;
    void setText(const std::wstring& text);

protected:
    // Creates a child window and attaches to it; its creation messages are not seen by handleMessage. False
    // when the system refuses.
    bool createChild(const wchar_t* className, const std::wstring& text, DWORD style, DWORD extendedStyle,
                     const RECT& area, HWND parent, int id);
    virtual LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam);
    // What the window does without this object.
    LRESULT defaultHandling(UINT message, WPARAM wParam, LPARAM lParam);
    // The window is gone. The last call of the window; an object that owns itself deletes itself here.
    virtual void onDestroyed() {}

private:
    static LRESULT CALLBACK dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                     DWORD_PTR object);
    HWND handle_ = nullptr;
};

std::wstring textOf(HWND window);

// Ends the framework's dialog that holds or owns the window, otherwise the active one, and has its DoModal
// throw the exception. Without such a dialog the program ends: nobody could be told.
void failDialogOf(HWND window, std::exception_ptr failure);
// The message that carries a failure to the dialog; its second parameter is a pointer to the exception_ptr. A
// dialog answers 1.
UINT failureMessage();

}  // namespace framework

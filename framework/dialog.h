#pragma once

// Modal dialogs from templates.

#include "framework/anchors.h"

#include <windows.h>

#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace framework {

// A dialog class lists in its constructor which member function handles which control:
//
//     onButton(idNewLayer, &LayersDialog::newLayer);
//     onNotify(idLayers, gridEndEdit, &LayersDialog::layerEdited);
//
// A handler may throw: the dialog then ends, and DoModal throws the exception on.
class Dialog {
public:
    // parent: owner of the dialog, disabled while it is open; null for none. resources: the program or
    // library with the template.
    Dialog(UINT templateId, HWND parent, HINSTANCE resources);
    virtual ~Dialog();
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;

    // Shows the dialog and returns what it was ended with: IDOK, IDCANCEL or a value of its own. -1 when it
    // could not be created: there is no such template, one of its controls has an unknown class, the parent
    // is gone, or the dialog is open already. IDCANCEL when its window is destroyed by others or the program
    // ends meanwhile (the WM_QUIT stays for the loops around it); onCancel is not called then.
    std::intptr_t DoModal();

    // Null while the dialog is not open.
    HWND handle() const { return handle_; }

    HWND control(int id) const { return GetDlgItem(handle_, id); }
    std::wstring controlText(int id) const;
    void setControlText(int id, const std::wstring& text);
    void enableControl(int id, bool enabled);
    void focusControl(int id);

protected:
    // The controls exist, nothing is shown yet. True: the first control gets the focus. False: the handler
    // set it itself.
    virtual bool onInitDialog() { return true; }
    virtual void onOK() { end(IDOK); }
    virtual void onCancel() { end(IDCANCEL); }
    // The dialog has another size, and its controls have their places in it.
    virtual void onResized() {}
    // result: what DoModal returns.
    void end(std::intptr_t result);
    // All messages of the dialog. TRUE: handled; a result of the message is set with DWLP_MSGRESULT.
    virtual INT_PTR handleMessage(UINT message, WPARAM wParam, LPARAM lParam);

    template <class Derived>
    void onButton(int id, void (Derived::*handler)()) {
        onCommand(id, BN_CLICKED, handler);
    }
    template <class Derived>
    void onCommand(int id, int code, void (Derived::*handler)()) {
        commands_[{id, code}] = [this, handler] { (static_cast<Derived*>(this)->*handler)(); };
    }
    // Notification: the record of the message, which begins with an NMHDR. The handler's result is that of
    // the message.
    template <class Derived, class Notification>
    void onNotify(int id, int code, LRESULT (Derived::*handler)(const Notification&)) {
        notifications_[{id, code}] = [this, handler](const NMHDR& header) {
            return (static_cast<Derived*>(this)->*handler)(reinterpret_cast<const Notification&>(header));
        };
    }

    // In onInitDialog. The dialog's edges can be dragged when its template has WS_THICKFRAME; it then never
    // gets smaller than the template.
    void anchor(int controlId, unsigned edges);
    // icon: stays the caller's.
    void setIcon(HICON icon);
    // Size of the window as the template asks for it with the present font: no smaller even on a small
    // screen.
    SIZE templateSize() const { return templateSize_; }

private:
    static INT_PTR CALLBACK dispatch(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    INT_PTR receive(UINT message, WPARAM wParam, LPARAM lParam);
    void started(HWND window);
    void fail(std::exception_ptr failure);
    bool command(int id, int code);
    bool notify(const NMHDR& header);

    using Place = std::pair<int, int>;  // id and code
    UINT templateId_;
    HWND parent_;
    HINSTANCE resources_;
    HWND handle_ = nullptr;
    SIZE templateSize_{};
    bool created_ = false;
    std::optional<std::intptr_t> result_;  // of end
    Anchors anchors_;
    std::map<Place, std::function<void()>> commands_;
    std::map<Place, std::function<LRESULT(const NMHDR&)>> notifications_;
    std::exception_ptr failure_;
};

}  // namespace framework

#pragma once

// Dialogs in the host: its main window, and the base of the dialogs that modules show.

#include <windows.h>

#include <optional>
#include <string>

#include "framework/dialog.h"
#include "host/api/types.h"

// Null when the host has no window (programs run without a drafter); a dialog then has no owner.
DRAFTHOST_API HWND adsw_acadMainWnd();

// A dialog that appears where the drafter left it, in the size it had. Its place is kept per user in the
// host's profile, under the name given, when the drafter moved or resized it; a place that no screen shows
// any more is moved to where it is visible, and no dialog gets smaller than its template. A dialog without a
// kept place is centred on its owner, or on the screen.
class DRAFTHOST_API AcEdDialog : public framework::Dialog {
public:
    AcEdDialog(UINT templateId, HWND parent, HINSTANCE resources);
    ~AcEdDialog() override;

protected:
    // In onInitDialog, before the base's own is called. "application:Dialog"; unique among all dialogs.
    void setDialogName(const ACHAR* name);
    // Derived classes anchor their controls and call this before they fill them: the kept size is set here.
    bool onInitDialog() override;
    INT_PTR handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    std::wstring name_;
    std::optional<RECT> shownAt_;  // from onInitDialog until the window goes
};

// The base of modules' dialogs (host/api/dialog.h).

#include "host/api/dialog.h"

#include "host/dialogs/dialog_place.h"

using namespace drafthost;

namespace {

RECT placeOf(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

// The middle of the owner where the drafter sees it, otherwise of the screen.
RECT usualPlace(HWND dialog, SIZE size) {
    const HWND owner = GetWindow(dialog, GW_OWNER);
    if (owner && IsWindowVisible(owner) && !IsIconic(owner))
        return centred(size, placeOf(owner));
    return centred(size, workAreaAround(placeOf(owner ? owner : GetDesktopWindow())));
}

}  // namespace

AcEdDialog::AcEdDialog(UINT templateId, HWND parent, HINSTANCE resources)
    : Dialog(templateId, parent, resources) {}

AcEdDialog::~AcEdDialog() = default;

void AcEdDialog::setDialogName(const ACHAR* name) {
    name_ = name ? name : L"";
}

bool AcEdDialog::onInitDialog() {
    const bool resizable = GetWindowLongPtrW(handle(), GWL_STYLE) & WS_THICKFRAME;
    RECT place = usualPlace(handle(), templateSize());
    if (const auto kept = name_.empty() ? std::nullopt : keptPlace(name_)) {
        place = *kept;
        if (!resizable) {
            place.right = place.left + templateSize().cx;
            place.bottom = place.top + templateSize().cy;
        }
    }
    place = fitted(place, templateSize(), workAreaAround(place));
    SetWindowPos(handle(), nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    shownAt_ = normalPlace(handle());
    return Dialog::onInitDialog();
}

INT_PTR AcEdDialog::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    // What the drafter left as it was is not kept: a place on a screen that is missing today counts again
    // when the screen is back, and a dialog that was never moved goes on following its owner.
    if (message == WM_DESTROY && shownAt_ && !name_.empty()) {
        const RECT place = normalPlace(handle());
        if (!EqualRect(&place, &*shownAt_))
            keepPlace(name_, place);
        shownAt_.reset();
    }
    return Dialog::handleMessage(message, wParam, lParam);
}

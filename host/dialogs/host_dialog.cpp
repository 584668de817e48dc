// The base of modules' dialogs (host/api/dialog.h).

#include "host/api/dialog.h"

HWND adsw_acadMainWnd() {
    return nullptr;
}

AcEdDialog::AcEdDialog(UINT templateId, HWND parent, HINSTANCE resources)
    : Dialog(templateId, parent, resources) {}

AcEdDialog::~AcEdDialog() = default;

void AcEdDialog::setDialogName(const ACHAR* name) {
    name_ = name ? name : L"";
}

bool AcEdDialog::onInitDialog() {
    return Dialog::onInitDialog();
}

INT_PTR AcEdDialog::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return Dialog::handleMessage(message, wParam, lParam);
}

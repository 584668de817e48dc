#include "module/binding/dialog_result.h"

#include "host/api/editor.h"
#include "module/binding/configuration.h"
#include "module/binding/message_box.h"

#include <windows.h>

#include <shellapi.h>

#include <string>

namespace tessary {

namespace {

constexpr const wchar_t* caption = L"Quarnel Error";
constexpr std::intptr_t notCreated = -1;
constexpr std::intptr_t notCreatedByFramework = 3;
// ShellExecute reports success with values above this.
constexpr INT_PTR lastShellError = 32;

int showMessage(const std::wstring& text, UINT style) {
    return showMessageBox(text, caption, style);
}

// The host's main window where it is known; null otherwise.
HWND mainWindow() {
    const HWND active = GetActiveWindow();
    return active ? GetAncestor(active, GA_ROOTOWNER) : nullptr;
}

bool startDownload() {
    const HINSTANCE result = ShellExecuteW(mainWindow(), L"OPEN", configuration::componentsInstallerAddress,
                                           nullptr, nullptr, SW_SHOWNA);
    return reinterpret_cast<INT_PTR>(result) > lastShellError;
}

void downloadComponents() {
    const std::wstring telephone = configuration::supportTelephone;
    if (!startDownload()) {
        acutPrintf(L"\nError downloading %s\nContact Quarnel Software technical support: %s",
                   configuration::componentsInstallerAddress, configuration::supportTelephone);
        showMessage(L"Error downloading QNComponents.exe.\nContact Quarnel Software technical support.\n" +
                        telephone,
                    MB_OK);
        return;
    }
    acutPrintf(L"\nDownloading %s", configuration::componentsInstallerAddress);
    showMessage(
        L"Finish downloading QNComponents.exe.\nClose AutoCAD.\nRun QNComponents.exe.\nRestart AutoCAD.\n\n"
        L"If you continue to have problems, contact Quarnel Software technical support.\n    " +
            telephone,
        MB_OK);
}

}  // namespace

std::intptr_t checkDialogResult(std::intptr_t result) {
    if (result != notCreated && result != notCreatedByFramework) {
        return result;
    }
    const int answer = showMessage(L"Dialog box could not be created.\nComponents need to be installed.\n"
                                   L"Would you like to download a fix to this error?",
                                   MB_YESNO | MB_ICONERROR);
    if (answer == IDYES) {
        downloadComponents();
    }
    return result;
}

}  // namespace tessary

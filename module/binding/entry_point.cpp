// The module's two exports.

#include "framework/exception.h"
#include "host/api/editor.h"
#include "host/api/rx.h"
#include "module/binding/lifecycle.h"

#include <windows.h>

#include <iterator>

namespace tessary {

namespace {

void dispatch(AcRx::AppMsgCode message, void* packet) {
    switch (message) {
        case AcRx::kInitAppMsg: loadModule(packet); break;
        case AcRx::kUnloadAppMsg: unloadModule(); break;
        case AcRx::kLoadDwgMsg: openDocument(); break;
        case AcRx::kUnloadDwgMsg: closeDocument(); break;
        default: break;
    }
}

void reportFrameworkException(CException* exception) {
    wchar_t text[1000] = L"";
    exception->GetErrorMessage(text, static_cast<UINT>(std::size(text)));
    acutPrintf(L"\nTessary General Error:  %s", text);
    exception->Delete();
}

void reportOtherException(DWORD systemError) {
    if (systemError != ERROR_SUCCESS) {
        acutPrintf(L"\nSystem error %u.\n", static_cast<unsigned>(systemError));
    } else {
        acutPrintf(L"\nTessary error.\n");
    }
}

}  // namespace

}  // namespace tessary

extern "C" {

AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet) {
    try {
        tessary::dispatch(message, packet);
        return AcRx::kRetOK;
    } catch (CException* exception) {
        tessary::reportFrameworkException(exception);
    } catch (...) {
        tessary::reportOtherException(GetLastError());
    }
    return AcRx::kRetError;
}

std::uint32_t acrxGetApiVersion() {
    return kHostApiVersion;
}
}

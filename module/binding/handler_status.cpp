#include "module/binding/handler_status.h"

#include "host/api/editor.h"

namespace tessary {

namespace {

const ACHAR* messageOf(HandlerStatus status) {
    switch (status) {
        case HandlerStatus::tooFewArguments: return L"\nToo few arguments passed.\n";
        case HandlerStatus::wrongType: return L"\nWrong type of arguments passed.\n";
        case HandlerStatus::badData: return L"\nBad data passed .\n";
        case HandlerStatus::textScreen: return L"";
        case HandlerStatus::success: break;
    }
    return nullptr;
}

}  // namespace

int reportHandlerStatus(HandlerStatus status) {
    const ACHAR* message = messageOf(status);
    if (!message) {
        return RSRSLT;
    }
    if (status == HandlerStatus::textScreen) {
        acedTextScr();
    }
    acutPrintf(L"%s", message);
    return RSERR;
}

}  // namespace tessary

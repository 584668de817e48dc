// The end of the host when a module finds a fault after which nothing may be saved.

#include <windows.h>

#include <cstdarg>

#include "host/api/rx.h"
#include "host/documents/host.h"
#include "host/editor/command_line.h"
#include "host/editor/formatted_text.h"

namespace {

constexpr UINT kExitStatus = 3;  // told apart from errors of programs and from unusable arguments

}  // namespace

void acrx_abort(const ACHAR* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::wstring message = format ? drafthost::editor::formatted(format, arguments) : L"";
    va_end(arguments);
    // What was printed before belongs before the message.
    drafthost::theHost().commandLine().flush();
    drafthost::editor::reportOnStandardError(L"FATAL ERROR: " + message);
    // No destructors: they would call into modules that rely on what is broken.
    TerminateProcess(GetCurrentProcess(), kExitStatus);
    for (;;)
        Sleep(INFINITE);
}

#include "host/editor/structured_exceptions.h"

#include <windows.h>

namespace drafthost::editor {

namespace {

// Where to go on after a fault; one a running call, the innermost first. Of the host's main thread, which is
// the only one that calls modules.
struct ResumePoint {
    void* registers[5];  // __builtin_setjmp
    ResumePoint* outer;
    DWORD thread;
    std::uint32_t fault;
};
ResumePoint* innermost = nullptr;

[[noreturn]] void resume() {
    __builtin_longjmp(innermost->registers, 1);
}

bool isCaught(DWORD code) {
    switch (code) {
        case EXCEPTION_ACCESS_VIOLATION:
        case EXCEPTION_DATATYPE_MISALIGNMENT:
        case EXCEPTION_INT_DIVIDE_BY_ZERO:
        case EXCEPTION_INT_OVERFLOW:
        case EXCEPTION_FLT_DIVIDE_BY_ZERO:
        case EXCEPTION_FLT_INVALID_OPERATION:
        case EXCEPTION_IN_PAGE_ERROR: return true;
        default: return false;
    }
}

// Asked for faults that nobody handled: sends the thread to resume(), as if the faulting code had called it.
LONG CALLBACK continueBehindCall(EXCEPTION_POINTERS* fault) {
    const DWORD code = fault->ExceptionRecord->ExceptionCode;
    if (!innermost || innermost->thread != GetCurrentThreadId() || !isCaught(code))
        return EXCEPTION_CONTINUE_SEARCH;
    innermost->fault = code;
    CONTEXT& context = *fault->ContextRecord;
    constexpr DWORD64 kLeafArea = 512, kAlignment = 16;
    context.Rsp = ((context.Rsp - kLeafArea) & ~(kAlignment - 1)) - sizeof(DWORD64);
    context.Rip = reinterpret_cast<DWORD64>(&resume);
    return EXCEPTION_CONTINUE_EXECUTION;
}

class ResumeScope {
public:
    explicit ResumeScope(ResumePoint& point) {
        static const auto previous = SetUnhandledExceptionFilter(continueBehindCall);
        (void)previous;
        point.outer = innermost;
        point.thread = GetCurrentThreadId();
        point.fault = 0;
        innermost = &point;
    }
    ~ResumeScope() { innermost = innermost->outer; }
    ResumeScope(const ResumeScope&) = delete;
    ResumeScope& operator=(const ResumeScope&) = delete;
};

// Apart from everything that has destructors: its frame is left by a jump.
[[gnu::noinline]] void callFrom(ResumePoint& point, int (*function)(), int& result) {
    if (__builtin_setjmp(point.registers) == 0)
        result = function();
}

}  // namespace

std::uint32_t callCatchingFaults(int (*function)(), int& result) {
    ResumePoint point;
    const ResumeScope scope(point);
    callFrom(point, function, result);
    return point.fault;
}

const wchar_t* faultName(std::uint32_t code) {
    switch (code) {
        case EXCEPTION_ACCESS_VIOLATION: return L"access violation";
        case EXCEPTION_INT_DIVIDE_BY_ZERO: return L"integer division by zero";
        case EXCEPTION_INT_OVERFLOW: return L"integer overflow";
        case EXCEPTION_FLT_DIVIDE_BY_ZERO: return L"division by zero";
        default: return L"processor fault";
    }
}

}  // namespace drafthost::editor

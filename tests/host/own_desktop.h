#pragma once

// Tests that need the keyboard focus to themselves.

#include <windows.h>

#include <string>

namespace drafthost::testing {

// Gives this test program a desktop of its own, so that no program that runs at the same time takes the
// activation, and with it the focus, from its windows. Any number of times; the first time must come before
// the thread has windows (a thread that has some keeps its desktop). Costs some tenths of a second, once.
inline void useOwnDesktop() {
    // Kept until the program ends.
    static const HDESK desktop = CreateDesktopW((L"tests " + std::to_wstring(GetCurrentProcessId())).c_str(),
                                                nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    if (desktop && GetThreadDesktop(GetCurrentThreadId()) != desktop)
        SetThreadDesktop(desktop);
}

}  // namespace drafthost::testing

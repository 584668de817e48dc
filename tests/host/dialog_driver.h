#pragma once

// Drives modal dialogs of the test's thread while they are open.

#include "tests/host/own_desktop.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <string>

namespace drafthost::testing {

// The topmost dialog of the thread that takes input; null for none.
inline HWND topDialog() {
    HWND dialog = nullptr;
    EnumThreadWindows(
        GetCurrentThreadId(),
        [](HWND window, LPARAM result) -> BOOL {
            wchar_t name[16] = L"";
            GetClassNameW(window, name, 16);
            if (!IsWindowVisible(window) || !IsWindowEnabled(window) || wcscmp(name, L"#32770") != 0)
                return TRUE;
            *reinterpret_cast<HWND*>(result) = window;
            return FALSE;
        },
        reinterpret_cast<LPARAM>(&dialog));
    return dialog;
}

inline std::wstring textOf(HWND window) {
    wchar_t text[512] = L"";
    GetWindowTextW(window, text, 512);
    return text;
}

inline RECT placeOf(HWND window) {
    RECT place{};
    GetWindowRect(window, &place);
    return place;
}

// A test with dialogs that nobody else can take the focus from.
class DialogTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() { useOwnDesktop(); }
};

// While it lives, the steps run one after the other, each in a turn of the message loop of whatever dialog is
// on top. A dialog that is still there when all have run, or after ten seconds, is cancelled, and the test
// fails.
class DialogDriver {
public:
    using Step = std::function<void(HWND dialog)>;
    explicit DialogDriver(std::deque<Step> steps) : steps_(std::move(steps)) {
        running() = this;
        start_ = GetTickCount64();
        timer_ = SetTimer(nullptr, 0, 5, [](HWND, UINT, UINT_PTR, DWORD) { running()->turn(); });
    }
    ~DialogDriver() {
        KillTimer(nullptr, timer_);
        running() = nullptr;
        EXPECT_TRUE(steps_.empty()) << steps_.size() << " steps did not run";
    }
    DialogDriver(const DialogDriver&) = delete;
    DialogDriver& operator=(const DialogDriver&) = delete;

private:
    static DialogDriver*& running() {
        static DialogDriver* driver = nullptr;
        return driver;
    }
    void turn() {
        const HWND dialog = topDialog();
        if (!dialog)
            return;
        if (steps_.empty() || GetTickCount64() - start_ > 10000) {
            ADD_FAILURE() << "a dialog is open that nobody answers: " << std::string(narrow(textOf(dialog)));
            PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            return;
        }
        const Step step = std::move(steps_.front());
        steps_.pop_front();
        step(dialog);
    }
    static std::string narrow(const std::wstring& text) {
        std::string result;
        for (const wchar_t c : text)
            result += static_cast<char>(c);
        return result;
    }

    std::deque<Step> steps_;
    ULONGLONG start_ = 0;
    UINT_PTR timer_ = 0;
};

// As a click on the control does.
inline DialogDriver::Step press(int id) {
    return [id](HWND dialog) {
        PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED),
                     reinterpret_cast<LPARAM>(GetDlgItem(dialog, id)));
    };
}
// As the key does when the control has the focus; 0: whatever has it.
inline DialogDriver::Step key(WPARAM code, int id = 0) {
    return [code, id](HWND dialog) {
        PostMessageW(id ? GetDlgItem(dialog, id) : GetFocus(), WM_KEYDOWN, code, 1);
    };
}

}  // namespace drafthost::testing

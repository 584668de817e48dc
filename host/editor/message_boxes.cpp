#include "host/editor/message_boxes.h"

#include <windows.h>

#include <algorithm>

#include "host/database/names.h"
#include "host/documents/host.h"

namespace drafthost::editor {

namespace {

constexpr UINT kTimerMilliseconds = 10;
constexpr const wchar_t* kDialogClass = L"#32770";
constexpr int kStaticText = 0xFFFF;  // control id of a message box's text

MessageBoxes* installed = nullptr;

std::wstring textOf(HWND window) {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

std::wstring classOf(HWND window) {
    wchar_t name[64] = L"";
    GetClassNameW(window, name, static_cast<int>(std::size(name)));
    return name;
}

std::wstring withoutAmpersand(std::wstring text) {
    std::erase(text, L'&');
    return text;
}

BOOL CALLBACK takeTopDialog(HWND window, LPARAM result) {
    if (!IsWindowVisible(window) || !IsWindowEnabled(window) || classOf(window) != kDialogClass)
        return TRUE;
    *reinterpret_cast<HWND*>(result) = window;
    return FALSE;
}

// The topmost dialog of the thread that takes input; null for none.
HWND topDialog() {
    HWND dialog = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), takeTopDialog, reinterpret_cast<LPARAM>(&dialog));
    return dialog;
}

std::vector<HWND> buttonsOf(HWND dialog) {
    std::vector<HWND> buttons;
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        if (equalNames(classOf(child), L"Button") && IsWindowVisible(child))
            buttons.push_back(child);
    }
    return buttons;
}

BoxRequest describeBox(HWND dialog) {
    BoxRequest box;
    box.caption = textOf(dialog);
    box.text = textOf(GetDlgItem(dialog, kStaticText));
    for (HWND button : buttonsOf(dialog))
        box.buttons.push_back(withoutAmpersand(textOf(button)));
    return box;
}

HWND findButton(HWND dialog, const Answer& answer) {
    for (HWND button : buttonsOf(dialog)) {
        if (answer.control != 0 ? GetDlgCtrlID(button) == answer.control
                                : equalNames(withoutAmpersand(textOf(button)), answer.text)) {
            return button;
        }
    }
    return nullptr;
}

void click(HWND dialog, HWND button) {
    PostMessageW(dialog, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(button), BN_CLICKED),
                 reinterpret_cast<LPARAM>(button));
}

// Closes a box that nobody answers with the button that does the least.
void cancelBox(HWND dialog) {
    const std::vector<HWND> buttons = buttonsOf(dialog);
    for (const int id : {IDCANCEL, IDNO, IDABORT, IDIGNORE, IDOK}) {
        const auto button = std::find_if(buttons.begin(), buttons.end(),
                                         [&](HWND candidate) { return GetDlgCtrlID(candidate) == id; });
        if (button != buttons.end())
            return click(dialog, *button);
    }
    PostMessageW(dialog, WM_CLOSE, 0, 0);
}

LRESULT CALLBACK noticeDialogs(int code, WPARAM window, LPARAM data) {
    if (code == HCBT_ACTIVATE && installed && classOf(reinterpret_cast<HWND>(window)) == kDialogClass) {
        installed->noticed();
    }
    return CallNextHookEx(nullptr, code, window, data);
}

void CALLBACK answerOnTimer(HWND, UINT, UINT_PTR, DWORD) {
    if (installed)
        installed->answerTopBox();
}

}  // namespace

MessageBoxes::MessageBoxes(Host& host) : host_(host) {
    installed = this;
    hook_ = SetWindowsHookExW(WH_CBT, noticeDialogs, nullptr, GetCurrentThreadId());
}

MessageBoxes::~MessageBoxes() {
    if (timer_)
        KillTimer(nullptr, timer_);
    if (hook_)
        UnhookWindowsHookEx(static_cast<HHOOK>(hook_));
    installed = nullptr;
}

void MessageBoxes::noticed() {
    if (!timer_)
        timer_ = SetTimer(nullptr, 0, kTimerMilliseconds, answerOnTimer);
}

void MessageBoxes::answerTopBox() {
    if (answering_)
        return;
    const HWND dialog = topDialog();
    if (!dialog) {
        KillTimer(nullptr, timer_);
        timer_ = 0;
        return;
    }
    answering_ = true;
    const BoxRequest box = describeBox(dialog);
    host_.log(L"dialog \"" + box.caption + L"\": " + box.text);
    host_.commandLine().flush();
    if (host_.runFailed()) {
        cancelBox(dialog);
    } else {
        const Answer answer = host_.input().nextForBox(box);
        HWND button = answer.kind == Answer::Kind::Press ? findButton(dialog, answer) : nullptr;
        if (button) {
            click(dialog, button);
        } else if (answer.kind == Answer::Kind::Cancel || answer.kind == Answer::Kind::Exhausted) {
            cancelBox(dialog);
        } else if (!host_.input().refuse(answer, L"a button of \"" + box.caption + L"\"",
                                         L"There is no such button.")) {
            cancelBox(dialog);
        }
    }
    // The posted click is taken from the queue before the timer fires again.
    answering_ = false;
}

}  // namespace drafthost::editor

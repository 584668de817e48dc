#include "module/binding/message_box.h"
#include "module/database/message_functions.h"
#include "tests/module/value_lists.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <vector>

namespace tessary::testing {

namespace {

unsigned styleOf(const std::vector<const wchar_t*>& words, bool inList) {
    ValueList list = makeList(int{RTLB});
    for (const wchar_t* word : words) {
        lastNode(list.get())->rbnext = makeList(int{RTSTR}, word).release();
    }
    lastNode(list.get())->rbnext = makeList(int{RTLE}).release();
    ArgCursor cursor = inList ? list.get() : list->rbnext;
    const unsigned style = readMessageBoxStyle(cursor);
    EXPECT_EQ(RTLE, cursor->restype);
    return style;
}

void expectStyle(unsigned style, const std::vector<const wchar_t*>& words) {
    EXPECT_EQ(style, styleOf(words, false)) << words.front();
    EXPECT_EQ(style, styleOf(words, true)) << words.front();
}

// Presses a button of the message boxes of this thread that have it, as long as it lives.
class MessageBoxPresser {
public:
    explicit MessageBoxPresser(WORD button)
        : hook_(SetWindowsHookExW(WH_CBT, onWindowEvent, nullptr, GetCurrentThreadId())) {
        press() = button;
    }
    ~MessageBoxPresser() { UnhookWindowsHookEx(hook_); }
    MessageBoxPresser(const MessageBoxPresser&) = delete;
    MessageBoxPresser& operator=(const MessageBoxPresser&) = delete;

private:
    static WORD& press() {
        static WORD button = IDOK;
        return button;
    }
    static LRESULT CALLBACK onWindowEvent(int code, WPARAM window, LPARAM data) {
        const HWND box = reinterpret_cast<HWND>(window);
        if (code == HCBT_ACTIVATE && GetDlgItem(box, press())) {
            PostMessageW(box, WM_COMMAND, press(), 0);
        }
        return CallNextHookEx(nullptr, code, window, data);
    }

    HHOOK hook_;
};

TEST(MessageBoxStyle, eachKeywordHasItsOwn) {
    expectStyle(2, {L"ABORT"});
    expectStyle(0, {L"OK"});
    expectStyle(1, {L"OKCANCEL"});
    expectStyle(5, {L"RETRYCANCEL"});
    expectStyle(4, {L"YESNO"});
    expectStyle(3, {L"YESNOCANCEL"});
    expectStyle(0x30, {L"!"});
    expectStyle(0x40, {L"i"});
    expectStyle(0x20, {L"?"});
    expectStyle(0x10, {L"STOP"});
    expectStyle(0, {L"DEF1"});
    expectStyle(0x100, {L"DEF2"});
    expectStyle(0x200, {L"DEF3"});
    expectStyle(0, {L"yesno", L"I", L"", L" OKCANCEL"});
}

TEST(MessageBoxStyle, buttonsUndoWhatStandsBeforeThem) {
    expectStyle(0x123, {L"YESNOCANCEL", L"?", L"DEF2"});
    expectStyle(3, {L"?", L"DEF2", L"YESNOCANCEL"});
    expectStyle(0x100, {L"YESNO", L"!", L"OK", L"DEF2"});
    expectStyle(0x34, {L"YESNO", L"!", L"other", L"DEF1"});
    expectStyle(0x371, {L"OKCANCEL", L"STOP", L"?", L"i", L"DEF2", L"DEF3"});
}

TEST(ShowMessageBox, answersWithTheButtonAndReactivatesTheWindow) {
    const HWND owner = CreateWindowExW(0, L"STATIC", L"owner", WS_OVERLAPPED | WS_VISIBLE, 0, 0, 100, 100,
                                       nullptr, nullptr, nullptr, nullptr);
    SetActiveWindow(owner);
    {
        const MessageBoxPresser presser(IDNO);
        EXPECT_EQ(IDNO, showMessageBox(L"Sure?", L"Title", MB_YESNOCANCEL | MB_DEFBUTTON3));
    }
    EXPECT_EQ(owner, GetActiveWindow());
    EXPECT_TRUE(IsWindowEnabled(owner));
    DestroyWindow(owner);

    const MessageBoxPresser presser(IDRETRY);
    EXPECT_EQ(IDRETRY, showMessageBox(L"", L"", MB_RETRYCANCEL));
}

}  // namespace

}  // namespace tessary::testing

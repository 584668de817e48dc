#include "module/binding/dialog_result.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

namespace tessary::testing {

namespace {

// Answers every message box that this thread shows with No and keeps their texts, as long as it lives.
class MessageBoxAnswerer {
public:
    MessageBoxAnswerer() : hook_(SetWindowsHookExW(WH_CBT, onWindowEvent, nullptr, GetCurrentThreadId())) {
        shownTexts().clear();
    }
    ~MessageBoxAnswerer() { UnhookWindowsHookEx(hook_); }
    MessageBoxAnswerer(const MessageBoxAnswerer&) = delete;
    MessageBoxAnswerer& operator=(const MessageBoxAnswerer&) = delete;

    const std::vector<std::wstring>& texts() const { return shownTexts(); }

private:
    static std::vector<std::wstring>& shownTexts() {
        static std::vector<std::wstring> texts;
        return texts;
    }

    static std::wstring textOfWindow(HWND window) {
        std::wstring text(1000, L'\0');
        text.resize(
            static_cast<std::size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
        return text;
    }

    static BOOL CALLBACK appendLongestText(HWND child, LPARAM target) {
        auto& longest = *reinterpret_cast<std::wstring*>(target);
        const std::wstring text = textOfWindow(child);
        if (text.size() > longest.size()) {
            longest = text;
        }
        return TRUE;
    }

    static LRESULT CALLBACK onWindowEvent(int code, WPARAM window, LPARAM data) {
        const HWND box = reinterpret_cast<HWND>(window);
        if (code == HCBT_ACTIVATE && GetDlgItem(box, IDNO)) {
            std::wstring longest;
            EnumChildWindows(box, appendLongestText, reinterpret_cast<LPARAM>(&longest));
            shownTexts().push_back(textOfWindow(box) + L": " + longest);
            PostMessageW(box, WM_COMMAND, IDNO, 0);
        }
        return CallNextHookEx(nullptr, code, window, data);
    }

    HHOOK hook_;
};

TEST(CheckDialogResult, dialogsThatWereShownPassUnnoticed) {
    const MessageBoxAnswerer answerer;
    for (const std::intptr_t result : {0, 1, 2, 4, -2, 1000}) {
        EXPECT_EQ(result, checkDialogResult(result));
    }
    EXPECT_TRUE(answerer.texts().empty());
}

TEST(CheckDialogResult, dialogsThatWereNotOfferTheDownload) {
    const MessageBoxAnswerer answerer;
    EXPECT_EQ(-1, checkDialogResult(-1));
    EXPECT_EQ(3, checkDialogResult(3));
    const std::wstring offer =
        L"Quarnel Error: Dialog box could not be created.\nComponents need to be installed.\n"
        L"Would you like to download a fix to this error?";
    EXPECT_EQ((std::vector<std::wstring>{offer, offer}), answerer.texts());
}

}  // namespace

}  // namespace tessary::testing

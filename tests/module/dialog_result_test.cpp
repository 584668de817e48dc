#include "module/binding/dialog_result.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

namespace tessary::testing {

namespace {

// Answers every question that this thread shows with the button, confirms every other message box, and keeps
// their texts, as long as it lives.
class MessageBoxAnswerer {
public:
    explicit MessageBoxAnswerer(WORD button)
        : hook_(SetWindowsHookExW(WH_CBT, onWindowEvent, nullptr, GetCurrentThreadId())) {
        shownTexts().clear();
        answer() = button;
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

    static WORD& answer() {
        static WORD button = IDNO;
        return button;
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
        const bool isQuestion = GetDlgItem(box, IDNO) != nullptr;
        if (code == HCBT_ACTIVATE && (isQuestion || GetDlgItem(box, IDOK) || GetDlgItem(box, IDCANCEL))) {
            std::wstring longest;
            EnumChildWindows(box, appendLongestText, reinterpret_cast<LPARAM>(&longest));
            shownTexts().push_back(textOfWindow(box) + L": " + longest);
            PostMessageW(box, WM_COMMAND, isQuestion ? answer() : static_cast<WORD>(IDOK), 0);
        }
        return CallNextHookEx(nullptr, code, window, data);
    }

    HHOOK hook_;
};

// As long as it lives, this process sees a system on which no program opens web addresses.
class NoBrowser {
public:
    NoBrowser() {
        RegCreateKeyExW(HKEY_CURRENT_USER, path, 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                        &empty_, nullptr);
        RegOverridePredefKey(HKEY_CLASSES_ROOT, empty_);
    }
    ~NoBrowser() {
        RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
        RegCloseKey(empty_);
        RegDeleteKeyW(HKEY_CURRENT_USER, path);
    }
    NoBrowser(const NoBrowser&) = delete;
    NoBrowser& operator=(const NoBrowser&) = delete;

private:
    static constexpr const wchar_t* path = L"Software\\TessaryTestWithoutClasses";
    HKEY empty_ = nullptr;
};

TEST(CheckDialogResult, dialogsThatWereShownPassUnnoticed) {
    const MessageBoxAnswerer answerer(IDNO);
    for (const std::intptr_t result : {0, 1, 2, 4, -2, 1000}) {
        EXPECT_EQ(result, checkDialogResult(result));
    }
    EXPECT_TRUE(answerer.texts().empty());
}

TEST(CheckDialogResult, dialogsThatWereNotOfferTheDownload) {
    const MessageBoxAnswerer answerer(IDNO);
    EXPECT_EQ(-1, checkDialogResult(-1));
    EXPECT_EQ(3, checkDialogResult(3));
    const std::wstring offer =
        L"Quarnel Error: Dialog box could not be created.\nComponents need to be installed.\n"
        L"Would you like to download a fix to this error?";
    EXPECT_EQ((std::vector<std::wstring>{offer, offer}), answerer.texts());
}

TEST(CheckDialogResult, downloadThatCannotStartIsReported) {
    const NoBrowser system;
    const MessageBoxAnswerer answerer(IDYES);
    EXPECT_EQ(3, checkDialogResult(3));
    ASSERT_EQ(2u, answerer.texts().size());
    EXPECT_EQ(L"Quarnel Error: Error downloading QNComponents.exe.\n"
              L"Contact Quarnel Software technical support.\n555-0142",
              answerer.texts().back());
}

}  // namespace

}  // namespace tessary::testing

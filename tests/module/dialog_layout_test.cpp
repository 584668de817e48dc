// The templates of all dialogs, with the usual font and with larger ones: every text has room in its control,
// every control lies in the dialog, and none lies over another.

#include "framework/gdi.h"
#include "framework/window.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

struct Template {
    std::wstring file;
    WORD id;
    Bytes bytes;
};

// Of width and height in an extended template.
constexpr std::size_t sizePosition = 22;

// Where the font's size stands in an extended template: behind its fixed part, menu, class and caption.
std::size_t pointSizePosition(const Bytes& bytes) {
    const auto word = [&](std::size_t at) {
        WORD value = 0;
        std::memcpy(&value, bytes.data() + at, sizeof value);
        return value;
    };
    std::size_t at = 26;
    for (int part = 0; part < 3; ++part) {
        if (word(at) == 0xFFFF) {
            at += 4;
            continue;
        }
        while (word(at) != 0)
            at += 2;
        at += 2;
    }
    return at;
}

std::vector<Template> templatesIn(const wchar_t* file) {
    const HMODULE module = LoadLibraryExW(file, nullptr, LOAD_LIBRARY_AS_DATAFILE);
    if (!module)
        return {};
    std::vector<Template> found;
    const auto collect = [](HMODULE from, LPCWSTR, LPWSTR name, LONG_PTR data) -> BOOL {
        const HRSRC resource = FindResourceW(from, name, RT_DIALOG);
        const auto* bytes = static_cast<const unsigned char*>(LockResource(LoadResource(from, resource)));
        reinterpret_cast<std::vector<Template>*>(data)->push_back(
            {L"", static_cast<WORD>(reinterpret_cast<ULONG_PTR>(name)),
             Bytes(bytes, bytes + SizeofResource(from, resource))});
        return TRUE;
    };
    EnumResourceNamesW(module, RT_DIALOG, collect, reinterpret_cast<LONG_PTR>(&found));
    for (Template& entry : found)
        entry.file = file;
    FreeLibrary(module);
    return found;
}

std::vector<HWND> controlsOf(HWND dialog) {
    std::vector<HWND> controls;
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT))
        controls.push_back(child);
    return controls;
}

bool hasClass(HWND window, const wchar_t* name) {
    wchar_t own[64] = L"";
    GetClassNameW(window, own, 64);
    return _wcsicmp(own, name) == 0;
}

RECT placeIn(HWND dialog, HWND control) {
    RECT place{};
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

// Room that the text takes in the control, and whether it shows all of it.
bool textFits(HWND control) {
    const LONG_PTR style = GetWindowLongPtrW(control, GWL_STYLE);
    const bool button = hasClass(control, L"Button"), label = hasClass(control, L"Static");
    if ((!button && !label) || (label && (style & SS_NOTIFY)))
        return true;  // the text of other controls is not part of the template, or is only read out
    const framework::ClientContext context(control);
    const framework::Selected font(context.get(),
                                   reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0)));
    const std::wstring text = framework::textOf(control);
    RECT area{}, needed{};
    GetClientRect(control, &area);
    const LONG_PTR type = style & BS_TYPEMASK;
    const bool box = button && (type == BS_CHECKBOX || type == BS_AUTOCHECKBOX || type == BS_RADIOBUTTON ||
                                type == BS_AUTORADIOBUTTON);
    // A check mark with its distance, or the two edges of a button.
    const int mark = box ? GetSystemMetrics(SM_CXMENUCHECK) + 4 : button ? 4 : 0;
    needed.right = area.right - mark;
    DrawTextW(context.get(), text.c_str(), -1, &needed, DT_CALCRECT | (label ? DT_WORDBREAK : DT_SINGLELINE));
    return needed.right + mark <= area.right && needed.bottom <= area.bottom;
}

bool isGroupBox(HWND control) {
    return hasClass(control, L"Button") &&
           (GetWindowLongPtrW(control, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
}

std::string describe(const Template& from, int points, HWND control) {
    std::string text;
    for (const wchar_t c : from.file + L" dialog " + std::to_wstring(from.id) + L" at " +
                               std::to_wstring(points) + L" points, control " +
                               std::to_wstring(GetDlgCtrlID(control)) + L": " + framework::textOf(control))
        text += static_cast<char>(c);
    return text;
}

void checkLayout(const Template& from, int points) {
    Bytes bytes = from.bytes;
    const WORD size = static_cast<WORD>(points);
    std::memcpy(bytes.data() + pointSizePosition(bytes), &size, sizeof size);
    const HWND dialog = CreateDialogIndirectParamW(
        nullptr, reinterpret_cast<const DLGTEMPLATE*>(bytes.data()), nullptr,
        [](HWND, UINT message, WPARAM, LPARAM) -> INT_PTR { return message == WM_INITDIALOG; }, 0);
    ASSERT_TRUE(dialog) << "dialog " << from.id;
    // As big as the template has it: the system may have cut it off at the edge of the screen.
    short units[2] = {};
    std::memcpy(units, bytes.data() + sizePosition, sizeof units);
    RECT client = {0, 0, units[0], units[1]};
    MapDialogRect(dialog, &client);
    const std::vector<HWND> controls = controlsOf(dialog);
    for (std::size_t i = 0; i < controls.size(); ++i) {
        const RECT place = placeIn(dialog, controls[i]);
        EXPECT_TRUE(place.left >= 0 && place.top >= 0 && place.right <= client.right &&
                    place.bottom <= client.bottom)
            << "leaves the dialog: " << describe(from, points, controls[i]);
        EXPECT_TRUE(textFits(controls[i])) << "is clipped: " << describe(from, points, controls[i]);
        for (std::size_t j = 0; j < i; ++j) {
            const RECT other = placeIn(dialog, controls[j]);
            RECT common;
            EXPECT_FALSE(IntersectRect(&common, &place, &other) && !isGroupBox(controls[i]) &&
                         !isGroupBox(controls[j]))
                << "overlap: " << describe(from, points, controls[i]) << " and "
                << describe(from, points, controls[j]);
        }
    }
    DestroyWindow(dialog);
}

}  // namespace

TEST(DialogTemplates, NothingIsClippedOrCoveredWithAnyFontSize) {
    WNDCLASSW grid{};
    if (!GetClassInfoW(GetModuleHandleW(nullptr), L"MFCGridCtrl", &grid)) {
        grid.lpfnWndProc = DefWindowProcW;
        grid.hInstance = GetModuleHandleW(nullptr);
        grid.lpszClassName = L"MFCGridCtrl";
        grid.style = CS_GLOBALCLASS;
        ASSERT_TRUE(RegisterClassW(&grid));
    }
    for (const wchar_t* file : {L"drafthost.dll", L"Tessary2010x64.arx"}) {
        const std::vector<Template> templates = templatesIn(file);
        EXPECT_FALSE(templates.empty());
        for (const Template& entry : templates) {
            for (const int points : {8, 11, 16})
                checkLayout(entry, points);
        }
    }
}

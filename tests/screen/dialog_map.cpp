// dialog_map.exe CAPTION: prints where a dialog of another program is on the screen, for tests that move a
// real mouse. One line each:
//   dialog LEFT TOP RIGHT BOTTOM foreground|behind
//   control ID LEFT TOP RIGHT BOTTOM [focus]
//   cell ID ROW COLUMN LEFT TOP RIGHT BOTTOM TEXT      of grids; cells that are hidden are left out
//   entry INDEX LEFT TOP RIGHT BOTTOM TEXT             of the list of a drop-down that is open
// Coordinates are pixels of the screen. Exit status 1: there is no such dialog, or it is not shown.

#include <windows.h>

#include <oleacc.h>

#include <cstdio>
#include <string>

namespace {

void printArea(const RECT& area) {
    std::printf(" %ld %ld %ld %ld", area.left, area.top, area.right, area.bottom);
}

RECT areaOf(HWND window) {
    RECT area{};
    GetWindowRect(window, &area);
    return area;
}

VARIANT child(long number) {
    VARIANT which;
    VariantInit(&which);
    which.vt = VT_I4;
    which.lVal = number;
    return which;
}

std::string utf8(const wchar_t* text) {
    char buffer[512] = "";
    WideCharToMultiByte(CP_UTF8, 0, text ? text : L"", -1, buffer, sizeof buffer, nullptr, nullptr);
    return buffer;
}

void printCell(IAccessible* row, int id, long rowNumber, long column) {
    RECT area{};
    VARIANT state = child(0);
    row->get_accState(child(column + 1), &state);
    if ((state.lVal & STATE_SYSTEM_INVISIBLE) != 0 ||
        row->accLocation(&area.left, &area.top, &area.right, &area.bottom, child(column + 1)) != S_OK)
        return;
    area.right += area.left;
    area.bottom += area.top;
    std::printf("cell %d %ld %ld", id, rowNumber, column);
    printArea(area);
    BSTR text = nullptr;
    row->get_accValue(child(column + 1), &text);
    std::printf(" %s\n", utf8(text).c_str());
    SysFreeString(text);
}

void printRow(IAccessible* table, int id, long number) {
    IDispatch* dispatch = nullptr;
    if (FAILED(table->get_accChild(child(number + 1), &dispatch)) || !dispatch)
        return;
    IAccessible* row = nullptr;
    if (SUCCEEDED(dispatch->QueryInterface(__uuidof(IAccessible), reinterpret_cast<void**>(&row)))) {
        long columns = 0;
        row->get_accChildCount(&columns);
        for (long column = 0; column < columns; ++column)
            printCell(row, id, number, column);
        row->Release();
    }
    dispatch->Release();
}

void printGrid(HWND window, int id) {
    IAccessible* table = nullptr;
    if (FAILED(AccessibleObjectFromWindow(window, static_cast<DWORD>(OBJID_CLIENT), __uuidof(IAccessible),
                                          reinterpret_cast<void**>(&table))))
        return;
    long rows = 0;
    table->get_accChildCount(&rows);
    for (long row = 0; row < rows; ++row)
        printRow(table, id, row);
    table->Release();
}

BOOL CALLBACK printControl(HWND window, LPARAM focus) {
    if (!IsWindowVisible(window))
        return TRUE;
    const int id = GetDlgCtrlID(window);
    std::printf("control %d", id);
    printArea(areaOf(window));
    std::printf(window == reinterpret_cast<HWND>(focus) ? " focus\n" : "\n");
    wchar_t name[64] = L"";
    GetClassNameW(window, name, 64);
    if (std::wstring(name) == L"MFCGridCtrl")
        printGrid(window, id);
    return TRUE;
}

BOOL CALLBACK printOpenList(HWND window, LPARAM) {
    wchar_t name[64] = L"";
    GetClassNameW(window, name, 64);
    if (std::wstring(name) != L"ComboLBox" || !IsWindowVisible(window))
        return TRUE;
    const LRESULT count = SendMessageW(window, LB_GETCOUNT, 0, 0);
    for (LRESULT i = 0; i < count; ++i) {
        RECT area{};
        SendMessageW(window, LB_GETITEMRECT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&area));
        MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&area), 2);
        wchar_t text[256] = L"";
        SendMessageW(window, LB_GETTEXT, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(text));
        std::printf("entry %d", static_cast<int>(i));
        printArea(area);
        std::printf(" %s\n", utf8(text).c_str());
    }
    return TRUE;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2)
        return 2;
    const HWND dialog = FindWindowA("#32770", arguments[1]);
    if (!dialog || !IsWindowVisible(dialog))
        return 1;
    CoInitialize(nullptr);
    GUITHREADINFO state{};
    state.cbSize = sizeof state;
    GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &state);
    std::printf("dialog");
    printArea(areaOf(dialog));
    std::printf(GetForegroundWindow() == dialog ? " foreground\n" : " behind\n");
    EnumChildWindows(dialog, printControl, reinterpret_cast<LPARAM>(state.hwndFocus));
    EnumWindows(printOpenList, 0);
    CoUninitialize();
    return 0;
}

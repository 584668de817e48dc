#pragma once

// The platform's own list in its report view, as what the grid is compared with.

#include <windows.h>

#include <commctrl.h>

#include <string>

namespace bench {

class ListView {
public:
    ListView(HWND parent, SIZE size, int columns) {
        INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES};
        InitCommonControlsEx(&classes);
        window_ = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0, size.cx,
                                  size.cy, parent, nullptr, nullptr, nullptr);
        for (int column = 0; column < columns; ++column) {
            std::wstring head = L"head " + std::to_wstring(column);
            LVCOLUMNW record{};
            record.mask = LVCF_TEXT | LVCF_WIDTH;
            record.cx = 80;
            record.pszText = head.data();
            SendMessageW(window_, LVM_INSERTCOLUMNW, column, reinterpret_cast<LPARAM>(&record));
        }
    }
    ~ListView() { DestroyWindow(window_); }
    ListView(const ListView&) = delete;
    ListView& operator=(const ListView&) = delete;

    HWND handle() const { return window_; }
    void setText(int row, int column, const std::wstring& text) {
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.iItem = row;
        item.iSubItem = column;
        item.pszText = const_cast<wchar_t*>(text.c_str());
        SendMessageW(window_, column == 0 ? LVM_INSERTITEMW : LVM_SETITEMW, 0,
                     reinterpret_cast<LPARAM>(&item));
    }
    void autoSize(int column) { SendMessageW(window_, LVM_SETCOLUMNWIDTH, column, LVSCW_AUTOSIZE); }

private:
    HWND window_;
};

}  // namespace bench

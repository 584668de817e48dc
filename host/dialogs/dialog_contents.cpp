#include "host/dialogs/dialog_contents.h"

#include <algorithm>
#include <vector>

#include "framework/window.h"
#include "host/dialogs/dialog_steps.h"
#include "host/dialogs/dialog_windows.h"
#include "host/dialogs/grid_access.h"

namespace drafthost::dialogs {

namespace {

LONG buttonType(HWND button) {
    return GetWindowLongW(button, GWL_STYLE) & BS_TYPEMASK;
}

bool isOneOf(LONG type, std::initializer_list<LONG> types) {
    return std::find(types.begin(), types.end(), type) != types.end();
}

std::wstring quoted(const std::wstring& text) {
    return L"\"" + text + L"\"";
}

std::wstring labelText(HWND window) {
    return withoutAmpersand(framework::textOf(window));
}

std::wstring counted(int count, const wchar_t* one, const wchar_t* several) {
    return std::to_wstring(count) + (count == 1 ? one : several);
}

bool isHidden(const GridAccess& grid, const GridPlace& place) {
    return (grid.state(place) & STATE_SYSTEM_INVISIBLE) != 0;
}

std::vector<int> shownColumns(const GridAccess& grid, int row) {
    std::vector<int> columns;
    for (int column = 0; column < grid.columns(row); ++column) {
        if (!isHidden(grid, {row, column}))
            columns.push_back(column);
    }
    return columns;
}

std::wstring gridSummary(const GridAccess& grid) {
    std::wstring text = counted(std::max(grid.rows() - 1, 0), L" row", L" rows");
    const wchar_t* separator = L", columns ";
    for (const int column : shownColumns(grid, 0)) {
        text += separator + std::to_wstring(column) + L" " + grid.text({0, column});
        separator = L", ";
    }
    return text;
}

// What kind of control it is and what it holds; empty for a control that takes no action.
struct Summary {
    std::wstring kind, state;
    bool ownLabel = false;  // its own text says what it is for
};

Summary summaryOfButton(HWND button) {
    const LONG type = buttonType(button);
    if (type == BS_GROUPBOX)
        return {};
    const bool radio = isOneOf(type, {BS_RADIOBUTTON, BS_AUTORADIOBUTTON});
    if (!radio && !isOneOf(type, {BS_CHECKBOX, BS_AUTOCHECKBOX, BS_3STATE, BS_AUTO3STATE}))
        return {L"button", L"", true};
    const LRESULT state = SendMessageW(button, BM_GETCHECK, 0, 0);
    return {radio ? L"radio button" : L"check box",
            state == BST_CHECKED     ? L"on"
            : state == BST_UNCHECKED ? L"off"
                                     : L"undecided",
            true};
}

Summary summaryOf(HWND control) {
    if (hasClass(control, L"Button"))
        return summaryOfButton(control);
    if (hasClass(control, L"ListBox")) {
        const auto count = static_cast<int>(SendMessageW(control, LB_GETCOUNT, 0, 0));
        return {L"list", counted(count, L" entry", L" entries")};
    }
    if (hasClass(control, L"ComboBox") || hasClass(control, L"ComboBoxEx32"))
        return {L"drop-down", quoted(framework::textOf(control))};
    if ((SendMessageW(control, WM_GETDLGCODE, 0, 0) & DLGC_HASSETSEL) != 0)
        return {L"text", quoted(framework::textOf(control))};
    if (const auto grid = GridAccess::of(control))
        return {L"grid", gridSummary(*grid)};
    return {};
}

std::wstring lineOf(HWND control, const Summary& summary, const std::wstring& label) {
    const std::wstring& name = summary.ownLabel ? labelText(control) : label;
    std::wstring line = L"  #" + std::to_wstring(GetDlgCtrlID(control)) + L" " + summary.kind;
    if (!name.empty())
        line += L" " + quoted(name);
    if (!summary.state.empty())
        line += L": " + summary.state;
    return line + (IsWindowEnabled(control) ? L"\n" : L" (disabled)\n");
}

std::wstring textLine(const std::wstring& text) {
    return text.empty() ? L"" : L"  " + text + L"\n";
}

// ---- Rows

// Lines with columns of the same width.
std::wstring inColumns(const std::vector<std::vector<std::wstring>>& rows) {
    std::vector<std::size_t> widths;
    for (const auto& row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    }
    std::wstring text;
    for (const auto& row : rows) {
        std::wstring line;
        for (std::size_t i = 0; i < row.size(); ++i)
            line += row[i] + std::wstring(widths[i] - row[i].size() + 2, L' ');
        line.erase(line.find_last_not_of(L' ') + 1);
        text += line + L"\n";
    }
    return text;
}

bool isSelected(const GridAccess& grid, int row) {
    const std::vector<int> columns = shownColumns(grid, row);
    return std::any_of(columns.begin(), columns.end(), [&](int column) {
        return (grid.state({row, column}) & (STATE_SYSTEM_SELECTED | STATE_SYSTEM_FOCUSED)) != 0;
    });
}

std::wstring gridRows(const GridAccess& grid) {
    const std::vector<int> columns = shownColumns(grid, 0);
    std::vector<std::vector<std::wstring>> lines(1, {L""});
    for (const int column : columns)
        lines[0].push_back(std::to_wstring(column));
    for (int row = 0; row < grid.rows(); ++row) {
        if (shownColumns(grid, row).empty())
            continue;  // of a section that is closed
        lines.push_back({(isSelected(grid, row) ? L"*" : L" ") + std::to_wstring(row)});
        for (const int column : columns)
            lines.back().push_back(grid.text({row, column}));
    }
    return inColumns(lines);
}

std::wstring listRows(HWND list) {
    std::wstring text;
    const bool combo = !hasClass(list, L"ListBox");
    const auto selected = SendMessageW(list, combo ? CB_GETCURSEL : LB_GETCURSEL, 0, 0);
    const int count = static_cast<int>(SendMessageW(list, combo ? CB_GETCOUNT : LB_GETCOUNT, 0, 0));
    for (int i = 0; i < count; ++i)
        text += (i == selected ? L"*" : L" ") + textOfEntry(list, i) + L"\n";
    return text;
}

}  // namespace

std::wstring contentsOf(HWND dialog) {
    std::wstring lines, label;
    for (HWND control : controlsOf(dialog)) {
        const Summary summary = summaryOf(control);
        if (summary.kind.empty()) {
            lines += textLine(label);
            label = hasClass(control, L"Static") ? labelText(control) : L"";
            continue;
        }
        if (summary.ownLabel) {
            lines += textLine(label);
        } else if (label.ends_with(L':')) {
            label.pop_back();
        }
        lines += lineOf(control, summary, label);
        label.clear();
    }
    return lines + textLine(label);
}

std::wstring rowsOf(HWND control) {
    if (const auto grid = GridAccess::of(control))
        return gridRows(*grid);
    if (hasClass(control, L"ComboBoxEx32"))
        control = GetWindow(control, GW_CHILD);
    if (hasClass(control, L"ComboBox") || hasClass(control, L"ListBox"))
        return listRows(control);
    return framework::textOf(control) + L"\n";
}

}  // namespace drafthost::dialogs

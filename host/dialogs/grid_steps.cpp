// What the scripted drafter does in grids. Rows and columns are those of the grid's accessible object, which
// counts the header as row 0 and hidden columns too.

#include <algorithm>
#include <cstdlib>

#include "host/dialogs/dialog_input.h"
#include "host/dialogs/dialog_steps.h"
#include "host/dialogs/dialog_windows.h"
#include "host/dialogs/grid_access.h"

namespace drafthost::dialogs {

namespace {

using editor::Answer;

GridAccess gridOf(HWND window) {
    auto grid = GridAccess::of(window);
    if (!grid)
        throw DialogComplaint{nameOfControl(GetDlgCtrlID(window)) + L" is no grid."};
    return *std::move(grid);
}

void checkRow(const GridAccess& grid, int row) {
    if (row < 0 || row >= grid.rows()) {
        throw DialogComplaint{L"There is no row " + std::to_wstring(row) + L"; the grid has " +
                              std::to_wstring(grid.rows()) + L" with its header."};
    }
}

void checkPlace(const GridAccess& grid, const GridPlace& place) {
    checkRow(grid, place.row);
    const int columns = grid.columns(place.row);
    if (place.column < 0 || place.column >= columns) {
        throw DialogComplaint{L"There is no column " + std::to_wstring(place.column) + L"; the grid has " +
                              std::to_wstring(columns) + L"."};
    }
    if ((grid.state(place) & STATE_SYSTEM_INVISIBLE) != 0) {
        const bool columnHidden = (grid.state({0, place.column}) & STATE_SYSTEM_INVISIBLE) != 0;
        throw DialogComplaint{(columnHidden ? L"The column " + std::to_wstring(place.column)
                                            : L"The row " + std::to_wstring(place.row)) +
                              L" is hidden."};
    }
}

// ---- Scrolling

int wheelLines() {
    UINT lines = 3;
    SystemParametersInfoW(SPI_GETWHEELSCROLLLINES, 0, &lines, 0);
    return std::clamp(static_cast<int>(lines), 1, 100);
}

// Turns the wheel until a cell is seen. A grid that has not moved after some turns is at its end.
class ScrollToCell {
public:
    ScrollToCell(HWND window, const GridPlace& place) : window_(window), place_(place) {}

    Progress operator()() {
        const GridAccess grid = gridOf(window_);
        checkPlace(grid, place_);
        const RECT area = grid.area(place_);
        const bool seen = (grid.state(place_) & STATE_SYSTEM_OFFSCREEN) == 0;
        const int height = std::max<int>(1, heightOf(grid.area({0, place_.column}), area));
        if (seen && area.bottom - area.top >= height)
            return Progress::Done;
        unmoved_ = EqualRect(&area, &before_) ? unmoved_ + 1 : 0;
        before_ = area;
        if (unmoved_ < kMostUnmoved) {
            turn(grid, area, height);
            return Progress::Again;
        }
        if (seen)
            return Progress::Done;  // in part
        throw DialogComplaint{L"The cell in row " + std::to_wstring(place_.row) + L" and column " +
                              std::to_wstring(place_.column) + L" cannot be scrolled into view."};
    }

private:
    static constexpr int kMostUnmoved = 3;

    // Of a row: the header's is never cut off.
    static long heightOf(const RECT& header, const RECT& area) {
        return IsRectEmpty(&header) ? area.bottom - area.top : header.bottom - header.top;
    }

    void turn(const GridAccess& grid, const RECT& area, int height) const {
        RECT client{};
        GetClientRect(window_, &client);
        const bool headed = grid.role({0, place_.column}) == ROLE_SYSTEM_COLUMNHEADER;
        const LONG top = headed ? grid.area({0, place_.column}).bottom : 0;
        const LONG above = top - area.top, below = area.bottom - client.bottom;
        if (above >= 0 && area.bottom - area.top < height)
            return turnWheel(window_, -1, false);
        if (above > 0 || below >= 0) {
            const LONG distance = above > 0 ? -above : below;
            const int lines = static_cast<int>(std::abs(distance)) / height + 1;
            const int notches = std::max(1, lines / wheelLines());
            return turnWheel(window_, distance < 0 ? -notches : notches, false);
        }
        turnWheel(window_, area.left < client.right / 2 ? -1 : 1, true);
    }

    HWND window_;
    GridPlace place_;
    RECT before_{};
    int unmoved_ = 0;
};

// ---- Clicks

POINT middleOfCell(HWND window, const GridPlace& place) {
    const RECT area = gridOf(window).area(place);
    RECT client{}, seen{};
    GetClientRect(window, &client);
    if (!IntersectRect(&seen, &area, &client))
        throw DialogComplaint{L"The cell in row " + std::to_wstring(place.row) + L" and column " +
                              std::to_wstring(place.column) + L" is out of view."};
    return middleOf(seen);
}

void addCellClick(Steps& steps, HWND window, const GridPlace& place) {
    addClick(steps, window, [=] { return middleOfCell(window, place); });
}

void addDoubleClick(Steps& steps, HWND window, const GridPlace& place) {
    addCellClick(steps, window, place);
    steps.push_back(once([=] { pressMouseAgain(window, middleOfCell(window, place)); }));
    steps.push_back([=] {
        if (!IsWindow(window))
            return Progress::Finished;
        const RECT area = gridOf(window).area(place);
        releaseMouse(window, middleOf(area));
        return Progress::Done;
    });
}

// The column of the row where a click does nothing but select: not a check box, and rather not a tree cell.
int harmlessColumn(const GridAccess& grid, int row) {
    int best = -1, bestRank = 0;
    for (int column = 0; column < grid.columns(row); ++column) {
        if ((grid.state({row, column}) & STATE_SYSTEM_INVISIBLE) != 0)
            continue;
        const long role = grid.role({row, column});
        const bool seen = (grid.state({row, column}) & STATE_SYSTEM_OFFSCREEN) == 0;
        const int rank = (role == ROLE_SYSTEM_CHECKBUTTON   ? 2
                          : role == ROLE_SYSTEM_OUTLINEITEM ? 4
                                                            : 6) +
                         (seen ? 1 : 0);
        if (rank > bestRank) {
            best = column;
            bestRank = rank;
        }
    }
    if (best < 0)
        throw DialogComplaint{L"The row " + std::to_wstring(row) + L" is hidden."};
    if (bestRank < 4)
        throw DialogComplaint{L"The row " + std::to_wstring(row) +
                              L" has only check boxes, which a click would change."};
    return best;
}

// ---- Editing

// What was opened over a cell, if anything was.
struct CellEditor {
    HWND combo = nullptr;  // null: none
    HWND edit = nullptr;   // null: choices only
    explicit operator bool() const { return combo || edit; }
};

CellEditor editorIn(HWND grid) {
    const HWND focus = GetFocus();
    if (!focus || focus == grid || !IsChild(grid, focus))
        return {};
    if (hasClass(focus, L"ComboBox"))
        return {focus, nullptr};
    const HWND parent = GetParent(focus);
    return {hasClass(parent, L"ComboBox") ? parent : nullptr, focus};
}

Steps stepsInEditor(HWND grid, const CellEditor& editor, const std::wstring& text) {
    Steps steps;
    if (editor.combo && entryOfCombo(editor.combo, text) >= 0) {
        addPick(steps, editor.combo, text);
    } else if (editor.edit) {
        steps.push_back(once([=] { typeOver(editor.edit, text); }));
    } else {
        throw DialogComplaint{L"The drop-down has no entry \"" + text + L"\"."};
    }
    // The owner may have ended the editing itself.
    steps.push_back(once([=] {
        if (const CellEditor open = editorIn(grid))
            pressKeyIn(open.edit ? open.edit : open.combo, {.virtualKey = VK_RETURN});
    }));
    return steps;
}

// Edits with what the double click has opened. Its steps become known only then.
class EditCell {
public:
    EditCell(HWND grid, std::wstring text) : grid_(grid), text_(std::move(text)) {}

    Progress operator()() {
        if (!started_) {
            const CellEditor editor = editorIn(grid_);
            if (!editor)
                return Progress::Finished;  // the owner refused
            steps_ = stepsInEditor(grid_, editor, text_);
            started_ = true;
        }
        const Progress progress = editorIn(grid_) ? steps_.front()() : Progress::Finished;
        if (progress == Progress::Done) {
            steps_.pop_front();
            return steps_.empty() ? Progress::Done : Progress::Again;
        }
        return progress;
    }

private:
    HWND grid_;
    std::wstring text_;
    bool started_ = false;
    Steps steps_;
};

Steps stepsOfCheckBox(HWND window, const GridPlace& place, const std::wstring& text) {
    if (text != L"0" && text != L"1")
        throw DialogComplaint{L"A check box takes 1 or 0."};
    Steps steps;
    const bool checked = (gridOf(window).state(place) & STATE_SYSTEM_CHECKED) != 0;
    if (checked != (text == L"1")) {
        steps.push_back(ScrollToCell(window, place));
        addCellClick(steps, window, place);
    }
    return steps;
}

}  // namespace

Steps stepsOfGridRow(const Answer& answer, HWND window) {
    const GridAccess grid = gridOf(window);
    checkRow(grid, answer.row);
    const GridPlace place{answer.row, harmlessColumn(grid, answer.row)};
    Steps steps;
    steps.push_back(ScrollToCell(window, place));
    addCellClick(steps, window, place);
    return steps;
}

Steps stepsOfDoubleClick(const Answer& answer, HWND window) {
    const GridPlace place{answer.row, answer.column};
    checkPlace(gridOf(window), place);
    Steps steps;
    steps.push_back(ScrollToCell(window, place));
    addDoubleClick(steps, window, place);
    return steps;
}

Steps stepsOfGridCell(const Answer& answer, HWND window) {
    const GridPlace place{answer.row, answer.column};
    const GridAccess grid = gridOf(window);
    checkPlace(grid, place);
    const long role = grid.role(place);
    if (role == ROLE_SYSTEM_CHECKBUTTON)
        return stepsOfCheckBox(window, place, answer.text);
    Steps steps;
    steps.push_back(ScrollToCell(window, place));
    if (role == ROLE_SYSTEM_COLUMNHEADER || role == ROLE_SYSTEM_ROWHEADER) {
        addCellClick(steps, window, place);  // headers are not edited
    } else {
        addDoubleClick(steps, window, place);
        steps.push_back(EditCell(window, answer.text));
    }
    return steps;
}

}  // namespace drafthost::dialogs

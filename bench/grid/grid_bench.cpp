// What the grid control takes for 100,000 rows of 7 columns, as ratios: against the platform's list control,
// or against plain vectors of texts where the list control has nothing to compare with (bench/grid.sh).

#include "bench/grid/list_view.h"
#include "module/grid/grid_control.h"

#include <psapi.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using tessary::CGridCtrl;

constexpr int rowTotal = 100'000;
constexpr int columnTotal = 7;
constexpr int choiceTotal = 20'000;
constexpr int pages = 200;
constexpr SIZE windowSize{700, 400};

using Table = std::vector<std::vector<std::wstring>>;

// Rows like those of a list of layers; the names, in column 1, are in no order.
Table tableOfLayers() {
    Table table;
    for (unsigned row = 0; row < rowTotal; ++row) {
        unsigned mixed = row * 2'654'435'761U;
        table.push_back({std::to_wstring(row), L"Layer " + std::to_wstring(mixed % 1'000'000),
                         std::to_wstring(mixed % 256), row % 3 ? L"CONTINUOUS" : L"HIDDEN",
                         row % 2 ? L"1" : L"0", row % 5 ? L"0.25 mm" : L"Default",
                         L"Style " + std::to_wstring(mixed % 100)});
    }
    return table;
}

double milliseconds(auto&& work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

double bestOf(int times, auto&& measure) {
    double best = std::numeric_limits<double>::max();
    for (int i = 0; i < times; ++i) {
        best = std::min(best, measure());
    }
    return best;
}

void report(const char* what, double ours, const char* baseline, double theirs, const char* wanted = "") {
    std::printf("grid/%-28s %6.2f times %s (%.2f ms, %.2f ms%s)\n", what, ours / theirs, baseline, ours,
                theirs, wanted);
}

// The grid in a window, set up as a dialog does it.
class Grid {
public:
    explicit Grid(HWND parent) {
        HWND window =
            CreateWindowExW(0, CGridCtrl::className, L"", WS_CHILD | WS_VISIBLE, 0, 0, windowSize.cx,
                            windowSize.cy, parent, reinterpret_cast<HMENU>(id), nullptr, nullptr);
        if (!window) {
            std::fprintf(stderr, "no grid window\n");
            std::exit(1);
        }
        control.attachToControl(parent, id);
        control.setColumnCount(columnTotal);
        control.setFixedRowCount(1);
        control.setRowCount(1);
        for (int column = 0; column < columnTotal; ++column) {
            control.setText(0, column, L"head " + std::to_wstring(column));
            control.setColumnWidth(column, 80);
        }
        control.setColumnChoicesFromText(2, L"|Select color. . .");
        control.setColumnChoicesFromText(3, L"|Select linetype. . .");
        control.setCheckBoxColumn(4);
        control.setColumnChoicesFromText(5, L"Default|0.25 mm|0.5 mm");
    }
    ~Grid() { DestroyWindow(control.handle()); }
    void fill(const Table& table) {
        for (const std::vector<std::wstring>& texts : table) {
            int row = control.appendRow();
            for (int column = 0; column < columnTotal; ++column) {
                control.setText(row, column, texts[static_cast<std::size_t>(column)]);
            }
        }
    }

    CGridCtrl control;

private:
    static constexpr int id = 1050;
};

// Without drawing, as the list control needs it to get anywhere; the grid is filled with drawing on.
void fill(bench::ListView& list, const Table& table) {
    SendMessageW(list.handle(), WM_SETREDRAW, FALSE, 0);
    for (int row = 0; row < rowTotal; ++row) {
        for (int column = 0; column < columnTotal; ++column) {
            list.setText(row, column, table[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]);
        }
    }
    SendMessageW(list.handle(), WM_SETREDRAW, TRUE, 0);
}

double privateBytes() {
    PROCESS_MEMORY_COUNTERS_EX counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                         sizeof counters);
    return static_cast<double>(std::max(counters.WorkingSetSize, counters.PrivateUsage));
}

// Of the first grid of the process: later ones find memory that is free already.
void reportMemory(HWND parent, const Table& table) {
    constexpr double cells = static_cast<double>(rowTotal) * columnTotal;
    double before = privateBytes();
    Grid grid(parent);
    grid.fill(table);
    double ours = (privateBytes() - before) / cells;
    before = privateBytes();
    Table copy = table;
    double theirs = (privateBytes() - before) / cells;
    before = privateBytes();
    bench::ListView list(parent, windowSize, columnTotal);
    fill(list, table);
    double listView = (privateBytes() - before) / cells;
    std::printf(
        "grid/%-28s %6.2f times vectors of texts (%.0f bytes a cell, %.0f; list control %.0f; at most "
        "300 wanted)\n",
        "memory", ours / theirs, ours, theirs, listView);
}

void reportFill(HWND parent, const Table& table) {
    double ours = bestOf(3, [&] {
        Grid grid(parent);
        return milliseconds([&] { grid.fill(table); });
    });
    double theirs = bestOf(2, [&] {
        bench::ListView list(parent, windowSize, columnTotal);
        return milliseconds([&] { fill(list, table); });
    });
    report("fill", ours, "a list control", theirs, "; under 1000 wanted");
}

void reportSort(HWND parent, const char* what, const Table& table, std::size_t column, bool ascending) {
    double ours = bestOf(3, [&] {
        Grid grid(parent);
        grid.fill(table);
        return milliseconds([&] {
            grid.control.sortByColumn(tessary::compareGridTexts, static_cast<int>(column), ascending);
        });
    });
    double theirs = bestOf(3, [&] {
        Table rows = table;
        return milliseconds([&] {
            std::sort(rows.begin(), rows.end(), [&](const auto& a, const auto& b) {
                return ascending ? a[column] < b[column] : a[column] > b[column];
            });
        });
    });
    report(what, ours, "std::sort of vectors", theirs, "; under 2000 wanted");
}

void reportSorts(HWND parent, const Table& table) {
    reportSort(parent, "sort by name", table, 1, true);
    reportSort(parent, "sort by name, descending", table, 1, false);
    reportSort(parent, "sort by line weight", table, 5, true);  // two values
    // The worst that comes from use: a sorted list behind another one.
    Table lists = table;
    for (int row = 0; row < rowTotal; ++row) {
        lists[static_cast<std::size_t>(row)][1] =
            L"Layer " + std::to_wstring(1'000'000 + row * 2 % rowTotal + row * 2 / rowTotal);
    }
    reportSort(parent, "sort two sorted lists", lists, 1, true);
}

double pageTime(HWND window) {
    SendMessageW(window, WM_VSCROLL, SB_TOP, 0);
    UpdateWindow(window);
    double all = milliseconds([&] {
        for (int page = 0; page < pages; ++page) {
            SendMessageW(window, WM_VSCROLL, SB_PAGEDOWN, 0);
            UpdateWindow(window);
        }
    });
    return all / pages;
}

// A page without the scroll bar, which the platform draws.
double paintTime(HWND window) {
    double all = milliseconds([&] {
        for (int page = 0; page < pages; ++page) {
            InvalidateRect(window, nullptr, FALSE);
            UpdateWindow(window);
        }
    });
    return all / pages;
}

// What the platform needs to move the thumb of a scroll bar.
double thumbTime(HWND window) {
    SCROLLINFO position{};
    position.cbSize = sizeof position;
    position.fMask = SIF_POS;
    double all = milliseconds([&] {
        for (int page = 0; page < pages; ++page) {
            position.nPos = page + 1;
            SetScrollInfo(window, SB_VERT, &position, TRUE);
        }
    });
    return all / pages;
}

void reportSeen(HWND parent, const Table& table) {
    Grid grid(parent);
    grid.fill(table);
    UpdateWindow(grid.control.handle());
    double ourPage = bestOf(3, [&] { return pageTime(grid.control.handle()); });
    double ourPaint = bestOf(3, [&] { return paintTime(grid.control.handle()); });
    double thumb = bestOf(3, [&] { return thumbTime(grid.control.handle()); });
    double ourSizes = bestOf(3, [&] { return milliseconds([&] { grid.control.autoSizeColumns(); }); });
    ShowWindow(grid.control.handle(), SW_HIDE);

    bench::ListView list(parent, windowSize, columnTotal);
    fill(list, table);
    UpdateWindow(list.handle());
    double listPage = bestOf(3, [&] { return pageTime(list.handle()); });
    double listPaint = bestOf(3, [&] { return paintTime(list.handle()); });
    double listSizes = milliseconds([&] {
        for (int column = 0; column < columnTotal; ++column) {
            list.autoSize(column);
        }
    });
    char note[80];
    std::snprintf(note, sizeof note, "; under 5 wanted; the platform's thumb alone %.2f", thumb);
    report("scroll a page", ourPage, "a list control", listPage, note);
    report("paint a page", ourPaint, "a list control", listPaint, "");
    report("auto-size all columns", ourSizes, "a list control", listSizes, "; under 1000 wanted");
}

// Every row's choice among many, as a dialog reads it when it saves.
void reportChoices(HWND parent) {
    std::vector<std::wstring> texts;
    std::vector<int> data;
    std::unordered_map<std::wstring, int> known;
    for (int choice = 0; choice < choiceTotal; ++choice) {
        texts.push_back(L"Layer " + std::to_wstring(choice));
        data.push_back(choice + 1);
        known.emplace(texts.back(), choice + 1);
    }
    Grid grid(parent);
    grid.control.setDropDownColumn(1, false);
    grid.control.setColumnChoices(1, texts);
    grid.control.setColumnChoiceData(1, data);
    grid.control.setRowCount(rowTotal + 1);
    for (int row = 1; row <= rowTotal; ++row) {
        grid.control.setText(row, 1, texts[static_cast<std::size_t>(row * 7919LL % choiceTotal)]);
    }
    long long sums[2]{};
    double ours = milliseconds([&] {
        grid.control.applyColumnChoices(1);
        for (int row = 1; row <= rowTotal; ++row) {
            sums[0] += grid.control.cell(row, 1)->selectedData();
        }
    });
    double theirs = milliseconds([&] {
        for (int row = 1; row <= rowTotal; ++row) {
            sums[1] += known.at(grid.control.text(row, 1));
        }
    });
    if (sums[0] != sums[1]) {
        std::fprintf(stderr, "the choices' data differ\n");
        std::exit(1);
    }
    report("data of 20,000 choices", ours, "a hashed map", theirs);
}

}  // namespace

int main() {
    tessary::registerGridClass();
    HWND parent = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, windowSize.cx,
                                  windowSize.cy, nullptr, nullptr, nullptr, nullptr);
    const Table table = tableOfLayers();
    reportMemory(parent, table);
    reportFill(parent, table);
    reportSorts(parent, table);
    reportSeen(parent, table);
    reportChoices(parent);
    DestroyWindow(parent);
    return 0;
}

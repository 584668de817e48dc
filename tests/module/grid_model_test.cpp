// The matrix of a grid against a plain table of texts, and what a column's kind does to its cells.

#include "module/grid/grid_model.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

namespace tessary::testing {
namespace {

using Texts = std::vector<std::wstring>;
using Table = std::vector<Texts>;

Table tableOf(const GridModel& model) {
    Table table(static_cast<std::size_t>(model.rowCount()));
    for (int row = 0; row < model.rowCount(); ++row) {
        for (int column = 0; column < model.columnCount(); ++column) {
            table[static_cast<std::size_t>(row)].push_back(model.text(row, column));
        }
    }
    return table;
}

// A header row of "head 0"... and rows of the texts.
GridModel modelOf(const Table& rows) {
    GridModel model;
    model.setColumnCount(static_cast<int>(rows.front().size()));
    model.setFixedRowCount(1);
    model.setRowCount(1);
    for (int column = 0; column < model.columnCount(); ++column) {
        model.setText(0, column, L"head " + std::to_wstring(column));
    }
    for (const Texts& texts : rows) {
        int row = model.insertRow();
        for (std::size_t column = 0; column < texts.size(); ++column) {
            model.setText(row, static_cast<int>(column), texts[column]);
        }
    }
    return model;
}

Texts choicesOf(const GridModel& model, int row, int column) {
    const GridChoices* choices = model.cell(row, column)->choices();
    return choices ? choices->texts : Texts();
}

// ---- Random operations

// The sort as it is stated, on texts: recursive, with the middle row's text as the pivot.
void plainSort(Table& table, int low, int high, std::size_t column, bool ascending) {
    auto at = [&](int row) -> Texts& { return table[static_cast<std::size_t>(row)]; };
    const std::wstring pivot = at((low + high) / 2)[column];
    auto below = [&](int row) { return ascending ? at(row)[column] < pivot : at(row)[column] > pivot; };
    auto above = [&](int row) { return ascending ? at(row)[column] > pivot : at(row)[column] < pivot; };
    int i = low;
    int j = high;
    do {
        while (i < high && below(i)) {
            i++;
        }
        while (j > low && above(j)) {
            j--;
        }
        if (i <= j) {
            if (at(i)[column] != at(j)[column]) {
                at(i).swap(at(j));
            }
            i++;
            j--;
        }
    } while (i <= j);
    if (low < j) {
        plainSort(table, low, j, column, ascending);
    }
    if (i < high) {
        plainSort(table, i, high, column, ascending);
    }
}

// A grid and the table that it should be; every step does the same to both.
class TwoGrids {
public:
    explicit TwoGrids(unsigned seed) : random_(seed) {
        model_.setColumnCount(4);
        model_.setFixedRowCount(1);
        model_.setRowCount(1);
        table_ = {{L"", L"", L"", L""}};
        boxes_.assign(4, false);
    }

    void step() {
        switch (below(12)) {
            case 0: resizeRows(); break;
            case 1: resizeColumns(); break;
            case 2: changeColumn(); break;
            case 3: sort(); break;
            case 4: swap(); break;
            case 5: erase(); break;
            case 6:
            case 7: insert(); break;
            default: edit(); break;
        }
    }
    const GridModel& model() const { return model_; }
    const Table& table() const { return table_; }

private:
    int below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }
    int rows() const { return static_cast<int>(table_.size()); }
    int columns() const { return static_cast<int>(boxes_.size()); }
    bool inside(int row, int column) const {
        return row >= 0 && row < rows() && column >= 0 && column < columns();
    }
    Texts newRow(bool header) const {
        Texts row;
        for (bool box : boxes_) {
            row.push_back(box && !header ? L"0" : L"");
        }
        return row;
    }

    void insert() {
        int position = below(rows() + 4) - 2;
        int row = position < 0 ? rows() : std::clamp(position, std::min(1, rows()), rows());
        table_.insert(table_.begin() + row, newRow(row == 0));
        EXPECT_EQ(row, model_.insertRow(position));
        // A number of its own tells rows apart that are equal where they are sorted.
        put(row, 0, std::to_wstring(++inserted_));
    }
    void put(int row, int column, const std::wstring& text) {
        model_.setText(row, column, text);
        if (inside(row, column)) {
            bool box = boxes_[static_cast<std::size_t>(column)] && row > 0;
            table_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] = !box           ? text
                                                                                      : text == L"0" ? L"0"
                                                                                                     : L"1";
        }
    }
    void edit() {
        static const Texts texts{L"", L"0", L"1", L"a", L"A", L"a b", L"\u00e4", L"a text that is long"};
        put(below(rows() + 2) - 1, below(columns() + 1), texts[static_cast<std::size_t>(below(8))]);
    }
    void erase() {
        int row = below(rows() + 3);
        if (row == 0) {
            return;  // the header stays
        }
        model_.deleteRow(row);
        if (row < rows()) {
            table_.erase(table_.begin() + row);
        }
    }
    void swap() {
        int a = 1 + below(rows() + 1), b = 1 + below(rows() + 1);
        model_.swapRows(a, b);
        if (a < rows() && b < rows()) {
            table_[static_cast<std::size_t>(a)].swap(table_[static_cast<std::size_t>(b)]);
        }
    }
    void sort() {
        int column = below(columns() + 1);
        bool ascending = below(2) == 0;
        model_.sort(compareGridTexts, column, ascending);
        if (column < columns() && rows() > 2) {
            plainSort(table_, 1, rows() - 1, static_cast<std::size_t>(column), ascending);
        }
    }
    void resizeRows() {
        int count = std::max(1, rows() + below(7) - 3);
        model_.setRowCount(count);
        while (rows() < count) {
            table_.push_back(newRow(false));
        }
        table_.resize(static_cast<std::size_t>(count));
    }
    void resizeColumns() {
        int count = std::clamp(columns() + below(3) - 1, 1, 6);
        model_.setColumnCount(count);
        boxes_.resize(static_cast<std::size_t>(count), false);
        for (Texts& row : table_) {
            row.resize(static_cast<std::size_t>(count));
        }
    }
    void changeColumn() {
        int column = below(columns());
        bool box = below(2) == 0;
        model_.setColumnType(column, box ? GridColumnType::checkBox : GridColumnType::text);
        boxes_[static_cast<std::size_t>(column)] = box;
        for (int row = 1; box && row < rows(); ++row) {
            std::wstring& text = table_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
            text = text.empty() || text == L"0" ? L"0" : L"1";
        }
    }

    std::mt19937 random_;
    GridModel model_;
    Table table_;
    std::vector<bool> boxes_;
    int inserted_ = 0;
};

TEST(GridModel, anyOperationsGiveWhatAPlainTableGives) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        TwoGrids grids(seed);
        for (int step = 0; step < 600; ++step) {
            grids.step();
            ASSERT_EQ(grids.table(), tableOf(grids.model())) << "seed " << seed << ", step " << step;
        }
    }
}

// ---- Sorting

TEST(GridModel, equalRowsComeInTheOrderOfTheStatedExchanges) {
    // By hand: the pivot is "b" (row 1); rows 0 and 3 are exchanged, then rows 1 and 2 are not, being equal.
    GridModel model = modelOf({{L"c", L"1"}, {L"b", L"2"}, {L"b", L"3"}, {L"a", L"4"}});
    model.sort(compareGridTexts, 0, true);
    EXPECT_EQ((Table{{L"head 0", L"head 1"}, {L"a", L"4"}, {L"b", L"2"}, {L"b", L"3"}, {L"c", L"1"}}),
              tableOf(model));
}

TEST(GridModel, longAndOrderedRowsSortAsStated) {
    const int count = 20'000;
    auto textOf = [](int value) { return std::to_wstring(1'000'000 + value); };
    const std::vector<int (*)(int)> patterns{
        [](int row) { return row; },
        [](int row) { return count - row; },
        [](int) { return 0; },
        [](int row) { return row % 7; },
        [](int row) { return row < count / 2 ? row % 100 : row; },
        [](int row) { return static_cast<int>(static_cast<unsigned>(row) * 2'654'435'761U >> 20); },
    };
    for (std::size_t pattern = 0; pattern < patterns.size(); ++pattern) {
        Table rows;
        for (int row = 0; row < count; ++row) {
            rows.push_back({textOf(patterns[pattern](row)), std::to_wstring(row)});
        }
        for (bool ascending : {true, false}) {
            GridModel model = modelOf(rows);
            model.sort(compareGridTexts, 0, ascending);
            Table sorted = tableOf(model);
            sorted.erase(sorted.begin());
            Table expected = rows;
            plainSort(expected, 0, count - 1, 0, ascending);
            EXPECT_TRUE(expected == sorted) << "pattern " << pattern << (ascending ? " up" : " down");
        }
    }
}

TEST(GridModel, aCompareFunctionThatContradictsItselfLosesNoRow) {
    static std::mt19937 random;
    const std::vector<GridCompare> compares{
        [](const CGridCellBase*, const CGridCellBase*) { return -1; },
        [](const CGridCellBase*, const CGridCellBase*) { return 1; },
        [](const CGridCellBase*, const CGridCellBase*) { return static_cast<int>(random() % 3) - 1; },
        [](const CGridCellBase*, const CGridCellBase*) -> int { throw std::runtime_error("no order"); },
        nullptr,
    };
    Table rows;
    for (int row = 0; row < 1000; ++row) {
        rows.push_back({std::to_wstring(row + 10'000)});
    }
    for (GridCompare compare : compares) {
        for (bool ascending : {true, false}) {
            GridModel model = modelOf(rows);
            try {
                model.sort(compare, 0, ascending);
            } catch (const std::runtime_error&) {
            }
            Table left = tableOf(model);
            left.erase(left.begin());
            std::ranges::sort(left);
            EXPECT_TRUE(left == rows);
        }
    }
}

TEST(GridModel, textsCompareByCharacterCodes) {
    auto compare = [](const wchar_t* a, const wchar_t* b) {
        CGridCell first, second;
        first.setText(a);
        second.setText(b);
        int order = compareGridTexts(&first, &second);
        return (order > 0) - (order < 0);
    };
    EXPECT_EQ(-1, compare(L"", L"A"));
    EXPECT_EQ(-1, compare(L"Z", L"a"));
    EXPECT_EQ(-1, compare(L"a", L"ab"));
    EXPECT_EQ(-1, compare(L"a10", L"a2"));
    EXPECT_EQ(-1, compare(L"z", L"\u00e4"));
    EXPECT_EQ(1, compare(L"\ufffd", L"\u00e4"));
    EXPECT_EQ(0, compare(L"x y", L"x y"));
    CGridCell cell;
    cell.setText(L"a");
    EXPECT_EQ(0, compareGridTexts(nullptr, &cell));
    EXPECT_EQ(0, compareGridTexts(&cell, nullptr));
}

// ---- Counts, headers, names

TEST(GridModel, placesOutsideTheMatrixReadEmptyAndTakeNothing) {
    GridModel model = modelOf({{L"a", L"b"}});
    const Table before = tableOf(model);
    for (auto [row, column] : std::vector<std::pair<int, int>>{{-1, 0}, {2, 0}, {1, -1}, {1, 2}, {-1, -1}}) {
        model.setText(row, column, L"x");
        model.setShownText(row, column, L"x");
        model.setReadOnly(row, column, true);
        model.setCellChoices(row, column, {L"x"}, true);
        model.makePlainCell(row, column);
        model.setCell(row, column, nullptr);
        EXPECT_EQ(nullptr, model.cell(row, column));
        EXPECT_EQ(L"", model.text(row, column));
        EXPECT_EQ(L"", model.valueText(row, column));
        EXPECT_EQ(L"", model.shownText(row, column));
    }
    for (int column : {-1, 2}) {
        model.setColumnType(column, GridColumnType::checkBox);
        model.setColumnWidth(column, 5);
        model.setColumnChoicesFromText(column, L"a|b");
        model.setColumnChoiceData(column, {1});
        model.applyColumnChoices(column);
        model.setColumnName(column, L"nowhere");
        model.sort(compareGridTexts, column, false);
        EXPECT_EQ(GridColumnType::text, model.columnType(column));
        EXPECT_EQ(0, model.columnWidth(column));
    }
    EXPECT_EQ(-1, model.columnNamed(L"nowhere"));
    model.deleteRow(-1);
    model.deleteRow(2);
    model.swapRows(1, 2);
    model.swapRows(-1, 1);
    model.setExpanded(7, false);
    EXPECT_EQ(before, tableOf(model));
}

TEST(GridModel, negativeCountsAreNoneAndFixedCountsOutliveTheRows) {
    GridModel model = modelOf({{L"a", L"b"}, {L"c", L"d"}});
    model.setRowCount(-3);
    EXPECT_EQ(0, model.rowCount());
    EXPECT_EQ(0, model.fixedRowCount());
    model.setRowCount(3);
    EXPECT_EQ(1, model.fixedRowCount());
    model.deleteRow(0);
    EXPECT_EQ(0, model.fixedRowCount()) << "the row below a deleted header is no header";
    model.setFixedColumnCount(-1);
    model.setColumnCount(-1);
    EXPECT_EQ(0, model.columnCount());
    EXPECT_EQ(2, model.insertRow());
    model.setColumnWidth(0, 10);
    model.setColumnCount(1);
    model.setColumnWidth(0, -10);
    EXPECT_EQ(0, model.columnWidth(0));
}

TEST(GridModel, headersStayTextInAColumnOfAnyKind) {
    for (bool typeFirst : {true, false}) {
        GridModel model;
        model.setColumnCount(2);
        model.setRowCount(2);
        if (typeFirst) {
            model.setColumnType(1, GridColumnType::checkBox);
            model.setFixedRowCount(1);
        } else {
            model.setFixedRowCount(1);
            model.setColumnType(1, GridColumnType::checkBox);
        }
        EXPECT_EQ(L"", model.text(0, 1));
        model.setText(0, 1, L"Plot");
        EXPECT_EQ(L"Plot", model.text(0, 1));
        EXPECT_EQ(L"Plot", model.valueText(0, 1));
        EXPECT_EQ(GridColumnType::checkBox, model.cell(1, 1)->kind());
        model.setFixedColumnCount(2);
        EXPECT_EQ(GridColumnType::text, model.cell(1, 1)->kind());
        EXPECT_TRUE(model.isFixed(1, 1));
        model.setFixedColumnCount(1);
        EXPECT_EQ(GridColumnType::checkBox, model.cell(1, 1)->kind());
        EXPECT_EQ(L"0", model.valueText(1, 1)) << "an empty text does not check a box by itself";
    }
}

TEST(GridModel, columnsAreFoundByNameUntilTheyGo) {
    GridModel model = modelOf({{L"a", L"b", L"c"}});
    model.setColumnName(0, L"Name");
    model.setColumnName(2, L"Value");
    model.setColumnName(2, L"Worth");
    EXPECT_EQ(0, model.columnNamed(L"Name"));
    EXPECT_EQ(2, model.columnNamed(L"Value"));
    EXPECT_EQ(2, model.columnNamed(L"Worth"));
    EXPECT_EQ(-1, model.columnNamed(L"name"));
    model.setColumnName(1, L"Name");
    EXPECT_EQ(1, model.columnNamed(L"Name"));
    model.setColumnCount(2);
    EXPECT_EQ(-1, model.columnNamed(L"Value"));
    EXPECT_EQ(1, model.columnNamed(L"Name"));
}

TEST(GridModel, readOnlyIsOneBitOfTheState) {
    GridModel model = modelOf({{L"a"}});
    model.cell(1, 0)->setState(3);
    model.setReadOnly(1, 0, true);
    EXPECT_EQ(11U, model.cell(1, 0)->state());
    EXPECT_TRUE(model.cell(1, 0)->isReadOnly());
    model.setCellChoices(1, 0, {L"a"}, true);
    EXPECT_EQ(11U, model.cell(1, 0)->state());
    model.setReadOnly(1, 0, false);
    EXPECT_EQ(3U, model.cell(1, 0)->state());
}

// ---- Check boxes and choices

TEST(GridModel, anyTextButNoughtChecksABox) {
    GridModel model = modelOf({{L"", L""}});
    model.setColumnType(1, GridColumnType::checkBox);
    EXPECT_EQ(L"0", model.valueText(1, 1));
    for (const wchar_t* text : {L"1", L"-1", L"", L"00", L"no", L" 0"}) {
        model.setText(1, 1, L"0");
        EXPECT_EQ(L"0", model.valueText(1, 1));
        EXPECT_EQ(L"0", model.text(1, 1));
        model.setText(1, 1, text);
        EXPECT_EQ(L"-1", model.valueText(1, 1)) << text;
        EXPECT_EQ(L"1", model.text(1, 1)) << text;
        EXPECT_EQ(L"", model.shownText(1, 1));
    }
}

TEST(GridModel, aColumnsChoicesComeFromAText) {
    struct Case {
        const wchar_t* text;
        GridColumnType type;
        Texts choices;
    };
    const std::vector<Case> cases{
        {L"|Select color. . .", GridColumnType::editableDropDown, {L"Select color. . ."}},
        {L"Predefined|Custom", GridColumnType::choiceDropDown, {L"Predefined", L"Custom"}},
        {L"one", GridColumnType::choiceDropDown, {L"one"}},
        {L"||a||b c||", GridColumnType::editableDropDown, {L"a", L"b c"}},
        {L"|", GridColumnType::editableDropDown, {}},
        {L"", GridColumnType::choiceDropDown, {}},
    };
    for (const Case& wanted : cases) {
        GridModel model = modelOf({{L"old", L"1"}});
        model.setColumnChoicesFromText(0, wanted.text);
        int added = model.insertRow();
        for (int row : {1, added}) {
            EXPECT_EQ(wanted.type, model.cell(row, 0)->kind()) << wanted.text;
            EXPECT_EQ(wanted.choices, choicesOf(model, row, 0)) << wanted.text;
        }
        EXPECT_EQ(wanted.type, model.columnType(0));
        EXPECT_EQ(L"old", model.text(1, 0));
        EXPECT_EQ(GridColumnType::text, model.cell(0, 0)->kind());
        EXPECT_EQ(nullptr, model.cell(0, 0)->choices());
    }
}

TEST(GridModel, appliedChoicesCarryTheirData) {
    GridModel model = modelOf({{L"two"}, {L"one"}, {L"three"}, {L"ONE"}, {L""}});
    model.setColumnType(0, GridColumnType::choiceDropDown);
    model.setColumnChoices(0, {L"one", L"two", L"three"});
    model.setColumnChoiceData(0, {10, 20});
    EXPECT_EQ(0, model.cell(1, 0)->selectedData()) << "not applied yet";
    model.applyColumnChoices(0);
    std::vector<int> data;
    for (int row = 0; row < model.rowCount(); ++row) {
        data.push_back(model.cell(row, 0)->selectedData());
    }
    EXPECT_EQ((std::vector<int>{0, 20, 10, 0, 0, 0}), data);

    model.setColumnChoices(0, {L"two"});
    EXPECT_EQ(20, model.cell(1, 0)->selectedData()) << "cells keep their list until another one is applied";
    model.applyColumnChoices(0);
    EXPECT_EQ(10, model.cell(1, 0)->selectedData());
    EXPECT_EQ(0, model.cell(2, 0)->selectedData());
}

TEST(GridModel, applyingReachesEveryCellThatIsNoHeader) {
    GridModel model = modelOf({{L"a", L"b"}, {L"c", L"d"}, {L"e", L"f"}});
    model.setFixedColumnCount(1);
    model.setColumnType(1, GridColumnType::choiceDropDown);
    model.setColumnChoices(1, {L"x", L"y"});
    model.setCellChoices(1, 1, {L"own"}, true);
    model.makePlainCell(2, 1);
    model.applyColumnChoices(1);
    for (int row = 1; row <= 3; ++row) {
        EXPECT_EQ((Texts{L"x", L"y"}), choicesOf(model, row, 1));
        EXPECT_EQ(GridColumnType::choiceDropDown, model.cell(row, 1)->kind());
    }
    EXPECT_EQ(L"d", model.text(2, 1));
    EXPECT_EQ(nullptr, model.cell(0, 1)->choices());
    model.setColumnChoices(0, {L"x"});
    model.applyColumnChoices(0);
    EXPECT_EQ(nullptr, model.cell(1, 0)->choices()) << "a fixed column";
}

TEST(GridModel, aCellsOwnChoicesComeAndGo) {
    GridModel model = modelOf({{L"No"}, {L"x"}});
    model.setColumnChoicesFromText(0, L"a|b");
    model.setCellChoices(1, 0, {L"Yes", L"No"}, false);
    EXPECT_EQ(GridColumnType::choiceDropDown, model.cell(1, 0)->kind());
    model.setCellChoices(1, 0, {L"Yes", L"No"}, true);
    EXPECT_EQ(GridColumnType::editableDropDown, model.cell(1, 0)->kind());
    EXPECT_EQ((Texts{L"Yes", L"No"}), choicesOf(model, 1, 0));
    EXPECT_EQ((Texts{L"a", L"b"}), choicesOf(model, 2, 0)) << "other cells keep theirs";
    model.setCellChoices(1, 0, {}, true);
    model.makePlainCell(2, 0);
    for (int row : {1, 2}) {
        EXPECT_EQ(GridColumnType::text, model.cell(row, 0)->kind());
        EXPECT_EQ(nullptr, model.cell(row, 0)->choices());
        EXPECT_EQ(0, model.cell(row, 0)->selectedData());
    }
    EXPECT_EQ(L"No", model.text(1, 0));
    EXPECT_EQ(L"x", model.text(2, 0));
}

TEST(GridModel, aLongListFindsTheSameChoiceAsAShortOne) {
    // Longer lists are searched by an order of their own; the first of equal choices counts in both.
    std::mt19937 random(7);
    for (std::size_t length : {3U, 16U, 17U, 300U}) {
        GridChoices choices;
        for (std::size_t i = 0; i < length; ++i) {
            choices.texts.push_back(std::to_wstring(random() % length));
            choices.data.push_back(static_cast<int>(random() % length) - 3);
        }
        const GridChoices copy = choices;
        for (int sought = -5; sought < static_cast<int>(length) + 2; ++sought) {
            auto text = std::ranges::find(choices.texts, std::to_wstring(sought));
            int wanted = text == choices.texts.end() ? -1 : static_cast<int>(text - choices.texts.begin());
            EXPECT_EQ(wanted, choices.find(std::to_wstring(sought))) << length;
            auto datum = std::ranges::find(choices.data, sought);
            wanted = datum == choices.data.end() ? -1 : static_cast<int>(datum - choices.data.begin());
            EXPECT_EQ(wanted, choices.findDatum(sought)) << length;
            EXPECT_EQ(wanted, copy.findDatum(sought)) << length;
        }
    }
}

TEST(GridModel, aLookedUpColumnShowsTheChoiceOfItsDatum) {
    GridModel model = modelOf({{L"20"}, {L"10"}, {L"99"}, {L"one"}, {L"1x"}, {L""}});
    model.setColumnType(0, GridColumnType::lookedUp);
    model.setColumnChoices(0, {L"one", L"two"});
    model.setColumnChoiceData(0, {10, 20, 99});
    model.applyColumnChoices(0);
    Texts values;
    for (int row = 0; row < model.rowCount(); ++row) {
        values.push_back(model.valueText(row, 0));
        EXPECT_EQ(values.back(), model.shownText(row, 0));
    }
    EXPECT_EQ((Texts{L"head 0", L"two", L"one", L"99", L"one", L"1x", L""}), values);
    EXPECT_EQ(L"20", model.text(1, 0));
    EXPECT_EQ(20, model.cell(1, 0)->selectedData());
    EXPECT_EQ(10, model.cell(4, 0)->selectedData());

    model.setShownText(1, 0, L"one");
    EXPECT_EQ(L"10", model.text(1, 0));
    model.setShownText(1, 0, L"unknown");
    EXPECT_EQ(L"unknown", model.text(1, 0));

    model.setColumnChoiceData(0, {});
    model.applyColumnChoices(0);
    for (auto [text, value] :
         std::vector<std::pair<const wchar_t*, const wchar_t*>>{{L"1", L"two"},
                                                                {L"0", L"one"},
                                                                {L"2", L"2"},
                                                                {L"-1", L"-1"},
                                                                {L"99999999999", L"99999999999"}}) {
        model.setText(1, 0, text);
        EXPECT_EQ(value, model.valueText(1, 0)) << "without data the number counts";
    }
    model.setShownText(1, 0, L"two");
    EXPECT_EQ(L"1", model.text(1, 0));

    model.setCellChoices(1, 0, {L"a", L"b"}, false);
    EXPECT_EQ(L"1", model.valueText(1, 0)) << "choices of the cell's own are no column's list";
    model.applyColumnChoices(0);
    EXPECT_EQ(L"two", model.valueText(1, 0));
}

// ---- Unique rows

TEST(GridModel, aUniqueRowCopiesTheLastOneUnderANewName) {
    GridModel model = modelOf({{L"7", L"New Layer", L"red"}, {L"8", L"New Layer (2)", L"blue"}});
    model.setColumnChoicesFromText(2, L"|red|blue");
    model.setReadOnly(2, 2, true);
    EXPECT_EQ(3, model.addUniqueRow(L"New Layer", 1, 0));
    EXPECT_EQ((Texts{L"-1", L"New Layer (1)", L"blue"}), tableOf(model)[3]);
    EXPECT_EQ((Texts{L"red", L"blue"}), choicesOf(model, 3, 2));
    EXPECT_TRUE(model.cell(3, 2)->isReadOnly());
    EXPECT_EQ(L"New Layer (3)", model.text(model.addUniqueRow(L"New Layer", 1, 0), 1));
    EXPECT_EQ(L"new layer", model.text(model.addUniqueRow(L"new layer", 1, 0), 1));
    EXPECT_EQ(L"", model.text(model.addUniqueRow(L"", 1, 0), 1));
    EXPECT_EQ(L" (1)", model.text(model.addUniqueRow(L"", 1, 0), 1));
    EXPECT_EQ(L"head 1 (1)", model.text(model.addUniqueRow(L"head 1", 1, 0), 1)) << "headers count, too";
}

TEST(GridModel, aUniqueRowMayGoBetweenOthers) {
    GridModel model = modelOf({{L"a", L"1", L"x"}, {L"b", L"2", L"y"}});
    EXPECT_EQ(2, model.addUniqueRow(L"a", 0, 1, 2));
    EXPECT_EQ(1, model.addUniqueRow(L"a", 1, 0, 0)) << "headers stay first";
    EXPECT_EQ((Table{{L"head 0", L"head 1", L"head 2"},
                     {L"-1", L"a", L"y"},
                     {L"a", L"1", L"x"},
                     {L"a (1)", L"-1", L"y"},
                     {L"b", L"2", L"y"}}),
              tableOf(model));
}

TEST(GridModel, theFirstUniqueRowTakesTheHeadersTexts) {
    GridModel model;
    model.setColumnCount(5);
    model.setFixedRowCount(1);
    model.setRowCount(1);
    model.setColumnType(2, GridColumnType::checkBox);
    model.setColumnType(3, GridColumnType::checkBox);
    model.setColumnChoicesFromText(4, L"|a|b");
    const Texts heads{L"key", L"Name", L"To Scale", L"Can Rotate", L"Kind"};
    for (int column = 0; column < 5; ++column) {
        model.setText(0, column, heads[static_cast<std::size_t>(column)]);
    }
    EXPECT_EQ(1, model.addUniqueRow(L"Symbol", 1, 0));
    EXPECT_EQ((Texts{L"-1", L"Symbol", L"0", L"0", L"Kind"}), tableOf(model)[1]);
    EXPECT_EQ(GridColumnType::checkBox, model.cell(1, 2)->kind());
    EXPECT_EQ((Texts{L"a", L"b"}), choicesOf(model, 1, 4));

    GridModel none;
    none.setColumnCount(2);
    EXPECT_EQ(0, none.addUniqueRow(L"first", 0, 1));
    EXPECT_EQ((Table{{L"first", L"-1"}}), tableOf(none));
    none.addUniqueRow(L"nowhere", 9, -4);
    EXPECT_EQ((Texts{L"", L""}), tableOf(none)[1]) << "columns that are not there name nothing";
}

// ---- Sections

std::vector<int> shownRows(const GridModel& model) {
    std::vector<int> rows;
    for (int row = -1; row <= model.rowCount(); ++row) {
        if (model.isRowShown(row)) {
            rows.push_back(row);
        }
    }
    return rows;
}

TEST(GridModel, sectionsHideTheirRows) {
    GridModel model;
    model.setColumnCount(5);
    model.setFixedRowCount(1);
    model.setRowCount(1);
    EXPECT_EQ(1, model.addSectionRow(L"General"));
    EXPECT_EQ(2, model.addTreeRow());
    EXPECT_EQ(3, model.addTreeRow());
    EXPECT_EQ(4, model.addSectionRow(L"Other"));
    EXPECT_EQ(5, model.addTreeRow());
    EXPECT_EQ((Texts{L"General", L"", L"General", L"", L""}), tableOf(model)[1]);
    EXPECT_TRUE(model.isSectionRow(1) && model.isSectionRow(4));
    EXPECT_FALSE(model.isSectionRow(0) || model.isSectionRow(2));
    EXPECT_TRUE(model.cell(1, 1)->isReadOnly());
    EXPECT_FALSE(model.cell(2, 1)->isReadOnly());

    model.setExpanded(1, false);
    EXPECT_EQ((std::vector<int>{0, 1, 4, 5}), shownRows(model));
    EXPECT_FALSE(model.isExpanded(1));
    model.setExpanded(2, false);
    model.setExpanded(4, false);
    EXPECT_EQ((std::vector<int>{0, 1, 4}), shownRows(model));
    EXPECT_EQ(6, model.addTreeRow());
    EXPECT_FALSE(model.isRowShown(6));
    model.deleteRow(4);
    EXPECT_EQ((std::vector<int>{0, 1}), shownRows(model)) << "rows of a deleted head join the section above";
    model.deleteRow(1);
    EXPECT_EQ((std::vector<int>{0, 1, 2, 3, 4}), shownRows(model)) << "rows without a head are shown";
}

TEST(GridModel, hiddenRowsFollowEveryChange) {
    // Against a walk from the top after each change; what is known of the rows above must not outlive it.
    std::mt19937 random(3);
    GridModel model;
    model.setColumnCount(3);
    model.setFixedRowCount(1);
    model.setRowCount(1);
    model.setColumnType(1, GridColumnType::tree);
    auto anyRow = [&] { return static_cast<int>(random() % static_cast<unsigned>(model.rowCount())); };
    for (int step = 0; step < 2000; ++step) {
        switch (random() % 12) {
            case 0: model.addSectionRow(std::to_wstring(random() % 10)); break;
            case 1: model.insertRow(anyRow()); break;
            case 2: model.deleteRow(std::max(1, anyRow())); break;
            case 3: model.swapRows(std::max(1, anyRow()), std::max(1, anyRow())); break;
            case 4: model.sort(compareGridTexts, 0, random() % 2 == 0); break;
            case 5: model.setRowCount(std::max(1, model.rowCount() - static_cast<int>(random() % 4))); break;
            case 6:
            case 7: model.addTreeRow(); break;
            default: model.setExpanded(anyRow(), random() % 2 == 0); break;
        }
        std::vector<int> expected{0};
        bool hidden = false;
        for (int row = 1; row < model.rowCount(); ++row) {
            if (model.isSectionRow(row)) {
                hidden = !model.isExpanded(row);
                expected.push_back(row);
            } else if (!hidden) {
                expected.push_back(row);
            }
        }
        ASSERT_EQ(expected, shownRows(model)) << "step " << step;
    }
}

TEST(GridModel, aTreeColumnThatIsReplacedEndsItsSections) {
    GridModel model;
    model.setColumnCount(3);
    model.addSectionRow(L"a");
    model.addTreeRow();
    model.setExpanded(0, false);
    model.setColumnType(1, GridColumnType::tree);
    EXPECT_FALSE(model.isSectionRow(0));
    EXPECT_EQ((std::vector<int>{0, 1}), shownRows(model));
    EXPECT_EQ(GridColumnType::text, model.columnType(0));
    EXPECT_EQ(L"a", model.text(0, 0));
    model.addSectionRow(L"b");
    EXPECT_TRUE(model.isSectionRow(2));
    model.setColumnCount(1);
    EXPECT_FALSE(model.isSectionRow(2));
    model.setFixedColumnCount(1);
    model.addSectionRow(L"c");
    EXPECT_TRUE(model.isSectionRow(3)) << "names of sections may stand in a fixed column";
}

}  // namespace
}  // namespace tessary::testing

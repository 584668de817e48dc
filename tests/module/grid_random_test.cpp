// Random use of a grid by a drafter and an owner that does not make it easy.

#include "grid_window.h"
#include "module/grid/grid_notifications.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace tessary::testing {
namespace {

class RandomUse {
public:
    explicit RandomUse(unsigned seed) : random_(seed) {
        window.fill(30, 6, 60);
        window.grid.setFixedColumnCount(1);
        window.grid.setCheckBoxColumn(2);
        window.grid.setColumnWidth(3, 0);
        window.grid.setColumnChoicesFromText(4, L"|One|Two|Three");
        window.grid.applyColumnChoices(4);
        window.grid.setColumnChoicesFromText(5, L"Four|Five");
        window.grid.applyColumnChoices(5);
        window.grid.setHeaderSort(true);
        window.answer = [this](const GridEvent& event) { return answer(event); };
    }

    void step() {
        told_ = changed_ = false;
        const int rowBefore = window.grid.focusedRow();
        drafterDoes(number(10));
        const int row = window.grid.focusedRow();
        if (!changed_ && told_) {
            EXPECT_EQ(lastTold_, row) << "the owner knows the focused row";
        } else if (!changed_ && row >= 0) {
            EXPECT_EQ(rowBefore, row) << "the focus moved without a word";
        }
        expectSound();
        if (number(10) == 0)
            ownerDoes(number(7));
        expectSound();
    }

    GridWindow window{{280, 160}};

private:
    int number(int below) { return std::uniform_int_distribution<>(0, below - 1)(random_); }
    POINT anywhere() { return {number(300) - 10, number(180) - 10}; }

    void drafterDoes(int what) {
        static constexpr UINT keys[]{VK_UP,     VK_DOWN,   VK_LEFT,   VK_RIGHT, VK_PRIOR, VK_NEXT,
                                     VK_HOME,   VK_END,    VK_TAB,    VK_BACK,  VK_SPACE, VK_F2,
                                     VK_RETURN, VK_DELETE, VK_ESCAPE, 'A',      'B',      '7'};
        const unsigned modifiers = (number(4) == 0 ? withShift : 0) | (number(4) == 0 ? withControl : 0);
        switch (what) {
            case 0: window.clickAt(anywhere(), modifiers & withShift); break;
            case 1: window.doubleClickAt(anywhere()); break;
            case 2: window.drag(anywhere(), anywhere()); break;
            case 3: window.wheel((number(5) - 2) * 70, number(3) == 0); break;
            case 4:
                SendMessageW(window.grid.handle(), number(2) ? WM_VSCROLL : WM_HSCROLL,
                             MAKEWPARAM(number(8), 0), 0);
                break;
            default: window.press(keys[number(std::size(keys))], modifiers);
        }
        if (window.owner() && GetFocus() != window.grid.handle() && !window.grid.isEditing())
            SetFocus(window.grid.handle());
        window.pump();
    }

    LRESULT answer(const GridEvent& event) {
        if (event.code == gridSelectionChanged) {
            told_ = true;
            lastTold_ = event.row;
        }
        if (number(12) == 0)
            ownerDoes(number(7));
        return event.code == gridBeginEdit && number(4) == 0 ? gridRefuse : 0;
    }

    void ownerDoes(int what) {
        changed_ = true;
        CGridCtrl& grid = window.grid;
        switch (what) {
            case 0: grid.setRowCount(number(40)); break;
            case 1: grid.deleteFocusedRow(); break;
            case 2: grid.deleteRow(number(40)); break;
            case 3: grid.addUniqueRow(L"New", 1, 0, number(3) == 0); break;
            case 4: grid.focusCell(number(30) - 1, number(8) - 1); break;
            case 5: grid.setColumnWidth(number(6), number(3) * 50); break;
            default: grid.endEditing();
        }
        if (grid.rowCount() > 0)
            grid.setFixedRowCount(1);
    }

    void expectSound() {
        const GridPosition focus{window.grid.focusedRow(), window.grid.focusedColumn()};
        EXPECT_EQ(focus.row >= 0, focus.column >= 0);
        EXPECT_LT(focus.row, window.grid.rowCount());
        EXPECT_TRUE(!focus || (focus.row >= window.grid.fixedRowCount() && focus.column >= 1));
        const auto [first, last] = window.grid.selectedBlock();
        EXPECT_LT(last.row, window.grid.rowCount());
        EXPECT_TRUE(!focus || window.grid.isSelected(focus.row, focus.column));
        EXPECT_EQ(window.grid.columnWidth(0) >= 0, true);
        UpdateWindow(window.grid.handle());
    }

    std::mt19937 random_;
    bool told_ = false;     // of a row, since the step began
    bool changed_ = false;  // by the owner, since then
    int lastTold_ = -1;
};

TEST(GridRandom, NoOrderOfEventsBreaksTheGrid) {
    // --gtest_random_seed=N: others than usual.
    const auto first = static_cast<unsigned>(::testing::UnitTest::GetInstance()->random_seed()) * 4;
    for (unsigned seed = first; seed < first + 4 && !::testing::Test::HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomUse use(seed);
        for (int step = 0; step < 120 && !::testing::Test::HasFailure(); ++step) {
            SCOPED_TRACE("step " + std::to_string(step));
            use.step();
        }
    }
}

}  // namespace
}  // namespace tessary::testing

#pragma once

// Fields of colors in rows and columns, of which one is chosen by mouse or arrow keys.

#include "framework/window.h"

namespace drafthost {

// A static control of a dialog (SS_NOTIFY), attached to. Its dialog receives WM_COMMAND with STN_CLICKED when
// the drafter has chosen a color and with STN_DBLCLK for a double click on one. Its text, which screen
// readers read out, is that of the template followed by the color.
class ColorCells final : public framework::Window {
public:
    // Index of the color in a field.
    using IndexAt = int (*)(int column, int row);
    ColorCells(int columns, int rows, IndexAt indexAt) : columns_(columns), rows_(rows), indexAt_(indexAt) {}

    // The chosen color; 0 when it is none of these.
    int selected() const { return selected_; }
    // Shows the color as chosen, or none; the dialog is not told.
    void select(int index);
    // In pixels of the control.
    RECT cellArea(int column, int row) const;

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void paint();
    void paintCell(HDC context, int column, int row) const;
    void press(POINT at, int code);
    bool key(WPARAM code);
    void choose(int column, int row, int code);
    void showName();

    int columns_, rows_;
    IndexAt indexAt_;
    int selected_ = 0;
    int column_ = 0, row_ = 0;  // where the keyboard stands
    std::wstring name_;         // empty: not read from the template yet
};

}  // namespace drafthost

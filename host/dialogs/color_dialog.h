#pragma once

// The host's dialog for a color by its index.

#include "host/api/dialog.h"
#include "host/dialogs/color_cells.h"

namespace drafthost {

// What was chosen before and what is chosen now, side by side.
class ColorPreview final : public framework::Window {
public:
    // Indices 1 to 255.
    void show(int before, int now);

protected:
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    void paint();
    int before_ = 7, now_ = 7;
};

class ColorDialog final : public AcEdDialog {
public:
    // color: 0 to 256; layerColor: 1 to 255.
    ColorDialog(HWND parent, int color, bool allowByBlockByLayer, int layerColor);

    // After DoModal answered IDOK.
    int color() const { return color_; }

protected:
    bool onInitDialog() override;
    void onOK() override;

private:
    void paletteChosen();
    void standardChosen();
    void grayChosen();
    void byLayer();
    void byBlock();
    void typed();
    void accept();
    // Fills the field as well; its change does the rest.
    void choose(int color);
    void showChoice();
    std::optional<int> typedColor() const;
    // What the color looks like: an index from 1 to 255.
    int shownColor(int color) const;

    const int before_;
    const bool allowByBlockByLayer_;
    const int layerColor_;
    int color_;
    ColorCells palette_, standard_, grays_;
    ColorPreview preview_;
};

}  // namespace drafthost

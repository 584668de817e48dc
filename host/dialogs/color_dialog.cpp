#include "host/dialogs/color_dialog.h"

#include <string>

#include "framework/gdi.h"
#include "framework/instance.h"
#include "host/api/color_dialog.h"
#include "host/dialogs/color_brush.h"
#include "host/dialogs/color_dialog_ids.h"
#include "host/editor/color_names.h"

namespace drafthost {

using editor::kByBlock, editor::kByLayer;

namespace {

constexpr int kWhite = 7;

// A column for each hue; from the middle the shades get darker upwards, the tints downwards.
int paletteIndex(int column, int row) {
    const int shade = row < 5 ? 8 - 2 * row : 2 * (row - 5) + 1;
    return 10 + 10 * column + shade;
}
int standardIndex(int column, int) {
    return 1 + column;
}
int grayIndex(int column, int) {
    return 250 + column;
}

bool isPlain(int color) {
    return color > kByBlock && color < kByLayer;
}

}  // namespace

void ColorPreview::show(int before, int now) {
    before_ = before;
    now_ = now;
    InvalidateRect(handle(), nullptr, FALSE);
}

LRESULT ColorPreview::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_PAINT) {
        paint();
        return 0;
    }
    // The control's own handling would paint the text over the colors.
    if (message == WM_SETTEXT)
        return DefWindowProcW(handle(), message, wParam, lParam);
    return defaultHandling(message, wParam, lParam);
}

void ColorPreview::paint() {
    const framework::PaintContext paint(handle());
    RECT area{};
    GetClientRect(handle(), &area);
    FrameRect(paint.get(), &area, GetSysColorBrush(COLOR_WINDOWTEXT));
    InflateRect(&area, -1, -1);
    RECT left = area, right = area;
    left.right = right.left = (area.left + area.right) / 2;
    FillRect(paint.get(), &left, colorBrush(before_).get());
    FillRect(paint.get(), &right, colorBrush(now_).get());
}

ColorDialog::ColorDialog(HWND parent, int color, bool allowByBlockByLayer, int layerColor)
    : AcEdDialog(IDD_SELECT_COLOR, parent, framework::ownInstance()), before_(color),
      allowByBlockByLayer_(allowByBlockByLayer), layerColor_(layerColor), color_(color),
      palette_(24, 10, paletteIndex), standard_(9, 1, standardIndex), grays_(6, 1, grayIndex) {
    onCommand(IDC_COLOR_PALETTE, STN_CLICKED, &ColorDialog::paletteChosen);
    onCommand(IDC_COLOR_STANDARD, STN_CLICKED, &ColorDialog::standardChosen);
    onCommand(IDC_COLOR_GRAYS, STN_CLICKED, &ColorDialog::grayChosen);
    for (const int cells : {IDC_COLOR_PALETTE, IDC_COLOR_STANDARD, IDC_COLOR_GRAYS})
        onCommand(cells, STN_DBLCLK, &ColorDialog::accept);
    onButton(IDC_COLOR_BY_LAYER, &ColorDialog::byLayer);
    onButton(IDC_COLOR_BY_BLOCK, &ColorDialog::byBlock);
    onCommand(IDC_COLOR_EDIT, EN_CHANGE, &ColorDialog::typed);
}

bool ColorDialog::onInitDialog() {
    setDialogName(L"drafthost:SelectColor");
    AcEdDialog::onInitDialog();
    palette_.attach(control(IDC_COLOR_PALETTE));
    standard_.attach(control(IDC_COLOR_STANDARD));
    grays_.attach(control(IDC_COLOR_GRAYS));
    preview_.attach(control(IDC_COLOR_PREVIEW));
    enableControl(IDC_COLOR_BY_LAYER, allowByBlockByLayer_);
    enableControl(IDC_COLOR_BY_BLOCK, allowByBlockByLayer_);
    choose(color_);
    focusControl(IDC_COLOR_EDIT);
    return false;
}

void ColorDialog::paletteChosen() {
    choose(palette_.selected());
}

void ColorDialog::standardChosen() {
    choose(standard_.selected());
}

void ColorDialog::grayChosen() {
    choose(grays_.selected());
}

void ColorDialog::byLayer() {
    choose(kByLayer);
}

void ColorDialog::byBlock() {
    choose(kByBlock);
}

void ColorDialog::choose(int color) {
    setControlText(IDC_COLOR_EDIT, editor::colorText(color));
}

void ColorDialog::typed() {
    if (const auto color = typedColor()) {
        color_ = *color;
        showChoice();
    }
}

std::optional<int> ColorDialog::typedColor() const {
    std::wstring text = controlText(IDC_COLOR_EDIT);
    const std::size_t start = text.find_first_not_of(L' ');
    if (start == std::wstring::npos)
        return std::nullopt;
    text = text.substr(start, text.find_last_not_of(L' ') - start + 1);
    const auto color = editor::colorIndex(text);
    return color && (isPlain(*color) || allowByBlockByLayer_) ? color : std::nullopt;
}

int ColorDialog::shownColor(int color) const {
    if (color == kByLayer)
        return layerColor_;
    return color == kByBlock ? kWhite : color;
}

void ColorDialog::showChoice() {
    palette_.select(color_);
    standard_.select(color_);
    grays_.select(color_);
    preview_.show(shownColor(before_), shownColor(color_));
    preview_.setText(L"Old color " + editor::colorText(before_) + L", new color " +
                     editor::colorText(color_));
    const graphics::Rgb rgb = graphics::colorOfIndex(shownColor(color_));
    setControlText(IDC_COLOR_INDEX, isPlain(color_) ? L"Index color: " + std::to_wstring(color_) : L"");
    setControlText(IDC_COLOR_RGB, L"Red, Green, Blue: " + std::to_wstring(rgb.red) + L", " +
                                      std::to_wstring(rgb.green) + L", " + std::to_wstring(rgb.blue));
}

void ColorDialog::accept() {
    onOK();
}

void ColorDialog::onOK() {
    if (const auto color = typedColor()) {
        color_ = *color;
        return end(IDOK);
    }
    MessageBoxW(handle(),
                allowByBlockByLayer_
                    ? L"The color must be a number from 1 to 255, the name of a standard color, "
                      L"ByLayer or ByBlock."
                    : L"The color must be a number from 1 to 255 or the name of a standard color.",
                L"Select Color", MB_OK | MB_ICONWARNING);
    focusControl(IDC_COLOR_EDIT);
}

}  // namespace drafthost

bool acedSetColorDialog(int& color, bool allowByBlockByLayer, int layerColor) {
    using namespace drafthost;
    const bool known = isPlain(color) || (allowByBlockByLayer && (color == kByBlock || color == kByLayer));
    const HWND active = GetActiveWindow();
    ColorDialog dialog(active ? active : adsw_acadMainWnd(), known ? color : kWhite, allowByBlockByLayer,
                       isPlain(layerColor) ? layerColor : kWhite);
    if (dialog.DoModal() != IDOK)
        return false;
    color = dialog.color();
    return true;
}

#include "module/standards/layer_row.h"

#include "module/binding/number_format.h"
#include "module/binding/truncation.h"
#include "module/drawing/text_helpers.h"
#include "module/standards/list_grid.h"

#include <algorithm>
#include <cwchar>

namespace tessary {

namespace {

constexpr const wchar_t* defaultLineweight = L"Default";

std::wstring colorText(const std::optional<int>& index) {
    return index ? intToString(*index) : std::wstring();
}

}  // namespace

LayerFields layerFields(const CGridCtrl& grid, int row) {
    const std::wstring& plotStyle = grid.text(row, LayerColumn::plotStyle);
    return {.name = grid.text(row, LayerColumn::name),
            .color = layerColor(grid.text(row, LayerColumn::color)),
            .linetype = grid.text(row, LayerColumn::linetype),
            .plots = grid.valueText(row, LayerColumn::plot) != L"0",
            .lineweight = lineweightDigits(grid.text(row, LayerColumn::lineweight)),
            .plotStyle = plotStyle.empty() ? std::nullopt : std::optional(plotStyle)};
}

void showLayerRow(CGridCtrl& grid, int row, const CTblLayer& layer) {
    grid.setText(row, LayerColumn::key, intToString(layer.ixLayer()));
    grid.setText(row, LayerColumn::name, layer.sName());
    grid.setText(row, LayerColumn::color, colorText(layer.iColor()));
    grid.setText(row, LayerColumn::linetype, layer.sLinetype());
    grid.setText(row, LayerColumn::plot, layer.bPlot() ? L"1" : L"0");
    grid.setText(row, LayerColumn::lineweight, lineweightText(layer.sLineweight()));
    grid.setText(row, LayerColumn::plotStyle, layer.sPlotstyle().value_or(L""));
}

void showPlainLayer(CGridCtrl& grid, int row) {
    grid.setText(row, LayerColumn::color, L"7");
    grid.setText(row, LayerColumn::linetype, L"Continuous");
    grid.setText(row, LayerColumn::plot, L"1");
    grid.setText(row, LayerColumn::lineweight, defaultLineweight);
    grid.setText(row, LayerColumn::plotStyle, L"");
}

void writeLayerRow(const CGridCtrl& grid, int row, CTblLayer& layer) {
    const LayerFields fields = layerFields(grid, row);
    layer.setName(*fields.name);
    layer.setColor(*fields.color);
    layer.setLinetype(*fields.linetype);
    layer.setPlot(fields.plots);
    layer.setLineweight(fields.lineweight);
    layer.setPlotstyle(fields.plotStyle);
}

std::wstring lineweightText(const std::optional<std::wstring>& digits) {
    if (!digits || digits->empty()) {
        return defaultLineweight;
    }
    return formatFixed(leadingInteger(*digits) / 100.0, 2, true) + L" mm";
}

std::optional<std::wstring> lineweightDigits(const std::wstring& text) {
    if (text.empty() || text == defaultLineweight) {
        return std::nullopt;
    }
    // The fraction is dropped, not rounded: all weights of the list come out whole.
    return intToString(truncatedToInt(std::wcstod(text.c_str(), nullptr) * 100.0));
}

int layerColor(const std::wstring& text) {
    return std::clamp(leadingInteger(text), 1, 255);
}

bool hasLayerNameCharacters(const std::wstring& name) {
    return name.find_first_of(L"<>/\\'\":;?*|,=") == std::wstring::npos;
}

}  // namespace tessary

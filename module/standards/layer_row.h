#pragma once

// A layer as a row of the layers grid: its columns, and how their texts stand for the fields of tblLayer.

#include "module/grid/grid_control.h"
#include "module/standards/layer_record.h"

#include <optional>
#include <string>

namespace tessary {

struct LayerColumn {
    static constexpr int key = 0;
    static constexpr int name = 1;
    static constexpr int color = 2;
    static constexpr int linetype = 3;
    static constexpr int plot = 4;
    static constexpr int lineweight = 5;
    static constexpr int plotStyle = 6;
};

// The fields of tblLayer that a row shows. Nothing: null.
struct LayerFields {
    std::optional<std::wstring> name;
    std::optional<int> color;
    std::optional<std::wstring> linetype;
    bool plots = false;
    std::optional<std::wstring> lineweight;  // hundredths of a millimetre in decimal digits
    std::optional<std::wstring> plotStyle;
    bool operator==(const LayerFields&) const = default;
};

// What the row stands for.
LayerFields layerFields(const CGridCtrl& grid, int row);
// Shows the loaded layer in the row.
void showLayerRow(CGridCtrl& grid, int row, const CTblLayer& layer);
// The row of a layer like those that a drawing begins with; its key and name stay.
void showPlainLayer(CGridCtrl& grid, int row);
// Sets all fields that the row shows. layer: adding or editing.
void writeLayerRow(const CGridCtrl& grid, int row, CTblLayer& layer);

// Hundredths of a millimetre in decimal digits as "0.25 mm"; nothing, and no digits, as "Default". Zeros at
// the end are dropped ("0.5 mm", "1 mm"), so not every weight reads like the entries of the grid's list.
std::wstring lineweightText(const std::optional<std::wstring>& digits);
// The other way, from the number that the text begins with; nothing for "Default" and the empty text.
std::optional<std::wstring> lineweightDigits(const std::wstring& text);

// The nearest index that a layer can have. Without a number: 1.
int layerColor(const std::wstring& text);

// Whether a drawing's layer can have the name, as far as its characters go.
bool hasLayerNameCharacters(const std::wstring& name);

}  // namespace tessary

#include "module/standards/layers_dialog.h"

#include "module/binding/dialog_result.h"
#include "module/binding/text_comparison.h"
#include "module/binding/variant_conversion.h"
#include "module/drawing/text_helpers.h"
#include "module/grid/in_place_list.h"
#include "module/standards/layer_callbacks.h"
#include "module/standards/layer_row.h"
#include "module/standards/layers_dialog_parts.h"
#include "module/standards/linetype_dialog.h"
#include "module/standards/list_grid.h"
#include "module/standards/statements.h"

#include <iterator>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace tessary {

namespace {

// The apostrophe at the end is part of the message that drafters and their manuals know.
constexpr const wchar_t* invalidCharacters = L"Invalid characters in layer name.\n\n"
                                             L"The following characters are not valid in layer names:\n"
                                             L"    < > / \\ ' \" : ; ? * | , = '";

// In the order of the index sName.
constexpr const wchar_t* layersStatement =
    L"select ixLayer, sName, iColor, sLinetype, bPlot, sLineweight, sPlotstyle from tblLayer order by sName";

// A row of that statement as a record of names and values.
Variant layerRecord(const SelectedRow& row) {
    static constexpr const wchar_t* names[] = {L"ixLayer", L"sName",       L"iColor",    L"sLinetype",
                                               L"bPlot",   L"sLineweight", L"sPlotstyle"};
    std::vector<Variant> pairs;
    for (std::size_t i = 0; i < std::size(names) && i < row.size(); ++i) {
        pairs.push_back(variantFromString(names[i]));
        pairs.push_back(row[i]);
    }
    return Variant::fromArray(makeVariantArray(pairs));
}

// The fields of all layers that the grid shows, by ixLayer, as they stand in the database.
std::map<int, LayerFields> storedLayers(DatabaseConnection& connection) {
    std::map<int, LayerFields> layers;
    const auto rows = selectRows(connection, layersStatement);
    for (std::size_t i = 0; rows && i < rows->size(); ++i) {
        const SelectedRow& row = (*rows)[i];
        if (row.size() == 7) {
            const bool hasColor = row[2].type() != VT_NULL && row[2].type() != VT_EMPTY;
            layers[variantToInt(row[0].get())] = {
                .name = textIn(row[1]),
                .color = hasColor ? std::optional(variantToInt(row[2].get())) : std::nullopt,
                .linetype = textIn(row[3]),
                .plots = variantToInt(row[4].get()) != 0,
                .lineweight = textIn(row[5]),
                .plotStyle = textIn(row[6])};
        }
    }
    return layers;
}

}  // namespace

void CLayerCustomization::fillLayers() {
    const FillingList filling(layers_);
    clearList(layers_);
    eachLayer([this](const CTblLayer& layer) {
        showLayerRow(layers_, layers_.appendRow(), layer);
        return true;
    });
    layers_.autoSizeColumns();
    if (layers_.rowCount() > 1) {
        layers_.focusCell(1, LayerColumn::name);
    }
}

// In one statement, which is one call of the server: walking with the record takes four for each layer, and
// the drafter would wait for a database of 20,000 after every name.
void CLayerCustomization::eachLayer(const std::function<bool(const CTblLayer& layer)>& visit) {
    const auto rows = selectRows(*connection_, layersStatement);
    for (std::size_t i = 0; rows && i < rows->size(); ++i) {
        layer_->loadRecord(layerRecord((*rows)[i]).get());
        if (!visit(*layer_)) {
            return;
        }
    }
}

// Only rows that differ from the database are written, since writing one takes its time; what the database
// has afterwards is the same.
void CLayerCustomization::saveLayers() {
    const auto stored = storedLayers(*connection_);
    layer_->setIndex(L"ixLayer");
    for (int row = 1; row < layers_.rowCount(); ++row) {
        const auto found = stored.find(layerKey(row));
        const bool changed = found != stored.end() && found->second != layerFields(layers_, row);
        if (changed && layer_->seekByIx(layerKey(row))) {
            layer_->edit();
            writeLayerRow(layers_, row, *layer_);
            store(*layer_);
        }
    }
    fillLayerKeys();
}

void CLayerCustomization::newLayer() {
    const bool isFirst = layers_.rowCount() == layers_.fixedRowCount();
    const int row = layers_.addUniqueRow(L"New Layer", LayerColumn::name, LayerColumn::key);
    if (isFirst) {
        // There was no layer to copy from, only the headers.
        showPlainLayer(layers_, row);
        layers_.autoSizeColumns();
    }
    layer_->addNew();
    writeLayerRow(layers_, row, *layer_);
    const bool stored = store(*layer_);
    layer_->moveLast();
    // A row that the database declined keeps the key of no layer: the last record is another layer's.
    if (stored) {
        layers_.setText(row, LayerColumn::key, intToString(layer_->ixLayer()));
    }
    refreshLayerChoices();
    layers_.focusCell(row, LayerColumn::name);
    layers_.editFocusedCell();
}

void CLayerCustomization::deleteLayer() {
    const int key = layerKey(layers_.focusedRow());
    const auto keys =
        selectRows(*connection_, L"select ixLayerKey from tblLayerKey where ixLayer = " + intToString(key));
    if (keys && !keys->empty()) {
        tellDrafter(L"Layer is currently referenced by a layer key and cannot be deleted.",
                    MB_ICONEXCLAMATION);
        return;
    }
    if (!layer_->seekByIx(key) ||
        !askDrafter(L"Are you sure you want to delete layer " + layer_->sName() + L"?")) {
        return;
    }
    layer_->remove();
    layers_.deleteFocusedRow();
    refreshLayerChoices();
}

void CLayerCustomization::deleteUnusedLayers() {
    if (!askDrafter(L"Are you sure you want to delete all unused layers?")) {
        return;
    }
    executeStatement(*connection_,
                     L"delete from tblLayer where ixLayer not in (select ixLayer from tblLayerKey)");
    fillLayers();
    refreshLayerChoices();
}

void CLayerCustomization::undoLayerChanges() {
    fillLayers();
}

LRESULT CLayerCustomization::layerEditBegins(const GridNotification& place) {
    const std::wstring& text = layers_.text(place.row, place.column);
    if (place.column == LayerColumn::color || place.column == LayerColumn::linetype) {
        layersDialogState().textBeforeEdit = text;
    } else if (place.column == LayerColumn::name) {
        nameBeforeEdit_ = text;
    }
    return 0;
}

LRESULT CLayerCustomization::layerPicked(const GridPickNotification& pick) {
    const LayersDialogState& state = layersDialogState();
    if (pick.column == LayerColumn::color && pick.text == state.selectColor) {
        colorPicked(pick.row);
    } else if (pick.column == LayerColumn::linetype && pick.text == state.selectLinetype) {
        linetypePicked(pick.row);
    }
    return 0;
}

void CLayerCustomization::colorPicked(int row) {
    const auto color = layer_callbacks::chooseColor(layerColor(layers_.text(row, LayerColumn::color)));
    endPick(color ? intToString(*color) : layersDialogState().textBeforeEdit);
}

void CLayerCustomization::linetypePicked(int row) {
    CAcadLinetypeDialog dialog(handle(), layers_.text(row, LayerColumn::linetype));
    const bool chosen = checkDialogResult(dialog.DoModal()) == IDOK;
    endPick(chosen ? dialog.linetype() : layersDialogState().textBeforeEdit);
}

void CLayerCustomization::endPick(const std::wstring& text) {
    if (CInPlaceListForGridCell* const editor = layers_.dropDownEditor()) {
        editor->setResultText(text);
        editor->endEdit();
    }
}

LRESULT CLayerCustomization::layerEdited(const GridNotification& place) {
    if (place.column == LayerColumn::name) {
        layerNameEdited(place.row);
    }
    return 0;
}

// A name that another layer has is refused with a message, and the row is then written all the same, under
// its old name again: its other cells reach the database with every end of an edit of the name. Only
// characters that no layer can have keep the row from being written.
void CLayerCustomization::layerNameEdited(int row) {
    const int key = layerKey(row);
    layers_.setText(row, LayerColumn::name, trimmed(layers_.text(row, LayerColumn::name)));
    if (isTaken(layers_.text(row, LayerColumn::name), key)) {
        refuseLayerName(row, L"Layer name already exists in the database.");
    }
    if (!hasLayerNameCharacters(layers_.text(row, LayerColumn::name))) {
        refuseLayerName(row, invalidCharacters);
        return;
    }
    if (layer_->seekByIx(key)) {
        layer_->edit();
        writeLayerRow(layers_, row, *layer_);
        store(*layer_);
    }
    renameLayerOfKeys(key, layers_.text(row, LayerColumn::name));
    takeLayerChoicesFromGrid();
}

bool CLayerCustomization::isTaken(const std::wstring& name, int key) {
    bool taken = false;
    eachLayer([&](const CTblLayer& layer) {
        taken = layer.ixLayer() != key && equalIgnoringCase(layer.sName(), name);
        return !taken;
    });
    return taken;
}

// Puts the old name back and lets the drafter try again.
void CLayerCustomization::refuseLayerName(int row, const std::wstring& message) {
    tellDrafter(message, MB_ICONERROR);
    layers_.setText(row, LayerColumn::name,
                    layer_->seekByIx(layerKey(row)) ? layer_->sName() : nameBeforeEdit_);
    layers_.focusCell(row, LayerColumn::name);
    layers_.editFocusedCell();
}

int CLayerCustomization::layerKey(int row) const {
    return leadingInteger(layers_.text(row, LayerColumn::key));
}

int CLayerCustomization::layerRowWith(int column, const std::wstring& text) const {
    for (int row = 1; row < layers_.rowCount(); ++row) {
        if (layers_.text(row, column) == text) {
            return row;
        }
    }
    return -1;
}

void CLayerCustomization::showLayer(int row) {
    if (row > 0) {
        layers_.focusCell(row, LayerColumn::name);
        layers_.ensureVisible(row, LayerColumn::name);
    }
}

}  // namespace tessary

#include "module/standards/layers_dialog.h"

#include "module/drawing/text_helpers.h"
#include "module/standards/layer_callbacks.h"
#include "module/standards/layer_row.h"
#include "module/standards/layer_system_columns.h"
#include "module/standards/layers_dialog_parts.h"
#include "module/standards/list_grid.h"
#include "module/standards/statements.h"

#include <cstddef>
#include <map>
#include <utility>

namespace tessary {

namespace {

std::wstring keysStatement(int system) {
    const std::wstring owner =
        system == generalSystem ? std::wstring(L" is Null") : L" = " + intToString(system);
    return L"select ixLayerKey, ixLayer, sKey from tblLayerKey where ixLayerSystem" + owner +
           L" order by sKey";
}

// The names of the layers, by ixLayer. One call of the server, where asking for each key's layer takes two.
std::map<int, std::wstring> storedLayerNames(DatabaseConnection& connection) {
    std::map<int, std::wstring> names;
    const auto rows = selectRows(connection, L"select ixLayer, sName from tblLayer");
    for (std::size_t i = 0; rows && i < rows->size(); ++i) {
        const SelectedRow& row = (*rows)[i];
        if (row.size() == 2) {
            names[variantToInt(row[0].get())] = textIn(row[1]).value_or(L"");
        }
    }
    return names;
}

}  // namespace

// The keys of the system whose row has the focus. Nothing at all while they are shown already.
void CLayerCustomization::fillLayerKeys() {
    const int system = focusedSystem();
    if (system == shownSystem_) {
        return;
    }
    shownSystem_ = system;
    const FillingList filling(keys_);
    clearList(keys_);
    const auto rows = selectRows(*connection_, keysStatement(system));
    if (!rows || rows->empty()) {
        fitKeyColumns();
        return;
    }
    const std::wstring path = databasePath();
    const auto layerNames = storedLayerNames(*connection_);
    for (const SelectedRow& row : *rows) {
        if (row.size() == 3) {
            const int layer = variantToInt(row[1].get());
            const auto name = layerNames.find(layer);
            addKey({.key = variantToInt(row[0].get()),
                    .layer = layer,
                    .layerName = name == layerNames.end() ? std::wstring() : name->second,
                    .text = textIn(row[2]).value_or(L"")},
                   path);
        }
    }
    keys_.sortByColumn(compareGridTexts, LayerKeyColumn::sortText, true);
    fitKeyColumns();
    if (keys_.rowCount() > 1) {
        keys_.focusCell(1, LayerKeyColumn::displayName);
        showLayerOfKey(1);
    }
}

// The electrical settings are looked up for each key anew, since the LISP code forgets them between calls.
void CLayerCustomization::addKey(const StoredKey& key, const std::wstring& path) {
    layer_callbacks::setElectricalGlobals(path);
    if (!layer_callbacks::isKeyShown(key.text)) {
        return;
    }
    const std::wstring sortText = layer_callbacks::sortText(key.text);
    const std::wstring displayName = layer_callbacks::displayName(key.text);
    const int row = keys_.appendRow();
    keys_.setText(row, LayerKeyColumn::displayName, displayName);
    keys_.setText(row, LayerKeyColumn::key, intToString(key.key));
    keys_.setText(row, LayerKeyColumn::sortText, sortText);
    keys_.setText(row, LayerKeyColumn::loadedLayer, intToString(key.layer));
    keys_.setText(row, LayerKeyColumn::layerName, key.layerName);
}

void CLayerCustomization::fitKeyColumns() {
    keys_.autoSizeColumns();
    keys_.extendLastColumn();
}

// All keys, changed or not: the list decides, also where somebody else has given a key another layer
// meanwhile. A key without a layer of the list, because its own is gone from the database, is left as it is
// there.
void CLayerCustomization::saveLayerKeys() {
    layerKey_->setIndex(L"ixLayerKey");
    for (int row = 1; row < keys_.rowCount(); ++row) {
        const CGridCellBase* const choice = keys_.cell(row, LayerKeyColumn::layerName);
        const int layer = choice ? choice->selectedData() : 0;
        if (layer != 0 && layerKey_->seekByIx(leadingInteger(keys_.text(row, LayerKeyColumn::key)))) {
            layerKey_->edit();
            layerKey_->setLayer(layer);
            store(*layerKey_);
        }
    }
}

// The keys of the focused system are shown already, so this changes nothing. The button is kept as it is:
// drafters have learnt that assignments only go back by Cancel, and would lose them otherwise.
void CLayerCustomization::undoLayerKeyChanges() {
    fillLayerKeys();
}

// The layers that the database has. Without any, the list stays as it was: a key keeps showing the layer that
// it had.
void CLayerCustomization::refreshLayerChoices() {
    GridChoices choices;
    eachLayer([&](const CTblLayer& layer) {
        choices.texts.push_back(layer.sName());
        choices.data.push_back(layer.ixLayer());
        return true;
    });
    if (!choices.texts.empty()) {
        setLayerChoices(std::move(choices));
    }
}

void CLayerCustomization::takeLayerChoicesFromGrid() {
    GridChoices choices;
    for (int row = 1; row < layers_.rowCount(); ++row) {
        choices.texts.push_back(layers_.text(row, LayerColumn::name));
        choices.data.push_back(layerKey(row));
    }
    setLayerChoices(std::move(choices));
}

void CLayerCustomization::setLayerChoices(GridChoices choices) {
    keys_.setColumnChoices(LayerKeyColumn::layerName, std::move(choices.texts));
    keys_.setColumnChoiceData(LayerKeyColumn::layerName, std::move(choices.data));
    keys_.applyColumnChoices(LayerKeyColumn::layerName);
    keys_.refresh();
}

// Goes by the layer that a key had when it was loaded: a key that the drafter has pointed elsewhere since
// follows its old layer again when that one is renamed.
void CLayerCustomization::renameLayerOfKeys(int layer, const std::wstring& name) {
    for (int row = 1; row < keys_.rowCount(); ++row) {
        if (leadingInteger(keys_.text(row, LayerKeyColumn::loadedLayer)) == layer) {
            keys_.setText(row, LayerKeyColumn::layerName, name);
        }
    }
}

void CLayerCustomization::showLayerOfKey(int keyRow) {
    const CGridCellBase* const choice = keys_.cell(keyRow, LayerKeyColumn::layerName);
    if (choice && choice->selectedData() != 0) {
        showLayer(layerRowWith(LayerColumn::key, intToString(choice->selectedData())));
    }
}

// After another system was selected: the row that the drafter had selected, which mostly is the same key.
void CLayerCustomization::returnToKeyRow() {
    constexpr int rowsAbove = 5;
    constexpr int rowsThatFit = 10;
    const int last = keys_.rowCount() - 1;
    if (rememberedKeyRow_ <= last) {
        keys_.focusCell(rememberedKeyRow_, LayerKeyColumn::displayName);
        keys_.ensureVisible(rememberedKeyRow_, LayerKeyColumn::displayName);
        showLayerOfKey(rememberedKeyRow_);
    } else if (last > 0) {
        keys_.focusCell(last, LayerKeyColumn::displayName);
        showLayerOfKey(last);
        keys_.scrollToTop(last <= rowsThatFit ? 2 : last - rowsAbove);
    }
}

LRESULT CLayerCustomization::keyEditBegins(const GridNotification& place) {
    return place.column == LayerKeyColumn::displayName ? gridRefuse : 0;
}

LRESULT CLayerCustomization::keySelected(const GridNotification& place) {
    rememberedKeyRow_ = place.row;
    showLayerOfKey(place.row);
    return 0;
}

LRESULT CLayerCustomization::keyPicked(const GridPickNotification& pick) {
    if (pick.column == LayerKeyColumn::layerName) {
        showLayer(layerRowWith(LayerColumn::name, pick.text));
    }
    return 0;
}

}  // namespace tessary

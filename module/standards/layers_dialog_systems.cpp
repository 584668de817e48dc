#include "module/standards/layers_dialog.h"

#include "module/binding/dialog_result.h"
#include "module/drawing/text_helpers.h"
#include "module/standards/layer_callbacks.h"
#include "module/standards/layer_system_columns.h"
#include "module/standards/layers_dialog_parts.h"
#include "module/standards/list_grid.h"
#include "module/standards/new_layer_system_dialog.h"
#include "module/standards/statements.h"

#include <algorithm>
#include <string>

namespace tessary {

void CLayerCustomization::fillLayerSystems(int selected) {
    const FillingList filling(systems_);
    layerSystem_->setIndex(L"iSortOrder");
    clearList(systems_);
    addSystemRow(generalSystem, L"General");
    int focused = generalSystemRow;
    layerSystem_->moveFirst();
    bool moved = true;
    while (moved && !layerSystem_->isEOF()) {
        const int key = layerSystem_->ixLayerSystem();
        const int row = addSystemRow(key, layerSystem_->sDescription());
        systems_.setText(row, LayerSystemColumn::sortOrder, intToString(layerSystem_->iSortOrder()));
        if (selected != generalSystem && key == selected) {
            focused = row;
        }
        layerSystem_->moveNext();
        moved = layerSystem_->ixLayerSystem() != key;
    }
    systems_.autoSizeColumns();
    systems_.extendLastColumn();
    systems_.focusCell(focused, LayerSystemColumn::name);
}

int CLayerCustomization::addSystemRow(int key, const std::wstring& name) {
    const int row = systems_.appendRow();
    systems_.setText(row, LayerSystemColumn::key, intToString(key));
    systems_.setText(row, LayerSystemColumn::name, name);
    return row;
}

// The place in the grid becomes the sort order, so the first real system has 2. Neither the header nor the
// general system is found in the database.
void CLayerCustomization::saveSystems() {
    for (int row = 0; row < systems_.rowCount(); ++row) {
        if (layerSystem_->seekByIx(systemKey(row))) {
            layerSystem_->edit();
            layerSystem_->setDescription(systems_.text(row, LayerSystemColumn::name));
            layerSystem_->setSortOrder(row);
            store(*layerSystem_);
        }
    }
}

void CLayerCustomization::newSystem() {
    CNewLayerSystem dialog(handle(), systems_);
    if (checkDialogResult(dialog.DoModal()) != IDOK) {
        return;
    }
    const int source = systemKey(dialog.sourceIndex() + firstRealSystemRow);
    const std::optional<int> key = appendSystem(dialog.name());
    if (!key) {
        return;
    }
    copyKeys(*key, source);
    layer_callbacks::createPipeLabels(*key, source);
    const int row = addSystemRow(*key, dialog.name());
    systems_.focusCell(row, LayerSystemColumn::name);
    systems_.ensureVisible(row, LayerSystemColumn::name);
    // As when the drafter selects a system: the grid tells nobody of a focus that it is given.
    enableMoving(true);
    saveLayerKeys();
    fillLayerKeys();
}

// The grid's rows keep their sort orders until OK numbers them anew, and a new row has
// none, so that two systems made in one go share a sort order until then.
std::optional<int> CLayerCustomization::appendSystem(const std::wstring& name) {
    int last = 0;
    for (int row = 1; row < systems_.rowCount(); ++row) {
        last = std::max(last, leadingInteger(systems_.text(row, LayerSystemColumn::sortOrder)));
    }
    layerSystem_->addNew();
    layerSystem_->setDescription(name);
    layerSystem_->setSortOrder(last + 1);
    // A declined row leaves the record with the key of another system, whose keys must not grow.
    return store(*layerSystem_) ? std::optional(layerSystem_->ixLayerSystem()) : std::nullopt;
}

void CLayerCustomization::copyKeys(int target, int source) {
    executeStatement(*connection_,
                     L"insert into tblLayerKey(ixLayerSystem, ixLayer, sKey) select " + intToString(target) +
                         L", ixLayer, sKey from tblLayerKey where ixLayerSystem = " + intToString(source));
}

void CLayerCustomization::editFocusedSystem() {
    editSystem(systems_.focusedRow());
}

// What the product's dialogs do to the system is in the database when they close; only its name stands here.
void CLayerCustomization::editSystem(int row) {
    if (row == generalSystemRow) {
        tellDrafter(L"The general layer system cannot be edited.", MB_ICONINFORMATION);
        systems_.setText(row, LayerSystemColumn::name, L"General");
    } else if (row > generalSystemRow) {
        const int key = systemKey(row);
        layer_callbacks::editSystem(key, databasePath());
        if (layerSystem_->seekByIx(key)) {
            systems_.setText(row, LayerSystemColumn::name, layerSystem_->sDescription());
        }
    }
    SetActiveWindow(handle());
}

void CLayerCustomization::deleteSystem() {
    const int row = systems_.focusedRow();
    if (mayDeleteSystem(row) && askDrafter(L"Are you sure you want to delete layer system " +
                                           systems_.text(row, LayerSystemColumn::name) + L"?")) {
        removeSystem(systemKey(row));
        systems_.deleteFocusedRow();
    }
}

// Objects of the drawing can only use systems of the drawing's own database.
bool CLayerCustomization::mayDeleteSystem(int row) {
    constexpr int rowsWithTwoSystems = 4;
    if (systems_.rowCount() < rowsWithTwoSystems) {
        tellDrafter(L"You cannot delete the last layer system.", MB_ICONINFORMATION);
        return false;
    }
    if (row == generalSystemRow) {
        tellDrafter(L"The general layer system cannot be deleted.", MB_ICONINFORMATION);
        return false;
    }
    if (skipMasterLink_) {
        return true;
    }
    const auto refusal = layer_callbacks::deletionRefusal(systemKey(row));
    if (refusal) {
        tellDrafter(*refusal, MB_ICONQUESTION);
    }
    return !refusal;
}

void CLayerCustomization::removeSystem(int key) {
    executeStatement(*connection_, L"delete from tblLayerKey where ixLayerSystem = " + intToString(key));
    layer_callbacks::deletePipeLabels(key);
    executeStatement(*connection_, L"delete from tblLayerSystem where ixLayerSystem = " + intToString(key));
}

// The general system stays above all others.
void CLayerCustomization::moveUp() {
    const int row = systems_.focusedRow();
    if (row > firstRealSystemRow) {
        swapSystems(row, row - 1);
    }
}

void CLayerCustomization::moveDown() {
    const int row = systems_.focusedRow();
    if (row > generalSystemRow && row < systems_.rowCount() - 1) {
        swapSystems(row, row + 1);
    }
}

void CLayerCustomization::swapSystems(int row, int neighbour) {
    systems_.swapRows(row, neighbour);
    systems_.focusCell(neighbour, LayerSystemColumn::name);
    systems_.ensureVisible(neighbour, LayerSystemColumn::name);
}

void CLayerCustomization::enableMoving(bool enabled) {
    enableControl(LayersDialogId::moveUp, enabled);
    enableControl(LayersDialogId::moveDown, enabled);
}

void CLayerCustomization::exportSystem() {
    saveLayerKeys();
    layer_callbacks::exportSystem(focusedSystem(), databasePath());
}

// When the general system has the focus its keys stay as they are shown: -1, which is to have them loaded
// anew, is its own key. Selecting another system and coming back shows what was imported.
void CLayerCustomization::importSystem() {
    if (!layer_callbacks::importSystem(focusedSystem(), databasePath())) {
        return;
    }
    shownSystem_ = -1;
    fillLayers();
    refreshLayerChoices();
    fillLayerKeys();
}

// Names of systems are edited by the product's dialogs, never in the grid.
LRESULT CLayerCustomization::systemEditBegins(const GridNotification& place) {
    editSystem(place.row);
    return gridRefuse;
}

LRESULT CLayerCustomization::systemEdited(const GridNotification&) {
    return 0;
}

LRESULT CLayerCustomization::systemSelected(const GridNotification& place) {
    saveLayerKeys();
    fillLayerKeys();
    enableMoving(place.row != generalSystemRow);
    returnToKeyRow();
    return 0;
}

int CLayerCustomization::systemKey(int row) const {
    return leadingInteger(systems_.text(row, LayerSystemColumn::key));
}

int CLayerCustomization::focusedSystem() const {
    return systemKey(systems_.focusedRow());
}

std::wstring CLayerCustomization::databasePath() {
    return callForText(*connection_, &DatabaseConnection::DatabasePath);
}

}  // namespace tessary

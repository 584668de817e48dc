#include "module/standards/layers_dialog.h"

#include "framework/instance.h"
#include "host/api/editor.h"
#include "module/binding/dialog_result.h"
#include "module/resource_ids.h"
#include "module/resources/module_icon.h"
#include "module/standards/layer_row.h"
#include "module/standards/layer_system_columns.h"
#include "module/standards/layers_dialog_parts.h"
#include "module/standards/list_grid.h"
#include "module/standards/standards_database.h"

#include <utility>

namespace tessary {

namespace {

constexpr const wchar_t* lineweightChoices =
    L"Default|0.00 mm|0.05 mm|0.09 mm|0.13 mm|0.15 mm|0.18 mm|0.20 mm|0.25 mm|0.30 mm|0.35 mm|0.40 mm|"
    L"0.50 mm|0.53 mm|0.60 mm|0.70 mm|0.80 mm|0.90 mm|1.00 mm|1.06 mm|1.20 mm|1.40 mm|1.58 mm|2.00 mm|"
    L"2.11 mm";

void runLayersDialog(const StandardsDatabase& database, HWND parent) {
    CLayerCustomization dialog(parent);
    if (!dialog.initialise(database.connection, database.pathGiven)) {
        acutPrintf(L"\nSelected database is not a Quarnel standards database.");
        return;
    }
    checkDialogResult(dialog.DoModal());
}

}  // namespace

LayersDialogState& layersDialogState() {
    static LayersDialogState state;
    return state;
}

HandlerStatus customizeLayers() {
    openStandardsDatabase(runLayersDialog);
    return HandlerStatus::success;
}

CLayerCustomization::CLayerCustomization(HWND parent)
    : AcEdDialog(IDD_LAYERS, parent, framework::ownInstance()) {
    routeMessages();
}

bool CLayerCustomization::initialise(ConnectionPointer connection, bool pathGiven) {
    connection_ = std::move(connection);
    skipMasterLink_ = pathGiven;
    layer_ = std::make_unique<CTblLayer>(skipMasterLink_, connection_);
    layerKey_ = std::make_unique<CTblLayerKey>(skipMasterLink_, connection_);
    layerSystem_ = std::make_unique<CTblLayerSystem>(skipMasterLink_, connection_);
    return true;
}

void CLayerCustomization::routeMessages() {
    using Id = LayersDialogId;
    using Self = CLayerCustomization;
    onButton(Id::newLayer, &Self::newLayer);
    onButton(Id::newSystem, &Self::newSystem);
    onButton(Id::editSystem, &Self::editFocusedSystem);
    onButton(Id::deleteSystem, &Self::deleteSystem);
    onButton(Id::deleteLayer, &Self::deleteLayer);
    onButton(Id::undoKeys, &Self::undoLayerKeyChanges);
    onButton(Id::undoLayers, &Self::undoLayerChanges);
    onButton(Id::deleteUnusedLayers, &Self::deleteUnusedLayers);
    onButton(Id::exportSystem, &Self::exportSystem);
    onButton(Id::importSystem, &Self::importSystem);
    onButton(Id::moveUp, &Self::moveUp);
    onButton(Id::moveDown, &Self::moveDown);
    onNotify(Id::layers, gridBeginEdit, &Self::layerEditBegins);
    onNotify(Id::layers, gridEndEdit, &Self::layerEdited);
    onNotify(Id::layers, gridPicked, &Self::layerPicked);
    onNotify(Id::keys, gridBeginEdit, &Self::keyEditBegins);
    onNotify(Id::keys, gridSelectionChanged, &Self::keySelected);
    onNotify(Id::keys, gridPicked, &Self::keyPicked);
    onNotify(Id::systems, gridBeginEdit, &Self::systemEditBegins);
    onNotify(Id::systems, gridEndEdit, &Self::systemEdited);
    onNotify(Id::systems, gridSelectionChanged, &Self::systemSelected);
}

bool CLayerCustomization::onInitDialog() {
    setDialogName(L"qn_tessary:LayerCustomization");
    setIcon(moduleIcon());
    anchorControls();
    AcEdDialog::onInitDialog();
    setUpGrids();
    fillLayers();
    takeLayerChoicesFromGrid();
    fillLayerSystems(generalSystem);
    fillLayerKeys();
    fitKeyColumns();
    enableMoving(false);
    // The first control of the dialog is one of those that were just disabled.
    focusControl(LayersDialogId::systems);
    return false;
}

// The layers take all the height that there is; the keys above them end where they end.
void CLayerCustomization::anchorControls() {
    using Id = LayersDialogId;
    using namespace framework;
    for (const int id : {Id::moveUp, Id::moveDown, Id::newSystem, Id::editSystem, Id::deleteSystem,
                         Id::importSystem, Id::exportSystem, Id::systems, Id::deleteUnusedLayers}) {
        anchor(id, anchorLeft | anchorTop);
    }
    for (const int id : {Id::undoKeys, Id::newLayer, Id::deleteLayer, Id::undoLayers}) {
        anchor(id, anchorTop | anchorRight);
    }
    anchor(Id::keys, anchorLeft | anchorTop | anchorRight);
    anchor(Id::layers, anchorLeft | anchorTop | anchorRight | anchorBottom);
    anchor(IDOK, anchorBottom);
    anchor(IDCANCEL, anchorBottom);
}

bool CLayerCustomization::store(StandardsRecord& record) {
    const bool written = record.update();
    if (!written) {
        fetchServerError(*connection_);
    }
    return written;
}

void CLayerCustomization::setUpGrids() {
    setUpList(systems_, handle(), LayersDialogId::systems,
              {{L"", false}, {L"ixLayerSystem", false}, {L"Layer System"}, {L"iSortOrder", false}}, 1);
    systems_.setListMode(true);

    setUpList(
        keys_, handle(), LayersDialogId::keys,
        {{L"Layer Key"}, {L"ixLayerKey", false}, {L"colSort", false}, {L"ixLayer", false}, {L"Layer Name"}});
    keys_.setDropDownColumn(LayerKeyColumn::layerName, false);

    setUpList(layers_, handle(), LayersDialogId::layers,
              {{L"ixLayer", false},
               {L"Layer Name"},
               {L"Color"},
               {L"Linetype"},
               {L"Plot"},
               {L"Lineweight"},
               {L"Plot Style"}});
    layers_.setColumnChoicesFromText(LayerColumn::color, L"|" + layersDialogState().selectColor);
    layers_.setColumnChoicesFromText(LayerColumn::linetype, L"|" + layersDialogState().selectLinetype);
    layers_.setCheckBoxColumn(LayerColumn::plot);
    layers_.setColumnChoicesFromText(LayerColumn::lineweight, lineweightChoices);
}

void CLayerCustomization::onResized() {
    fitLastColumn(keys_);
}

void CLayerCustomization::onOK() {
    saveSystems();
    saveLayerKeys();
    saveLayers();
    end(IDOK);
}

}  // namespace tessary

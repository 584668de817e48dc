#pragma once

// The Layers dialog: layer systems, the layer keys of the selected system, and the layers that keys point at.
//
// Buttons that add or delete write to the database at once, and so do the names of layers when their editing
// ends. All other cells of layers, the layers of keys and the order of systems wait for OK; the layers of
// keys are also written when another system is selected and before an export. Cancel takes nothing back that
// was written.

#include "host/api/dialog.h"
#include "module/binding/handler_status.h"
#include "module/grid/grid_control.h"
#include "module/grid/grid_notifications.h"
#include "module/standards/layer_key_record.h"
#include "module/standards/layer_record.h"
#include "module/standards/layer_system_record.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace tessary {

// Module-wide: lives as long as the module, and is shared by all Layers dialogs.
struct LayersDialogState {
    // Text of a color or linetype cell when its editing began: what it goes back to when the drafter cancels
    // the dialog that the drop-down opens.
    std::wstring textBeforeEdit;
    // Entries of drop-downs that open a dialog.
    const std::wstring selectColor = L"Select color. . .";
    const std::wstring selectLinetype = L"Select linetype. . .";
    // Belongs to the same set; the lineweights fit into a list of their own.
    const std::wstring selectLineweight = L"Select lineweight. . .";
};
LayersDialogState& layersDialogState();

class CLayerCustomization final : public AcEdDialog {
public:
    // initialise has to come before DoModal.
    explicit CLayerCustomization(HWND parent);

    // connection: with the database open. pathGiven: the database is not that of the drawing, so links to the
    // master database are left alone, and deleting a system asks no objects of the drawing. Always true.
    bool initialise(ConnectionPointer connection, bool pathGiven);

protected:
    bool onInitDialog() override;
    void onOK() override;
    void onResized() override;

private:
    // ---- layers_dialog.cpp
    void routeMessages();
    void anchorControls();
    void setUpGrids();
    // Writes the record's changes. A row that the database declines is lost without a message; the server's
    // error is recorded. Whether the row was written.
    bool store(StandardsRecord& record);

    // ---- Layers (layers_dialog_layers.cpp)
    // All layers in the order of their names, until visit answers false.
    void eachLayer(const std::function<bool(const CTblLayer& layer)>& visit);
    void fillLayers();
    void saveLayers();
    void newLayer();
    void deleteLayer();
    void deleteUnusedLayers();
    void undoLayerChanges();
    LRESULT layerEditBegins(const GridNotification& place);
    LRESULT layerEdited(const GridNotification& place);
    LRESULT layerPicked(const GridPickNotification& pick);
    void colorPicked(int row);
    void linetypePicked(int row);
    void endPick(const std::wstring& text);
    void layerNameEdited(int row);
    bool isTaken(const std::wstring& name, int key);
    void refuseLayerName(int row, const std::wstring& message);
    int layerKey(int row) const;
    // -1 when there is none.
    int layerRowWith(int column, const std::wstring& text) const;
    void showLayer(int row);

    // ---- Keys (layers_dialog_keys.cpp)
    void fillLayerKeys();
    struct StoredKey {
        int key = 0;             // ixLayerKey
        int layer = 0;           // ixLayer
        std::wstring layerName;  // empty when there is no such layer
        std::wstring text;       // sKey
    };
    // Lists the key if the product shows it. path: of the database.
    void addKey(const StoredKey& key, const std::wstring& path);
    void fitKeyColumns();
    void saveLayerKeys();
    void undoLayerKeyChanges();
    void refreshLayerChoices();
    void takeLayerChoicesFromGrid();
    void setLayerChoices(GridChoices choices);
    void renameLayerOfKeys(int layer, const std::wstring& name);
    void showLayerOfKey(int keyRow);
    void returnToKeyRow();
    LRESULT keyEditBegins(const GridNotification& place);
    LRESULT keySelected(const GridNotification& place);
    LRESULT keyPicked(const GridPickNotification& pick);

    // ---- Systems (layers_dialog_systems.cpp)
    // ixLayerSystem of the system that gets the focus; generalSystem: none in particular.
    void fillLayerSystems(int selected);
    int addSystemRow(int key, const std::wstring& name);
    void saveSystems();
    void newSystem();
    // The ixLayerSystem of the new system; nothing when the database declined it.
    std::optional<int> appendSystem(const std::wstring& name);
    void copyKeys(int target, int source);
    void editFocusedSystem();
    void editSystem(int row);
    void deleteSystem();
    bool mayDeleteSystem(int row);
    void removeSystem(int key);
    void moveUp();
    void moveDown();
    void swapSystems(int row, int neighbour);
    void enableMoving(bool enabled);
    void exportSystem();
    void importSystem();
    LRESULT systemEditBegins(const GridNotification& place);
    LRESULT systemEdited(const GridNotification& place);
    LRESULT systemSelected(const GridNotification& place);
    int systemKey(int row) const;
    int focusedSystem() const;
    std::wstring databasePath();

    ConnectionPointer connection_;  // null until initialise
    std::unique_ptr<CTblLayer> layer_;
    std::unique_ptr<CTblLayerKey> layerKey_;
    std::unique_ptr<CTblLayerSystem> layerSystem_;
    CGridCtrl systems_;
    CGridCtrl keys_;
    CGridCtrl layers_;
    bool skipMasterLink_ = true;
    // ixLayerSystem whose keys the keys grid shows; -100: none yet.
    int shownSystem_ = -100;
    // The one that the drafter selected last. Kept from system to system, whose keys are mostly the same.
    int rememberedKeyRow_ = 1;
    // Of the layer whose name is being edited.
    std::wstring nameBeforeEdit_;
};

// (qn_qn-customizeLayers [path])
HandlerStatus customizeLayers();

}  // namespace tessary

#include "module/standards/linetype_dialog.h"

#include "framework/instance.h"
#include "host/api/database.h"
#include "host/api/symbol_tables.h"
#include "module/binding/text_comparison.h"
#include "module/drawing/model_space.h"
#include "module/resource_ids.h"
#include "module/resources/module_icon.h"
#include "module/standards/list_grid.h"

#include <memory>
#include <vector>

namespace tessary {

namespace {

constexpr int idLinetypes = 1048;
constexpr int nameColumn = 0;
constexpr int descriptionColumn = 1;

struct Linetype {
    std::wstring name;
    std::wstring description;
};

// Those of the working database, in the order of its table. What cannot be opened is left out.
std::vector<Linetype> drawingLinetypes() {
    AcDbLinetypeTable* opened = nullptr;
    if (acdbHostApplicationServices()->workingDatabase()->getSymbolTable(opened, AcDb::kForRead) !=
        Acad::eOk) {
        return {};
    }
    const std::unique_ptr<AcDbLinetypeTable, CloseObject> table(opened);
    const AcArray<AcDbObjectId> ids = table->recordIds();
    std::vector<Linetype> linetypes;
    for (int i = 0; i < ids.length(); ++i) {
        const AcDbObjectPointer<AcDbLinetypeTableRecord> record(ids[i], AcDb::kForRead);
        if (record.openStatus() == Acad::eOk) {
            linetypes.push_back({record->name(), record->comments()});
        }
    }
    return linetypes;
}

}  // namespace

CAcadLinetypeDialog::CAcadLinetypeDialog(HWND parent, const std::wstring& current)
    : AcEdDialog(IDD_SELECT_LINETYPE, parent, framework::ownInstance()), linetype_(current) {}

bool CAcadLinetypeDialog::onInitDialog() {
    // The prefix is not that of the other dialogs; drafters' profiles have the place under this name.
    setDialogName(L"qn_tessar:AcadLinetype");
    setIcon(moduleIcon());
    anchor(idLinetypes,
           framework::anchorLeft | framework::anchorTop | framework::anchorRight | framework::anchorBottom);
    anchor(IDOK, framework::anchorBottom);
    anchor(IDCANCEL, framework::anchorBottom);
    AcEdDialog::onInitDialog();
    setUpList(grid_, handle(), idLinetypes, {{L"Linetype"}, {L"Description"}});
    grid_.setListMode(true);
    grid_.setSingleRowSelection(true);
    // The list is for choosing from only.
    grid_.setEditable(false);
    fill();
    return true;
}

void CAcadLinetypeDialog::fill() {
    const FillingList filling(grid_);
    for (const Linetype& linetype : drawingLinetypes()) {
        if (linetype.name == L"ByLayer" || linetype.name == L"ByBlock") {
            continue;
        }
        const int row = grid_.appendRow();
        grid_.setText(row, nameColumn, linetype.name);
        grid_.setText(row, descriptionColumn, linetype.description);
        const bool isFirst = row == grid_.fixedRowCount();
        if (isFirst || equalIgnoringCase(linetype.name, linetype_)) {
            grid_.focusCell(row, nameColumn);
        }
    }
    grid_.autoSizeColumns();
    grid_.extendLastColumn();
    grid_.ensureVisible(grid_.focusedRow(), nameColumn);
}

void CAcadLinetypeDialog::onResized() {
    fitLastColumn(grid_);
}

void CAcadLinetypeDialog::onOK() {
    if (grid_.focusedRow() >= grid_.fixedRowCount()) {
        linetype_ = grid_.text(grid_.focusedRow(), nameColumn);
    }
    end(IDOK);
}

}  // namespace tessary

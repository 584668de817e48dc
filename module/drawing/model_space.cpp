#include "module/drawing/model_space.h"

#include "host/api/editor.h"
#include "module/binding/document_lock.h"
#include "module/binding/value_list.h"
#include "module/drawing/block_file.h"

#include <memory>
#include <string>

namespace tessary {

namespace {

// A symbol table of the current drawing, open for read; null when it cannot be opened.
template <class Table>
std::unique_ptr<Table, CloseObject> openTable() {
    Table* table = nullptr;
    if (currentDatabase()->getSymbolTable(table, AcDb::kForRead) != Acad::eOk) {
        return nullptr;
    }
    return std::unique_ptr<Table, CloseObject>(table);
}

template <class Table>
bool findRecord(const ACHAR* name, AcDbObjectId& id) {
    const auto table = openTable<Table>();
    AcDbObjectId found;
    if (!table || table->getAt(name, found) != Acad::eOk) {
        return false;
    }
    id = found;
    return true;
}

// The drafter is told by the product's LISP code, which knows where blocks come from.
void alertMissingBlock(const ACHAR* name) {
    const ValueList call(acutBuildList(RTSTR, L"qnBlock-alertMissing", RTSTR, name, RTNONE));
    resbuf* result = nullptr;
    acedInvoke(call.get(), &result);
    const ValueList unread(result);
}

}  // namespace

AcDbDatabase* currentDatabase() {
    return acDocManager->curDocument()->database();
}

bool appendToModelSpace(AcDbEntity* entity) {
    const DocumentLock lock(acDocManager->document(acdbHostApplicationServices()->workingDatabase()));
    const auto blockTable = openTable<AcDbBlockTable>();
    if (!blockTable) {
        acedAlert(L"Failed to get block table!");
        delete entity;
        return false;
    }
    return appendToBlockTableRecord(entity, *blockTable);
}

bool appendToBlockTableRecord(AcDbEntity* entity, const AcDbBlockTable& blockTable) {
    std::unique_ptr<AcDbEntity> owned(entity);
    AcDbBlockTableRecord* opened = nullptr;
    const Acad::ErrorStatus status = blockTable.getAt(ACDB_MODEL_SPACE, opened, AcDb::kForWrite);
    if (status != Acad::eOk) {
        acedAlert(L"Failed to get block table record!");
        acutPrintf(L"\n%i", static_cast<int>(status));
        return false;
    }
    const std::unique_ptr<AcDbBlockTableRecord, CloseObject> modelSpace(opened);
    if (modelSpace->appendAcDbEntity(entity) != Acad::eOk) {
        acedAlert(L"Failed to append entity!");
        return false;
    }
    static_cast<void>(owned.release());  // the drawing owns it now
    return true;
}

void appendAndClose(AcDbEntity* entity) {
    if (entity && appendToModelSpace(entity)) {
        entity->close();
    }
}

bool findOrLoadBlock(const ACHAR* name, AcDbObjectId& id) {
    if (!openTable<AcDbBlockTable>()) {
        return false;
    }
    if (findRecord<AcDbBlockTable>(name, id)) {
        return true;
    }
    const std::wstring fileName = std::wstring(name) + L".dwg";
    ACHAR path[1024] = L"";
    if (acdbHostApplicationServices()->findFile(path, static_cast<int>(std::size(path)), fileName.c_str()) !=
        Acad::eOk) {
        alertMissingBlock(name);
        return false;
    }
    return insertBlockFile(path, name, id);
}

bool findLayer(const ACHAR* name, AcDbObjectId& id) {
    return findRecord<AcDbLayerTable>(name, id);
}

}  // namespace tessary

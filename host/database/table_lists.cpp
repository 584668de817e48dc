// tblsearch, tblnext, tblobjname, regapp: symbol tables for LISP programs.

#include <algorithm>
#include <array>

#include "host/database/entity_data.h"
#include "host/database/names.h"
#include "host/database/open_state.h"
#include "host/database/symbol_records.h"
#include "host/database/table_states.h"

using namespace drafthost;

namespace {

// Where tblnext stands in each table: the record it gave last. Kept for the process, for the database it was
// used on.
struct TableSteps {
    const AcDbDatabase* database = nullptr;
    std::array<AcDbObjectId, kTableCount> last;
};

TableSteps& currentSteps() {
    static TableSteps steps;
    return steps;
}

TableSteps& stepsFor(const AcDbDatabase* database) {
    TableSteps& steps = currentSteps();
    if (steps.database != database)
        steps = {database, {}};
    return steps;
}

AcDbObjectId& lastOf(const AcDbDatabase* database, TableIndex table) {
    return stepsFor(database).last[static_cast<std::size_t>(table)];
}

bool isLink(const DxfGroup& group) {
    return group.code < -2 || group.code == -1 || group.code == 5 || group.code == 105 || group.code == 100 ||
           group.code == 102 || std::holds_alternative<ObjectReference>(group.value);
}

// Programs expect a layer's list to end with its linetype.
bool isLateAddition(TableIndex table, short code) {
    return (table == TableIndex::Layer && (code == 290 || code == 370 || code == 390 || code == 420)) ||
           (table == TableIndex::Linetype && code == 74);
}

// Lists of table functions have no markers, handles and references: only what the record says. A block's says
// where its entities begin.
resbuf* listOfRecord(TableIndex table, AcDbObjectId id) {
    const auto* const block = peek<AcDbBlockTableRecord>(id);
    std::vector<DxfGroup> groups = entityGroups(block ? readState<BlockState>(block).begin : id);
    const auto wanted = [&](const DxfGroup& group) {
        if (group.code == -2)
            return true;
        if (block)
            return group.code == 0 || group.code == 2 || group.code == 70 || group.code == 10;
        return !isLink(group) && !isLateAddition(table, group.code);
    };
    std::erase_if(groups, [&](const DxfGroup& group) { return !wanted(group); });
    return listOfGroups(groups);
}

const AcDbSymbolTable* tableIn(const AcDbDatabase* database, const ACHAR* name, TableIndex& index) {
    if (!database || !name || !findTableIndex(name, index))
        return nullptr;
    return peek<AcDbSymbolTable>(database->impl().table(index));
}

resbuf* noTable() {
    entityError(kErrnoInvalidTable, L"no such table");
    return nullptr;
}

// Model and paper space are no blocks that programs step through.
bool isStepped(AcDbObjectId id) {
    const auto* const block = peek<AcDbBlockTableRecord>(id);
    return !block || !block->isLayout();
}

}  // namespace

void drafthost::forgetTableSteps(const AcDbDatabase* database) {
    if (currentSteps().database == database)
        currentSteps() = TableSteps();
}

resbuf* acdbTblSearch(const ACHAR* table, const ACHAR* symbol, bool setNext) {
    TableIndex index{};
    const AcDbDatabase* const database = workingDatabase();
    const AcDbSymbolTable* const records = tableIn(database, table, index);
    if (!records || !symbol)
        return noTable();
    AcDbObjectId id;
    if (records->getAt(symbol, id) != Acad::eOk)
        return nullptr;
    if (setNext)
        lastOf(database, index) = id;
    return listOfRecord(index, id);
}

resbuf* acdbTblNext(const ACHAR* table, bool rewind) {
    TableIndex index{};
    const AcDbDatabase* const database = workingDatabase();
    const AcDbSymbolTable* const records = tableIn(database, table, index);
    if (!records)
        return noTable();
    AcDbObjectId& last = lastOf(database, index);
    if (rewind)
        last = AcDbObjectId();
    const auto& ids = readState<TableState>(records).records;
    auto place = last.isNull() ? ids.begin() : std::ranges::find(ids, last);
    if (!last.isNull() && place != ids.end())
        ++place;
    place = std::find_if(place, ids.end(), [](AcDbObjectId id) { return !id.isErased() && isStepped(id); });
    if (place == ids.end()) {
        if (!ids.empty())
            last = ids.back();
        return nullptr;
    }
    last = *place;
    return listOfRecord(index, last);
}

int acdbTblObjName(const ACHAR* table, const ACHAR* symbol, ads_name result) {
    ads_name_clear(result);
    TableIndex index{};
    const AcDbSymbolTable* const records = tableIn(workingDatabase(), table, index);
    if (!records)
        return entityError(kErrnoInvalidTable, L"no such table");
    AcDbObjectId id;
    if (!symbol || records->getAt(symbol, id) != Acad::eOk)
        return entityError(kErrnoInvalidEntity, L"no such record");
    // A block is known to LISP by its BLOCK entity, behind which its entities follow.
    if (const auto* const block = peek<AcDbBlockTableRecord>(id); block && equalNames(table, L"BLOCK")) {
        id = readState<BlockState>(block).begin;
    }
    result[0] = id.stub()->name;
    return RTNORM;
}

int acdbRegApp(const ACHAR* application) {
    AcDbDatabase* const database = workingDatabase();
    if (!database || !application || !isValidSymbolName(application)) {
        return entityError(kErrnoBadList, L"no name for an application");
    }
    if (!findRecord(database, TableIndex::RegApp, application).isNull()) {
        return entityError(kErrnoNone, L"the application is registered already");
    }
    if (!mayWrite(*database))
        return entityError(Acad::eLockViolation);
    const AcDbObjectId id =
        addRecord(*database, TableIndex::RegApp, std::make_unique<AcDbRegAppTableRecord>(), application);
    return id.isNull() ? entityError(kErrnoBadList, L"the application cannot be registered")
                       : static_cast<int>(RTNORM);
}

#pragma once

// All of a drawing that undo must bring back, as text to compare.

#include <string>

#include "host/database/database_impl.h"
#include "host/database/table_states.h"
#include "host/exchange/dxf_writer.h"

namespace drafthost {

// The drawing as a file, but for the next free handle: handles of what undo took back are not given again,
// because redo needs them.
inline std::string fileOf(AcDbDatabase& database) {
    std::string text = exchange::dxfBytes(database);
    const std::size_t seed = text.find("$HANDSEED");
    const std::size_t begin = text.find('\n', text.find('\n', seed) + 1) + 1;
    return text.erase(begin, text.find('\n', begin) - begin);
}

inline constexpr const wchar_t* kNames[] = {L"A", L"B", L"C", L"D", L"E"};

// What a file does not show: which record is found by a name, and that no list holds an object that is gone.
inline std::string lookUps(const AcDbDatabase& database) {
    std::string text;
    for (const TableIndex table : {TableIndex::Layer, TableIndex::Block, TableIndex::RegApp}) {
        for (const wchar_t* const name : kNames)
            text += std::to_string(findRecord(&database, table, name).handle().value()) + " ";
        const auto* const records = peek<AcDbSymbolTable>(database.impl().table(table));
        for (const AcDbObjectId id : readState<TableState>(records).records)
            text += id.isValid() ? "" : "record gone ";
    }
    const auto* const space = peek<AcDbBlockTableRecord>(database.modelSpaceId());
    for (const AcDbObjectId id : readState<BlockState>(space).entities)
        text += id.isValid() ? "" : "entity gone ";
    return text;
}

inline std::string stateOf(AcDbDatabase& database) {
    return fileOf(database) + lookUps(database);
}

}  // namespace drafthost

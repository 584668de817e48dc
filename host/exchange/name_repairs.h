#pragma once

// Names in the groups of a record that stand for records of symbol tables: all of them must exist before the
// record is loaded.

#include <string>
#include <unordered_set>
#include <vector>

#include "host/database/database_impl.h"
#include "host/exchange/audit.h"

namespace drafthost::exchange {

class NameRepairs {
public:
    NameRepairs(AcDbDatabase& database, AuditReport& report) : database_(database), report_(report) {}

    enum class RecordKind { TableRecord, Entity, Object };

    // Adds what is missing to the database; empty names are replaced by that of the standard record.
    // groups: from group 0 on; line: of the record.
    void repair(std::vector<DxfGroup>& groups, RecordKind kind, std::size_t line);

    // Adds a record with nothing but a name: kind is its DXF name ("LAYER").
    void addRecord(const wchar_t* kind, const std::wstring& name);
    // Adds to a table those records that take the place of missing ones, when it has none. kind: of its
    // records.
    void addStandardRecords(std::string_view kind);

private:
    struct Rule;
    static const Rule kRules[];
    bool known(TableIndex table, const std::wstring& name);
    void apply(const Rule& rule, DxfGroup& group, std::size_t line);
    void repairLayerName(std::wstring& name, std::size_t line);
    void repairApplications(const std::vector<DxfGroup>& groups, std::size_t line);

    AcDbDatabase& database_;
    AuditReport& report_;
    std::array<std::unordered_set<std::wstring>, kTableCount> known_;  // as spelt
};

}  // namespace drafthost::exchange

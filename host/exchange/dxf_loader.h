#pragma once

// Carries the parts of a DXF file over into a database.

#include <optional>
#include <unordered_set>

#include "host/database/loading.h"
#include "host/exchange/block_cycles.h"
#include "host/exchange/dxf_input.h"
#include "host/exchange/handle_survey.h"
#include "host/exchange/name_repairs.h"

namespace drafthost::exchange {

// Loads once. What is wrong but can be put right goes to the report; the rest is thrown as DxfError, and the
// database is then half-filled.
class DxfLoader {
public:
    DxfLoader(AcDbDatabase& database, const DxfStructure& structure, AuditReport& report);
    void run();
    const DxfInput& input() const { return input_; }

private:
    using Groups = std::vector<DxfGroup>;
    using Records = std::vector<DxfRecord>;

    void loadHeader();
    void loadClasses();
    void loadTables();
    void loadTableHeads();
    void loadRecords(std::string_view table);
    bool isSecondRecord(const DxfRecord& record, const Groups& groups);
    void addBlockRecords();
    void loadBlocks();
    void loadEntities(const Records& records, AcDbObjectId block);
    // One entity with the attributes or vertices that follow it; returns the index behind them.
    std::size_t loadSequence(const Records& records, std::size_t at, AcDbObjectId block);
    bool loadAsLightweight(std::span<const DxfRecord> sequence, AcDbObjectId block);
    void loadObjects();
    void loadOtherSections();

    // The groups of the record, from group 0 on, without a handle that cannot be used.
    Groups groupsOf(const DxfRecord& record);
    // Some writers put the name of a dimension style's text style where its handle belongs. Empty: not such a
    // group.
    std::optional<ObjectReference> namedTextStyle(const DxfRecord& record, const DxfTag& tag);
    AcDbObjectId require(const LoadResult& result, const DxfRecord& record);

    AcDbDatabase& database_;
    const DxfStructure& structure_;
    AuditReport& report_;
    DxfInput input_;
    HandleSurvey handles_;
    NameRepairs names_;
    std::unordered_set<std::uint32_t> cycleInsertions_;
    std::unordered_set<std::wstring> recordNames_;  // kind and folded name
    bool convertsPolylines_;
};

}  // namespace drafthost::exchange

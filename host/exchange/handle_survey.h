#pragma once

// The handles that the objects of a file have, looked through before anything is loaded: objects without one
// must not be given a handle that comes later in the file.

#include <unordered_set>

#include "host/api/database_ids.h"
#include "host/exchange/audit.h"
#include "host/exchange/dxf_structure.h"

namespace drafthost::exchange {

class HandleSurvey {
public:
    // Throws DxfError for a handle that is not a hexadecimal number.
    HandleSurvey(const DxfStructure& structure, AuditReport& report);

    // First handle that no object of the file has.
    AcDbHandle firstFree() const { return AcDbHandle(highest_ + 1); }
    // True when the record's handle cannot be used: it is taken or out of range.
    bool mustReplace(const DxfRecord& record) const { return replaced_.contains(record.line); }

private:
    void take(const DxfRecord& record);
    AuditReport& report_;
    std::unordered_set<std::uint64_t> seen_;
    std::unordered_set<std::uint32_t> replaced_;  // by the record's line
    std::uint64_t highest_ = 0;
};

// The group of a record that holds its handle: 5, but 105 for DIMSTYLE, where 5 is a name. Only the first one
// before the first subclass marker counts; null: the record has none.
const DxfTag* handleTag(const DxfRecord& record);

}  // namespace drafthost::exchange

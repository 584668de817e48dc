#include "host/database/parts_visit.h"

#include "host/api/block_reference.h"
#include "host/database/database_impl.h"
#include "host/database/proxies.h"

namespace drafthost {

std::vector<AcDbObjectId> blocksShownBy(const AcDbEntity& entity) {
    if (const auto* const reference = AcDbBlockReference::cast(&entity))
        return {reference->blockTableRecord()};
    std::vector<AcDbObjectId> blocks;
    // What a module's entity shows is known from what it files only.
    const auto record = entity.isA()->appName() ? recordOf(entity, AcDb::kCopyFiler) : std::nullopt;
    if (!record)
        return blocks;
    for (const DwgRecord::Value& value : record->values) {
        const auto* const reference = std::get_if<DwgRecord::Reference>(&value);
        const bool isHard = reference && reference->kind == ReferenceKind::HardPointer;
        if (isHard && peek<AcDbBlockTableRecord>(reference->id))
            blocks.push_back(reference->id);
    }
    return blocks;
}

PartsVisit::PartsVisit(const AcDbEntity& entity) {
    for (const AcDbObjectId block : blocksShownBy(entity))
        entered_ = visits_.emplace_back(block).entered() && entered_;
}

}  // namespace drafthost

#include "host/exchange/handle_survey.h"

#include "host/exchange/dxf_input.h"

namespace drafthost::exchange {
namespace {

constexpr int kSubclassMarker = 100;

}  // namespace

const DxfTag* handleTag(const DxfRecord& record) {
    const std::int32_t code = record.type == "DIMSTYLE" ? 105 : 5;
    for (const DxfTag& tag : record.tags) {
        if (tag.code == code)
            return &tag;
        if (tag.code == kSubclassMarker)
            return nullptr;
    }
    return nullptr;
}

HandleSurvey::HandleSurvey(const DxfStructure& structure, AuditReport& report) : report_(report) {
    for (const DxfTable& table : structure.tables) {
        take(table.head);
        for (const DxfRecord& record : table.records)
            take(record);
    }
    for (const DxfBlock& block : structure.blocks) {
        take(block.begin);
        for (const DxfRecord& entity : block.entities)
            take(entity);
        take(block.end);
    }
    for (const DxfRecord& entity : structure.entities)
        take(entity);
    for (const DxfRecord& object : structure.objects)
        take(object);
}

void HandleSurvey::take(const DxfRecord& record) {
    const DxfTag* const tag = handleTag(record);
    if (!tag)
        return;
    const std::uint64_t handle = handleOf(*tag).value();
    const bool usable = handle != 0 && handle <= kHighestHandle;
    if (usable && seen_.insert(handle).second) {
        if (handle > highest_)
            highest_ = handle;
        return;
    }
    replaced_.insert(record.line);
    const std::wstring digits(tag->text.begin(), tag->text.end());
    if (usable)
        report_.add(AuditCode::DuplicateHandle,
                    L"handle " + digits + L" is used twice: a new one has been given", tag->line);
    else
        report_.add(AuditCode::UnusableHandle,
                    L"handle " + digits + L" cannot be used: a new one has been given", tag->line);
}

}  // namespace drafthost::exchange

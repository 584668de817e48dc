#include "host/database/copied_state.h"

#include <utility>

#include "host/database/block_reference_state.h"
#include "host/database/database_impl.h"
#include "host/database/table_states.h"
#include "host/database/text_states.h"
#include "host/database/unknown_objects.h"

namespace drafthost {
namespace {

// Puts other ids and handles in the place of those that a state holds. A handle in front of an id names the
// same object; one without an id is all that is known (extended data keep them so).
class Translator final : public StateWalker {
public:
    Translator(const IdTranslation& ids, const HandleTranslation& handles) : ids_(ids), handles_(handles) {}

    void value(bool&) override { handle_ = nullptr; }
    void value(std::int32_t&) override { handle_ = nullptr; }
    void value(std::int64_t&) override { handle_ = nullptr; }
    void value(double&) override { handle_ = nullptr; }
    void value(std::wstring&) override { handle_ = nullptr; }
    void value(AcGePoint2d&) override { handle_ = nullptr; }
    void value(AcGePoint3d&) override { handle_ = nullptr; }
    void value(AcGeVector3d&) override { handle_ = nullptr; }
    void value(std::vector<std::uint8_t>&) override { handle_ = nullptr; }
    void value(AcDbHandle& handle) override { handle_ = &handle; }
    void reference(AcDbObjectId& id, ReferenceKind kind) override {
        AcDbHandle* const handle = std::exchange(handle_, nullptr);
        if (!id.isNull()) {
            id = ids_(id, kind);
            if (handle)
                *handle = id.handle();
        } else if (handle && !handle->isNull()) {
            *handle = handles_(*handle);
        }
    }
    std::size_t count(std::size_t present) override {
        handle_ = nullptr;
        return present;
    }

private:
    const IdTranslation& ids_;
    const HandleTranslation& handles_;
    AcDbHandle* handle_ = nullptr;  // of the id that comes next
};

void dropNull(std::vector<AcDbObjectId>& ids) {
    std::erase_if(ids, [](AcDbObjectId id) { return id.isNull(); });
}

}  // namespace

void translateState(ObjectState& state, const IdTranslation& ids, const HandleTranslation& handles) {
    Translator translator(ids, handles);
    state.file(translator);
}

void closeGaps(ObjectState& state) {
    if (auto* const reference = dynamic_cast<BlockReferenceState*>(&state))
        dropNull(reference->attributes);
    else if (auto* const unknown = dynamic_cast<UnknownEntityState*>(&state))
        dropNull(unknown->subEntities);
    else if (auto* const block = dynamic_cast<BlockState*>(&state))
        dropNull(block->entities);
    else if (auto* const dictionary = dynamic_cast<DictionaryState*>(&state))
        std::erase_if(dictionary->entries, [](const auto& entry) { return entry.id.isNull(); });
}

void nameDefaults(ObjectState& state, const AcDbDatabase& source) {
    if (auto* const text = dynamic_cast<TextState*>(&state); text && text->style.isNull())
        text->style = source.textstyle();
    if (auto* const text = dynamic_cast<MTextState*>(&state); text && text->style.isNull())
        text->style = source.textstyle();
}

}  // namespace drafthost

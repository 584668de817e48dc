#include "host/database/class_registry.h"
#include "host/database/text_states.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbAttributeDefinition, AcDbText, L"ATTDEF",
                       &drafthost::constructObject<AcDbAttributeDefinition>)
DRAFTHOST_DEFINE_CLASS(AcDbAttribute, AcDbText, L"ATTRIB", &drafthost::constructObject<AcDbAttribute>)

namespace {

constexpr const ACHAR* kDefinitionSubclass = L"AcDbAttributeDefinition";
constexpr const ACHAR* kAttributeSubclass = L"AcDbAttribute";

// The group 280 stands twice: the version before the others, the lock behind them. Reading takes them in that
// order.
constexpr DxfField kDefinitionFields[] = {
    dxfField<&AttributeState::version>(280),    dxfField<&AttributeState::prompt>(3),
    dxfField<&AttributeState::tag>(2),          dxfField<&AttributeState::flags>(70),
    dxfField<&AttributeState::fieldLength>(73), dxfField<&AttributeState::vertical>(74),
};
constexpr DxfField kAttributeFields[] = {
    dxfField<&AttributeState::version>(280), dxfField<&AttributeState::tag>(2),
    dxfField<&AttributeState::flags>(70),    dxfField<&AttributeState::fieldLength>(73),
    dxfField<&AttributeState::vertical>(74),
};
constexpr short kLockGroup = 280;

Acad::ErrorStatus writeAttribute(AcDbDxfFiler* filer, const AcDbText& text, const ACHAR* subclass,
                                 std::span<const DxfField> fields) {
    const AttributeState& state = readState<AttributeState>(&text);
    const Acad::ErrorStatus status = writeTextGroups(filer, text, state, false);
    if (status != Acad::eOk)
        return status;
    writeSubclassMarker(filer, subclass);
    writeFields(filer, state, fields);
    filer->writeInt32(kLockGroup, state.lockPosition);
    writeExtras(filer, subclass, state);
    return Acad::eOk;
}

// The second of two groups 280 is the lock; a single one is the version.
void splitVersionAndLock(AcDbDxfFiler* filer, AttributeState& state) {
    auto* groups = dynamic_cast<GroupFiler*>(filer);
    if (!groups)
        return;
    std::vector<std::int32_t> found;
    for (const DxfGroup& group : groups->groups()) {
        if (group.code == kLockGroup)
            detail::readValue(group, found.emplace_back());
    }
    if (found.size() < 2)
        return;
    state.version = found.front();
    state.lockPosition = found.back();
}

Acad::ErrorStatus readAttribute(AcDbDxfFiler* filer, AcDbText& text, const ACHAR* subclass,
                                std::span<const DxfField> fields) {
    auto* state = writeState<AttributeState>(&text);
    if (!state)
        return Acad::eNotOpenForWrite;
    AttributeState filed(*state);
    std::vector<DxfGroup> embedded = setAsideEmbedded(filer);
    if (const Acad::ErrorStatus status = readTextGroups(filer, filed, false); status != Acad::eOk)
        return status;
    if (const Acad::ErrorStatus status = readSubclass(filer, subclass, filed, fields); status != Acad::eOk) {
        return status;
    }
    splitVersionAndLock(filer, filed);
    keepEmbedded(filed, subclass, std::move(embedded));
    *state = std::move(filed);
    return Acad::eOk;
}

Acad::ErrorStatus setTagOf(AcDbText* text, const ACHAR* tag) {
    if (!tag || !*tag)
        return Acad::eInvalidInput;
    auto* state = writeState<AttributeState>(text);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->tag = tag;
    return Acad::eOk;
}

const AttributeState& stateOf(const AcDbText* text) {
    return readState<AttributeState>(text);
}
bool hasFlag(const AttributeState& state, std::int32_t flag) {
    return (state.flags & flag) != 0;
}

}  // namespace

AcDbAttributeDefinition::AcDbAttributeDefinition() : AcDbText(newImp<AttributeState>()) {}
const ACHAR* AcDbAttributeDefinition::tag() const {
    return stateOf(this).tag.c_str();
}
const ACHAR* AcDbAttributeDefinition::prompt() const {
    return stateOf(this).prompt.c_str();
}
int AcDbAttributeDefinition::flags() const {
    return stateOf(this).flags;
}
Acad::ErrorStatus AcDbAttributeDefinition::setTag(const ACHAR* tag) {
    return setTagOf(this, tag);
}

Acad::ErrorStatus AcDbAttributeDefinition::dxfOutFields(AcDbDxfFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer);
    return status == Acad::eOk ? writeAttribute(filer, *this, kDefinitionSubclass, kDefinitionFields)
                               : status;
}

Acad::ErrorStatus AcDbAttributeDefinition::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readAttribute(filer, *this, kDefinitionSubclass, kDefinitionFields) : status;
}

// A definition shows its tag, where it will be filled in; a constant one is what every insertion shows: its
// text.
bool AcDbAttributeDefinition::subWorldDraw(AcGiWorldDraw* worldDraw) {
    const AttributeState& state = stateOf(this);
    const bool showsText = hasFlag(state, AttributeState::kConstant);
    drawTextLine(layoutTextLine(*this, state, showsText ? nullptr : &state.tag), state.normal, *worldDraw);
    return true;
}

AcDbAttribute::AcDbAttribute() : AcDbText(newImp<AttributeState>()) {}
const ACHAR* AcDbAttribute::tag() const {
    return stateOf(this).tag.c_str();
}
int AcDbAttribute::flags() const {
    return stateOf(this).flags;
}
Acad::ErrorStatus AcDbAttribute::setTag(const ACHAR* tag) {
    return setTagOf(this, tag);
}

Acad::ErrorStatus AcDbAttribute::dxfOutFields(AcDbDxfFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer);
    return status == Acad::eOk ? writeAttribute(filer, *this, kAttributeSubclass, kAttributeFields) : status;
}

Acad::ErrorStatus AcDbAttribute::dxfInFields(AcDbDxfFiler* filer) {
    const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer);
    return status == Acad::eOk ? readAttribute(filer, *this, kAttributeSubclass, kAttributeFields) : status;
}

bool AcDbAttribute::subWorldDraw(AcGiWorldDraw* worldDraw) {
    const AttributeState& state = stateOf(this);
    if (!hasFlag(state, AttributeState::kInvisible)) {
        drawTextLine(layoutTextLine(*this, state), state.normal, *worldDraw);
    }
    return true;
}

// Records without an interface of their own: registered applications, dimension styles, views, coordinate
// systems, viewports.

#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/database/table_states.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbRegAppTableRecord, AcDbSymbolTableRecord, L"APPID",
                       &drafthost::constructObject<AcDbRegAppTableRecord>)

namespace {

AcRxObject* newDimensionStyle() {
    return new AcDbPlainTableRecord(L"DIMSTYLE");
}

}  // namespace

// Copies take the kind of the original with its state, so any kind does for the constructor.
DRAFTHOST_DEFINE_CLASS(AcDbPlainTableRecord, AcDbSymbolTableRecord, nullptr, &newDimensionStyle)

namespace {

template <class State>
constexpr DxfField kNameAndFlags[] = {
    dxfField<&State::name>(2),
    dxfField<&State::flags>(70),
};

struct Kind {
    const wchar_t* name;
    const wchar_t* subclass;
};
constexpr Kind kKinds[] = {
    {L"DIMSTYLE", L"AcDbDimStyleTableRecord"},
    {L"VIEW", L"AcDbViewTableRecord"},
    {L"UCS", L"AcDbUCSTableRecord"},
    {L"VPORT", L"AcDbViewportTableRecord"},
};

const wchar_t* subclassOf(const std::wstring& kind) {
    for (const Kind& entry : kKinds) {
        if (kind == entry.name)
            return entry.subclass;
    }
    return kKinds[0].subclass;
}

bool keepGroup(ObjectState& state, const DxfGroup& group, AcDbDatabase*) {
    static_cast<PlainRecordState&>(state).groups.push_back(group);
    return true;
}

}  // namespace

AcDbRegAppTableRecord::AcDbRegAppTableRecord() : AcDbSymbolTableRecord(newImp<RegAppState>()) {}

Acad::ErrorStatus AcDbRegAppTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const auto status = AcDbSymbolTableRecord::dxfOutFields(filer); status != Acad::eOk)
        return status;
    return writeSubclass(filer, L"AcDbRegAppTableRecord", readState<RegAppState>(this),
                         kNameAndFlags<RegAppState>);
}

Acad::ErrorStatus AcDbRegAppTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    if (const auto status = AcDbSymbolTableRecord::dxfInFields(filer); status != Acad::eOk)
        return status;
    return readSubclass(filer, L"AcDbRegAppTableRecord", *writeState<RegAppState>(this),
                        kNameAndFlags<RegAppState>);
}

AcDbPlainTableRecord::AcDbPlainTableRecord(const ACHAR* kind)
    : AcDbSymbolTableRecord(newImp<PlainRecordState>()) {
    static_cast<PlainRecordState&>(*ObjectImp::of(this).state).kind = kind ? foldCase(kind) : L"";
}

const ACHAR* AcDbPlainTableRecord::kind() const {
    return readState<PlainRecordState>(this).kind.c_str();
}

Acad::ErrorStatus AcDbPlainTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const auto status = AcDbSymbolTableRecord::dxfOutFields(filer); status != Acad::eOk)
        return status;
    const auto& state = readState<PlainRecordState>(this);
    writeSubclassMarker(filer, subclassOf(state.kind));
    writeFields(filer, state, kNameAndFlags<PlainRecordState>);
    auto* const groups = dynamic_cast<GroupFiler*>(filer);
    for (const DxfGroup& group : state.groups)
        groups->add(group);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbPlainTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    if (const auto status = AcDbSymbolTableRecord::dxfInFields(filer); status != Acad::eOk)
        return status;
    auto* const state = writeState<PlainRecordState>(this);
    state->groups.clear();
    return readSubclass(filer, subclassOf(state->kind), *state, kNameAndFlags<PlainRecordState>, keepGroup);
}

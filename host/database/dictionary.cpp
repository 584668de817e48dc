#include <algorithm>

#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/database/table_states.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbDictionary, AcDbObject, L"DICTIONARY", &drafthost::constructObject<AcDbDictionary>)

namespace {

using Entry = DictionaryState::Entry;

constexpr DxfField kFields[] = {
    dxfField<&DictionaryState::hardOwner, 0>(280),
    dxfField<&DictionaryState::cloning>(281),
};

// Entries are pairs of a name (3) and an owned object (350 or 360).
bool takeEntry(ObjectState& state, const DxfGroup& group, AcDbDatabase*) {
    auto& entries = static_cast<DictionaryState&>(state).entries;
    if (group.code == 3) {
        const auto* const name = std::get_if<std::wstring>(&group.value);
        if (name)
            entries.push_back({*name, AcDbObjectId(), 350});
        return name != nullptr;
    }
    if ((group.code != 350 && group.code != 360) || entries.empty())
        return false;
    entries.back().code = group.code;
    return detail::readValue(group, entries.back().id);
}

const DictionaryState& dictionaryOf(const AcDbDictionary* dictionary) {
    return readState<DictionaryState>(dictionary);
}

std::vector<const Entry*> liveEntries(const AcDbDictionary* dictionary) {
    std::vector<const Entry*> live;
    for (const Entry& entry : dictionaryOf(dictionary).entries) {
        if (!entry.id.isErased())
            live.push_back(&entry);
    }
    return live;
}

}  // namespace

AcDbDictionary::AcDbDictionary() : AcDbObject(newImp<DictionaryState>()) {}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* name, AcDbObjectId& id) const {
    id = AcDbObjectId();
    if (!name)
        return Acad::eInvalidInput;
    for (const Entry& entry : dictionaryOf(this).entries) {
        if (entry.id.isErased() || !equalNames(entry.name, name))
            continue;
        id = entry.id;
        return Acad::eOk;
    }
    return Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbDictionary::setAt(const ACHAR* name, AcDbObject* object, AcDbObjectId& id) {
    id = AcDbObjectId();
    if (!object)
        return Acad::eNullObjectPointer;
    if (!name || !*name)
        return Acad::eInvalidKey;
    if (!database())
        return Acad::eNotInDatabase;
    auto* const state = writeState<DictionaryState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    if (const auto status = database()->impl().add(object, objectId(), AcDbHandle(), id);
        status != Acad::eOk) {
        return status;
    }
    const auto same =
        std::ranges::find_if(state->entries, [name](const Entry& e) { return equalNames(e.name, name); });
    if (same == state->entries.end()) {
        state->entries.push_back({name, id, static_cast<short>(state->hardOwner ? 360 : 350)});
        return Acad::eOk;
    }
    if (!same->id.isErased()) {
        noteChange(*same->id.stub());
        same->id.stub()->erased = true;
    }
    same->id = id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* name) {
    AcDbObjectId id;
    if (const auto status = getAt(name, id); status != Acad::eOk)
        return status;
    auto* const state = writeState<DictionaryState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    noteChange(*id.stub());
    id.stub()->erased = true;
    std::erase_if(state->entries, [id](const Entry& entry) { return entry.id == id; });
    return Acad::eOk;
}

int AcDbDictionary::numEntries() const {
    return static_cast<int>(liveEntries(this).size());
}

Acad::ErrorStatus AcDbDictionary::entryAt(int index, const ACHAR*& name, AcDbObjectId& id) const {
    const auto live = liveEntries(this);
    if (index < 0 || static_cast<std::size_t>(index) >= live.size())
        return Acad::eInvalidIndex;
    name = live[static_cast<std::size_t>(index)]->name.c_str();
    id = live[static_cast<std::size_t>(index)]->id;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::dxfOutFields(AcDbDxfFiler* filer) const {
    const DictionaryState& state = dictionaryOf(this);
    writeSubclassMarker(filer, L"AcDbDictionary");
    writeFields(filer, state, kFields);
    for (const Entry& entry : state.entries) {
        // A handle that no object of the file has is kept as it was; what was erased is left out.
        if (entry.id.isNull() || (entry.id.isValid() && entry.id.isErased()))
            continue;
        filer->writeItem(3, entry.name.c_str());
        filer->writeObjectId(entry.code, entry.id);
    }
    writeExtras(filer, L"AcDbDictionary", state);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::dxfInFields(AcDbDxfFiler* filer) {
    auto* const state = writeState<DictionaryState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->entries.clear();
    return readSubclass(filer, L"AcDbDictionary", *state, kFields, takeEntry);
}

Acad::ErrorStatus AcDbDictionary::subErase(bool erasing) {
    const bool isRoot = database() && database()->namedObjectsDictionaryId() == objectId();
    return erasing && isRoot ? Acad::eCannotBeErased : Acad::eOk;
}

// Filing of whole objects: what every object has, around the fields of its class.

#include <algorithm>
#include <utility>

#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/extended_data.h"
#include "host/database/group_filer.h"
#include "host/database/handles.h"
#include "host/database/unknown_objects.h"

using namespace drafthost;

namespace drafthost {

const ACHAR* dxfNameOf(const AcDbObject& object) {
    if (const auto* const entity = AcDbUnknownEntity::cast(&object))
        return entity->dxfName().c_str();
    if (const auto* const unknown = AcDbUnknownObject::cast(&object))
        return unknown->dxfName().c_str();
    if (const auto* const record = AcDbPlainTableRecord::cast(&object))
        return record->kind();
    if (object.isKindOf(AcDbSymbolTable::desc()))
        return L"TABLE";
    const ACHAR* const name = object.isA()->dxfName();
    return name ? name : L"";
}

namespace {

short handleCode(const AcDbObject& object) {
    const auto* const record = AcDbPlainTableRecord::cast(&object);
    return record && std::wstring_view(record->kind()) == L"DIMSTYLE" ? 105 : 5;
}

void writeReferences(GroupFiler& filer, const wchar_t* name, short code, std::span<const AcDbObjectId> ids) {
    if (ids.empty())
        return;
    filer.writeItem(102, name);
    for (const AcDbObjectId& id : ids)
        filer.writeObjectId(code, id);
    filer.writeItem(102, L"}");
}

void writeCommonPart(const AcDbObject& object, GroupFiler& filer) {
    const ObjectState& state = *ObjectImp::of(&object).state;
    filer.writeItem(0, dxfNameOf(object));
    if (!object.handle().isNull())
        filer.writeObjectId(handleCode(object), object.objectId());
    if (!state.extensionDictionary.isErased()) {
        writeReferences(filer, L"{ACAD_XDICTIONARY", 360, {&state.extensionDictionary, 1});
    }
    writeReferences(filer, L"{ACAD_REACTORS", 330, state.reactors);
    writeExtras(&filer, L"", state);
    const AcDbDatabase* const database = object.database();
    const bool isRoot = database && database->namedObjectsDictionaryId() == object.objectId();
    // An owner that a file named and did not have is none.
    if (state.owner.isValid())
        filer.writeObjectId(330, state.owner);
    else if (isRoot)
        filer.add({330, ObjectReference{}});
}

// Extra groups of subclasses that the object's class does not have come behind the ones it has.
void writeForeignSubclasses(const ObjectState& state, GroupFiler& filer) {
    std::vector<std::wstring> written{L""};
    for (const DxfGroup& group : filer.groups()) {
        if (group.code != 100)
            continue;
        if (const auto* const name = std::get_if<std::wstring>(&group.value))
            written.push_back(*name);
    }
    const std::size_t known = written.size();
    for (const ExtraGroup& extra : state.extras) {
        const auto end = written.begin() + static_cast<std::ptrdiff_t>(known);
        if (std::find(written.begin(), end, extra.subclass) != end)
            continue;
        if (written.size() == known || written.back() != extra.subclass) {
            filer.writeItem(100, extra.subclass.c_str());
            written.push_back(extra.subclass);
        }
        filer.add(extra.group);
    }
}

// Reads what stands before the first subclass marker.
class CommonPartReader {
public:
    CommonPartReader(ObjectState& state, GroupFiler& filer) : state_(state), filer_(filer) {}

    void read() {
        const auto& groups = filer_.groups();
        for (std::size_t i = 0; i < groups.size(); ++i) {
            const short code = groups[i].code;
            if (code == 100)
                break;
            if (code == 102)
                i = readBracketed(i);
            else if (code <= 0 || code == 5 || code == 105)
                filer_.take(i);
            else if (code == 330 && (!ownerSeen_ || filer_.hasMarkers()))
                takeOwner(i);
        }
        readExtendedData();
    }

private:
    // The first one says it. Others before the marker of a class are copies by mistake: kept, they would move
    // up.
    void takeOwner(std::size_t index) {
        if (std::exchange(ownerSeen_, true))
            return filer_.take(index);
        const auto* const reference = std::get_if<ObjectReference>(&filer_.groups()[index].value);
        if (reference && state_.owner.isNull())
            state_.owner = reference->id;
        filer_.take(index);
    }

    // {NAME ... }: returns the index of the closing group.
    std::size_t readBracketed(std::size_t begin) {
        const auto& groups = filer_.groups();
        const auto* const name = std::get_if<std::wstring>(&groups[begin].value);
        if (!name || name->empty() || name->front() != L'{')
            return begin;
        std::size_t end = begin + 1;
        while (end < groups.size() && groups[end].code != 102 && groups[end].code != 100)
            ++end;
        if (end == groups.size() || groups[end].code != 102)
            return begin;
        for (std::size_t i = begin; i <= end; ++i)
            filer_.take(i);
        for (std::size_t i = begin + 1; i < end; ++i)
            keepReference(*name, groups[i]);
        // Back references of blocks are found anew when they are needed.
        const bool known =
            *name == L"{ACAD_REACTORS" || *name == L"{ACAD_XDICTIONARY" || *name == L"{BLKREFS";
        for (std::size_t i = begin; !known && i <= end; ++i)
            state_.extras.push_back({L"", groups[i]});
        return end;
    }

    void keepReference(const std::wstring& name, const DxfGroup& group) {
        const auto* const reference = std::get_if<ObjectReference>(&group.value);
        if (!reference || reference->id.isNull())
            return;
        if (name == L"{ACAD_REACTORS")
            state_.reactors.push_back(reference->id);
        if (name == L"{ACAD_XDICTIONARY")
            state_.extensionDictionary = reference->id;
    }

    void readExtendedData() {
        const auto& groups = filer_.groups();
        std::size_t i = 0;
        while (i < groups.size() && groups[i].code != 1001)
            ++i;
        if (i == groups.size())
            return;
        state_.xdata.clear();
        for (; i < groups.size(); ++i) {
            if (groups[i].code < 1000)
                continue;
            state_.xdata.push_back(groups[i]);
            filer_.take(i);
        }
    }

    ObjectState& state_;
    GroupFiler& filer_;
    bool ownerSeen_ = false;
};

// Whatever the classes left of a list with markers: subclasses that nobody knows.
void keepForeignSubclasses(ObjectState& state, GroupFiler& filer) {
    if (!filer.hasMarkers())
        return;
    std::wstring subclass;
    const auto& groups = filer.groups();
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (groups[i].code == 100) {
            const auto* const name = std::get_if<std::wstring>(&groups[i].value);
            subclass = name ? *name : L"";
        } else if (!filer.taken(i) && groups[i].code < 1000) {
            state.extras.push_back({subclass, groups[i]});
        }
    }
}

void copyGroups(const std::vector<DxfGroup>& groups, AcDbDxfFiler& filer) {
    struct Writer {
        AcDbDxfFiler& filer;
        short code;
        void operator()(const std::wstring& text) const { filer.writeItem(code, text.c_str()); }
        void operator()(double value) const { filer.writeItem(code, value); }
        void operator()(const AcGePoint3d& point) const { filer.writeItem(code, point); }
        void operator()(const AcGePoint2d& point) const { filer.writeItem(code, point); }
        void operator()(std::int64_t value) const {
            filer.writeInt32(code, static_cast<std::int32_t>(value));
        }
        void operator()(const ObjectReference& reference) const { filer.writeObjectId(code, reference.id); }
        void operator()(const std::vector<std::uint8_t>&) const {}
    };
    for (const DxfGroup& group : groups)
        std::visit(Writer{filer, group.code}, group.value);
}

std::vector<DxfGroup> readAll(AcDbDxfFiler& filer) {
    std::vector<DxfGroup> groups;
    for (;;) {
        resbuf* const node = acutNewRb(RTNIL);
        if (!node || filer.readResBuf(node) != Acad::eOk) {
            acutRelRb(node);
            return groups;
        }
        groups.push_back(fromResbuf(*node));
        acutRelRb(node);
    }
}

}  // namespace
}  // namespace drafthost

AcDbAuditInfo::~AcDbAuditInfo() = default;

Acad::ErrorStatus AcDbObject::audit(AcDbAuditInfo*) {
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::dwgOut(AcDbDwgFiler* filer) const {
    return filer ? dwgOutFields(filer) : Acad::eInvalidInput;
}

Acad::ErrorStatus AcDbObject::dwgIn(AcDbDwgFiler* filer) {
    if (!filer)
        return Acad::eInvalidInput;
    return prepareWrite(this) ? dwgInFields(filer) : Acad::eNotOpenForWrite;
}

// The state holds all members of the host's own classes, whichever class this is.
Acad::ErrorStatus AcDbObject::dwgOutFields(AcDbDwgFiler* filer) const {
    return fileStateOut(*filer, *imp_->state);
}

Acad::ErrorStatus AcDbObject::dwgInFields(AcDbDwgFiler* filer) {
    if (!prepareWrite(this))
        return Acad::eNotOpenForWrite;
    std::unique_ptr<ObjectState> read = imp_->state->clone();
    if (const auto status = fileStateIn(*filer, *read); status != Acad::eOk)
        return status;
    imp_->state = std::move(read);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::dxfOut(AcDbDxfFiler* filer) const {
    if (!filer)
        return Acad::eInvalidInput;
    auto* const groups = dynamic_cast<GroupFiler*>(filer);
    if (!groups) {
        GroupFiler own(filer->database(), filer->filerType());
        const Acad::ErrorStatus status = dxfOut(&own);
        if (status == Acad::eOk)
            copyGroups(own.groups(), *filer);
        return status;
    }
    writeCommonPart(*this, *groups);
    if (const auto status = dxfOutFields(groups); status != Acad::eOk)
        return status;
    writeForeignSubclasses(*imp_->state, *groups);
    for (const DxfGroup& group : imp_->state->xdata)
        groups->add(group);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbObject::dxfIn(AcDbDxfFiler* filer) {
    if (!filer)
        return Acad::eInvalidInput;
    auto* const groups = dynamic_cast<GroupFiler*>(filer);
    if (!groups) {
        GroupFiler own(filer->database(), readAll(*filer), filer->filerType());
        return dxfIn(&own);
    }
    if (!prepareWrite(this))
        return Acad::eNotOpenForWrite;
    imp_->state->extras.clear();
    CommonPartReader(*imp_->state, *groups).read();
    if (const auto status = dxfInFields(groups); status != Acad::eOk)
        return status;
    keepForeignSubclasses(*imp_->state, *groups);
    return Acad::eOk;
}

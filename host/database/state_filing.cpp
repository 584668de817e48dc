#include "host/database/state_filing.h"

#include <algorithm>
#include <array>
#include <type_traits>
#include <utility>

#include "host/api/database.h"
#include "host/database/block_reference_state.h"
#include "host/database/curve_states.h"
#include "host/database/names.h"
#include "host/database/table_states.h"
#include "host/database/text_states.h"
#include "host/database/unknown_objects.h"

namespace drafthost {
namespace {

// The kinds of values of a group, in the order of DxfValue. Filed as numbers: new kinds go to the end.
template <std::size_t Kind>
void walkGroupValue(StateWalker& walker, DxfGroup& group) {
    if (group.value.index() != Kind)
        group.value.emplace<Kind>();
    auto& value = std::get<Kind>(group.value);
    using Value = std::decay_t<decltype(value)>;
    if constexpr (std::is_same_v<Value, ObjectReference>) {
        walker.value(value.handle);
        walker.reference(value.id, referenceKind(group.code));
    } else {
        walker.value(value);
    }
}

using WalkGroup = void (*)(StateWalker&, DxfGroup&);
template <std::size_t... Kinds>
constexpr std::array<WalkGroup, sizeof...(Kinds)> groupWalks(std::index_sequence<Kinds...>) {
    return {walkGroupValue<Kinds>...};
}
constexpr auto kGroupWalks = groupWalks(std::make_index_sequence<std::variant_size_v<DxfValue>>());

class StateWriter final : public StateWalker {
public:
    explicit StateWriter(AcDbDwgFiler& filer) : filer_(filer) {}
    void value(bool& value) override { filer_.writeBool(value); }
    void value(std::int32_t& value) override { filer_.writeInt32(value); }
    void value(std::int64_t& value) override { filer_.writeInt64(value); }
    void value(double& value) override { filer_.writeDouble(value); }
    void value(std::wstring& text) override { filer_.writeString(text.c_str()); }
    void value(AcGePoint2d& point) override { filer_.writePoint2d(point); }
    void value(AcGePoint3d& point) override { filer_.writePoint3d(point); }
    void value(AcGeVector3d& vector) override { filer_.writeVector3d(vector); }
    void value(AcDbHandle& handle) override { filer_.writeAcDbHandle(handle); }
    void value(std::vector<std::uint8_t>& bytes) override {
        filer_.writeInt32(static_cast<std::int32_t>(bytes.size()));
        filer_.writeBytes(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
    }
    void reference(AcDbObjectId& id, ReferenceKind kind) override {
        switch (kind) {
            case ReferenceKind::SoftOwner: filer_.writeSoftOwnershipId(id); break;
            case ReferenceKind::HardOwner: filer_.writeHardOwnershipId(id); break;
            case ReferenceKind::SoftPointer: filer_.writeSoftPointerId(id); break;
            case ReferenceKind::HardPointer: filer_.writeHardPointerId(id); break;
        }
    }
    std::size_t count(std::size_t present) override {
        filer_.writeInt32(static_cast<std::int32_t>(present));
        return present;
    }

private:
    AcDbDwgFiler& filer_;
};

class StateReader final : public StateWalker {
public:
    explicit StateReader(AcDbDwgFiler& filer) : filer_(filer) {}
    void value(bool& value) override { filer_.readBool(&value); }
    void value(std::int32_t& value) override { filer_.readInt32(&value); }
    void value(std::int64_t& value) override { filer_.readInt64(&value); }
    void value(double& value) override { filer_.readDouble(&value); }
    void value(std::wstring& text) override {
        ACHAR* read = nullptr;
        if (filer_.readString(&read) == Acad::eOk)
            text = read;
        acutDelString(read);
    }
    void value(AcGePoint2d& point) override { filer_.readPoint2d(&point); }
    void value(AcGePoint3d& point) override { filer_.readPoint3d(&point); }
    void value(AcGeVector3d& vector) override { filer_.readVector3d(&vector); }
    void value(AcDbHandle& handle) override { filer_.readAcDbHandle(&handle); }
    void value(std::vector<std::uint8_t>& bytes) override {
        const std::size_t size = count(bytes.size());
        if (size > kMaxBytes)
            return reject();
        bytes.resize(size);
        filer_.readBytes(bytes.data(), static_cast<std::uint32_t>(size));
    }
    // An object that does not exist where the state is read leaves a null reference.
    void reference(AcDbObjectId& id, ReferenceKind kind) override {
        switch (kind) {
            case ReferenceKind::SoftOwner: filer_.readSoftOwnershipId(&id); break;
            case ReferenceKind::HardOwner: filer_.readHardOwnershipId(&id); break;
            case ReferenceKind::SoftPointer: filer_.readSoftPointerId(&id); break;
            case ReferenceKind::HardPointer: filer_.readHardPointerId(&id); break;
        }
    }
    std::size_t count(std::size_t) override {
        std::int32_t read = 0;
        if (filer_.readInt32(&read) == Acad::eOk && read >= 0)
            return static_cast<std::size_t>(read);
        reject();
        return 0;
    }
    void reject() override { rejected_ = true; }
    bool failed() const override { return rejected_ || filer_.filerStatus() != Acad::eOk; }
    Acad::ErrorStatus status() const {
        return rejected_ && filer_.filerStatus() == Acad::eOk ? Acad::eFilerError : filer_.filerStatus();
    }

private:
    // More than any value of a drawing holds: a number that was not written as a size.
    static constexpr std::size_t kMaxBytes = 1 << 26;

    AcDbDwgFiler& filer_;
    bool rejected_ = false;
};

class ReferenceVisitor final : public StateWalker {
public:
    explicit ReferenceVisitor(const std::function<void(AcDbObjectId&, ReferenceKind)>& visit)
        : visit_(visit) {}
    void value(bool&) override {}
    void value(std::int32_t&) override {}
    void value(std::int64_t&) override {}
    void value(double&) override {}
    void value(std::wstring&) override {}
    void value(AcGePoint2d&) override {}
    void value(AcGePoint3d&) override {}
    void value(AcGeVector3d&) override {}
    void value(AcDbHandle&) override {}
    void value(std::vector<std::uint8_t>&) override {}
    void reference(AcDbObjectId& id, ReferenceKind kind) override {
        if (!id.isNull())
            visit_(id, kind);
    }
    std::size_t count(std::size_t present) override { return present; }

private:
    const std::function<void(AcDbObjectId&, ReferenceKind)>& visit_;
};

}  // namespace

void StateWalker::references(std::vector<AcDbObjectId>& ids, ReferenceKind kind) {
    list(ids, [&](AcDbObjectId& id) { reference(id, kind); });
}

void StateWalker::groups(std::vector<DxfGroup>& groups) {
    list(groups, [&](DxfGroup& each) { group(each); });
}

void StateWalker::group(DxfGroup& group) {
    std::int32_t code = group.code;
    auto kind = static_cast<std::int32_t>(group.value.index());
    values(code, kind);
    group.code = static_cast<short>(code);
    if (kind < 0 || static_cast<std::size_t>(kind) >= kGroupWalks.size())
        return reject();
    kGroupWalks[static_cast<std::size_t>(kind)](*this, group);
}

ReferenceKind referenceKind(short code) {
    if (code >= 340 && code <= 349)
        return ReferenceKind::HardPointer;
    if (code >= 350 && code <= 359)
        return ReferenceKind::SoftOwner;
    if (code >= 360 && code <= 369)
        return ReferenceKind::HardOwner;
    // 390 to 399 (plot styles) and 480, 481 name objects that must exist.
    if ((code >= 390 && code <= 399) || code == 480 || code == 481)
        return ReferenceKind::HardPointer;
    return ReferenceKind::SoftPointer;
}

Acad::ErrorStatus fileStateOut(AcDbDwgFiler& filer, const ObjectState& state) {
    StateWriter writer(filer);
    const_cast<ObjectState&>(state).file(writer);  // a writer changes nothing
    return filer.filerStatus();
}

Acad::ErrorStatus fileStateIn(AcDbDwgFiler& filer, ObjectState& state) {
    StateReader reader(filer);
    state.file(reader);
    return reader.status();
}

void forEachReference(ObjectState& state,
                      const std::function<void(AcDbObjectId& id, ReferenceKind kind)>& visit) {
    ReferenceVisitor visitor(visit);
    state.file(visitor);
}

void ObjectState::file(StateWalker& walker) {
    walker.reference(owner, ReferenceKind::SoftPointer);
    walker.reference(extensionDictionary, ReferenceKind::HardOwner);
    walker.references(reactors, ReferenceKind::SoftPointer);
    walker.groups(xdata);
    walker.list(extras, [&](ExtraGroup& extra) {
        walker.value(extra.subclass);
        walker.group(extra.group);
    });
}

void EntityState::file(StateWalker& walker) {
    ObjectState::file(walker);
    walker.reference(layer, ReferenceKind::HardPointer);
    walker.reference(linetype, ReferenceKind::HardPointer);
    walker.values(linetypeScale, color, trueColor, lineWeight, invisible);
}

void LineState::file(StateWalker& walker) {
    EntityState::file(walker);
    walker.values(start, end, thickness, normal);
}

void CircleState::file(StateWalker& walker) {
    EntityState::file(walker);
    walker.values(center, radius, thickness, normal);
}

void ArcState::file(StateWalker& walker) {
    CircleState::file(walker);
    walker.values(startAngle, endAngle);
}

void PolylineState::file(StateWalker& walker) {
    EntityState::file(walker);
    walker.list(vertices, [&](PolylineVertex& vertex) {
        walker.values(vertex.point, vertex.bulge, vertex.startWidth, vertex.endWidth, vertex.identifier);
    });
    walker.values(flags, constantWidth, elevation, thickness, normal);
    lengths.clear();
}

void BlockReferenceState::file(StateWalker& walker) {
    EntityState::file(walker);
    walker.reference(block, ReferenceKind::HardPointer);
    walker.values(position, scaleX, scaleY, scaleZ, rotation, normal);
    walker.values(columns, rows, columnSpacing, rowSpacing);
    walker.references(attributes, ReferenceKind::HardOwner);
    walker.reference(sequenceEnd, ReferenceKind::HardOwner);
}

void TextState::file(StateWalker& walker) {
    EntityState::file(walker);
    walker.values(position, alignment, text);
    walker.reference(style, ReferenceKind::HardPointer);
    walker.values(thickness, height, rotation, widthFactor, oblique, generation, horizontal, vertical);
    walker.value(normal);
}

void AttributeState::file(StateWalker& walker) {
    TextState::file(walker);
    walker.values(tag, prompt, flags, fieldLength, version, lockPosition);
}

void MTextState::file(StateWalker& walker) {
    EntityState::file(walker);
    walker.values(contents, location, direction, normal);
    walker.reference(style, ReferenceKind::HardPointer);
    walker.values(height, width, attachment, flow, spacingStyle, spacingFactor);
    walker.values(backgroundFlags, backgroundColor, backgroundTrueColor, backgroundScale);
    walker.values(backgroundTransparency, useBackgroundColor);
}

void UnknownObjectState::file(StateWalker& walker) {
    ObjectState::file(walker);
    fileContents(walker);
}

void UnknownEntityState::file(StateWalker& walker) {
    EntityState::file(walker);
    fileContents(walker);
    walker.references(subEntities, ReferenceKind::HardOwner);
    graphics.file(walker);
}

// Names of records are their own; the index by name is made again.
void TableState::file(StateWalker& walker) {
    ObjectState::file(walker);
    walker.references(records, ReferenceKind::SoftOwner);
    std::vector<std::pair<std::wstring, AcDbObjectId>> names(byName.begin(), byName.end());
    std::ranges::sort(names, {}, &std::pair<std::wstring, AcDbObjectId>::first);
    walker.list(names, [&](std::pair<std::wstring, AcDbObjectId>& entry) {
        walker.value(entry.first);
        walker.reference(entry.second, ReferenceKind::SoftPointer);
    });
    byName = {names.begin(), names.end()};
}

void RecordState::file(StateWalker& walker) {
    ObjectState::file(walker);
    walker.values(name, flags);
}

void BlockState::file(StateWalker& walker) {
    RecordState::file(walker);
    walker.references(entities, ReferenceKind::HardOwner);
    walker.reference(begin, ReferenceKind::HardOwner);
    walker.reference(end, ReferenceKind::HardOwner);
    walker.values(origin, description, externalPath);
    walker.reference(layout, ReferenceKind::SoftPointer);
}

void LayerState::file(StateWalker& walker) {
    RecordState::file(walker);
    walker.values(color, trueColor);
    walker.reference(linetype, ReferenceKind::HardPointer);
    walker.values(lineWeight, off, plottable);
    walker.reference(plotStyle, ReferenceKind::HardPointer);
}

void LinetypeState::file(StateWalker& walker) {
    RecordState::file(walker);
    walker.values(comments, alignment, patternLength);
    walker.list(elements, [&](LinetypeElement& element) {
        walker.value(element.length);
        walker.groups(element.embedded);
    });
}

void TextStyleState::file(StateWalker& walker) {
    RecordState::file(walker);
    walker.values(textSize, xScale, obliquingAngle, generation, lastHeight);
    walker.values(fileName, bigFontFile, typeface, fontFlags);
}

void PlainRecordState::file(StateWalker& walker) {
    RecordState::file(walker);
    walker.value(kind);
    walker.groups(groups);
}

void DictionaryState::file(StateWalker& walker) {
    ObjectState::file(walker);
    walker.list(entries, [&](Entry& entry) {
        std::int32_t code = entry.code;
        walker.values(entry.name, code);
        entry.code = static_cast<short>(code);
        walker.reference(entry.id, referenceKind(entry.code));
    });
    walker.values(hardOwner, cloning);
}

}  // namespace drafthost

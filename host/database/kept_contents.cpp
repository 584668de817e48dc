#include "host/database/kept_contents.h"

#include <algorithm>
#include <array>
#include <utility>

#include "host/database/unknown_objects.h"

namespace drafthost {
namespace {

constexpr const wchar_t* kRecordMarker = L"AcDbKeptRecord";
constexpr short kMarker = 100, kClassName = 1, kWhole = 71, kByteCount = 91, kBytes = 310;
constexpr std::size_t kBytesPerGroup = 127;

// Filed values of the kinds that walkers know.
template <class Value>
void walkValue(StateWalker& walker, Value& value) {
    walker.value(value);
}
void walkValue(StateWalker& walker, std::int8_t& value) {
    std::int32_t wide = value;
    walker.value(wide);
    value = static_cast<std::int8_t>(wide);
}
void walkValue(StateWalker& walker, std::int16_t& value) {
    std::int32_t wide = value;
    walker.value(wide);
    value = static_cast<std::int16_t>(wide);
}
void walkValue(StateWalker& walker, DwgRecord::Reference& reference) {
    auto kind = static_cast<std::int32_t>(reference.kind);
    walker.value(kind);
    if (kind < 0 || kind > static_cast<std::int32_t>(ReferenceKind::HardPointer))
        return walker.reject();
    reference.kind = static_cast<ReferenceKind>(kind);
    walker.reference(reference.id, reference.kind);
}

template <std::size_t Kind>
void walkRecordValue(StateWalker& walker, DwgRecord::Value& value) {
    if (value.index() != Kind)
        value.emplace<Kind>();
    walkValue(walker, std::get<Kind>(value));
}

using WalkRecordValue = void (*)(StateWalker&, DwgRecord::Value&);
template <std::size_t... Kinds>
constexpr std::array<WalkRecordValue, sizeof...(Kinds)> recordWalks(std::index_sequence<Kinds...>) {
    return {walkRecordValue<Kinds>...};
}
constexpr auto kRecordWalks = recordWalks(std::make_index_sequence<std::variant_size_v<DwgRecord::Value>>());

// Codes of references, in the order of ReferenceKind.
constexpr std::array<short, 4> kReferenceCodes = {350, 360, 330, 340};

struct GroupWriter {
    std::vector<DxfGroup>& groups;
    void add(short code, DxfValue value) const { groups.push_back({code, std::move(value)}); }
    void operator()(bool value) const { add(290, std::int64_t{value}); }
    void operator()(std::int8_t value) const { add(280, std::int64_t{value}); }
    void operator()(std::int16_t value) const { add(70, std::int64_t{value}); }
    void operator()(std::int32_t value) const { add(90, std::int64_t{value}); }
    void operator()(std::int64_t value) const { add(160, value); }
    void operator()(double value) const { add(40, value); }
    void operator()(const AcGePoint2d& point) const { add(10, point); }
    void operator()(const AcGePoint3d& point) const { add(11, point); }
    void operator()(const AcGeVector3d& v) const { add(210, AcGePoint3d(v.x, v.y, v.z)); }
    void operator()(const std::wstring& text) const { add(300, text); }
    void operator()(AcDbHandle handle) const { add(162, static_cast<std::int64_t>(handle.value())); }
    void operator()(const DwgRecord::Reference& reference) const {
        const auto kind = static_cast<std::size_t>(reference.kind);
        add(kReferenceCodes[kind], ObjectReference{reference.id.handle(), reference.id});
    }
    void operator()(const std::vector<std::uint8_t>& bytes) const {
        add(kByteCount, static_cast<std::int64_t>(bytes.size()));
        for (std::size_t at = 0; at < bytes.size(); at += kBytesPerGroup) {
            const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(at);
            const std::size_t size = std::min(kBytesPerGroup, bytes.size() - at);
            add(kBytes, std::vector<std::uint8_t>(first, first + static_cast<std::ptrdiff_t>(size)));
        }
    }
};

// Reads what GroupWriter wrote; any other group makes the reading fail.
class GroupReader {
public:
    explicit GroupReader(const std::vector<DxfGroup>& groups) : groups_(groups) {}

    bool read(KeptContents& contents) {
        if (!areRecordGroups(groups_) || groups_.size() < 3)
            return false;
        const auto* const name = std::get_if<std::wstring>(&groups_[1].value);
        const auto* const whole = std::get_if<std::int64_t>(&groups_[2].value);
        if (groups_[1].code != kClassName || !name || groups_[2].code != kWhole || !whole)
            return false;
        contents.className = *name;
        contents.wholeRecord = *whole != 0;
        for (at_ = 3; at_ < groups_.size(); ++at_)
            if (!readValue())
                return false;
        contents.record = std::move(record_);
        contents.hasRecord = true;
        return true;
    }

private:
    template <class Value>
    void add(Value value) {
        record_.values.emplace_back(std::move(value));
    }

    bool readValue() {
        const DxfGroup& group = groups_[at_];
        if (const auto* const reference = std::get_if<ObjectReference>(&group.value))
            return readReference(group.code, *reference);
        if (const auto* const number = std::get_if<std::int64_t>(&group.value))
            return readInteger(group.code, *number);
        const auto* const text = std::get_if<std::wstring>(&group.value);
        const auto* const real = std::get_if<double>(&group.value);
        const auto* const flat = std::get_if<AcGePoint2d>(&group.value);
        const auto* const point = std::get_if<AcGePoint3d>(&group.value);
        if (group.code == 300 && text)
            add(*text);
        else if (group.code == 40 && real)
            add(*real);
        else if (group.code == 10 && flat)
            add(*flat);
        else if (group.code == 11 && point)
            add(*point);
        else if (group.code == 210 && point)
            add(AcGeVector3d(point->x, point->y, point->z));
        else
            return false;
        return true;
    }

    bool readReference(short code, const ObjectReference& reference) {
        const auto found = std::find(kReferenceCodes.begin(), kReferenceCodes.end(), code);
        if (found == kReferenceCodes.end())
            return false;
        add(DwgRecord::Reference{reference.id, static_cast<ReferenceKind>(found - kReferenceCodes.begin())});
        return true;
    }

    bool readInteger(short code, std::int64_t number) {
        switch (code) {
            case 290: add(number != 0); return true;
            case 280: add(static_cast<std::int8_t>(number)); return true;
            case 70: add(static_cast<std::int16_t>(number)); return true;
            case 90: add(static_cast<std::int32_t>(number)); return true;
            case 160: add(number); return true;
            case 162: add(AcDbHandle(static_cast<std::uint64_t>(number))); return true;
            case kByteCount: return readBytes(number);
            default: return false;
        }
    }

    bool readBytes(std::int64_t count) {
        std::vector<std::uint8_t> bytes;
        while (static_cast<std::int64_t>(bytes.size()) < count) {
            if (++at_ == groups_.size() || groups_[at_].code != kBytes)
                return false;
            const auto* const part = std::get_if<std::vector<std::uint8_t>>(&groups_[at_].value);
            if (!part || part->empty())
                return false;
            bytes.insert(bytes.end(), part->begin(), part->end());
        }
        add(std::move(bytes));
        return true;
    }

    const std::vector<DxfGroup>& groups_;
    std::size_t at_ = 0;
    DwgRecord record_;
};

}  // namespace

void KeptContents::fileContents(StateWalker& walker) {
    walker.values(dxfName, className, proxyFlags);
    walker.groups(groups);
    walker.values(hasRecord, wholeRecord);
    walker.list(record.values, [&walker](DwgRecord::Value& value) {
        auto kind = static_cast<std::int32_t>(value.index());
        walker.value(kind);
        if (kind < 0 || static_cast<std::size_t>(kind) >= kRecordWalks.size())
            return walker.reject();
        kRecordWalks[static_cast<std::size_t>(kind)](walker, value);
    });
}

KeptContents* keptContents(AcDbObject& object) {
    ObjectState* const state = ObjectImp::of(&object).state.get();
    if (AcDbUnknownEntity::cast(&object))
        return static_cast<UnknownEntityState*>(state);
    if (AcDbUnknownObject::cast(&object))
        return static_cast<UnknownObjectState*>(state);
    return nullptr;
}

const KeptContents* keptContents(const AcDbObject& object) {
    return keptContents(const_cast<AcDbObject&>(object));
}

std::vector<DxfGroup> recordGroups(const KeptContents& contents) {
    std::vector<DxfGroup> groups{{kMarker, std::wstring(kRecordMarker)},
                                 {kClassName, contents.className},
                                 {kWhole, std::int64_t{contents.wholeRecord}}};
    for (const DwgRecord::Value& value : contents.record.values)
        std::visit(GroupWriter{groups}, value);
    return groups;
}

// The groups may be a whole object's; the marker then stands behind those of every object.
bool areRecordGroups(const std::vector<DxfGroup>& groups) {
    return std::ranges::any_of(groups, [](const DxfGroup& group) {
        const auto* const name = std::get_if<std::wstring>(&group.value);
        return group.code == kMarker && name && *name == kRecordMarker;
    });
}

bool takeRecord(KeptContents& contents) {
    if (!GroupReader(contents.groups).read(contents))
        return false;
    contents.groups.clear();
    return true;
}

}  // namespace drafthost

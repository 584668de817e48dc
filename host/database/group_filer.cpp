#include "host/database/group_filer.h"

#include <algorithm>

AcDbDxfFiler::~AcDbDxfFiler() = default;

namespace drafthost {

GroupFiler::GroupFiler(AcDbDatabase* database, AcDb::FilerType type) : database_(database), type_(type) {}

GroupFiler::GroupFiler(AcDbDatabase* database, std::vector<DxfGroup> groups, AcDb::FilerType type)
    : database_(database), type_(type), groups_(std::move(groups)), taken_(groups_.size(), false) {
    hasMarkers_ = std::ranges::any_of(groups_, [](const DxfGroup& group) { return group.code == 100; });
}

void GroupFiler::setProblem(std::wstring text) {
    if (problem_.empty())
        problem_ = std::move(text);
}

Acad::ErrorStatus GroupFiler::filerStatus() const {
    return status_;
}
void GroupFiler::resetFilerStatus() {
    status_ = Acad::eOk;
}
AcDb::FilerType GroupFiler::filerType() const {
    return type_;
}
AcDbDatabase* GroupFiler::database() const {
    return database_;
}

Acad::ErrorStatus GroupFiler::readResBuf(resbuf* node) {
    if (!node)
        return status_ = Acad::eInvalidInput;
    if (atEOF())
        return Acad::eEndOfFile;
    resbuf* const read = toResbuf(groups_[position_], true);
    if (!read)
        return status_ = Acad::eOutOfMemory;
    // What the caller's node held may never have been set, so it is overwritten, not released.
    node->restype = read->restype;
    node->resval = read->resval;
    read->restype = RTNIL;
    acutRelRb(read);
    taken_[position_++] = true;
    return Acad::eOk;
}

void GroupFiler::pushBackItem() {
    while (position_ > 0) {
        --position_;
        if (!taken_[position_])
            continue;
        taken_[position_] = false;
        return;
    }
}

bool GroupFiler::atSubclassData(const ACHAR* className) {
    if (atEOF() || groups_[position_].code != 100)
        return false;
    const auto* const name = std::get_if<std::wstring>(&groups_[position_].value);
    if (!name || *name != className)
        return false;
    taken_[position_++] = true;
    return true;
}

bool GroupFiler::atEOF() {
    while (position_ < groups_.size() && taken_[position_])
        ++position_;
    return position_ == groups_.size();
}

Acad::ErrorStatus GroupFiler::writeItem(int code, const ACHAR* text) {
    add({static_cast<short>(code), std::wstring(text ? text : L"")});
    return Acad::eOk;
}

Acad::ErrorStatus GroupFiler::writeItem(int code, double value) {
    add({static_cast<short>(code), value});
    return Acad::eOk;
}

Acad::ErrorStatus GroupFiler::writeItem(int code, const AcGePoint3d& point) {
    add({static_cast<short>(code), point});
    return Acad::eOk;
}

Acad::ErrorStatus GroupFiler::writeItem(int code, const AcGePoint2d& point) {
    add({static_cast<short>(code), point});
    return Acad::eOk;
}

Acad::ErrorStatus GroupFiler::writeItem(int code, const AcGeVector3d& vector) {
    add({static_cast<short>(code), AcGePoint3d(vector.x, vector.y, vector.z)});
    return Acad::eOk;
}

Acad::ErrorStatus GroupFiler::writeInt16(int code, std::int16_t value) {
    add({static_cast<short>(code), std::int64_t{value}});
    return Acad::eOk;
}

Acad::ErrorStatus GroupFiler::writeInt32(int code, std::int32_t value) {
    add({static_cast<short>(code), std::int64_t{value}});
    return Acad::eOk;
}

Acad::ErrorStatus GroupFiler::writeBool(int code, bool value) {
    add({static_cast<short>(code), std::int64_t{value}});
    return Acad::eOk;
}

Acad::ErrorStatus GroupFiler::writeObjectId(int code, AcDbObjectId id) {
    add({static_cast<short>(code), ObjectReference{id.handle(), id}});
    return Acad::eOk;
}

}  // namespace drafthost

#include "host/database/memory_filer.h"

#include <cstring>

#include "host/api/resbuf.h"

AcDbDwgFiler::~AcDbDwgFiler() = default;

namespace drafthost {

MemoryFiler::MemoryFiler(AcDbDatabase* database, AcDb::FilerType type) : database_(database), type_(type) {}

MemoryFiler::MemoryFiler(AcDbDatabase* database, AcDb::FilerType type, DwgRecord record)
    : database_(database), type_(type), record_(std::move(record)) {}

Acad::ErrorStatus MemoryFiler::filerStatus() const {
    return status_;
}
void MemoryFiler::resetFilerStatus() {
    status_ = Acad::eOk;
}
AcDb::FilerType MemoryFiler::filerType() const {
    return type_;
}
AcDbDatabase* MemoryFiler::database() const {
    return database_;
}

// Records in memory are always of the present version.
Acad::ErrorStatus MemoryFiler::dwgVersion(int& version, int& maintenanceVersion) const {
    version = 1;
    maintenanceVersion = 1;
    return Acad::eOk;
}

Acad::ErrorStatus MemoryFiler::fail(Acad::ErrorStatus status) {
    return status_ = status;
}

template <class T>
Acad::ErrorStatus MemoryFiler::read(T* value) {
    if (status_ != Acad::eOk)
        return status_;
    if (position_ == record_.values.size())
        return fail(Acad::eEndOfObject);
    const T* const found = std::get_if<T>(&record_.values[position_]);
    if (!found)
        return fail(Acad::eFilerError);
    *value = *found;
    ++position_;
    return Acad::eOk;
}

template <class T>
Acad::ErrorStatus MemoryFiler::write(T value) {
    if (status_ == Acad::eOk)
        record_.values.emplace_back(std::move(value));
    return status_;
}

Acad::ErrorStatus MemoryFiler::readBool(bool* value) {
    return read(value);
}
Acad::ErrorStatus MemoryFiler::readInt8(std::int8_t* value) {
    return read(value);
}
Acad::ErrorStatus MemoryFiler::readInt16(std::int16_t* value) {
    return read(value);
}
Acad::ErrorStatus MemoryFiler::readInt32(std::int32_t* value) {
    return read(value);
}
Acad::ErrorStatus MemoryFiler::readInt64(std::int64_t* value) {
    return read(value);
}
Acad::ErrorStatus MemoryFiler::readDouble(double* value) {
    return read(value);
}
Acad::ErrorStatus MemoryFiler::readPoint2d(AcGePoint2d* value) {
    return read(value);
}
Acad::ErrorStatus MemoryFiler::readPoint3d(AcGePoint3d* value) {
    return read(value);
}
Acad::ErrorStatus MemoryFiler::readVector3d(AcGeVector3d* value) {
    return read(value);
}
Acad::ErrorStatus MemoryFiler::readAcDbHandle(AcDbHandle* handle) {
    return read(handle);
}

Acad::ErrorStatus MemoryFiler::readString(ACHAR** text) {
    std::wstring found;
    const Acad::ErrorStatus status = read(&found);
    if (status == Acad::eOk)
        acutNewString(found.c_str(), *text);
    return status;
}

Acad::ErrorStatus MemoryFiler::readBytes(void* bytes, std::uint32_t size) {
    std::vector<std::uint8_t> found;
    if (const Acad::ErrorStatus status = read(&found); status != Acad::eOk)
        return status;
    if (found.size() != size)
        return fail(Acad::eFilerError);
    if (size > 0)
        std::memcpy(bytes, found.data(), size);
    return Acad::eOk;
}

Acad::ErrorStatus MemoryFiler::readId(AcDbObjectId* id, ReferenceKind kind) {
    DwgRecord::Reference found;
    if (const Acad::ErrorStatus status = read(&found); status != Acad::eOk)
        return status;
    if (found.kind != kind) {
        --position_;
        return fail(Acad::eFilerError);
    }
    const bool translated = translation_ && !found.id.isNull();
    *id = translated ? translation_(found.id, kind) : found.id;
    return translated && id->isNull() ? Acad::eUnknownHandle : Acad::eOk;
}

Acad::ErrorStatus MemoryFiler::readSoftOwnershipId(AcDbObjectId* id) {
    return readId(id, ReferenceKind::SoftOwner);
}
Acad::ErrorStatus MemoryFiler::readHardOwnershipId(AcDbObjectId* id) {
    return readId(id, ReferenceKind::HardOwner);
}
Acad::ErrorStatus MemoryFiler::readSoftPointerId(AcDbObjectId* id) {
    return readId(id, ReferenceKind::SoftPointer);
}
Acad::ErrorStatus MemoryFiler::readHardPointerId(AcDbObjectId* id) {
    return readId(id, ReferenceKind::HardPointer);
}

Acad::ErrorStatus MemoryFiler::writeBool(bool value) {
    return write(value);
}
Acad::ErrorStatus MemoryFiler::writeInt8(std::int8_t value) {
    return write(value);
}
Acad::ErrorStatus MemoryFiler::writeInt16(std::int16_t value) {
    return write(value);
}
Acad::ErrorStatus MemoryFiler::writeInt32(std::int32_t value) {
    return write(value);
}
Acad::ErrorStatus MemoryFiler::writeInt64(std::int64_t value) {
    return write(value);
}
Acad::ErrorStatus MemoryFiler::writeDouble(double value) {
    return write(value);
}
Acad::ErrorStatus MemoryFiler::writePoint2d(const AcGePoint2d& value) {
    return write(value);
}
Acad::ErrorStatus MemoryFiler::writePoint3d(const AcGePoint3d& value) {
    return write(value);
}
Acad::ErrorStatus MemoryFiler::writeVector3d(const AcGeVector3d& value) {
    return write(value);
}
Acad::ErrorStatus MemoryFiler::writeString(const ACHAR* text) {
    return write(std::wstring(text ? text : L""));
}
Acad::ErrorStatus MemoryFiler::writeBytes(const void* bytes, std::uint32_t size) {
    const auto* const first = static_cast<const std::uint8_t*>(bytes);
    return write(size == 0 ? std::vector<std::uint8_t>() : std::vector<std::uint8_t>(first, first + size));
}
Acad::ErrorStatus MemoryFiler::writeAcDbHandle(AcDbHandle handle) {
    return write(handle);
}
Acad::ErrorStatus MemoryFiler::writeSoftOwnershipId(AcDbObjectId id) {
    return write(DwgRecord::Reference{id, ReferenceKind::SoftOwner});
}
Acad::ErrorStatus MemoryFiler::writeHardOwnershipId(AcDbObjectId id) {
    return write(DwgRecord::Reference{id, ReferenceKind::HardOwner});
}
Acad::ErrorStatus MemoryFiler::writeSoftPointerId(AcDbObjectId id) {
    return write(DwgRecord::Reference{id, ReferenceKind::SoftPointer});
}
Acad::ErrorStatus MemoryFiler::writeHardPointerId(AcDbObjectId id) {
    return write(DwgRecord::Reference{id, ReferenceKind::HardPointer});
}

}  // namespace drafthost

#pragma once

// An object's values in memory: what copies, undo, proxies and insertions of drawings file objects through.

#include <cstdint>
#include <functional>
#include <string>
#include <variant>
#include <vector>

#include "host/api/filer.h"
#include "host/database/state_filing.h"

namespace drafthost {

// One object's values in the order they were written.
struct DwgRecord {
    struct Reference {
        AcDbObjectId id;
        ReferenceKind kind = ReferenceKind::SoftPointer;
    };
    using Value = std::variant<bool, std::int8_t, std::int16_t, std::int32_t, std::int64_t, double,
                               AcGePoint2d, AcGePoint3d, AcGeVector3d, std::wstring,
                               std::vector<std::uint8_t>, AcDbHandle, Reference>;
    std::vector<Value> values;
};

// Puts another id in the place of one when a record is read; null: the object does not exist there.
using IdTranslation = std::function<AcDbObjectId(AcDbObjectId id, ReferenceKind kind)>;

class DRAFTHOST_API MemoryFiler final : public AcDbDwgFiler {
public:
    // For writing, start empty and take record(); for reading, start with the record.
    MemoryFiler(AcDbDatabase* database, AcDb::FilerType type);
    MemoryFiler(AcDbDatabase* database, AcDb::FilerType type, DwgRecord record);

    DwgRecord& record() { return record_; }
    std::size_t position() const { return position_; }  // values read so far
    // For reading: ids are passed through it. Without one they are read as they were written.
    void setTranslation(IdTranslation translation) { translation_ = std::move(translation); }

    Acad::ErrorStatus filerStatus() const override;
    void resetFilerStatus() override;
    AcDb::FilerType filerType() const override;
    AcDbDatabase* database() const override;
    Acad::ErrorStatus dwgVersion(int& version, int& maintenanceVersion) const override;
    Acad::ErrorStatus readBool(bool* value) override;
    Acad::ErrorStatus readInt8(std::int8_t* value) override;
    Acad::ErrorStatus readInt16(std::int16_t* value) override;
    Acad::ErrorStatus readInt32(std::int32_t* value) override;
    Acad::ErrorStatus readInt64(std::int64_t* value) override;
    Acad::ErrorStatus readDouble(double* value) override;
    Acad::ErrorStatus readPoint2d(AcGePoint2d* value) override;
    Acad::ErrorStatus readPoint3d(AcGePoint3d* value) override;
    Acad::ErrorStatus readVector3d(AcGeVector3d* value) override;
    Acad::ErrorStatus readString(ACHAR** text) override;
    Acad::ErrorStatus readBytes(void* bytes, std::uint32_t size) override;
    Acad::ErrorStatus readAcDbHandle(AcDbHandle* handle) override;
    Acad::ErrorStatus readSoftOwnershipId(AcDbObjectId* id) override;
    Acad::ErrorStatus readHardOwnershipId(AcDbObjectId* id) override;
    Acad::ErrorStatus readSoftPointerId(AcDbObjectId* id) override;
    Acad::ErrorStatus readHardPointerId(AcDbObjectId* id) override;
    Acad::ErrorStatus writeBool(bool value) override;
    Acad::ErrorStatus writeInt8(std::int8_t value) override;
    Acad::ErrorStatus writeInt16(std::int16_t value) override;
    Acad::ErrorStatus writeInt32(std::int32_t value) override;
    Acad::ErrorStatus writeInt64(std::int64_t value) override;
    Acad::ErrorStatus writeDouble(double value) override;
    Acad::ErrorStatus writePoint2d(const AcGePoint2d& value) override;
    Acad::ErrorStatus writePoint3d(const AcGePoint3d& value) override;
    Acad::ErrorStatus writeVector3d(const AcGeVector3d& value) override;
    Acad::ErrorStatus writeString(const ACHAR* text) override;
    Acad::ErrorStatus writeBytes(const void* bytes, std::uint32_t size) override;
    Acad::ErrorStatus writeAcDbHandle(AcDbHandle handle) override;
    Acad::ErrorStatus writeSoftOwnershipId(AcDbObjectId id) override;
    Acad::ErrorStatus writeHardOwnershipId(AcDbObjectId id) override;
    Acad::ErrorStatus writeSoftPointerId(AcDbObjectId id) override;
    Acad::ErrorStatus writeHardPointerId(AcDbObjectId id) override;

private:
    template <class T>
    Acad::ErrorStatus read(T* value);
    template <class T>
    Acad::ErrorStatus write(T value);
    Acad::ErrorStatus readId(AcDbObjectId* id, ReferenceKind kind);
    Acad::ErrorStatus fail(Acad::ErrorStatus status);

    AcDbDatabase* database_;
    AcDb::FilerType type_;
    DwgRecord record_;
    std::size_t position_ = 0;
    IdTranslation translation_;
    Acad::ErrorStatus status_ = Acad::eOk;
};

}  // namespace drafthost

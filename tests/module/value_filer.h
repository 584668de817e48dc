#pragma once

// A filer that keeps what is filed, value by value, and fails where a test says.

#include "host/api/filer.h"

#include <map>
#include <string>
#include <variant>
#include <vector>

namespace tessary::testing {

struct FiledId {
    enum Kind { softOwner, hardOwner, softPointer, hardPointer } kind;
    AcDbObjectId id;
};
using FiledValue =
    std::variant<bool, std::int8_t, std::int16_t, std::int32_t, std::int64_t, double, AcGePoint2d,
                 AcGePoint3d, AcGeVector3d, std::wstring, std::vector<std::uint8_t>, AcDbHandle, FiledId>;
using FiledValues = std::vector<FiledValue>;

// For example "int32 2", "point 1 2 3", "double 1.5", "bool 1", "hard pointer 1F"; others by a number.
std::string shown(const FiledValue& value);
std::vector<std::string> shown(const FiledValues& values);

class ValueFiler : public AcDbDwgFiler {
public:
    explicit ValueFiler(FiledValues given = {}, AcDb::FilerType type = AcDb::kFileFiler)
        : values(std::move(given)), type_(type) {}

    FiledValues values;                    // written, or to be read
    std::size_t position = 0;              // of the next value to read
    int calls = 0;                         // of reading and writing
    mutable int typeQuestions = 0;         // how often filerType was asked
    Acad::ErrorStatus status = Acad::eOk;  // what filerStatus says, whatever fails
    // Calls by number that fail: nothing is written, and a value that was to be read is still the next.
    std::map<int, Acad::ErrorStatus> failures;

    Acad::ErrorStatus filerStatus() const override { return status; }
    void resetFilerStatus() override { status = Acad::eOk; }
    AcDb::FilerType filerType() const override;
    AcDbDatabase* database() const override { return nullptr; }
    Acad::ErrorStatus dwgVersion(int& version, int& maintenanceVersion) const override;

    Acad::ErrorStatus readBool(bool* value) override { return read(value); }
    Acad::ErrorStatus readInt8(std::int8_t* value) override { return read(value); }
    Acad::ErrorStatus readInt16(std::int16_t* value) override { return read(value); }
    Acad::ErrorStatus readInt32(std::int32_t* value) override { return read(value); }
    Acad::ErrorStatus readInt64(std::int64_t* value) override { return read(value); }
    Acad::ErrorStatus readDouble(double* value) override { return read(value); }
    Acad::ErrorStatus readPoint2d(AcGePoint2d* value) override { return read(value); }
    Acad::ErrorStatus readPoint3d(AcGePoint3d* value) override { return read(value); }
    Acad::ErrorStatus readVector3d(AcGeVector3d* value) override { return read(value); }
    Acad::ErrorStatus readString(ACHAR** text) override;
    Acad::ErrorStatus readBytes(void* bytes, std::uint32_t size) override;
    Acad::ErrorStatus readAcDbHandle(AcDbHandle* handle) override { return read(handle); }
    Acad::ErrorStatus readSoftOwnershipId(AcDbObjectId* id) override { return readId(id); }
    Acad::ErrorStatus readHardOwnershipId(AcDbObjectId* id) override { return readId(id); }
    Acad::ErrorStatus readSoftPointerId(AcDbObjectId* id) override { return readId(id); }
    Acad::ErrorStatus readHardPointerId(AcDbObjectId* id) override { return readId(id); }

    Acad::ErrorStatus writeBool(bool value) override { return write(value); }
    Acad::ErrorStatus writeInt8(std::int8_t value) override { return write(value); }
    Acad::ErrorStatus writeInt16(std::int16_t value) override { return write(value); }
    Acad::ErrorStatus writeInt32(std::int32_t value) override { return write(value); }
    Acad::ErrorStatus writeInt64(std::int64_t value) override { return write(value); }
    Acad::ErrorStatus writeDouble(double value) override { return write(value); }
    Acad::ErrorStatus writePoint2d(const AcGePoint2d& value) override { return write(value); }
    Acad::ErrorStatus writePoint3d(const AcGePoint3d& value) override { return write(value); }
    Acad::ErrorStatus writeVector3d(const AcGeVector3d& value) override { return write(value); }
    Acad::ErrorStatus writeString(const ACHAR* text) override { return write(std::wstring(text)); }
    Acad::ErrorStatus writeBytes(const void* bytes, std::uint32_t size) override;
    Acad::ErrorStatus writeAcDbHandle(AcDbHandle handle) override { return write(handle); }
    Acad::ErrorStatus writeSoftOwnershipId(AcDbObjectId id) override {
        return write(FiledId{FiledId::softOwner, id});
    }
    Acad::ErrorStatus writeHardOwnershipId(AcDbObjectId id) override {
        return write(FiledId{FiledId::hardOwner, id});
    }
    Acad::ErrorStatus writeSoftPointerId(AcDbObjectId id) override {
        return write(FiledId{FiledId::softPointer, id});
    }
    Acad::ErrorStatus writeHardPointerId(AcDbObjectId id) override {
        return write(FiledId{FiledId::hardPointer, id});
    }

private:
    Acad::ErrorStatus failure() {
        const auto found = failures.find(calls++);
        return found == failures.end() ? Acad::eOk : found->second;
    }
    template <class T>
    Acad::ErrorStatus write(T value) {
        const Acad::ErrorStatus result = failure();
        if (result == Acad::eOk) {
            values.emplace_back(std::move(value));
        }
        return result;
    }
    template <class T>
    Acad::ErrorStatus read(T* value) {
        if (const Acad::ErrorStatus result = failure(); result != Acad::eOk) {
            return result;
        }
        if (position == values.size()) {
            return Acad::eEndOfObject;
        }
        const T* const found = std::get_if<T>(&values[position]);
        if (!found) {
            return Acad::eFilerError;
        }
        *value = *found;
        ++position;
        return Acad::eOk;
    }
    Acad::ErrorStatus readId(AcDbObjectId* id);

    AcDb::FilerType type_;
};

}  // namespace tessary::testing

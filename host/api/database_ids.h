#pragma once

// Object identifiers and handles of the drawing database.

#include <functional>

#include "host/api/status.h"
#include "host/api/types.h"

class AcDbDatabase;
struct AcDbStub;  // the host's record of one object; opaque

// A handle: unique within a drawing, kept in files. 0 is null.
class AcDbHandle {
public:
    constexpr AcDbHandle() = default;
    constexpr explicit AcDbHandle(std::uint64_t value) : value_(value) {}
    constexpr std::uint64_t value() const { return value_; }
    constexpr bool isNull() const { return value_ == 0; }
    constexpr auto operator<=>(const AcDbHandle&) const = default;

private:
    std::uint64_t value_ = 0;
};

// Identifies an object while its database lives; also after the object was erased.
class DRAFTHOST_API AcDbObjectId {
public:
    static const AcDbObjectId kNull;
    constexpr AcDbObjectId() = default;
    constexpr explicit AcDbObjectId(AcDbStub* stub) : stub_(stub) {}
    constexpr bool isNull() const { return stub_ == nullptr; }
    bool isValid() const;   // not null, and its database still lives
    bool isErased() const;  // also true for null
    AcDbHandle handle() const;
    AcDbDatabase* database() const;  // null for the null id
    constexpr AcDbStub* stub() const { return stub_; }
    constexpr bool operator==(const AcDbObjectId&) const = default;
    bool operator<(const AcDbObjectId& other) const { return std::less<AcDbStub*>()(stub_, other.stub_); }

private:
    AcDbStub* stub_ = nullptr;
};

namespace AcDb {
enum OpenMode { kForRead = 0, kForWrite = 1, kForNotify = 2 };
// Which members may be lengthened to find an intersection.
enum Intersect { kOnBothOperands = 0, kExtendThis = 1, kExtendArg = 2, kExtendBoth = 3 };
enum LineWeight { kLnWtByLayer = -1, kLnWtByBlock = -2, kLnWtByLwDefault = -3 };
enum FilerType { kFileFiler = 0, kCopyFiler = 1, kUndoFiler = 2, kPurgeFiler = 3, kBagFiler = 4 };
}  // namespace AcDb

template <>
struct std::hash<AcDbObjectId> {
    std::size_t operator()(const AcDbObjectId& id) const noexcept {
        return std::hash<AcDbStub*>()(id.stub());
    }
};

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
// What objects are filed for.
enum FilerType {
    kFileFiler = 0,         // a drawing file
    kCopyFiler = 1,         // a copy in the same drawing
    kUndoFiler = 2,         // to be taken back
    kBagFiler = 3,          // data for LISP programs
    kIdXlateFiler = 4,      // ids are put in the place of others
    kDeepCloneFiler = 6,    // a copy with all that the object owns
    kIdFiler = 7,           // only the ids that the object refers to are of interest
    kPurgeFiler = 8,        // the same, for finding what nobody refers to
    kWblockCloneFiler = 9,  // a copy in another drawing
};
enum OsnapMode {
    kOsModeEnd = 1,
    kOsModeMid = 2,
    kOsModeCen = 3,
    kOsModeNode = 4,
    kOsModeQuad = 5,
    kOsModeIns = 7,
    kOsModePerp = 8,
    kOsModeTan = 9,
    kOsModeNear = 10,
};
enum Planarity { kNonPlanar = 0, kPlanar = 1, kLinear = 2 };
// Which of two records of the same name stays when objects come into a drawing.
enum DuplicateRecordCloning {
    kDrcNotApplicable = 0,
    kDrcIgnore = 1,   // the drawing's own
    kDrcReplace = 2,  // the one that comes
};
// How a drawing file that is read may be opened by others meanwhile.
enum ShareMode { kDenyReadWrite = 0x10, kDenyWrite = 0x20, kDenyRead = 0x30, kDenyNone = 0x40 };
}  // namespace AcDb

template <>
struct std::hash<AcDbObjectId> {
    std::size_t operator()(const AcDbObjectId& id) const noexcept {
        return std::hash<AcDbStub*>()(id.stub());
    }
};

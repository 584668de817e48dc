#pragma once

// Filing of objects: as exact values in a fixed order, and as DXF groups.

#include "host/api/database_ids.h"
#include "host/api/geometry.h"
#include "host/api/resbuf.h"

// One object's values, written or read in order. What is read must be of the kind that was written in its
// place: eFilerError otherwise, eEndOfObject behind the last value. The first failure stays the filer's
// status until it is reset, and every later call returns it; the value asked for is then unchanged.
//
// The four kinds of ids say what the reference means. Owners' objects are copied with them; what a hard
// reference names must exist, and comes along when objects go to another drawing; a soft one may be lost.
class DRAFTHOST_API AcDbDwgFiler {
public:
    virtual ~AcDbDwgFiler();
    virtual Acad::ErrorStatus filerStatus() const = 0;
    virtual void resetFilerStatus() = 0;
    virtual AcDb::FilerType filerType() const = 0;
    virtual AcDbDatabase* database() const = 0;  // that the values come from or go to; may be null
    // Version of the drawing that the values are filed in, as getClassVersion counts.
    virtual Acad::ErrorStatus dwgVersion(int& version, int& maintenanceVersion) const = 0;

    virtual Acad::ErrorStatus readBool(bool* value) = 0;
    virtual Acad::ErrorStatus readInt8(std::int8_t* value) = 0;
    virtual Acad::ErrorStatus readInt16(std::int16_t* value) = 0;
    virtual Acad::ErrorStatus readInt32(std::int32_t* value) = 0;
    virtual Acad::ErrorStatus readInt64(std::int64_t* value) = 0;
    virtual Acad::ErrorStatus readDouble(double* value) = 0;
    virtual Acad::ErrorStatus readPoint2d(AcGePoint2d* value) = 0;
    virtual Acad::ErrorStatus readPoint3d(AcGePoint3d* value) = 0;
    virtual Acad::ErrorStatus readVector3d(AcGeVector3d* value) = 0;
    virtual Acad::ErrorStatus readString(ACHAR** text) = 0;  // caller releases with acutDelString
    // Exactly size bytes: eFilerError when a run of another size was written.
    virtual Acad::ErrorStatus readBytes(void* bytes, std::uint32_t size) = 0;
    virtual Acad::ErrorStatus readAcDbHandle(AcDbHandle* handle) = 0;
    // eUnknownHandle, with a null id and without becoming the filer's status, when the object that was named
    // does not exist where the values are read.
    virtual Acad::ErrorStatus readSoftOwnershipId(AcDbObjectId* id) = 0;
    virtual Acad::ErrorStatus readHardOwnershipId(AcDbObjectId* id) = 0;
    virtual Acad::ErrorStatus readSoftPointerId(AcDbObjectId* id) = 0;
    virtual Acad::ErrorStatus readHardPointerId(AcDbObjectId* id) = 0;

    virtual Acad::ErrorStatus writeBool(bool value) = 0;
    virtual Acad::ErrorStatus writeInt8(std::int8_t value) = 0;
    virtual Acad::ErrorStatus writeInt16(std::int16_t value) = 0;
    virtual Acad::ErrorStatus writeInt32(std::int32_t value) = 0;
    virtual Acad::ErrorStatus writeInt64(std::int64_t value) = 0;
    virtual Acad::ErrorStatus writeDouble(double value) = 0;
    virtual Acad::ErrorStatus writePoint2d(const AcGePoint2d& value) = 0;
    virtual Acad::ErrorStatus writePoint3d(const AcGePoint3d& value) = 0;
    virtual Acad::ErrorStatus writeVector3d(const AcGeVector3d& value) = 0;
    virtual Acad::ErrorStatus writeString(const ACHAR* text) = 0;  // null: the empty text
    virtual Acad::ErrorStatus writeBytes(const void* bytes, std::uint32_t size) = 0;
    virtual Acad::ErrorStatus writeAcDbHandle(AcDbHandle handle) = 0;
    virtual Acad::ErrorStatus writeSoftOwnershipId(AcDbObjectId id) = 0;
    virtual Acad::ErrorStatus writeHardOwnershipId(AcDbObjectId id) = 0;
    virtual Acad::ErrorStatus writeSoftPointerId(AcDbObjectId id) = 0;
    virtual Acad::ErrorStatus writeHardPointerId(AcDbObjectId id) = 0;
};

// One object's groups, written or read in order. Reading functions return eEndOfFile behind the last group.
class DRAFTHOST_API AcDbDxfFiler {
public:
    virtual ~AcDbDxfFiler();
    virtual Acad::ErrorStatus filerStatus() const = 0;
    virtual void resetFilerStatus() = 0;
    virtual AcDb::FilerType filerType() const = 0;
    virtual AcDbDatabase* database() const = 0;  // that the groups come from or go to; may be null

    // Reading. The node receives the group code as restype and the value; the caller releases the text of a
    // string node by releasing the node.
    virtual Acad::ErrorStatus readResBuf(resbuf* node) = 0;
    virtual void pushBackItem() = 0;  // the last group read is read again
    // When the next group is the subclass marker of that class, skips it and returns true.
    virtual bool atSubclassData(const ACHAR* className) = 0;
    virtual bool atEOF() = 0;

    // Writing.
    virtual Acad::ErrorStatus writeItem(int code, const ACHAR* text) = 0;
    virtual Acad::ErrorStatus writeItem(int code, double value) = 0;
    virtual Acad::ErrorStatus writeItem(int code, const AcGePoint3d& point) = 0;
    virtual Acad::ErrorStatus writeItem(int code, const AcGePoint2d& point) = 0;
    virtual Acad::ErrorStatus writeItem(int code, const AcGeVector3d& vector) = 0;
    virtual Acad::ErrorStatus writeInt16(int code, std::int16_t value) = 0;
    virtual Acad::ErrorStatus writeInt32(int code, std::int32_t value) = 0;
    virtual Acad::ErrorStatus writeBool(int code, bool value) = 0;
    virtual Acad::ErrorStatus writeObjectId(int code, AcDbObjectId id) = 0;  // as the object's handle
};

#pragma once

// Filing of objects as DXF groups.

#include "host/api/database_ids.h"
#include "host/api/geometry.h"
#include "host/api/resbuf.h"

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

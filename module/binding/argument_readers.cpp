#include "module/binding/argument_readers.h"

#include "host/api/editor.h"
#include "module/binding/truncation.h"

namespace tessary {

namespace {

// Type codes below this are group codes of entity data.
constexpr int firstTypeCodeAfterGroups = 1000;
constexpr int firstPointGroup = 10;
constexpr int lastPointGroup = 17;

bool isAt(ArgCursor cursor, short type) {
    return cursor && cursor->restype == type;
}

void moveOn(ArgCursor& cursor) {
    cursor = cursor->rbnext;
}

bool skipWhenAt(ArgCursor& cursor, short type) {
    if (!isAt(cursor, type)) {
        return false;
    }
    moveOn(cursor);
    return true;
}

bool isNumber(ArgCursor cursor) {
    return isAt(cursor, RTREAL) || isAt(cursor, RTLONG) || isAt(cursor, RTSHORT);
}

// Integers are read from the whole 32-bit slot, which the host fills for 16-bit integers too.
double looseNumber(ArgCursor cursor) {
    return cursor->restype == RTREAL ? cursor->resval.rreal : static_cast<double>(cursor->resval.rlong);
}

bool readLoosePoint(ArgCursor& cursor, AcGePoint3d& point) {
    const ArgCursor second = isNumber(cursor) ? cursor->rbnext : nullptr;
    if (!second) {
        return false;
    }
    // Programs that give a point as two 16-bit integers depend on the first one alone being checked.
    if (!isAt(cursor, RTSHORT) && !isAt(second, RTREAL) && !isAt(second, RTLONG)) {
        return false;
    }
    point = AcGePoint3d(looseNumber(cursor), looseNumber(second), 0);
    cursor = second->rbnext;
    if (isNumber(cursor)) {
        point.z = looseNumber(cursor);
        moveOn(cursor);
    }
    return true;
}

}  // namespace

ArgumentList::ArgumentList() : list_(acedGetArgs()) {}

bool readListBegin(ArgCursor& cursor) {
    return skipWhenAt(cursor, RTLB);
}

bool readListEnd(ArgCursor& cursor) {
    return skipWhenAt(cursor, RTLE);
}

void skipArg(ArgCursor& cursor) {
    if (cursor) {
        moveOn(cursor);
    }
}

bool readEntityName(ArgCursor& cursor, ads_name name) {
    if (!isAt(cursor, RTENAME)) {
        return false;
    }
    ads_name_set(cursor->resval.rlname, name);
    moveOn(cursor);
    return true;
}

bool readObjectId(ArgCursor& cursor, AcDbObjectId& id) {
    AcDbObjectId found;
    if (!isAt(cursor, RTENAME) || acdbGetObjectId(found, cursor->resval.rlname) != Acad::eOk) {
        return false;
    }
    id = found;
    moveOn(cursor);
    return true;
}

bool readString(ArgCursor& cursor, std::wstring& text) {
    if (!isAt(cursor, RTSTR)) {
        return false;
    }
    text = cursor->resval.rstring ? cursor->resval.rstring : L"";
    moveOn(cursor);
    return true;
}

bool readReal(ArgCursor& cursor, double& value) {
    if (!isAt(cursor, RTREAL)) {
        return false;
    }
    value = cursor->resval.rreal;
    moveOn(cursor);
    return true;
}

bool readInteger(ArgCursor& cursor, int& value) {
    if (!cursor) {
        return false;
    }
    switch (cursor->restype) {
        case RTSHORT: value = cursor->resval.rint; break;
        case RTLONG: value = cursor->resval.rlong; break;
        case RTREAL: value = truncatedToInt(cursor->resval.rreal); break;
        default:
            if (cursor->restype >= firstTypeCodeAfterGroups) {
                return false;
            }
            value = cursor->restype;
            return true;
    }
    moveOn(cursor);
    return true;
}

bool readNumber(ArgCursor& cursor, double& value) {
    if (readReal(cursor, value)) {
        return true;
    }
    int integer = 0;
    if (!readInteger(cursor, integer)) {
        return false;
    }
    value = integer;
    return true;
}

bool readPoint(ArgCursor& cursor, AcGePoint3d& point) {
    if (!cursor) {
        return false;
    }
    const int type = cursor->restype;
    const bool isSpatial = type == RT3DPOINT || (type >= firstPointGroup && type <= lastPointGroup);
    if (!isSpatial && type != RTPOINT) {
        return readLoosePoint(cursor, point);
    }
    const ads_real* coordinates = cursor->resval.rpoint;
    point = AcGePoint3d(coordinates[0], coordinates[1], isSpatial ? coordinates[2] : 0.0);
    moveOn(cursor);
    return true;
}

bool readFlag(ArgCursor& cursor, bool& flag) {
    if (!cursor || cursor->restype == RTLB) {
        return false;
    }
    if (cursor->restype == RTLE) {
        flag = false;
        return true;
    }
    flag = cursor->restype != RTNIL;
    moveOn(cursor);
    return true;
}

bool readVariantBool(ArgCursor& cursor, short& flag) {
    bool isSet = false;
    if (!readFlag(cursor, isSet)) {
        return false;
    }
    flag = isSet ? -1 : 0;
    return true;
}

}  // namespace tessary

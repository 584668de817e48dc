#include "module/binding/result_list.h"

#include "host/api/database.h"
#include "host/api/editor.h"
#include "module/binding/variant_conversion.h"

#include <cwchar>

namespace tessary {

namespace {

// Every point passes here on its way to LISP. Points leave in the coordinates in which they were computed.
struct ResultPoint {
    ads_point coordinates;
    explicit ResultPoint(const AcGePoint3d& point) : coordinates{point.x, point.y, point.z} {}
};

ValueList makeNode(int type) {
    return ownValueList(acutNewRb(type));
}

// Builds a list with acutBuildList; the end mark is added here.
template <class... Parts>
ValueList build(Parts... parts) {
    return ownValueList(acutBuildList(parts..., static_cast<int>(RTNONE)));
}

template <class Value>
ValueList buildPair(const ACHAR* name, int type, Value value) {
    return build(int{RTLB}, int{RTSTR}, name, int{RTDOTE}, type, value, int{RTLE});
}

ValueList buildPairWithNode(const ACHAR* name, ValueList value) {
    ValueList pair = build(int{RTLB}, int{RTSTR}, name, int{RTDOTE});
    lastNode(pair.get())->rbnext = value.release();
    lastNode(pair.get())->rbnext = makeNode(RTLE).release();
    return pair;
}

bool keepsBlanks(const ACHAR* name) {
    return std::wcsncmp(name, L"s_", 2) == 0;
}

}  // namespace

void ResultList::append(ValueList nodes) {
    if (!nodes) {
        return;
    }
    resbuf* const last = lastNode(nodes.get());
    if (tail_) {
        tail_->rbnext = nodes.release();
    } else {
        head_ = std::move(nodes);
    }
    tail_ = last;
}

void ResultList::clear() {
    head_.reset();
    tail_ = nullptr;
}

void beginResultList(ResultList& list) {
    list.clear();
    list.append(makeNode(RTLB));
}

void addString(ResultList& list, const ACHAR* text) {
    list.append(build(int{RTSTR}, text));
}

void addVariantValue(ResultList& list, const VARIANT& value) {
    list.append(variantToValueList(value, true));
}

void addPoint(ResultList& list, const AcGePoint3d& point) {
    const ResultPoint result(point);
    list.append(build(int{RT3DPOINT}, &result.coordinates[0]));
}

void addNamedString(ResultList& list, const ACHAR* name, const ACHAR* text) {
    list.append(buildPair(name, RTSTR, text));
}

void addNamedReal(ResultList& list, const ACHAR* name, double value) {
    list.append(buildPair(name, RTREAL, value));
}

void addNamedPoint(ResultList& list, const ACHAR* name, const AcGePoint3d& point) {
    const ResultPoint result(point);
    list.append(buildPair(name, RT3DPOINT, &result.coordinates[0]));
}

void addNamedEntity(ResultList& list, const ACHAR* name, const AcDbEntity* entity) {
    if (!entity) {
        list.append(buildPairWithNode(name, makeNode(RTNIL)));
        return;
    }
    ads_name entityName;
    if (acdbGetAdsName(entityName, entity->objectId()) == Acad::eOk) {
        list.append(buildPair(name, RTENAME, &entityName[0]));
    }
}

void addNamedVariant(ResultList& list, const ACHAR* name, const VARIANT& value) {
    list.append(buildPairWithNode(name, variantToValueList(value, !keepsBlanks(name))));
}

ValueList makeNamedPair(const ACHAR* name, const resbuf& value) {
    switch (value.restype) {
        case RTREAL: return buildPair(name, RTREAL, value.resval.rreal);
        case RTPOINT:
        case RT3DPOINT: return buildPair(name, value.restype, &value.resval.rpoint[0]);
        case RTSHORT: return buildPair(name, RTSHORT, static_cast<int>(value.resval.rint));
        case RTLONG: return buildPair(name, RTLONG, value.resval.rlong);
        case RTSTR: return buildPair(name, RTSTR, static_cast<const ACHAR*>(value.resval.rstring));
        default: return nullptr;
    }
}

void endAndReturnList(ResultList& list) {
    list.append(makeNode(RTLE));
    acedRetList(list.head());
    list.clear();
}

void returnInteger(int value) {
    if (value == static_cast<short>(value)) {
        acedRetInt(value);
    } else {
        acedRetReal(value);
    }
}

void returnObjectId(AcDbObjectId id) {
    ads_name name;
    if (acdbGetAdsName(name, id) == Acad::eOk) {
        acedRetName(name, RTENAME);
    } else {
        acedRetNil();
    }
}

void returnEntity(const AcDbEntity& entity) {
    returnObjectId(entity.objectId());
}

}  // namespace tessary

#include "module/leader/leader_functions.h"

#include "host/api/editor.h"
#include "module/binding/argument_readers.h"
#include "module/binding/result_list.h"
#include "module/drawing/model_space.h"
#include "module/leader/drawing_scale.h"
#include "module/leader/leader_entity.h"

#include <array>
#include <memory>

namespace tessary {

namespace {

using LeaderPointer = AcDbObjectPointer<QNLeader>;

struct LeaderPoints {
    AcGePoint3d start, middle, end;
};

// A list of exactly three points.
bool readLeaderPoints(ArgCursor& cursor, LeaderPoints& points) {
    return readListBegin(cursor) && readPoint(cursor, points.start) && readPoint(cursor, points.middle) &&
           readPoint(cursor, points.end) && readListEnd(cursor);
}

// Offsets are given as sizes on paper and kept in drawing units.
bool readLeaderOffset(ArgCursor& cursor, double& offset) {
    double given = 0.0;
    if (!readNumber(cursor, given)) {
        return false;
    }
    offset = given * drawingScale();
    return true;
}

// The functions that work on a leader: the first argument names it, the work reads the others and sets the
// result. What cannot be opened so (no leader, erased, for writing on a locked layer) gives nil before they
// are looked at.
template <class Work>
HandlerStatus withLeader(AcDb::OpenMode mode, Work work) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    AcDbObjectId id;
    if (!readObjectId(cursor, id)) {
        return HandlerStatus::wrongType;
    }
    const LeaderPointer leader(id, mode);
    return leader ? work(*leader, cursor) : HandlerStatus::success;
}

// A new part of an exploded leader, added to the drawing and closed; null when it could not be added.
AcDbEntity* addPart(const QNLeader& leader, std::unique_ptr<AcDbEntity> part) {
    // Colour, weight and the rest are the drafter's present ones: programs set what they want on the parts.
    part->setLayer(leader.layerId(), true, false);
    part->setLinetype(leader.linetypeId(), true);
    AcDbEntity* const added = part.release();
    if (!appendToModelSpace(added)) {
        return nullptr;
    }
    added->close();
    return added;
}

// As a reference of its own, unlike the host's explosion, which takes the symbol apart too.
std::unique_ptr<AcDbEntity> copySymbol(const AcDbBlockReference& symbol) {
    auto copy = std::make_unique<AcDbBlockReference>(symbol.position(), symbol.blockTableRecord());
    copy->setRotation(symbol.rotation());
    copy->setScaleFactors(symbol.scaleFactors());
    return copy;
}

}  // namespace

// The lookups come between the arguments, so that a missing layer gives nil whatever follows it.
HandlerStatus insertLeader() {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    LeaderPoints points;
    std::wstring name;
    if (!readLeaderPoints(cursor, points) || !readString(cursor, name)) {
        return HandlerStatus::wrongType;
    }
    AcDbObjectId layer;
    if (!findLayer(name.c_str(), layer)) {
        return HandlerStatus::success;
    }
    if (!readString(cursor, name)) {
        return HandlerStatus::wrongType;
    }
    AcDbObjectId block;
    if (!findOrLoadBlock(name.c_str(), block)) {
        return HandlerStatus::success;
    }
    double offset = 0.0;
    if (!readLeaderOffset(cursor, offset)) {
        return HandlerStatus::wrongType;
    }
    auto leader = std::make_unique<QNLeader>(points.start, points.middle, points.end, offset, block, layer);
    // Reals that are no numbers have no place in a drawing; the leader's own setters say so.
    if (leader->setPoints(points.start, points.middle, points.end) != Acad::eOk ||
        leader->setOffset(offset) != Acad::eOk) {
        return HandlerStatus::success;
    }
    QNLeader* const added = leader.release();
    if (appendToModelSpace(added)) {
        returnEntity(*added);
        added->close();
    }
    return HandlerStatus::success;
}

HandlerStatus setLeaderPoints() {
    return withLeader(AcDb::kForWrite, [](QNLeader& leader, ArgCursor& cursor) {
        LeaderPoints points;
        if (!readLeaderPoints(cursor, points)) {
            return HandlerStatus::wrongType;
        }
        leader.setPoints(points.start, points.middle, points.end);
        acedRetT();
        return HandlerStatus::success;
    });
}

// T also when there is no such block and the leader stays as it was: the drafter has been told by then, and
// programs go on with the next leader.
HandlerStatus setLeaderBlock() {
    return withLeader(AcDb::kForWrite, [](QNLeader& leader, ArgCursor& cursor) {
        std::wstring name;
        if (!readString(cursor, name)) {
            return HandlerStatus::wrongType;
        }
        leader.setBlock(name.c_str());
        acedRetT();
        return HandlerStatus::success;
    });
}

HandlerStatus setLeaderOffset() {
    return withLeader(AcDb::kForWrite, [](QNLeader& leader, ArgCursor& cursor) {
        double offset = 0.0;
        if (!readLeaderOffset(cursor, offset)) {
            return HandlerStatus::wrongType;
        }
        leader.setOffset(offset);
        acedRetT();
        return HandlerStatus::success;
    });
}

// The leader stays: the caller erases it when the parts are to take its place.
HandlerStatus explodeLeader() {
    return withLeader(AcDb::kForRead, [](const QNLeader& leader, ArgCursor&) {
        const AcGePoint3d tail = leader.tailPoint();
        const std::array<AcDbEntity*, 3> parts = {
            addPart(leader, std::make_unique<AcDbLine>(leader.startPoint(), leader.middlePoint())),
            addPart(leader, std::make_unique<AcDbLine>(leader.middlePoint(), tail)),
            addPart(leader, copySymbol(leader.blockReference())),
        };
        ResultList result;
        beginResultList(result);
        for (const AcDbEntity* const part : parts) {
            addNamedEntity(result, L"obj", part);
        }
        endAndReturnList(result);
        return HandlerStatus::success;
    });
}

}  // namespace tessary

// SolidEntity: DXF groups (docs/dxf.md).

#include "host/api/filer.h"
#include "solids/entity/filed_part.h"
#include "solids/entity/solid_entity.h"

#include <memory>
#include <optional>
#include <utility>

namespace solids {

namespace {

enum Group : int {
    kPoint = 10,
    kCenterLinePoint = 11,
    kMayOverlap = 70,
    kFaceKind = 71,         // of the triangles that follow
    kCenterLineStart = 72,  // 1: the centre line whose points follow is drawn
    kVersion = 90,
    kFitting = 91,
    kBodyKind = 92,
    kFlags = 93,
    kPointCount = 94,
    kTriangleCount = 95,
    kCenterLineCount = 96,
    kCorner = 97,  // three for each triangle
    kSubclassMarker = 100,
};

struct ReleaseNode {
    void operator()(resbuf* node) const { acutRelRb(node); }
};
using Node = std::unique_ptr<resbuf, ReleaseNode>;

AcGePoint3d pointOf(const resbuf& node) {
    const double* const point = node.resval.rpoint;
    return {point[0], point[1], point[2]};
}

// Puts groups together, in the order in which they are written. Numbers in front may stand in any order.
class GroupReader {
public:
    // False: the group cannot stand here.
    bool take(const resbuf& node) {
        switch (node.restype) {
            case kPoint:
                part_.mesh.points.push_back(pointOf(node));
                return part_.mesh.points.size() <= static_cast<std::size_t>(FiledHeader::kMostPoints);
            case kCenterLinePoint:
                if (part_.centerLines.empty()) {
                    return false;
                }
                part_.centerLines.back().points.push_back(pointOf(node));
                return true;
            case kFaceKind:
                faceKind_ = static_cast<FaceKind>(node.resval.rint);
                return isFaceKind(node.resval.rint) && cornersMissing_ == 0;
            case kCenterLineStart: part_.centerLines.push_back({{}, node.resval.rint != 0}); return true;
            case kMayOverlap: header_.mayOverlap = node.resval.rint != 0; return true;
            case kCorner: return takeCorner(node.resval.rlong);
            default: break;
        }
        if (std::int32_t* const number = numberFor(node.restype)) {
            *number = node.resval.rlong;
        }
        return true;  // groups of no meaning are passed over
    }

    bool isNewer() const { return header_.version > FiledHeader::kCurrentVersion; }
    std::int32_t fitting() const { return header_.fitting; }

    // Nothing when something is missing or wrong.
    std::optional<Part> part() {
        const auto isCount = [](std::size_t size, std::int32_t count) { return std::cmp_equal(size, count); };
        part_.kind = static_cast<BodyKind>(header_.kind);
        part_.flags = header_.flags;
        part_.mayOverlap = header_.mayOverlap;
        const bool isWhole = header_.version == FiledHeader::kCurrentVersion && solids::isSound(header_) &&
                             isCount(part_.mesh.points.size(), header_.points) &&
                             isCount(part_.mesh.triangles.size(), header_.triangles) &&
                             isCount(part_.centerLines.size(), header_.centerLines) && cornersMissing_ == 0;
        return isWhole && solids::isSound(part_) ? std::optional(std::move(part_)) : std::nullopt;
    }

private:
    std::int32_t* numberFor(int code) {
        switch (code) {
            case kVersion: return &header_.version;
            case kFitting: return &header_.fitting;
            case kBodyKind: return &header_.kind;
            case kFlags: return &header_.flags;
            case kPointCount: return &header_.points;
            case kTriangleCount: return &header_.triangles;
            case kCenterLineCount: return &header_.centerLines;
            default: return nullptr;
        }
    }

    bool takeCorner(std::int32_t index) {
        if (cornersMissing_ == 0) {
            part_.mesh.triangles.push_back({{}, faceKind_});
            cornersMissing_ = 3;
        }
        part_.mesh.triangles.back().corners[3 - cornersMissing_] = index;
        --cornersMissing_;
        return true;
    }

    FiledHeader header_{.version = 0, .points = -1, .triangles = -1, .centerLines = -1};
    Part part_;
    FaceKind faceKind_ = FaceKind::wall;
    int cornersMissing_ = 0;  // of the triangle read last
};

void writeHeader(AcDbDxfFiler& filer, const FiledHeader& header) {
    filer.writeInt32(kVersion, header.version);
    filer.writeInt32(kFitting, header.fitting);
    filer.writeInt32(kBodyKind, header.kind);
    filer.writeInt32(kFlags, header.flags);
    if (header.mayOverlap) {
        filer.writeInt16(kMayOverlap, 1);
    }
    filer.writeInt32(kPointCount, header.points);
    filer.writeInt32(kTriangleCount, header.triangles);
    filer.writeInt32(kCenterLineCount, header.centerLines);
}

void writeMesh(AcDbDxfFiler& filer, const Mesh& mesh) {
    for (const AcGePoint3d& point : mesh.points) {
        filer.writeItem(kPoint, point);
    }
    FaceKind kind = FaceKind::wall;
    for (const Triangle& triangle : mesh.triangles) {
        if (triangle.kind != kind) {
            kind = triangle.kind;
            filer.writeInt16(kFaceKind, static_cast<std::int16_t>(kind));
        }
        for (const std::int32_t corner : triangle.corners) {
            filer.writeInt32(kCorner, corner);
        }
    }
}

void writeCenterLines(AcDbDxfFiler& filer, const std::vector<CenterLine>& lines) {
    for (const CenterLine& line : lines) {
        filer.writeInt16(kCenterLineStart, line.isShown ? 1 : 0);
        for (const AcGePoint3d& point : line.points) {
            filer.writeItem(kCenterLinePoint, point);
        }
    }
}

}  // namespace

Acad::ErrorStatus SolidEntity::dxfOutFields(AcDbDxfFiler* filer) const {
    assertReadEnabled();
    if (const auto status = qn_hvacSolid::dxfOutFields(filer); status != Acad::eOk) {
        return status;
    }
    const Part& part = joined();
    filer->writeItem(kSubclassMarker, className);
    writeHeader(*filer, headerOf(part, fitting_));
    writeMesh(*filer, part.mesh);
    writeCenterLines(*filer, part.centerLines);
    return filer->filerStatus();
}

Acad::ErrorStatus SolidEntity::dxfInFields(AcDbDxfFiler* filer) {
    if (!assertWriteEnabled()) {
        return Acad::eNotOpenForWrite;
    }
    if (const auto status = qn_hvacSolid::dxfInFields(filer); status != Acad::eOk) {
        return status;
    }
    if (!filer->atSubclassData(className)) {
        return Acad::eBadDxfSequence;
    }
    GroupReader reader;
    bool isGood = true;
    while (isGood && !filer->atEOF()) {
        const Node node(acutNewRb(RTNIL));
        if (!node) {
            return Acad::eOutOfMemory;
        }
        if (const auto status = filer->readResBuf(node.get()); status != Acad::eOk) {
            return status;
        }
        // The part of another class begins, which is the host's to keep.
        if (node->restype == kSubclassMarker) {
            filer->pushBackItem();
            break;
        }
        isGood = reader.take(*node);
    }
    if (reader.isNewer()) {
        return Acad::eMakeMeProxy;
    }
    std::optional<Part> part = isGood ? reader.part() : std::nullopt;
    if (!part) {
        return Acad::eInvalidInput;
    }
    takeFiled(reader.fitting(), std::move(*part));
    return filer->filerStatus();
}

}  // namespace solids

// SolidEntity: exact filing. The joined surface is filed: it comes back as one body.

#include "host/api/filer.h"
#include "solids/entity/filed_part.h"
#include "solids/entity/solid_entity.h"

#include <utility>

namespace solids {

namespace {

static_assert(sizeof(AcGePoint3d) == 3 * sizeof(double), "points are filed as they lie in memory");

// Calls each step while all before were eOk.
template <class... Step>
Acad::ErrorStatus inTurn(Step... step) {
    Acad::ErrorStatus status = Acad::eOk;
    static_cast<void>((((status = step()) == Acad::eOk) && ...));
    return status;
}

std::uint32_t bytesOf(const std::vector<AcGePoint3d>& points) {
    return static_cast<std::uint32_t>(points.size() * sizeof(AcGePoint3d));
}

Acad::ErrorStatus writePoints(AcDbDwgFiler& filer, const std::vector<AcGePoint3d>& points) {
    return filer.writeBytes(points.data(), bytesOf(points));
}

Acad::ErrorStatus readPoints(AcDbDwgFiler& filer, std::int32_t count, std::vector<AcGePoint3d>& points) {
    points.resize(static_cast<std::size_t>(count));
    return filer.readBytes(points.data(), bytesOf(points));
}

Acad::ErrorStatus writeTriangles(AcDbDwgFiler& filer, const std::vector<Triangle>& triangles) {
    std::vector<std::int32_t> corners;
    std::vector<std::uint8_t> kinds;
    for (const Triangle& triangle : triangles) {
        corners.insert(corners.end(), triangle.corners.begin(), triangle.corners.end());
        kinds.push_back(static_cast<std::uint8_t>(triangle.kind));
    }
    const auto size = static_cast<std::uint32_t>(corners.size() * sizeof(std::int32_t));
    return inTurn([&] { return filer.writeBytes(corners.data(), size); },
                  [&] { return filer.writeBytes(kinds.data(), static_cast<std::uint32_t>(kinds.size())); });
}

Acad::ErrorStatus readTriangles(AcDbDwgFiler& filer, std::int32_t count, std::vector<Triangle>& triangles) {
    std::vector<std::int32_t> corners(static_cast<std::size_t>(count) * 3);
    std::vector<std::uint8_t> kinds(static_cast<std::size_t>(count));
    const auto size = static_cast<std::uint32_t>(corners.size() * sizeof(std::int32_t));
    const Acad::ErrorStatus status =
        inTurn([&] { return filer.readBytes(corners.data(), size); },
               [&] { return filer.readBytes(kinds.data(), static_cast<std::uint32_t>(kinds.size())); });
    if (status != Acad::eOk) {
        return status;
    }
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        if (!isFaceKind(kinds[i])) {
            return Acad::eInvalidInput;
        }
        triangles.push_back(
            {{corners[3 * i], corners[3 * i + 1], corners[3 * i + 2]}, static_cast<FaceKind>(kinds[i])});
    }
    return Acad::eOk;
}

Acad::ErrorStatus writeCenterLine(AcDbDwgFiler& filer, const CenterLine& line) {
    return inTurn([&] { return filer.writeBool(line.isShown); },
                  [&] { return filer.writeInt32(static_cast<std::int32_t>(line.points.size())); },
                  [&] { return writePoints(filer, line.points); });
}

Acad::ErrorStatus readCenterLine(AcDbDwgFiler& filer, CenterLine& line) {
    std::int32_t count = 0;
    const Acad::ErrorStatus status =
        inTurn([&] { return filer.readBool(&line.isShown); }, [&] { return filer.readInt32(&count); });
    if (status != Acad::eOk) {
        return status;
    }
    return count >= 0 && count <= FiledHeader::kMostPoints ? readPoints(filer, count, line.points)
                                                           : Acad::eInvalidInput;
}

Acad::ErrorStatus writeHeader(AcDbDwgFiler& filer, const FiledHeader& header) {
    return inTurn(
        [&] { return filer.writeInt32(header.version); }, [&] { return filer.writeInt32(header.fitting); },
        [&] { return filer.writeInt32(header.kind); }, [&] { return filer.writeInt32(header.flags); },
        [&] { return filer.writeBool(header.mayOverlap); }, [&] { return filer.writeInt32(header.points); },
        [&] { return filer.writeInt32(header.triangles); },
        [&] { return filer.writeInt32(header.centerLines); });
}

Acad::ErrorStatus readHeader(AcDbDwgFiler& filer, FiledHeader& header) {
    if (const auto status = filer.readInt32(&header.version); status != Acad::eOk) {
        return status;
    }
    if (header.version > FiledHeader::kCurrentVersion) {
        return Acad::eMakeMeProxy;
    }
    const Acad::ErrorStatus status = inTurn(
        [&] { return filer.readInt32(&header.fitting); }, [&] { return filer.readInt32(&header.kind); },
        [&] { return filer.readInt32(&header.flags); }, [&] { return filer.readBool(&header.mayOverlap); },
        [&] { return filer.readInt32(&header.points); }, [&] { return filer.readInt32(&header.triangles); },
        [&] { return filer.readInt32(&header.centerLines); });
    if (status != Acad::eOk) {
        return status;
    }
    return header.version == FiledHeader::kCurrentVersion && isSound(header) ? Acad::eOk
                                                                             : Acad::eInvalidInput;
}

Acad::ErrorStatus readPart(AcDbDwgFiler& filer, const FiledHeader& header, Part& part) {
    part.kind = static_cast<BodyKind>(header.kind);
    part.flags = header.flags;
    part.mayOverlap = header.mayOverlap;
    Acad::ErrorStatus status =
        inTurn([&] { return readPoints(filer, header.points, part.mesh.points); },
               [&] { return readTriangles(filer, header.triangles, part.mesh.triangles); });
    for (std::int32_t i = 0; i < header.centerLines && status == Acad::eOk; ++i) {
        status = readCenterLine(filer, part.centerLines.emplace_back());
    }
    if (status != Acad::eOk) {
        return status;
    }
    return isSound(part) ? Acad::eOk : Acad::eInvalidInput;
}

}  // namespace

Acad::ErrorStatus SolidEntity::dwgOutFields(AcDbDwgFiler* filer) const {
    assertReadEnabled();
    if (const auto status = qn_hvacSolid::dwgOutFields(filer); status != Acad::eOk) {
        return status;
    }
    const Part& part = joined();
    Acad::ErrorStatus status = inTurn([&] { return writeHeader(*filer, headerOf(part, fitting_)); },
                                      [&] { return writePoints(*filer, part.mesh.points); },
                                      [&] { return writeTriangles(*filer, part.mesh.triangles); });
    for (const CenterLine& line : part.centerLines) {
        if (status == Acad::eOk) {
            status = writeCenterLine(*filer, line);
        }
    }
    return status == Acad::eOk ? filer->filerStatus() : status;
}

Acad::ErrorStatus SolidEntity::dwgInFields(AcDbDwgFiler* filer) {
    if (!assertWriteEnabled()) {
        return Acad::eNotOpenForWrite;
    }
    if (const auto status = qn_hvacSolid::dwgInFields(filer); status != Acad::eOk) {
        return status;
    }
    FiledHeader header;
    Part part;
    if (const auto status = inTurn([&] { return readHeader(*filer, header); },
                                   [&] { return readPart(*filer, header, part); });
        status != Acad::eOk) {
        return status;
    }
    takeFiled(header.fitting, std::move(part));
    return filer->filerStatus();
}

void SolidEntity::takeFiled(std::int32_t fitting, Part part) {
    joined_.reset();
    surface_.reset();
    parts_.clear();
    if (!part.mesh.empty()) {
        parts_.push_back(std::move(part));
    }
    fitting_ = static_cast<HvacFitting>(fitting);
}

}  // namespace solids

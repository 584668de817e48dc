#pragma once

// Takes down what an entity draws, for its proxy.

#include "host/api/block_reference.h"
#include "host/api/database.h"
#include "host/database/proxy_graphics.h"

namespace drafthost {

class GraphicsRecorder final : public AcGiWorldDraw, public AcGiWorldGeometry, public AcGiSubEntityTraits {
public:
    // deviation: of chords from their curves, drawing units.
    GraphicsRecorder(const AcDbEntity& entity, double deviation);

    const std::vector<ProxyGraphics::Look>& looks() const { return looks_; }
    std::vector<ProxyGraphics::Piece>& pieces() { return pieces_; }

    AcGiWorldGeometry& geometry() const override { return const_cast<GraphicsRecorder&>(*this); }
    AcGiSubEntityTraits& subEntityTraits() const override { return const_cast<GraphicsRecorder&>(*this); }
    double deviation() const override { return deviation_; }

    bool polyline(std::uint32_t count, const AcGePoint3d* points, const AcGeVector3d* normal,
                  std::int64_t marker) override;
    bool polygon(std::uint32_t count, const AcGePoint3d* points) override;
    bool polyPolygon(std::uint32_t contourCount, const std::uint32_t* counts,
                     const AcGePoint3d* points) override;
    bool shell(std::uint32_t pointCount, const AcGePoint3d* points, std::uint32_t faceListSize,
               const std::int32_t* faceList, const AcGiEdgeData* edges, const AcGiFaceData* faces) override;
    bool circle(const AcGePoint3d& center, double radius, const AcGeVector3d& normal) override;
    bool circularArc(const AcGePoint3d& center, double radius, const AcGeVector3d& normal,
                     const AcGeVector3d& startDirection, double sweepAngle) override;
    bool text(const AcGePoint3d& position, const AcGeVector3d& normal, const AcGeVector3d& direction,
              const ACHAR* message, int length, const AcGiTextStyle& style) override;
    bool draw(AcGiDrawable* drawable) override;
    void pushModelTransform(const AcGeMatrix3d& matrix) override;
    void popModelTransform() override;

    void setColor(std::uint16_t index) override;
    std::uint16_t color() const override { return traits_.color; }
    void setBackgroundColor() override { traits_.background = true; }
    void setTrueColor(std::uint32_t rgb) override { traits_.trueColor = static_cast<std::int32_t>(rgb); }
    void setLayer(AcDbObjectId layer) override { traits_.layer = layer; }
    AcDbObjectId layerId() const override { return traits_.layer; }
    void setLineType(AcDbObjectId linetype) override { traits_.linetype = linetype; }
    AcDbObjectId lineTypeId() const override { return traits_.linetype; }
    void setLineTypeScale(double scale) override { traits_.linetypeScale = scale; }
    double lineTypeScale() const override { return traits_.linetypeScale; }
    void setLineWeight(int weight) override { traits_.lineWeight = weight; }
    int lineWeight() const override { return traits_.lineWeight; }
    void setSelectionMarker(std::int64_t) override {}
    void setFill(bool filled) override { traits_.fill = filled; }

private:
    // Blocks in blocks multiply: a picture of 2 to the power of 64 pieces ends before. Each face of a shell
    // counts as a piece.
    static constexpr std::size_t kMostPieces = 100000;
    bool full() const { return count_ >= kMostPieces; }

    struct Traits {
        AcDbObjectId layer, linetype;
        double linetypeScale = 1.0;
        std::int32_t trueColor = -1;
        int lineWeight = AcDb::kLnWtByLayer;
        std::uint16_t color = 256;
        bool fill = true, background = false;
        bool operator==(const Traits&) const = default;
    };
    static Traits traitsOf(const AcDbEntity& entity, AcDbObjectId layerOfOthers);
    Traits resolved() const;
    ProxyGraphics::Look presentLook() const;
    std::int32_t lookNumber();
    void drawEntity(AcDbEntity& entity);
    template <class Shape>
    void add(Shape shape, std::size_t count = 1);

    const AcDbDatabase* database_;
    double deviation_;
    Traits own_;     // of the entity that is taken down
    Traits traits_;  // at present
    Traits block_;   // resolved, of the block reference whose contents are drawn
    int depth_ = 0, blockDepth_ = 0;
    std::size_t count_ = 0;
    AcGeMatrix3d transform_;
    std::vector<AcGeMatrix3d> transforms_;
    std::vector<ProxyGraphics::Look> looks_;
    std::vector<ProxyGraphics::Piece> pieces_;
};

}  // namespace drafthost

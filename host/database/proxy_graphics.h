#pragma once

// The picture of an object whose class is away: what it drew last, so that drafters still see it.
//
// It is flat (blocks are drawn through) and in world coordinates. Layers stay layers: a piece goes with its
// layer's look when that changes. What a piece took from its object (layer, colour and so on) it takes from
// the proxy, so that it follows when those are changed.

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "host/api/entity.h"
#include "host/database/state_filing.h"
#include "host/geometry/shell.h"

namespace drafthost {

class ProxyGraphics {
public:
    // What the entity draws, erased or not. Empty when it is open for writing or draws nothing.
    static ProxyGraphics of(AcDbObjectId entity);

    bool empty() const { return pieces_.empty(); }
    // owner: the proxy. False: drawForView has something to add.
    bool draw(AcGiWorldDraw& worldDraw, const AcDbEntity& owner) const;
    // The silhouettes of its curved surfaces. What else the entity drew for views is not kept.
    void drawForView(AcGiViewportDraw& viewportDraw, const AcDbEntity& owner) const;
    // The entity's at the time, as far as it had any.
    const AcDbExtents& extents() const { return extents_; }
    void file(StateWalker& walker);

    // How pieces look; members that are not set are the proxy's own.
    struct Look {
        AcDbObjectId layer, linetype;  // null: the proxy's
        double linetypeScale = kOwn;
        std::int32_t color = kOwn;  // index, or kBackground; of no meaning with a true colour
        std::int32_t trueColor = -1;
        std::int32_t lineWeight = kOwn;
        bool fill = true;
        bool operator==(const Look&) const = default;
    };
    static constexpr std::int32_t kOwn = -1000;
    static constexpr std::int32_t kBackground = -1;

    struct Line {
        std::vector<AcGePoint3d> points;
    };
    struct Area {
        std::vector<std::int32_t> counts;  // points of each contour
        std::vector<AcGePoint3d> points;
    };
    struct Arc {
        AcGePoint3d center;
        AcGeVector3d normal, start;
        double radius = 0, sweep = 0;
    };
    struct Text {
        AcGePoint3d position;
        AcGeVector3d normal, direction;
        std::wstring text, fontFile, typeface;
        AcGiTextStyle style;  // its texts are those above
    };
    struct Piece {
        std::int32_t look = 0;  // number in the list of looks
        std::variant<Line, Area, Arc, Text, Shell> shape;
    };

private:
    std::vector<Look> looks_;
    std::vector<Piece> pieces_;
    AcDbExtents extents_;
};

}  // namespace drafthost

#include "host/database/proxy_graphics.h"

#include <algorithm>

#include "host/database/graphics_recorder.h"
#include "host/database/unknown_objects.h"

namespace drafthost {

namespace {

using Graphics = ProxyGraphics;

constexpr double kDeviationOfExtents = 1.0 / 20000;

void setLook(AcGiSubEntityTraits& traits, const Graphics::Look& look, const AcDbEntity& owner) {
    const bool ownColor = look.color == Graphics::kOwn;
    traits.setLayer(look.layer.isNull() ? owner.layerId() : look.layer);
    traits.setLineType(look.linetype.isNull() ? owner.linetypeId() : look.linetype);
    traits.setLineTypeScale(look.linetypeScale == Graphics::kOwn ? owner.linetypeScale()
                                                                 : look.linetypeScale);
    traits.setLineWeight(look.lineWeight == Graphics::kOwn ? owner.lineWeight() : look.lineWeight);
    traits.setFill(look.fill);
    if (look.color == Graphics::kBackground)
        return traits.setBackgroundColor();
    traits.setColor(ownColor ? owner.colorIndex() : static_cast<std::uint16_t>(look.color));
    const std::int32_t trueColor = ownColor ? owner.trueColor() : look.trueColor;
    if (trueColor >= 0)
        traits.setTrueColor(static_cast<std::uint32_t>(trueColor));
}

void drawShape(AcGiWorldGeometry& geometry, const Graphics::Line& line) {
    geometry.polyline(static_cast<std::uint32_t>(line.points.size()), line.points.data());
}

void drawShape(AcGiWorldGeometry& geometry, const Graphics::Area& area) {
    const std::vector<std::uint32_t> counts(area.counts.begin(), area.counts.end());
    if (counts.size() == 1)
        geometry.polygon(counts[0], area.points.data());
    else
        geometry.polyPolygon(static_cast<std::uint32_t>(counts.size()), counts.data(), area.points.data());
}

void drawShape(AcGiWorldGeometry& geometry, const Graphics::Arc& arc) {
    geometry.circularArc(arc.center, arc.radius, arc.normal, arc.start, arc.sweep);
}

void drawShape(AcGiWorldGeometry& geometry, const Graphics::Text& text) {
    AcGiTextStyle style = text.style;
    style.fontFile = text.fontFile.c_str();
    style.typeface = text.typeface.c_str();
    geometry.text(text.position, text.normal, text.direction, text.text.c_str(),
                  static_cast<int>(text.text.size()), style);
}

void drawShape(AcGiWorldGeometry& geometry, const Shell& shell) {
    drawShell(geometry, shell);
}

void walkPoints(StateWalker& walker, std::vector<AcGePoint3d>& points) {
    walker.list(points, [&](AcGePoint3d& point) { walker.value(point); });
}

void walk(StateWalker& walker, Graphics::Line& line) {
    walkPoints(walker, line.points);
}

// A record that is damaged must not count more points than it has.
void walk(StateWalker& walker, Graphics::Area& area) {
    walker.list(area.counts, [&](std::int32_t& count) { walker.value(count); });
    walkPoints(walker, area.points);
    std::int64_t left = static_cast<std::int64_t>(area.points.size());
    for (std::int32_t& count : area.counts) {
        if (count < 0 || count > left)
            count = 0;
        left -= count;
    }
}

void walk(StateWalker& walker, Graphics::Arc& arc) {
    walker.values(arc.center, arc.normal, arc.start, arc.radius, arc.sweep);
}

void walk(StateWalker& walker, Graphics::Text& text) {
    walker.values(text.position, text.normal, text.direction, text.text, text.fontFile, text.typeface);
    AcGiTextStyle& style = text.style;
    walker.values(style.textSize, style.xScale, style.obliqueAngle, style.trackingPercent, style.bold,
                  style.italic, style.backward, style.upsideDown, style.underlined, style.overlined);
}

// A record that is damaged must not name what is not there.
bool isSound(const Shell& shell) {
    if (shell.cornerVisible.size() != shell.corners.size())
        return false;
    const auto namesPoint = [&](std::int32_t corner) {
        return corner >= 0 && static_cast<std::size_t>(corner) < shell.points.size();
    };
    const auto namesCorners = [&](const Shell::Face& face) {
        return face.count >= 3 && face.first <= shell.corners.size() &&
               face.count <= shell.corners.size() - face.first;
    };
    return std::ranges::all_of(shell.corners, namesPoint) && std::ranges::all_of(shell.faces, namesCorners);
}

// Faces follow each other in the list of corners, so that their counts say where they are.
void walk(StateWalker& walker, Shell& shell) {
    walkPoints(walker, shell.points);
    walker.list(shell.corners, [&](std::int32_t& corner) { walker.value(corner); });
    walker.value(shell.cornerVisible);
    std::uint32_t first = 0;
    walker.list(shell.faces, [&](Shell::Face& face) {
        auto count = static_cast<std::int32_t>(face.count);
        walker.values(count, face.shown);
        face.first = first;
        face.count = static_cast<std::uint32_t>(std::max(count, 0));
        first += face.count;
    });
    if (!isSound(shell))
        shell = Shell();
}

// The kinds of pieces are filed as numbers: new kinds go to the end.
template <std::size_t Kind>
void walkAs(StateWalker& walker, Graphics::Piece& piece) {
    if (piece.shape.index() != Kind)
        piece.shape.emplace<Kind>();
    walk(walker, std::get<Kind>(piece.shape));
}

void walk(StateWalker& walker, Graphics::Piece& piece, std::size_t lookCount) {
    auto kind = static_cast<std::int32_t>(piece.shape.index());
    walker.values(piece.look, kind);
    if (piece.look < 0 || piece.look >= static_cast<std::int32_t>(lookCount))
        piece.look = 0;
    switch (kind) {
        case 1: walkAs<1>(walker, piece); break;
        case 2: walkAs<2>(walker, piece); break;
        case 3: walkAs<3>(walker, piece); break;
        case 4: walkAs<4>(walker, piece); break;
        default: walkAs<0>(walker, piece);
    }
}

void walk(StateWalker& walker, Graphics::Look& look) {
    walker.reference(look.layer, ReferenceKind::HardPointer);
    walker.reference(look.linetype, ReferenceKind::HardPointer);
    walker.values(look.linetypeScale, look.color, look.trueColor, look.lineWeight, look.fill);
}

}  // namespace

ProxyGraphics ProxyGraphics::of(AcDbObjectId id) {
    ProxyGraphics graphics;
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead, true);
    if (!entity)
        return graphics;
    AcDbExtents extents;
    entity->getGeomExtents(extents);  // what it could measure counts, even when it failed at some part
    graphics.extents_ = extents;
    const double size = extents.isValid() ? extents.minPoint().distanceTo(extents.maxPoint()) : 1.0;
    GraphicsRecorder recorder(*entity, std::max(size * kDeviationOfExtents, 1e-9));
    entity->worldDraw(&recorder);
    graphics.looks_ = recorder.looks();
    graphics.pieces_ = std::move(recorder.pieces());
    return graphics;
}

bool ProxyGraphics::draw(AcGiWorldDraw& worldDraw, const AcDbEntity& owner) const {
    AcGiSubEntityTraits& traits = worldDraw.subEntityTraits();
    std::int32_t look = -1;
    bool complete = true;
    for (const Piece& piece : pieces_) {
        if (piece.look != look)
            setLook(traits, looks_[static_cast<std::size_t>(piece.look)], owner);
        look = piece.look;
        std::visit([&](const auto& shape) { drawShape(worldDraw.geometry(), shape); }, piece.shape);
        complete = complete && !std::holds_alternative<Shell>(piece.shape);
    }
    return complete;
}

void ProxyGraphics::drawForView(AcGiViewportDraw& viewportDraw, const AcDbEntity& owner) const {
    for (const Piece& piece : pieces_) {
        const auto* const shell = std::get_if<Shell>(&piece.shape);
        if (!shell)
            continue;
        setLook(viewportDraw.subEntityTraits(), looks_[static_cast<std::size_t>(piece.look)], owner);
        drawSilhouette(viewportDraw.geometry(), *shell, viewportDraw.viewport().viewDir());
    }
}

void ProxyGraphics::file(StateWalker& walker) {
    walker.list(looks_, [&](Look& look) { walk(walker, look); });
    walker.list(pieces_, [&](Piece& piece) { walk(walker, piece, looks_.size()); });
    if (looks_.empty())
        pieces_.clear();
    bool hasExtents = extents_.isValid();
    AcGePoint3d low = extents_.minPoint(), high = extents_.maxPoint();
    walker.values(hasExtents, low, high);
    extents_ = hasExtents ? AcDbExtents(low, high) : AcDbExtents();
}

}  // namespace drafthost

using drafthost::readState;
using drafthost::UnknownEntityState;

bool AcDbUnknownEntity::subWorldDraw(AcGiWorldDraw* worldDraw) {
    return readState<UnknownEntityState>(this).graphics.draw(*worldDraw, *this);
}

void AcDbUnknownEntity::subViewportDraw(AcGiViewportDraw* viewportDraw) {
    readState<UnknownEntityState>(this).graphics.drawForView(*viewportDraw, *this);
}

Acad::ErrorStatus AcDbUnknownEntity::subGetGeomExtents(AcDbExtents& extents) const {
    const AcDbExtents& box = readState<UnknownEntityState>(this).graphics.extents();
    if (!box.isValid())
        return Acad::eInvalidExtents;
    extents.addExt(box);
    return Acad::eOk;
}

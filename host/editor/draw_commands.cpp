// Commands that draw: LINE, POINT, CIRCLE, ARC, PLINE, 3DFACE, TEXT, INSERT.

#include <cmath>
#include <numbers>

#include "host/api/block_reference.h"
#include "host/api/curves.h"
#include "host/api/face.h"
#include "host/api/point.h"
#include "host/editor/command_context.h"
#include "host/editor/command_tables.h"
#include "host/editor/file_insertion.h"

namespace drafthost::editor {

namespace {

using Kind = InputRequest::Kind;
using Reply = CommandContext::Reply;

void drawLine(CommandContext& context) {
    const AcGePoint3d first = context.point(L"Specify first point: ");
    AcGePoint3d last = first;
    for (int segments = 0;;) {
        const Reply reply =
            context.ask(Kind::Point, {.prompt = segments < 2 ? L"Specify next point or [Undo]: "
                                                             : L"Specify next point or [Close/Undo]: ",
                                      .keywords = segments < 2 ? L"Undo" : L"Close Undo",
                                      .base = last});
        if (!reply.given)
            return;
        if (reply.keyword == L"Undo") {
            context.print(L"Lines that were drawn stay.");
            continue;
        }
        const AcGePoint3d next = reply.keyword.empty() ? reply.point : first;
        context.add(std::make_unique<AcDbLine>(context.world(last), context.world(next)));
        if (!reply.keyword.empty())
            return;
        last = next;
        ++segments;
    }
}

// The mark is turned with the coordinate system that it is drawn in.
void drawPoint(CommandContext& context) {
    auto point = std::make_unique<AcDbPoint>(context.point(L"Specify a point: "));
    point->transformBy(context.ucsToWorld());
    context.add(std::move(point));
}

AcGeVector3d planeNormal(const CommandContext& context) {
    return context.ucsToWorld() * AcGeVector3d::kZAxis;
}

// Centre of the circle through three points of a plane parallel to XY; false when they lie in a line.
bool centerOf(const AcGePoint3d& a, const AcGePoint3d& b, const AcGePoint3d& c, AcGePoint3d& center) {
    const double bx = b.x - a.x, by = b.y - a.y, cx = c.x - a.x, cy = c.y - a.y;
    const double twice = 2 * (bx * cy - by * cx);
    if (std::abs(twice) <= AcGeContext::gTol.equalPoint)
        return false;
    const double bb = bx * bx + by * by, cc = cx * cx + cy * cy;
    center = {a.x + (cy * bb - by * cc) / twice, a.y + (bx * cc - cx * bb) / twice, a.z};
    return true;
}

void addCircle(CommandContext& context, const AcGePoint3d& center, double radius) {
    if (radius <= 0)
        return context.print(L"Value must be positive and nonzero.");
    context.add(std::make_unique<AcDbCircle>(context.world(center), planeNormal(context), radius));
}

void drawCircle(CommandContext& context) {
    const Reply reply = context.ask(
        Kind::Point, {.prompt = L"Specify center point for circle or [3P/2P]: ", .keywords = L"3P 2P"});
    if (!reply.given)
        return;
    if (reply.keyword == L"2P") {
        const AcGePoint3d a = context.point(L"Specify first end point of circle's diameter: ");
        const AcGePoint3d b = context.point(L"Specify second end point of circle's diameter: ", a);
        return addCircle(context, a + (b - a) * 0.5, a.distanceTo(b) / 2);
    }
    if (reply.keyword == L"3P") {
        const AcGePoint3d a = context.point(L"Specify first point on circle: ");
        const AcGePoint3d b = context.point(L"Specify second point on circle: ", a);
        const AcGePoint3d c = context.point(L"Specify third point on circle: ", b);
        AcGePoint3d center;
        if (!centerOf(a, b, c, center))
            return context.print(L"Points lie in a line.");
        return addCircle(context, center, center.distanceTo(a));
    }
    const Reply size = context.ask(Kind::Distance, {.prompt = L"Specify radius of circle or [Diameter]: ",
                                                    .keywords = L"Diameter",
                                                    .base = reply.point});
    if (!size.given)
        return;
    const double radius = size.keyword.empty()
                              ? size.number
                              : context.distance(L"Specify diameter of circle: ", reply.point) / 2;
    addCircle(context, reply.point, radius);
}

void drawArc(CommandContext& context) {
    const AcGePoint3d start = context.point(L"Specify start point of arc: ");
    const AcGePoint3d second = context.point(L"Specify second point of arc: ", start);
    const AcGePoint3d end = context.point(L"Specify end point of arc: ", second);
    AcGePoint3d center;
    if (!centerOf(start, second, end, center))
        return context.print(L"Points lie in a line.");
    const bool counterClockwise = (second - start).crossProduct(end - second).z > 0;
    const AcGePoint3d& from = counterClockwise ? start : end;
    const AcGePoint3d& to = counterClockwise ? end : start;
    const AcGeVector3d normal = planeNormal(context);
    // Angles are measured in the arc's own plane.
    const AcGeMatrix3d toPlane = AcGeMatrix3d::worldToPlane(normal);
    const auto angle = [&](const AcGePoint3d& p) {
        return (toPlane * (context.world(p) - context.world(center))).convert2d().angle();
    };
    context.add(std::make_unique<AcDbArc>(context.world(center), normal, center.distanceTo(start),
                                          angle(from), angle(to)));
}

void drawPolyline(CommandContext& context) {
    std::vector<AcGePoint3d> points{context.point(L"Specify start point: ")};
    bool closed = false;
    while (!closed) {
        const Reply reply =
            context.ask(Kind::Point, {.prompt = points.size() < 3 ? L"Specify next point or [Undo]: "
                                                                  : L"Specify next point or [Close/Undo]: ",
                                      .keywords = points.size() < 3 ? L"Undo" : L"Close Undo",
                                      .base = points.back()});
        if (!reply.given)
            break;
        closed = reply.keyword == L"Close";
        if (reply.keyword == L"Undo" && points.size() > 1)
            points.pop_back();
        if (reply.keyword.empty())
            points.push_back(reply.point);
    }
    if (points.size() < 2)
        return;
    auto polyline = std::make_unique<AcDbPolyline>();
    unsigned index = 0;
    for (const AcGePoint3d& point : points)
        polyline->addVertexAt(index++, point.convert2d());
    polyline->setClosed(closed);
    AcGeMatrix3d place = context.ucsToWorld();
    if (points.front().z != 0)
        place = place * AcGeMatrix3d::translation({0, 0, points.front().z});
    polyline->transformBy(place);
    context.add(std::move(polyline));
}

struct FaceCorner {
    AcGePoint3d point;        // UCS
    bool edgeHidden = false;  // that starts here
};

// Nothing for an empty response; what was said about the edge counts all the same.
bool askCorner(CommandContext& context, const wchar_t* prompt, std::optional<AcGePoint3d> base,
               FaceCorner& corner) {
    corner.edgeHidden = false;
    for (;;) {
        const Reply reply =
            context.ask(Kind::Point, {.prompt = prompt, .keywords = L"Invisible", .base = base});
        if (!reply.given)
            return false;
        if (reply.keyword.empty()) {
            corner.point = reply.point;
            return true;
        }
        corner.edgeHidden = true;
    }
}

void addFace(CommandContext& context, const FaceCorner (&corners)[AcDbFace::kCorners]) {
    const auto place = [&](int i) { return context.world(corners[i].point); };
    const auto shown = [&](int i) { return !corners[i].edgeHidden; };
    context.add(std::make_unique<AcDbFace>(place(0), place(1), place(2), place(3), shown(0), shown(1),
                                           shown(2), shown(3)));
}

// Faces that hang together: each but the first begins with the last two points of the one before, between
// which they share an edge.
void drawFaces(CommandContext& context) {
    FaceCorner corners[AcDbFace::kCorners];
    if (!askCorner(context, L"Specify first point or [Invisible]: ", std::nullopt, corners[0]) ||
        !askCorner(context, L"Specify second point or [Invisible]: ", corners[0].point, corners[1])) {
        return;
    }
    while (askCorner(context, L"Specify third point or [Invisible] <exit>: ", corners[1].point, corners[2])) {
        const bool fourSides = askCorner(context, L"Specify fourth point or [Invisible] <three-sided face>: ",
                                         corners[2].point, corners[3]);
        if (!fourSides) {  // the edge back to the first point starts at both
            corners[3].point = corners[2].point;
            corners[2].edgeHidden = corners[3].edgeHidden = corners[2].edgeHidden || corners[3].edgeHidden;
        }
        addFace(context, corners);
        corners[0] = fourSides ? corners[2] : corners[1];
        corners[1] = corners[3];
    }
}

// Height that the current style fixes; 0: the drafter chooses.
double fixedHeight(const AcDbDatabase& database) {
    const AcDbObjectPointer<AcDbTextStyleTableRecord> style(database.textstyle(), AcDb::kForRead);
    return style ? style->textSize() : 0;
}

void drawText(CommandContext& context) {
    AcDbDatabase& database = context.database();
    const AcGePoint3d start = context.point(L"Specify start point of text: ");
    double height = fixedHeight(database);
    if (height <= 0) {
        const Reply reply =
            context.ask(Kind::Distance,
                        {.prompt = L"Specify height: ", .base = start, .control = RSG_NOZERO | RSG_NONEG});
        height = reply.given ? reply.number : database.textsize();
    }
    const double rotation = context.angle(L"Specify rotation angle of text <0>: ", start);
    const std::wstring text = context.text(L"Enter text: ", true);
    if (text.empty())
        return;
    auto entity = std::make_unique<AcDbText>(start, text.c_str(), database.textstyle(), height, rotation);
    entity->transformBy(context.ucsToWorld());
    context.add(std::move(entity));
}

void insertBlock(CommandContext& context) {
    const std::wstring name = context.text(L"Enter block name: ", true);
    const AcDbObjectId block = blockForInsertion(context, name);
    const AcGePoint3d point = context.point(L"Specify insertion point: ");
    const Reply x = context.ask(Kind::Real, {.prompt = L"Enter X scale factor <1>: ", .control = RSG_NOZERO});
    const double scaleX = x.given ? x.number : 1;
    const Reply y = context.ask(
        Kind::Real, {.prompt = L"Enter Y scale factor <use X scale factor>: ", .control = RSG_NOZERO});
    const double scaleY = y.given ? y.number : scaleX;
    const double rotation = context.angle(L"Specify rotation angle <0>: ", point);
    auto reference = std::make_unique<AcDbBlockReference>(point, block);
    // A mirrored block is mirrored in plan; what is above stays above.
    reference->setScaleFactors({scaleX, scaleY, std::fabs(scaleX)});
    reference->setRotation(rotation);
    reference->transformBy(context.ucsToWorld());
    context.add(std::move(reference));
}

constexpr CommandDefinition kCommands[] = {
    {L"3DFACE", drawFaces}, {L"ARC", drawArc},        {L"CIRCLE", drawCircle}, {L"INSERT", insertBlock},
    {L"LINE", drawLine},    {L"PLINE", drawPolyline}, {L"POINT", drawPoint},   {L"TEXT", drawText},
};

}  // namespace

std::span<const CommandDefinition> drawCommands() {
    return kCommands;
}

}  // namespace drafthost::editor

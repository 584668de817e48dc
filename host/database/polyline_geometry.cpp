// Segments and lengths of lightweight polylines.

#include "host/database/curve_states.h"

namespace drafthost {

bool PolylineState::hasWidth() const {
    return std::any_of(vertices.begin(), vertices.end(),
                       [](const PolylineVertex& v) { return v.startWidth > 0 || v.endWidth > 0; });
}

CurvePiece pieceOf(const PolylineState& polyline, std::size_t segment, const PlaneAxes& axes) {
    const PolylineVertex &from = polyline.vertices[segment], &to = polyline.segmentEnd(segment);
    CurvePiece piece = bulgePiece(from.point, to.point, from.bulge, axes, polyline.elevation);
    piece.extendsBackward = !polyline.isClosed() && segment == 0;
    piece.extendsForward = !polyline.isClosed() && segment + 1 >= polyline.segmentCount();
    return piece;
}

const std::vector<double>& PolylineState::cumulativeLengths() const {
    if (!lengths.empty())
        return lengths;
    const std::size_t count = segmentCount();
    lengths.reserve(count + 1);
    double sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        lengths.push_back(sum);
        sum += bulgePiece(vertices[i].point, segmentEnd(i).point, vertices[i].bulge, PlaneAxes(), 0).length();
    }
    lengths.push_back(sum);
    return lengths;
}

}  // namespace drafthost

#include "host/api/curves.h"
#include "host/api/editor.h"
#include "host/database/class_registry.h"
#include "host/database/curve_states.h"
#include "host/database/dxf_checks.h"
#include "host/database/dxf_fields.h"
#include "host/database/piece_queries.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbLine, AcDbCurve, L"LINE", &drafthost::constructObject<AcDbLine>)

namespace {

constexpr DxfField kLineFields[] = {
    dxfField<&LineState::thickness, 0.0>(39),
    dxfField<&LineState::start>(10),
    dxfField<&LineState::end>(11),
    dxfField<&LineState::normal>(210),
};

const LineState& stateOf(const AcDbLine* line) {
    return readState<LineState>(line);
}

ParameterSpan spanOf(const LineState& line) {
    return {0, line.start.distanceTo(line.end), 1, false};
}

Acad::ErrorStatus setPoint(AcDbLine* line, AcGePoint3d LineState::*member, const AcGePoint3d& point) {
    if (!isFinite(point))
        return Acad::eInvalidInput;
    LineState* state = writeState<LineState>(line);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->*member = point;
    return Acad::eOk;
}

}  // namespace

AcDbLine::AcDbLine() : AcDbCurve(newImp<LineState>()) {}

AcDbLine::AcDbLine(const AcGePoint3d& start, const AcGePoint3d& end) : AcDbLine() {
    auto& state = static_cast<LineState&>(*ObjectImp::of(this).state);
    state.start = start;
    state.end = end;
}

AcGePoint3d AcDbLine::startPoint() const {
    return stateOf(this).start;
}
AcGePoint3d AcDbLine::endPoint() const {
    return stateOf(this).end;
}
double AcDbLine::thickness() const {
    return stateOf(this).thickness;
}
AcGeVector3d AcDbLine::normal() const {
    return stateOf(this).normal;
}
Acad::ErrorStatus AcDbLine::setStartPoint(const AcGePoint3d& point) {
    return setPoint(this, &LineState::start, point);
}
Acad::ErrorStatus AcDbLine::setEndPoint(const AcGePoint3d& point) {
    return setPoint(this, &LineState::end, point);
}

bool AcDbLine::isClosed() const {
    return false;
}
bool AcDbLine::isPeriodic() const {
    return false;
}

Acad::ErrorStatus AcDbLine::getStartParam(double& param) const {
    param = 0;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getEndParam(double& param) const {
    param = spanOf(stateOf(this)).extent;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getStartPoint(AcGePoint3d& point) const {
    point = stateOf(this).start;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getEndPoint(AcGePoint3d& point) const {
    point = stateOf(this).end;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbLine::getPointAtParam(double param, AcGePoint3d& point) const {
    const LineState& state = stateOf(this);
    const ParameterSpan span = spanOf(state);
    const Acad::ErrorStatus status = pointAtParameter(pieceOf(state), span, param, point);
    if (status == Acad::eOk && param >= span.extent)
        point = state.end;
    return status;
}

Acad::ErrorStatus AcDbLine::getParamAtPoint(const AcGePoint3d& point, double& param) const {
    const LineState& state = stateOf(this);
    return parameterAtPoint(pieceOf(state), spanOf(state), point, param);
}

Acad::ErrorStatus AcDbLine::getDistAtParam(double param, double& distance) const {
    return spanOf(stateOf(this)).distanceAt(param, distance);
}

Acad::ErrorStatus AcDbLine::getParamAtDist(double distance, double& param) const {
    return spanOf(stateOf(this)).parameterAtDistance(distance, param);
}

// A line without length has the zero vector.
Acad::ErrorStatus AcDbLine::getFirstDeriv(double param, AcGeVector3d& derivative) const {
    const LineState& state = stateOf(this);
    return derivativeAtParameter(pieceOf(state), spanOf(state), param, derivative);
}

Acad::ErrorStatus AcDbLine::getClosestPointTo(const AcGePoint3d& given, AcGePoint3d& result,
                                              bool extend) const {
    return closestPoint(pieceOf(stateOf(this)), given, result, extend);
}

Acad::ErrorStatus AcDbLine::getClosestPointTo(const AcGePoint3d& given, const AcGeVector3d& direction,
                                              AcGePoint3d& result, bool extend) const {
    return closestPoint(pieceOf(stateOf(this)), given, direction, result, extend);
}

Acad::ErrorStatus AcDbLine::dxfOutFields(AcDbDxfFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer);
    return status == Acad::eOk ? writeSubclass(filer, L"AcDbLine", stateOf(this), kLineFields) : status;
}

Acad::ErrorStatus AcDbLine::dxfInFields(AcDbDxfFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
        return status;
    LineState* state = writeState<LineState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    LineState filed(*state);
    if (const Acad::ErrorStatus status = readSubclass(filer, L"AcDbLine", filed, kLineFields);
        status != Acad::eOk) {
        return status;
    }
    if (!isFinite(filed.start))
        return rejectGroup(filer, L"group 10: not a finite point");
    if (!isFinite(filed.end))
        return rejectGroup(filer, L"group 11: not a finite point");
    if (!std::isfinite(filed.thickness))
        return rejectGroup(filer, L"group 39: not a finite number");
    if (!settleNormal(filed.normal))
        return rejectGroup(filer, L"group 210: no direction");
    *state = std::move(filed);
    return Acad::eOk;
}

bool AcDbLine::subWorldDraw(AcGiWorldDraw* worldDraw) {
    const LineState& state = stateOf(this);
    const AcGePoint3d ends[2] = {state.start, state.end};
    worldDraw->geometry().polyline(2, ends, &state.normal);
    return true;
}

Acad::ErrorStatus AcDbLine::subGetGeomExtents(AcDbExtents& extents) const {
    extents.addPoint(stateOf(this).start);
    extents.addPoint(stateOf(this).end);
    return Acad::eOk;
}

// A line takes any matrix.
Acad::ErrorStatus AcDbLine::subTransformBy(const AcGeMatrix3d& matrix) {
    const LineState& old = stateOf(this);
    const AcGePoint3d start = matrix * old.start, end = matrix * old.end;
    if (!isFinite(start) || !isFinite(end))
        return Acad::eInvalidInput;
    LineState* state = writeState<LineState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->start = start;
    state->end = end;
    AcGeVector3d normal = matrix * state->normal;
    const double stretch = normal.length();
    if (settleNormal(normal)) {
        state->normal = normal;
        state->thickness *= stretch;
    }
    return Acad::eOk;
}

void AcDbLine::subList() const {
    AcDbEntity::subList();
    const AcGePoint3d start = startPoint(), end = endPoint();
    const AcGeVector3d span = end - start;
    acutPrintf(L"              from point, X=%9.4f  Y=%9.4f  Z=%9.4f\n", start.x, start.y, start.z);
    acutPrintf(L"                to point, X=%9.4f  Y=%9.4f  Z=%9.4f\n", end.x, end.y, end.z);
    acutPrintf(L"          Length =%9.4f,  Angle in XY Plane = %.4f\n", span.length(),
               span.convert2d().angle() * 180 / kPi);
    acutPrintf(L"                  Delta X =%9.4f, Delta Y =%9.4f, Delta Z =%9.4f\n", span.x, span.y, span.z);
}

#include <cmath>

#include "host/api/editor.h"
#include "host/database/angle_groups.h"
#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/dxf_checks.h"
#include "host/database/text_states.h"
#include "host/geometry/plane_axes.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbText, AcDbEntity, L"TEXT", &drafthost::constructObject<AcDbText>)

namespace {

constexpr const ACHAR* kTextSubclass = L"AcDbText";
constexpr std::int32_t kLastHorizontalMode = 5, kLastVerticalMode = 3;

constexpr DxfField kVerticalMode = dxfField<&TextState::vertical>(73);

constexpr DxfField kTextFields[] = {
    dxfField<&TextState::thickness, 0.0>(39), dxfField<&TextState::position>(10),
    dxfField<&TextState::height>(40),         dxfField<&TextState::text>(1),
    dxfField<&TextState::rotation>(50),       dxfField<&TextState::widthFactor>(41),
    dxfField<&TextState::oblique>(51),        dxfName<&TextState::style>(7, TableKind::TextStyle),
    dxfField<&TextState::generation>(71),     dxfField<&TextState::horizontal>(72),
    dxfField<&TextState::alignment>(11),      dxfField<&TextState::normal>(210),
};
constexpr DxfField kSecondFields[] = {kVerticalMode};

const TextState& stateOf(const AcDbText* text) {
    return readState<TextState>(text);
}

// Changes the state and brings a justified text's position up to date.
template <class Change>
Acad::ErrorStatus changeText(AcDbText* text, bool valid, Change change) {
    if (!valid)
        return Acad::eInvalidInput;
    auto* state = writeState<TextState>(text);
    if (!state)
        return Acad::eNotOpenForWrite;
    change(*state);
    dropEmbedded(*state);
    settlePosition(*text, *state);
    return Acad::eOk;
}

bool isJustified(const TextState& state) {
    return state.horizontal != 0 || state.vertical != 0;
}
bool runsBetweenPoints(const TextState& state) {
    return state.horizontal == TextState::kAligned || state.horizontal == TextState::kFit;
}

const wchar_t* problemOf(const TextState& state) {
    if (!(state.height > 0))
        return L"group 40: text height must be positive";
    if (!(state.widthFactor > 0))
        return L"group 41: width factor must be positive";
    if (state.horizontal < 0 || state.horizontal > kLastHorizontalMode)
        return L"group 72: no text justification";
    if (state.vertical < 0 || state.vertical > kLastVerticalMode)
        return L"group 73: no text justification";
    return nullptr;
}

}  // namespace

namespace drafthost {

Acad::ErrorStatus writeTextGroups(AcDbDxfFiler* filer, const AcDbObject& object, TextState state,
                                  bool secondPart) {
    state.rotation = angleToFile(filer, state.rotation);
    state.oblique = angleToFile(filer, state.oblique);
    state.style = styleInUse(object, state.style);
    const Acad::ErrorStatus status = writeSubclass(filer, kTextSubclass, state, kTextFields);
    if (status == Acad::eOk && secondPart) {
        writeSubclassMarker(filer, kTextSubclass);
        writeFields(filer, state, kSecondFields);
    }
    return status;
}

Acad::ErrorStatus readTextGroups(AcDbDxfFiler* filer, TextState& state, bool secondPart) {
    state.rotation = angleToFile(filer, state.rotation);
    state.oblique = angleToFile(filer, state.oblique);
    state.style = styleForReading(filer, state.style);
    Acad::ErrorStatus status = readSubclass(filer, kTextSubclass, state, kTextFields);
    if (status != Acad::eOk)
        return status;
    const auto* groups = dynamic_cast<GroupFiler*>(filer);
    bool hasSecondPart = secondPart && groups && !groups->hasMarkers();
    if (secondPart && filer->atSubclassData(kTextSubclass)) {
        filer->pushBackItem();
        hasSecondPart = true;
    }
    if (hasSecondPart) {
        std::vector<ExtraGroup> extras = std::move(state.extras);
        state.extras.clear();
        status = readSubclass(filer, kTextSubclass, state, kSecondFields);
        extras.insert(extras.end(), state.extras.begin(), state.extras.end());
        state.extras = std::move(extras);
    }
    state.rotation = angleFromFile(filer, state.rotation);
    state.oblique = angleFromFile(filer, state.oblique);
    if (status != Acad::eOk)
        return status;
    const wchar_t* problem = problemOf(state);
    return problem ? rejectGroup(filer, problem) : Acad::eOk;
}

}  // namespace drafthost

AcDbText::AcDbText(ObjectImp* imp) : AcDbEntity(imp) {
    auto& state = static_cast<TextState&>(*ObjectImp::of(this).state);
    state.height = defaultTextHeight();
    state.style = defaultTextStyle();
}

AcDbText::AcDbText() : AcDbText(newImp<TextState>()) {}

AcDbText::AcDbText(const AcGePoint3d& position, const ACHAR* text, AcDbObjectId style, double height,
                   double rotation)
    : AcDbText() {
    auto& state = static_cast<TextState&>(*ObjectImp::of(this).state);
    state.position = position;
    state.text = text ? text : L"";
    if (!style.isNull())
        state.style = style;
    if (height > 0)
        state.height = height;
    state.rotation = rotation;
}

AcGePoint3d AcDbText::position() const {
    const TextState& state = stateOf(this);
    const bool filed = !isJustified(state) || runsBetweenPoints(state);
    return planeAxes(state.normal).toWorld(filed ? state.position : layoutTextLine(*this, state).start);
}

AcGePoint3d AcDbText::alignmentPoint() const {
    const TextState& state = stateOf(this);
    return planeAxes(state.normal).toWorld(state.alignment);
}

// Of justified text the position follows from the alignment point, and what is set here has no effect on it.
Acad::ErrorStatus AcDbText::setPosition(const AcGePoint3d& point) {
    return changeText(this, isFinite(point),
                      [&](TextState& state) { state.position = planeAxes(state.normal).toPlane(point); });
}

Acad::ErrorStatus AcDbText::setAlignmentPoint(const AcGePoint3d& point) {
    return changeText(this, isFinite(point),
                      [&](TextState& state) { state.alignment = planeAxes(state.normal).toPlane(point); });
}

const ACHAR* AcDbText::textString() const {
    return stateOf(this).text.c_str();
}

Acad::ErrorStatus AcDbText::setTextString(const ACHAR* text) {
    return changeText(this, text != nullptr, [&](TextState& state) { state.text = text; });
}

double AcDbText::height() const {
    return stateOf(this).height;
}

Acad::ErrorStatus AcDbText::setHeight(double height) {
    return changeText(this, height > 0 && std::isfinite(height),
                      [&](TextState& state) { state.height = height; });
}

double AcDbText::rotation() const {
    return stateOf(this).rotation;
}

Acad::ErrorStatus AcDbText::setRotation(double angle) {
    return changeText(this, std::isfinite(angle),
                      [&](TextState& state) { state.rotation = normalizeAngle(angle); });
}

double AcDbText::widthFactor() const {
    return stateOf(this).widthFactor;
}
double AcDbText::oblique() const {
    return stateOf(this).oblique;
}
int AcDbText::horizontalMode() const {
    return stateOf(this).horizontal;
}
int AcDbText::verticalMode() const {
    return stateOf(this).vertical;
}

Acad::ErrorStatus AcDbText::setHorizontalMode(int mode) {
    return changeText(this, mode >= 0 && mode <= kLastHorizontalMode,
                      [&](TextState& state) { state.horizontal = mode; });
}

Acad::ErrorStatus AcDbText::setVerticalMode(int mode) {
    return changeText(this, mode >= 0 && mode <= kLastVerticalMode,
                      [&](TextState& state) { state.vertical = mode; });
}

AcGeVector3d AcDbText::normal() const {
    return stateOf(this).normal;
}
AcDbObjectId AcDbText::textStyle() const {
    return styleInUse(*this, stateOf(this).style);
}

Acad::ErrorStatus AcDbText::setTextStyle(AcDbObjectId style) {
    if (const Acad::ErrorStatus status = checkTextStyle(style); status != Acad::eOk)
        return status;
    return changeText(this, true, [&](TextState& state) { state.style = style; });
}

Acad::ErrorStatus AcDbText::dxfOutFields(AcDbDxfFiler* filer) const {
    const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer);
    return status == Acad::eOk ? writeTextGroups(filer, *this, stateOf(this), true) : status;
}

Acad::ErrorStatus AcDbText::dxfInFields(AcDbDxfFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
        return status;
    auto* state = writeState<TextState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    TextState filed(*state);
    if (const Acad::ErrorStatus status = readTextGroups(filer, filed, true); status != Acad::eOk)
        return status;
    *state = std::move(filed);
    return Acad::eOk;
}

bool AcDbText::subWorldDraw(AcGiWorldDraw* worldDraw) {
    const TextState& state = stateOf(this);
    drawTextLine(layoutTextLine(*this, state), state.normal, *worldDraw);
    return true;
}

Acad::ErrorStatus AcDbText::subGetGeomExtents(AcDbExtents& extents) const {
    const TextState& state = stateOf(this);
    const TextLine line = layoutTextLine(*this, state);
    text::InkBox box;
    box.add(0, 0);
    if (line.advance > 0) {
        box.add(line.advance, line.height);
        box.add(line.ink);
    }
    const PlaneAxes axes = planeAxes(state.normal);
    const double c = std::cos(line.rotation), s = std::sin(line.rotation);
    for (const double boxX : {box.minX, box.maxX}) {
        for (const double boxY : {box.minY, box.maxY}) {
            const double x = line.look.backward ? -boxX : boxX, y = line.look.upsideDown ? -boxY : boxY;
            extents.addPoint(
                axes.toWorld(line.start.x + c * x - s * y, line.start.y + s * x + c * y, line.start.z));
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbText::subTransformBy(const AcGeMatrix3d& matrix) {
    const TextState& old = stateOf(this);
    const TextLine line = layoutTextLine(*this, old);
    const PlaneAxes plane = planeAxes(old.normal);
    const double c = std::cos(line.rotation), s = std::sin(line.rotation);
    const AcGeVector3d along = plane.x * c + plane.y * s, up = plane.y * c - plane.x * s;
    const std::optional<TextAxes> axes = transformedAxes(matrix, along, up, plane.z);
    if (!axes)
        return Acad::eNonUniformScale;
    AcGePoint3d start = plane.toWorld(line.start);
    if (axes->turnedX)
        start += along * line.advance;
    if (axes->turnedY)
        start += up * line.height;
    start = matrix * start;
    if (!isFinite(start))
        return Acad::eInvalidInput;

    // The alignment point keeps its place in the text's own axes.
    const AcGeVector3d aside = plane.toWorld(old.alignment) - plane.toWorld(line.start);
    const AcGePoint3d alignment =
        start + (axes->x * aside.dotProduct(along) + axes->y * aside.dotProduct(up)) * axes->scale;
    auto* state = writeState<TextState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    const PlaneAxes newPlane = planeAxes(axes->z);
    const bool hasAlignment = isJustified(*state);
    state->normal = newPlane.z;
    state->position = newPlane.toPlane(start);
    state->alignment = newPlane.toPlane(hasAlignment ? alignment : matrix * plane.toWorld(old.alignment));
    state->height *= axes->scale;
    state->thickness *= axes->scale;
    state->rotation =
        normalizeAngle(std::atan2(axes->x.dotProduct(newPlane.y), axes->x.dotProduct(newPlane.x)));
    dropEmbedded(*state);
    return Acad::eOk;
}

void AcDbText::subList() const {
    AcDbEntity::subList();
    const TextState& state = stateOf(this);
    const AcGePoint3d start = position();
    acutPrintf(L"                   style = \"%ls\"\n", recordName(textStyle()).c_str());
    acutPrintf(L"                text \"%ls\"\n", state.text.c_str());
    acutPrintf(L"               start point, X=%9.4f  Y=%9.4f  Z=%9.4f\n", start.x, start.y, start.z);
    acutPrintf(L"              height %9.4f\n", state.height);
    acutPrintf(L"    rotation angle %.4f, width factor %.4f, obliquing angle %.4f\n",
               state.rotation * 180 / kPi, state.widthFactor, state.oblique * 180 / kPi);
}

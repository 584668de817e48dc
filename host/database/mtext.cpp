#include <cmath>

#include "host/api/editor.h"
#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/mtext_parts.h"
#include "host/geometry/plane_axes.h"
#include "host/geometry/tolerance.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbMText, AcDbEntity, L"MTEXT", &drafthost::constructObject<AcDbMText>)

namespace {

constexpr double kSmallestSpacing = 0.25, kLargestSpacing = 4;
constexpr double kSmallestBackground = 1, kLargestBackground = 5;

const MTextState& stateOf(const AcDbMText* text) {
    return readState<MTextState>(text);
}

template <class Change>
Acad::ErrorStatus changeText(AcDbMText* text, bool valid, Change change) {
    if (!valid)
        return Acad::eInvalidInput;
    auto* state = writeState<MTextState>(text);
    if (!state)
        return Acad::eNotOpenForWrite;
    change(*state);
    dropEmbedded(*state);
    return Acad::eOk;
}

// Both of no direction and of one that is no number.
bool hasNoLength(const AcGeVector3d& vector) {
    const double length = vector.length();
    return !(length > AcGeContext::gTol.equalVector) || !std::isfinite(length);
}

// The direction made perpendicular to the normal; nothing when it runs along it.
std::optional<AcGeVector3d> inPlane(const AcGeVector3d& direction, const AcGeVector3d& normal) {
    const AcGeVector3d unit = direction / direction.length();
    const AcGeVector3d flat = unit - normal * unit.dotProduct(normal);
    if (flat.length() <= 1e-9)
        return std::nullopt;
    return flat / flat.length();
}

// Turning a vector by a quarter leaves a trace of the axis it came from. Programs compare with 0.
double withoutTrace(double coordinate) {
    constexpr double kTrace = 1e-14;
    return std::abs(coordinate) < kTrace ? 0.0 : coordinate;
}

bool isBackgroundOn(const MTextState& state) {
    return (state.backgroundFlags & (MTextState::kFillColor | MTextState::kFillWindow)) != 0;
}

void setBackground(MTextState& state, bool on) {
    constexpr std::int32_t kBoth = MTextState::kFillColor | MTextState::kFillWindow;
    state.backgroundFlags &= ~kBoth;
    if (on)
        state.backgroundFlags |= state.useBackgroundColor ? kBoth : MTextState::kFillColor;
}

}  // namespace

AcDbMText::AcDbMText() : AcDbEntity(newImp<MTextState>()) {
    auto& state = static_cast<MTextState&>(*ObjectImp::of(this).state);
    state.height = defaultTextHeight();
    state.style = defaultTextStyle();
}

ACHAR* AcDbMText::contents() const {
    ACHAR* copy = nullptr;
    acutNewString(stateOf(this).contents.c_str(), copy);
    return copy;
}

Acad::ErrorStatus AcDbMText::setContents(const ACHAR* text) {
    return changeText(this, text != nullptr, [&](MTextState& state) { state.contents = text; });
}

AcGePoint3d AcDbMText::location() const {
    return stateOf(this).location;
}

Acad::ErrorStatus AcDbMText::setLocation(const AcGePoint3d& point) {
    return changeText(this, isFinite(point), [&](MTextState& state) { state.location = point; });
}

double AcDbMText::width() const {
    return stateOf(this).width;
}

Acad::ErrorStatus AcDbMText::setWidth(double width) {
    return changeText(this, width >= 0 && std::isfinite(width),
                      [&](MTextState& state) { state.width = width; });
}

double AcDbMText::textHeight() const {
    return stateOf(this).height;
}

Acad::ErrorStatus AcDbMText::setTextHeight(double height) {
    return changeText(this, height > 0 && std::isfinite(height),
                      [&](MTextState& state) { state.height = height; });
}

AcDbObjectId AcDbMText::textStyle() const {
    return styleInUse(*this, stateOf(this).style);
}

// A style of fixed height sets the height too.
Acad::ErrorStatus AcDbMText::setTextStyle(AcDbObjectId style) {
    if (const Acad::ErrorStatus status = checkTextStyle(style); status != Acad::eOk)
        return status;
    return changeText(this, true, [&](MTextState& state) {
        const double fixed = lookOfStyle(style).textSize;
        state.style = style;
        if (fixed > 0)
            state.height = fixed;
    });
}

AcDbMText::AttachmentPoint AcDbMText::attachment() const {
    return static_cast<AttachmentPoint>(stateOf(this).attachment);
}

Acad::ErrorStatus AcDbMText::setAttachment(AttachmentPoint point) {
    const int code = point;
    return changeText(this, code >= kTopLeft && code <= kBottomRight,
                      [&](MTextState& state) { state.attachment = code; });
}

AcGeVector3d AcDbMText::normal() const {
    return stateOf(this).normal;
}

// The direction is turned into the new plane; where it would run along the normal, the plane's own X axis
// takes its place.
Acad::ErrorStatus AcDbMText::setNormal(const AcGeVector3d& normal) {
    return changeText(this, !hasNoLength(normal), [&](MTextState& state) {
        state.normal = normal / normal.length();
        state.direction = inPlane(state.direction, state.normal).value_or(planeAxes(state.normal).x);
    });
}

AcGeVector3d AcDbMText::direction() const {
    const AcGeVector3d& exact = stateOf(this).direction;
    return {withoutTrace(exact.x), withoutTrace(exact.y), withoutTrace(exact.z)};
}

Acad::ErrorStatus AcDbMText::setDirection(const AcGeVector3d& direction) {
    const std::optional<AcGeVector3d> flat =
        hasNoLength(direction) ? std::nullopt : inPlane(direction, stateOf(this).normal);
    return changeText(this, flat.has_value(), [&](MTextState& state) { state.direction = *flat; });
}

double AcDbMText::rotation() const {
    return rotationOf(stateOf(this));
}

Acad::ErrorStatus AcDbMText::setRotation(double angle) {
    return changeText(this, std::isfinite(angle),
                      [&](MTextState& state) { state.direction = directionAt(angle, state.normal); });
}

double AcDbMText::lineSpacingFactor() const {
    return stateOf(this).spacingFactor;
}

Acad::ErrorStatus AcDbMText::setLineSpacingFactor(double factor) {
    return changeText(this, factor >= kSmallestSpacing && factor <= kLargestSpacing,
                      [&](MTextState& state) { state.spacingFactor = factor; });
}

bool AcDbMText::backgroundFillOn() const {
    return isBackgroundOn(stateOf(this));
}

Acad::ErrorStatus AcDbMText::setBackgroundFill(bool on) {
    return changeText(this, true, [&](MTextState& state) { setBackground(state, on); });
}

double AcDbMText::backgroundScaleFactor() const {
    return stateOf(this).backgroundScale;
}

Acad::ErrorStatus AcDbMText::setBackgroundScaleFactor(double factor) {
    return changeText(this, factor >= kSmallestBackground && factor <= kLargestBackground,
                      [&](MTextState& state) { state.backgroundScale = factor; });
}

bool AcDbMText::useBackgroundColorOn() const {
    return stateOf(this).useBackgroundColor;
}

Acad::ErrorStatus AcDbMText::setUseBackgroundColor(bool on) {
    return changeText(this, true, [&](MTextState& state) {
        state.useBackgroundColor = on;
        setBackground(state, isBackgroundOn(state));
    });
}

double AcDbMText::actualWidth() const {
    return layoutOf(*this).actualWidth;
}
double AcDbMText::actualHeight(AcGiWorldDraw*) const {
    return layoutOf(*this).actualHeight;
}
double AcDbMText::ascent() const {
    return layoutOf(*this).ascent;
}
double AcDbMText::descent() const {
    return layoutOf(*this).descent;
}

Acad::ErrorStatus AcDbMText::subTransformBy(const AcGeMatrix3d& matrix) {
    const MTextState& old = stateOf(this);
    const AcGeVector3d up = old.normal.crossProduct(old.direction);
    const std::optional<TextAxes> axes = transformedAxes(matrix, old.direction, up, old.normal);
    if (!axes)
        return Acad::eNonUniformScale;
    AcGePoint3d location = old.location;
    if (axes->turnedX || axes->turnedY) {
        // To the place in the mirrored box that the attachment point has in an unmirrored one.
        const text::MTextLayout layout = layoutOf(*this);
        const double beyondX = 2 * layout.boxLeft + layout.boxWidth;
        const double beyondY = 2 * layout.boxTop - layout.actualHeight;
        location += axes->turnedX ? old.direction * beyondX : up * beyondY;
    }
    location = matrix * location;
    if (!isFinite(location))
        return Acad::eInvalidInput;
    return changeText(this, true, [&](MTextState& state) {
        state.location = location;
        state.direction = axes->x;
        state.normal = axes->z;
        state.height *= axes->scale;
        state.width *= axes->scale;
        if (std::abs(axes->scale - 1) > 1e-9)
            state.contents = text::scaleHeightCodes(state.contents, axes->scale);
    });
}

void AcDbMText::subList() const {
    AcDbEntity::subList();
    const MTextState& state = stateOf(this);
    const AcGePoint3d& at = state.location;
    acutPrintf(L"           Location:     X=%9.4f  Y=%9.4f  Z=%9.4f\n", at.x, at.y, at.z);
    acutPrintf(L"              Width:     %9.4f\n", state.width);
    acutPrintf(L"             Normal:     X=%9.4f  Y=%9.4f  Z=%9.4f\n", state.normal.x, state.normal.y,
               state.normal.z);
    acutPrintf(L"           Rotation:     %.4f\n", rotation() * 180 / kPi);
    acutPrintf(L"         Text style:     \"%ls\"\n", recordName(textStyle()).c_str());
    acutPrintf(L"        Text height:     %9.4f\n", state.height);
    acutPrintf(L"         Attachment:     %d\n", static_cast<int>(state.attachment));
    acutPrintf(L"           Contents:     %ls\n", state.contents.c_str());
}

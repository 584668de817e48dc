// What the text entities share.

#include <algorithm>

#include "host/database/database_impl.h"
#include "host/database/text_states.h"
#include "host/geometry/plane_axes.h"
#include "host/geometry/tolerance.h"

namespace drafthost {

namespace {

constexpr short kEmbeddedObject = 101;
constexpr short kFirstExtendedData = 1000;

const AcDbDatabase* workingDatabase() {
    AcDbHostApplicationServices* services = acdbHostApplicationServices();
    return services ? services->workingDatabase() : nullptr;
}

}  // namespace

AcDbObjectId styleInUse(const AcDbObject& object, AcDbObjectId style) {
    const AcDbDatabase* database = object.database() ? object.database() : workingDatabase();
    const bool usable = !style.isNull() && (!object.database() || style.database() == database);
    return usable || !database ? style : database->textstyle();
}

TextLook lookOfStyle(AcDbObjectId style) {
    const AcDbTextStyleTableRecord* record = peek<AcDbTextStyleTableRecord>(style);
    TextLook look;
    if (record) {
        look.font = {record->fileName(), record->typeface(), record->isBold(), record->isItalic()};
        look.textSize = record->textSize();
        look.xScale = record->xScale() > 0 ? record->xScale() : 1;
        look.oblique = record->obliquingAngle();
        look.backward = record->isBackward();
        look.upsideDown = record->isUpsideDown();
    }
    return look;
}

double defaultTextHeight() {
    constexpr double kWithoutDatabase = 2.5;
    const AcDbDatabase* database = workingDatabase();
    return database && database->textsize() > 0 ? database->textsize() : kWithoutDatabase;
}

AcDbObjectId defaultTextStyle() {
    const AcDbDatabase* database = workingDatabase();
    return database ? database->textstyle() : AcDbObjectId::kNull;
}

Acad::ErrorStatus checkTextStyle(AcDbObjectId style) {
    return peek<AcDbTextStyleTableRecord>(style) ? Acad::eOk : Acad::eWrongObjectType;
}

AcDbObjectId styleForReading(const AcDbDxfFiler* filer, AcDbObjectId style) {
    const AcDbDatabase* database = filer->database();
    if (!database || (!style.isNull() && style.database() == database)) {
        return style;
    }
    return findRecord(database, TableKind::TextStyle, L"Standard");
}

std::optional<TextAxes> transformedAxes(const AcGeMatrix3d& matrix, const AcGeVector3d& x,
                                        const AcGeVector3d& y, const AcGeVector3d& z) {
    constexpr double kRounding = 1e-6;
    const AcGeVector3d along = matrix * x, up = matrix * y, out = matrix * z;
    const double scale = along.length();
    const bool keepsAngles = scale > 0 && std::isfinite(scale) &&
                             std::abs(up.length() / scale - 1) < kRounding &&
                             std::abs(out.length() / scale - 1) < kRounding &&
                             std::abs(along.dotProduct(up)) < kRounding * scale * scale &&
                             std::abs(along.dotProduct(out)) < kRounding * scale * scale;
    if (!keepsAngles) {
        return std::nullopt;
    }
    TextAxes axes{along / scale, up / scale, {}, scale};
    // Mirrored in a plane along the text's normal; a mirror in the text's own plane leaves it readable as it
    // is.
    const bool isMirrored = axes.x.crossProduct(axes.y).dotProduct(out) < 0 && out.dotProduct(z) >= 0;
    if (isMirrored) {
        axes.turnedX = axes.x.dotProduct(x) <= 0;
        axes.turnedY = !axes.turnedX;
        (axes.turnedX ? axes.x : axes.y) = -(axes.turnedX ? axes.x : axes.y);
    }
    axes.z = axes.x.crossProduct(axes.y);
    axes.z = axes.z / axes.z.length();
    return axes;
}

std::vector<DxfGroup> setAsideEmbedded(AcDbDxfFiler* filer) {
    std::vector<DxfGroup> embedded;
    auto* groups = dynamic_cast<GroupFiler*>(filer);
    if (!groups) {
        return embedded;
    }
    const std::vector<DxfGroup>& all = groups->groups();
    const auto first = std::find_if(all.begin(), all.end(),
                                    [](const DxfGroup& group) { return group.code == kEmbeddedObject; });
    for (auto group = first; group != all.end() && group->code < kFirstExtendedData; ++group) {
        embedded.push_back(*group);
        groups->take(static_cast<std::size_t>(group - all.begin()));
    }
    return embedded;
}

void keepEmbedded(ObjectState& state, const ACHAR* subclass, std::vector<DxfGroup> groups) {
    for (DxfGroup& group : groups) {
        state.extras.push_back({subclass, std::move(group)});
    }
}

void dropEmbedded(ObjectState& state) {
    const auto first = std::find_if(state.extras.begin(), state.extras.end(), [](const ExtraGroup& extra) {
        return extra.group.code == kEmbeddedObject;
    });
    state.extras.erase(first, state.extras.end());
}

}  // namespace drafthost

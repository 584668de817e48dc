#include <cmath>

#include "host/database/angle_groups.h"
#include "host/database/class_registry.h"
#include "host/database/database_impl.h"
#include "host/database/extended_data.h"
#include "host/database/table_states.h"

using namespace drafthost;

DRAFTHOST_DEFINE_CLASS(AcDbTextStyleTableRecord, AcDbSymbolTableRecord, L"STYLE",
                       &drafthost::constructObject<AcDbTextStyleTableRecord>)

namespace {

constexpr std::int32_t kShapeFile = 1;
constexpr std::int32_t kBackward = 2;
constexpr std::int32_t kUpsideDown = 4;
constexpr std::int32_t kItalicFont = 0x1000000;
constexpr std::int32_t kBoldFont = 0x2000000;

void writeOblique(const ObjectState& state, const DxfField& field, GroupFiler& filer) {
    filer.writeItem(field.code,
                    angleToFile(&filer, static_cast<const TextStyleState&>(state).obliquingAngle));
}

// The unit of angles depends on what the groups are for; reading keeps the number, and dxfInFields converts
// it.
bool readOblique(ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
    return detail::readValue(group, static_cast<TextStyleState&>(state).obliquingAngle);
}

// Written even when empty: readers expect both font names.
template <auto Member>
constexpr DxfField fontName(short code) {
    return {code,
            [](const ObjectState& state, const DxfField& field, GroupFiler& filer) {
                filer.writeItem(field.code, (static_cast<const TextStyleState&>(state).*Member).c_str());
            },
            [](ObjectState& state, const DxfField&, const DxfGroup& group, AcDbDatabase*) {
                return detail::readValue(group, static_cast<TextStyleState&>(state).*Member);
            }};
}

// The name of a shape file's style is empty, and written so.
constexpr DxfField kFields[] = {
    fontName<&TextStyleState::name>(2),        dxfField<&TextStyleState::flags>(70),
    dxfField<&TextStyleState::textSize>(40),   dxfField<&TextStyleState::xScale>(41),
    {50, writeOblique, readOblique},           dxfField<&TextStyleState::generation>(71),
    dxfField<&TextStyleState::lastHeight>(42), fontName<&TextStyleState::fileName>(3),
    fontName<&TextStyleState::bigFontFile>(4),
};

const TextStyleState& styleOf(const AcDbTextStyleTableRecord* record) {
    return readState<TextStyleState>(record);
}

}  // namespace

// TrueType family and flags stand in the extended data of the host's own application.
void TextStyleState::extendedDataChanged() {
    typeface.clear();
    fontFlags = 0;
    for (const DxfGroup& group : selectExtendedData(xdata, L"ACAD")) {
        if (group.code == 1000 && typeface.empty())
            detail::readValue(group, typeface);
        if (group.code == 1071)
            detail::readValue(group, fontFlags);
    }
}

AcDbTextStyleTableRecord::AcDbTextStyleTableRecord() : AcDbSymbolTableRecord(newImp<TextStyleState>()) {}

const ACHAR* AcDbTextStyleTableRecord::fileName() const {
    return styleOf(this).fileName.c_str();
}
const ACHAR* AcDbTextStyleTableRecord::typeface() const {
    return styleOf(this).typeface.c_str();
}
bool AcDbTextStyleTableRecord::isBold() const {
    return (styleOf(this).fontFlags & kBoldFont) != 0;
}
bool AcDbTextStyleTableRecord::isItalic() const {
    return (styleOf(this).fontFlags & kItalicFont) != 0;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setFileName(const ACHAR* name) {
    if (!name)
        return Acad::eInvalidInput;
    auto* const state = writeState<TextStyleState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->fileName = name;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setFont(const ACHAR* typeface, bool bold, bool italic) {
    if (!typeface)
        return Acad::eInvalidInput;
    auto* const state = writeState<TextStyleState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    const std::int64_t flags = (bold ? kBoldFont : 0) | (italic ? kItalicFont : 0);
    std::vector<DxfGroup> data{{1001, std::wstring(L"ACAD")}};
    if (*typeface) {
        data.push_back({1000, std::wstring(typeface)});
        data.push_back({1071, flags});
    }
    mergeExtendedData(state->xdata, data);
    state->extendedDataChanged();
    return Acad::eOk;
}

double AcDbTextStyleTableRecord::textSize() const {
    return styleOf(this).textSize;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setTextSize(double size) {
    if (!(size >= 0) || !std::isfinite(size))
        return Acad::eInvalidInput;
    auto* const state = writeState<TextStyleState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->textSize = size;
    return Acad::eOk;
}

double AcDbTextStyleTableRecord::xScale() const {
    return styleOf(this).xScale;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::setXScale(double scale) {
    if (!(scale > 0) || !std::isfinite(scale))
        return Acad::eInvalidInput;
    auto* const state = writeState<TextStyleState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    state->xScale = scale;
    return Acad::eOk;
}

double AcDbTextStyleTableRecord::obliquingAngle() const {
    return styleOf(this).obliquingAngle;
}
bool AcDbTextStyleTableRecord::isBackward() const {
    return (styleOf(this).generation & kBackward) != 0;
}
bool AcDbTextStyleTableRecord::isUpsideDown() const {
    return (styleOf(this).generation & kUpsideDown) != 0;
}
bool AcDbTextStyleTableRecord::isShapeFile() const {
    return (styleOf(this).flags & kShapeFile) != 0;
}

Acad::ErrorStatus AcDbTextStyleTableRecord::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const auto status = AcDbSymbolTableRecord::dxfOutFields(filer); status != Acad::eOk)
        return status;
    return writeSubclass(filer, L"AcDbTextStyleTableRecord", styleOf(this), kFields);
}

Acad::ErrorStatus AcDbTextStyleTableRecord::dxfInFields(AcDbDxfFiler* filer) {
    if (const auto status = AcDbSymbolTableRecord::dxfInFields(filer); status != Acad::eOk)
        return status;
    auto* const state = writeState<TextStyleState>(this);
    state->obliquingAngle = angleToFile(filer, state->obliquingAngle);
    const auto status = readSubclass(filer, L"AcDbTextStyleTableRecord", *state, kFields);
    state->obliquingAngle = angleFromFile(filer, state->obliquingAngle);
    state->extendedDataChanged();
    return status;
}

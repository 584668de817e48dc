// Filing of multiline text.

#include <array>
#include <cmath>

#include "host/database/angle_groups.h"
#include "host/database/dxf_checks.h"
#include "host/database/mtext_parts.h"

using namespace drafthost;

namespace {

constexpr const ACHAR* kSubclass = L"AcDbMText";
constexpr std::size_t kChunk = 250;  // longest text of a group
constexpr short kPieceGroup = 3, kLastPieceGroup = 1;
constexpr short kDirectionGroup = 11, kRotationGroup = 50, kWidthGroup = 42, kHeightGroup = 43;

constexpr DxfField kFirstFields[] = {
    dxfField<&MTextState::location>(10), dxfField<&MTextState::height>(40),
    dxfField<&MTextState::width>(41),    dxfField<&MTextState::attachment>(71),
    dxfField<&MTextState::flow>(72),
};
constexpr DxfField kMiddleFields[] = {
    dxfName<&MTextState::style>(7, TableKind::TextStyle),
    dxfField<&MTextState::normal>(210),
    dxfField<&MTextState::direction>(kDirectionGroup),
};
constexpr DxfField kLastFields[] = {
    dxfField<&MTextState::spacingStyle>(73),
    dxfField<&MTextState::spacingFactor>(44),
    dxfField<&MTextState::backgroundFlags, 0>(90),
    dxfField<&MTextState::backgroundColor, -1>(63),
    dxfField<&MTextState::backgroundTrueColor, -1>(421),
    dxfField<&MTextState::backgroundTransparency, 0>(441),
};
constexpr DxfField kBackgroundScale = dxfField<&MTextState::backgroundScale>(45);

// A text while its groups are read: the pieces, and which of the two ways to give the direction came last.
struct FiledMText : MTextState {
    explicit FiledMText(const MTextState& state) : MTextState(state) {}
    std::wstring pieces, lastPiece;
    bool hasText = false;
    std::optional<double> angle;  // group 50, when it came after any group 11
};

bool takeGroup(ObjectState& state, const DxfGroup& group, AcDbDatabase*) {
    auto& filed = static_cast<FiledMText&>(state);
    std::wstring piece;
    AcGeVector3d direction;
    double number = 0;
    switch (group.code) {
        case kPieceGroup:
        case kLastPieceGroup:
            filed.hasText = true;
            if (!detail::readValue(group, piece))
                return false;
            (group.code == kPieceGroup ? filed.pieces : filed.lastPiece) += piece;
            return true;
        case kDirectionGroup:
            if (!detail::readValue(group, direction))
                return false;
            filed.direction = direction;
            filed.angle.reset();
            return true;
        case kRotationGroup:
            if (!detail::readValue(group, number))
                return false;
            filed.angle = number;
            return true;
        // What the program that wrote the text measured; measured anew here.
        case kWidthGroup:
        case kHeightGroup: return true;
        default: return false;
    }
}

// Cut where no pair of UTF-16 surrogates is parted.
void writePieces(AcDbDxfFiler* filer, const std::wstring& contents) {
    std::size_t start = 0;
    while (contents.size() - start > kChunk) {
        const wchar_t last = contents[start + kChunk - 1];
        const bool splitsPair = last >= 0xD800 && last < 0xDC00;
        const std::size_t length = kChunk - (splitsPair ? 1 : 0);
        filer->writeItem(kPieceGroup, contents.substr(start, length).c_str());
        start += length;
    }
    filer->writeItem(kLastPieceGroup, contents.substr(start).c_str());
}

constexpr std::array<DxfField, std::size(kFirstFields) + std::size(kLastFields) + 3> readingFields() {
    std::array<DxfField, std::size(kFirstFields) + std::size(kLastFields) + 3> fields{
        kMiddleFields[0], kMiddleFields[1], kBackgroundScale};
    std::size_t next = 3;
    for (const DxfField& field : kFirstFields)
        fields[next++] = field;
    for (const DxfField& field : kLastFields)
        fields[next++] = field;
    return fields;
}
constexpr auto kReadingFields = readingFields();

const wchar_t* problemOf(const MTextState& state) {
    if (!(state.height > 0))
        return L"group 40: text height must be positive";
    if (!(state.width >= 0))
        return L"group 41: width must not be negative";
    if (state.attachment < 1 || state.attachment > 9)
        return L"group 71: attachment point must be 1 to 9";
    if (!(state.spacingFactor > 0))
        return L"group 44: line spacing factor must be positive";
    return nullptr;
}

// Directions in files need not be unit vectors, nor lie in the text's plane.
bool settleDirection(FiledMText& filed, AcDbDxfFiler* filer) {
    if (filed.angle) {
        filed.direction = directionAt(angleFromFile(filer, *filed.angle), filed.normal);
        return true;
    }
    const AcGeVector3d flat = filed.direction - filed.normal * filed.direction.dotProduct(filed.normal);
    const double length = flat.length();
    if (!(length > 1e-9) || !std::isfinite(length))
        return false;
    const bool isSettled =
        std::abs(length - 1) < 1e-9 && std::abs(filed.direction.dotProduct(filed.normal)) < 1e-9;
    if (!isSettled)
        filed.direction = flat / length;
    return true;
}

}  // namespace

Acad::ErrorStatus AcDbMText::dxfOutFields(AcDbDxfFiler* filer) const {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfOutFields(filer); status != Acad::eOk)
        return status;
    MTextState state(readState<MTextState>(this));
    state.style = styleInUse(*this, state.style);
    const text::MTextLayout layout = layoutOf(*this);
    writeSubclassMarker(filer, kSubclass);
    writeFields(filer, state, kFirstFields);
    writePieces(filer, state.contents);
    writeFields(filer, state, kMiddleFields);
    filer->writeItem(kWidthGroup, layout.actualWidth);
    filer->writeItem(kHeightGroup, layout.actualHeight);
    // Files have the direction alone; LISP programs read either.
    if (!holdsDegrees(filer))
        filer->writeItem(kRotationGroup, rotationOf(state));
    writeFields(filer, state, kLastFields);
    if (state.backgroundFlags != 0 || state.backgroundScale != MTextState().backgroundScale) {
        writeFields(filer, state, {&kBackgroundScale, 1});
    }
    writeExtras(filer, kSubclass, state);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbMText::dxfInFields(AcDbDxfFiler* filer) {
    if (const Acad::ErrorStatus status = AcDbEntity::dxfInFields(filer); status != Acad::eOk)
        return status;
    auto* state = writeState<MTextState>(this);
    if (!state)
        return Acad::eNotOpenForWrite;
    FiledMText filed(*state);
    filed.style = styleForReading(filer, filed.style);
    std::vector<DxfGroup> embedded = setAsideEmbedded(filer);
    const Acad::ErrorStatus status = readSubclass(filer, kSubclass, filed, kReadingFields, takeGroup);
    if (status != Acad::eOk)
        return status;
    if (const wchar_t* problem = problemOf(filed))
        return rejectGroup(filer, problem);
    if (!settleNormal(filed.normal))
        return rejectGroup(filer, L"group 210: no direction");
    if (!settleDirection(filed, filer))
        return rejectGroup(filer, L"group 11: no direction in the text's plane");
    if (filed.hasText)
        filed.contents = filed.pieces + filed.lastPiece;
    filed.useBackgroundColor = (filed.backgroundFlags & MTextState::kFillWindow) != 0;
    keepEmbedded(filed, kSubclass, std::move(embedded));
    *state = std::move(static_cast<MTextState&>(filed));
    return Acad::eOk;
}

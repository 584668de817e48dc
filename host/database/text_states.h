#pragma once

// Contents of the text entities, and what they have in common: looks of text styles, and where
// transformations put text.

#include <optional>
#include <string>

#include "host/api/text_entities.h"
#include "host/database/dxf_fields.h"
#include "host/database/object_imp.h"
#include "host/text/outlines.h"
#include "host/text/text_codes.h"

namespace drafthost {

struct TextState : ClonedState<TextState, EntityState> {
    AcGePoint3d
        position;  // entity coordinates; for justified text a copy of what follows from the alignment point
    AcGePoint3d alignment;  // entity coordinates; counts when either mode is not 0
    std::wstring text;
    AcDbObjectId style;  // null: the database's current one
    double thickness = 0;
    double height = 0;
    double rotation = 0;  // radians, from the X axis of the entity coordinates
    double widthFactor = 1;
    double oblique = 0;
    std::int32_t generation = 0;  // kBackward, kUpsideDown
    std::int32_t horizontal = 0, vertical = 0;
    AcGeVector3d normal{0, 0, 1};

    void file(StateWalker& walker) override;

    static constexpr std::int32_t kBackward = 2, kUpsideDown = 4;
    static constexpr std::int32_t kAligned = 3, kMiddle = 4, kFit = 5;  // of horizontal
};

struct AttributeState : ClonedState<AttributeState, TextState> {
    std::wstring tag;
    std::wstring prompt;  // of definitions
    std::int32_t flags = 0;
    std::int32_t fieldLength = 0;
    std::int32_t version = 0;
    std::int32_t lockPosition = 0;

    void file(StateWalker& walker) override;

    static constexpr std::int32_t kInvisible = 1, kConstant = 2;
};

struct MTextState : ClonedState<MTextState, EntityState> {
    static constexpr std::int32_t kFillColor = 1, kFillWindow = 2;  // of backgroundFlags

    std::wstring contents;
    AcGePoint3d location;             // world coordinates
    AcGeVector3d direction{1, 0, 0};  // world coordinates
    AcGeVector3d normal{0, 0, 1};
    AcDbObjectId style;  // null: the database's current one
    double height = 0;
    double width = 0;
    std::int32_t attachment = 1;
    std::int32_t flow = 1;          // group 72
    std::int32_t spacingStyle = 1;  // 1 at least, 2 exactly
    double spacingFactor = 1;
    std::int32_t backgroundFlags = 0;
    std::int32_t backgroundColor = -1;      // -1: none given
    std::int32_t backgroundTrueColor = -1;  // -1: none given
    double backgroundScale = 1.5;
    std::int32_t backgroundTransparency = 0;
    // Remembered while the background is off, when backgroundFlags says nothing about it.
    bool useBackgroundColor = false;

    void file(StateWalker& walker) override;
};

// How a text style draws.
struct TextLook {
    text::TextFont font;
    double textSize = 0;  // 0: not fixed
    double xScale = 1;
    double oblique = 0;
    bool backward = false, upsideDown = false;
};

// The style itself, or the current one of the object's database when it is null or another database's.
AcDbObjectId styleInUse(const AcDbObject& object, AcDbObjectId style);
// The stroke font for an id that is no text style.
TextLook lookOfStyle(AcDbObjectId style);
// For new texts: the working database's size of texts, 2.5 without one; and its current style, null without
// one.
double defaultTextHeight();
AcDbObjectId defaultTextStyle();
// eWrongObjectType for an id that is no text style.
Acad::ErrorStatus checkTextStyle(AcDbObjectId style);
// Before a text is read: a style of another database than the filer's gives way to "Standard" there.
AcDbObjectId styleForReading(const AcDbDxfFiler* filer, AcDbObjectId style);

// Unit axes of a text after a transformation, and by how much it grew.
struct TextAxes {
    AcGeVector3d x, y, z;
    double scale = 1;
    // A mirrored text stays readable: its box is mirrored, and the text runs in it the other way, so that
    // what was the box's left side (lower side) is now its right (upper) one.
    bool turnedX = false, turnedY = false;
};
// Nothing for a matrix that does not keep angles. x, y, z: unit axes of the text.
std::optional<TextAxes> transformedAxes(const AcGeMatrix3d& matrix, const AcGeVector3d& x,
                                        const AcGeVector3d& y, const AcGeVector3d& z);

// Single-line text without codes, placed. Lengths are drawing units in the text's plane: base line on x,
// start at 0.
struct TextLine {
    std::vector<text::LineRun> runs;
    TextLook look;
    double height = 1, widthFactor = 1, oblique = 0;
    double rotation = 0;
    AcGePoint3d start;  // left end of the base line, entity coordinates
    double advance = 0;
    text::InkBox ink;
};
// message: shown in place of the state's text when not null.
TextLine layoutTextLine(const AcDbObject& object, const TextState& state,
                        const std::wstring* message = nullptr);
void drawTextLine(const TextLine& line, const AcGeVector3d& normal, AcGiWorldDraw& draw);
// After a change: brings the position of justified text up to date.
void settlePosition(const AcDbObject& object, TextState& state);

// Files the groups of AcDbText. secondPart: with the marker and vertical mode that only TEXT has.
Acad::ErrorStatus writeTextGroups(AcDbDxfFiler* filer, const AcDbObject& object, TextState state,
                                  bool secondPart);
Acad::ErrorStatus readTextGroups(AcDbDxfFiler* filer, TextState& state, bool secondPart);

// Newer files repeat multiline texts as an embedded object, from group 101 to the end, whose groups must not
// be taken for the entity's own. Takes them out of a filer that is read; adds them to the state again after
// reading.
std::vector<DxfGroup> setAsideEmbedded(AcDbDxfFiler* filer);
void keepEmbedded(ObjectState& state, const ACHAR* subclass, std::vector<DxfGroup> groups);
// The embedded copy no longer says what the entity does; programs that read it would undo the change.
void dropEmbedded(ObjectState& state);

}  // namespace drafthost

#pragma once

// Contents of symbol tables and their records.

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "host/database/object_imp.h"

namespace drafthost {

struct TableState : ClonedState<TableState, ObjectState> {
    std::vector<AcDbObjectId> records;  // in table order, erased ones too
    // By folded name (foldCase). A name of an erased record that was taken again belongs to the new one.
    std::unordered_map<std::wstring, AcDbObjectId> byName;

    void file(StateWalker& walker) override;
};

struct RecordState : ObjectState {
    std::wstring name;
    std::int32_t flags = 0;  // group 70

    void file(StateWalker& walker) override;
};

struct BlockState : ClonedState<BlockState, RecordState> {
    std::vector<AcDbObjectId> entities;  // in drawing order, erased ones too
    AcDbObjectId begin, end;             // AcDbBlockBegin and AcDbBlockEnd entities
    AcGePoint3d origin;
    std::wstring description;
    std::wstring externalPath;  // of an external reference
    AcDbObjectId layout;        // AcDbLayout of model and paper space; null for blocks

    void file(StateWalker& walker) override;
};

struct LayerState : ClonedState<LayerState, RecordState> {
    std::int32_t color = 7;  // negative in files when off; here always positive
    std::int32_t trueColor = -1;
    AcDbObjectId linetype;
    std::int32_t lineWeight = AcDb::kLnWtByLwDefault;
    bool off = false;
    bool plottable = true;
    AcDbObjectId plotStyle;

    void file(StateWalker& walker) override;
};

// One dash, gap or dot, with the embedded shape or text it may carry (groups 74, 75, 340, 46, 50, 44, 45, 9
// as read).
struct LinetypeElement {
    double length = 0;
    std::vector<DxfGroup> embedded;
};

struct LinetypeState : ClonedState<LinetypeState, RecordState> {
    std::wstring comments;
    std::int32_t alignment = 65;
    double patternLength = 0;
    std::vector<LinetypeElement> elements;

    void file(StateWalker& walker) override;
};

struct TextStyleState : ClonedState<TextStyleState, RecordState> {
    double textSize = 0;
    double xScale = 1;
    double obliquingAngle = 0;    // radians
    std::int32_t generation = 0;  // 2 backward, 4 upside down
    double lastHeight = 2.5;
    std::wstring fileName = L"txt";
    std::wstring bigFontFile;
    std::wstring typeface;  // copy of what extended data of "ACAD" say, for quick reading
    std::int32_t fontFlags = 0;

    void file(StateWalker& walker) override;
    void extendedDataChanged() override;
};

struct PlainRecordState : ClonedState<PlainRecordState, RecordState> {
    std::wstring kind;
    std::vector<DxfGroup> groups;  // behind the name and flags, as read

    void file(StateWalker& walker) override;
};

struct RegAppState : ClonedState<RegAppState, RecordState> {};

struct DictionaryState : ClonedState<DictionaryState, ObjectState> {
    struct Entry {
        std::wstring name;
        AcDbObjectId id;
        short code = 350;  // 350 soft owner, 360 hard owner
    };
    std::vector<Entry> entries;
    std::int32_t hardOwner = 0;  // group 280
    std::int32_t cloning = 1;    // group 281

    void file(StateWalker& walker) override;
};

}  // namespace drafthost

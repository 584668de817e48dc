#pragma once

// The groups of one object in memory: what the DXF writer and reader, entget and entmake file objects
// through.

#include <vector>

#include "host/api/filer.h"
#include "host/database/dxf_group.h"

namespace drafthost {

// For writing, start empty and take groups(); for reading, start with the object's groups.
// Objects without any subclass marker (old files, hand-made entity lists) are read in marker-less mode: every
// subclass finds its own groups wherever they stand, and each group is given to the first subclass that takes
// it.
class DRAFTHOST_API GroupFiler : public AcDbDxfFiler {
public:
    explicit GroupFiler(AcDbDatabase* database, AcDb::FilerType type = AcDb::kFileFiler);
    GroupFiler(AcDbDatabase* database, std::vector<DxfGroup> groups, AcDb::FilerType type = AcDb::kFileFiler);

    std::vector<DxfGroup>& groups() { return groups_; }
    bool hasMarkers() const { return hasMarkers_; }
    // Reading by table (dxf_fields.h): groups of the current subclass that are still unread.
    std::size_t position() const { return position_; }
    void setPosition(std::size_t position) { position_ = position; }
    bool taken(std::size_t index) const { return taken_[index]; }
    void take(std::size_t index) { taken_[index] = true; }
    void add(DxfGroup group) { groups_.push_back(std::move(group)); }
    // First problem found, for messages: "group 40: real expected". Empty: none.
    const std::wstring& problem() const { return problem_; }
    void setProblem(std::wstring text);

    Acad::ErrorStatus filerStatus() const override;
    void resetFilerStatus() override;
    AcDb::FilerType filerType() const override;
    AcDbDatabase* database() const override;
    Acad::ErrorStatus readResBuf(resbuf* node) override;
    void pushBackItem() override;
    bool atSubclassData(const ACHAR* className) override;
    bool atEOF() override;
    Acad::ErrorStatus writeItem(int code, const ACHAR* text) override;
    Acad::ErrorStatus writeItem(int code, double value) override;
    Acad::ErrorStatus writeItem(int code, const AcGePoint3d& point) override;
    Acad::ErrorStatus writeItem(int code, const AcGePoint2d& point) override;
    Acad::ErrorStatus writeItem(int code, const AcGeVector3d& vector) override;
    Acad::ErrorStatus writeInt16(int code, std::int16_t value) override;
    Acad::ErrorStatus writeInt32(int code, std::int32_t value) override;
    Acad::ErrorStatus writeBool(int code, bool value) override;
    Acad::ErrorStatus writeObjectId(int code, AcDbObjectId id) override;

private:
    AcDbDatabase* database_;
    AcDb::FilerType type_;
    std::vector<DxfGroup> groups_;
    std::vector<bool> taken_;
    std::size_t position_ = 0;
    bool hasMarkers_ = false;
    Acad::ErrorStatus status_ = Acad::eOk;
    std::wstring problem_;
};

}  // namespace drafthost

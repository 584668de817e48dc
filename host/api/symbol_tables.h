#pragma once

// Symbol tables and their records: blocks, layers, linetypes, text styles, registered applications and the
// rest. Names are compared without regard to case.

#include <memory>

#include "host/api/entity.h"

class AcDbSymbolTableRecord;

class DRAFTHOST_API AcDbSymbolTable : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbSymbolTable)
    bool has(const ACHAR* name) const;
    bool has(AcDbObjectId id) const;
    // eKeyNotFound when there is no such record; erased ones count only with getErased.
    Acad::ErrorStatus getAt(const ACHAR* name, AcDbObjectId& id, bool getErased = false) const;
    // Adds an opened-for-write record outside a database; the caller closes it. eDuplicateKey, eInvalidKey.
    Acad::ErrorStatus add(AcDbObjectId& id, AcDbSymbolTableRecord* record);
    // Ids of the records in table order, erased ones left out.
    AcArray<AcDbObjectId> recordIds() const;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    explicit AcDbSymbolTable(drafthost::ObjectImp* imp);
};

class DRAFTHOST_API AcDbSymbolTableRecord : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbSymbolTableRecord)
    const ACHAR* name() const;  // valid until renamed
    // eInvalidKey for an empty name or one with characters that names cannot hold; eDuplicateKey when taken.
    Acad::ErrorStatus setName(const ACHAR* name);
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    explicit AcDbSymbolTableRecord(drafthost::ObjectImp* imp);
    // eCannotBeErased for records that every drawing has, current ones, and those still in use.
    Acad::ErrorStatus subErase(bool erasing) override;
};

// Declares a table and the typed getAt that opens a record of it.
#define DRAFTHOST_SYMBOL_TABLE(TABLE, RECORD)                                                                \
    class DRAFTHOST_API TABLE : public AcDbSymbolTable {                                                     \
    public:                                                                                                  \
        ACRX_DECLARE_MEMBERS(TABLE)                                                                          \
        TABLE();                                                                                             \
        using AcDbSymbolTable::getAt;                                                                        \
        Acad::ErrorStatus getAt(const ACHAR* name, RECORD*& record, AcDb::OpenMode mode,                     \
                                bool openErased = false) const {                                             \
            AcDbObjectId id;                                                                                 \
            const Acad::ErrorStatus status = AcDbSymbolTable::getAt(name, id, openErased);                   \
            return status == Acad::eOk ? acdbOpenObject(record, id, mode, openErased) : status;              \
        }                                                                                                    \
    }

constexpr const ACHAR* ACDB_MODEL_SPACE = L"*Model_Space";
constexpr const ACHAR* ACDB_PAPER_SPACE = L"*Paper_Space";

// A block definition, or the model or paper space.
class DRAFTHOST_API AcDbBlockTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbBlockTableRecord)
    AcDbBlockTableRecord();
    // Adds an entity outside a database to the end of the block and to its database; the caller closes it
    // afterwards. Entities without a layer get the database's current one. eAlreadyInDb, eSelfReference.
    Acad::ErrorStatus appendAcDbEntity(AcDbEntity* entity);
    Acad::ErrorStatus appendAcDbEntity(AcDbObjectId& id, AcDbEntity* entity);
    AcArray<AcDbObjectId> entityIds() const;  // in drawing order, erased ones left out
    AcGePoint3d origin() const;
    Acad::ErrorStatus setOrigin(const AcGePoint3d& point);
    bool isLayout() const;     // model or paper space
    bool isAnonymous() const;  // name begins with "*"
    bool hasAttributeDefinitions() const;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;
    Acad::ErrorStatus subErase(bool erasing) override;
};

class DRAFTHOST_API AcDbLayerTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbLayerTableRecord)
    AcDbLayerTableRecord();
    std::uint16_t colorIndex() const;
    Acad::ErrorStatus setColorIndex(std::uint16_t index);
    std::int32_t trueColor() const;  // 0x00RRGGBB or -1
    AcDbObjectId linetypeObjectId() const;
    Acad::ErrorStatus setLinetypeObjectId(AcDbObjectId id);
    int lineWeight() const;
    Acad::ErrorStatus setLineWeight(int weight);
    bool isOff() const;
    Acad::ErrorStatus setIsOff(bool off);
    bool isFrozen() const;
    Acad::ErrorStatus setIsFrozen(bool frozen);
    bool isLocked() const;
    Acad::ErrorStatus setIsLocked(bool locked);
    bool isPlottable() const;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
};

class DRAFTHOST_API AcDbLinetypeTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbLinetypeTableRecord)
    AcDbLinetypeTableRecord();
    const ACHAR* comments() const;
    int numDashes() const;
    // Positive: dash; negative: gap; zero: dot. Drawing units before scaling.
    double dashLengthAt(int index) const;
    double patternLength() const;
    Acad::ErrorStatus setPattern(const ACHAR* comments, const double* lengths, int count);
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
};

class DRAFTHOST_API AcDbTextStyleTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbTextStyleTableRecord)
    AcDbTextStyleTableRecord();
    const ACHAR* fileName() const;  // "arial.ttf", "txt", "simplex.shx"
    const ACHAR* typeface() const;  // TrueType family from extended data; empty when none
    bool isBold() const;
    bool isItalic() const;
    Acad::ErrorStatus setFileName(const ACHAR* name);
    Acad::ErrorStatus setFont(const ACHAR* typeface, bool bold, bool italic);
    double textSize() const;  // 0: not fixed
    Acad::ErrorStatus setTextSize(double size);
    double xScale() const;
    Acad::ErrorStatus setXScale(double scale);
    double obliquingAngle() const;
    bool isBackward() const;
    bool isUpsideDown() const;
    bool isShapeFile() const;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
};

class DRAFTHOST_API AcDbRegAppTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbRegAppTableRecord)
    AcDbRegAppTableRecord();
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
};

// Records of the dimension style, view, coordinate system and viewport tables: their groups are kept as they
// are.
class DRAFTHOST_API AcDbPlainTableRecord : public AcDbSymbolTableRecord {
public:
    ACRX_DECLARE_MEMBERS(AcDbPlainTableRecord)
    // kind: DXF name of the record, "DIMSTYLE", "VIEW", "UCS" or "VPORT".
    explicit AcDbPlainTableRecord(const ACHAR* kind);
    const ACHAR* kind() const;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;
};

DRAFTHOST_SYMBOL_TABLE(AcDbBlockTable, AcDbBlockTableRecord);
DRAFTHOST_SYMBOL_TABLE(AcDbLayerTable, AcDbLayerTableRecord);
DRAFTHOST_SYMBOL_TABLE(AcDbLinetypeTable, AcDbLinetypeTableRecord);
DRAFTHOST_SYMBOL_TABLE(AcDbTextStyleTable, AcDbTextStyleTableRecord);
DRAFTHOST_SYMBOL_TABLE(AcDbRegAppTable, AcDbRegAppTableRecord);
DRAFTHOST_SYMBOL_TABLE(AcDbDimStyleTable, AcDbPlainTableRecord);
DRAFTHOST_SYMBOL_TABLE(AcDbViewTable, AcDbPlainTableRecord);
DRAFTHOST_SYMBOL_TABLE(AcDbUCSTable, AcDbPlainTableRecord);
DRAFTHOST_SYMBOL_TABLE(AcDbViewportTable, AcDbPlainTableRecord);

// Named object ids, in order of insertion.
class DRAFTHOST_API AcDbDictionary : public AcDbObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbDictionary)
    AcDbDictionary();
    Acad::ErrorStatus getAt(const ACHAR* name, AcDbObjectId& id) const;  // eKeyNotFound
    // Adds an object outside a database under the name; the caller closes it. Replaces an entry of the name.
    Acad::ErrorStatus setAt(const ACHAR* name, AcDbObject* object, AcDbObjectId& id);
    Acad::ErrorStatus remove(const ACHAR* name);
    int numEntries() const;
    Acad::ErrorStatus entryAt(int index, const ACHAR*& name, AcDbObjectId& id) const;
    Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const override;
    Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer) override;

protected:
    Acad::ErrorStatus subErase(bool erasing) override;
};

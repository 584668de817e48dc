#pragma once

// The drawing database, its transactions, and the host's application services.

#include "host/api/symbol_tables.h"

class AcDbTransactionManager;

class DRAFTHOST_API AcDbDatabase : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcDbDatabase)
    // buildDefaultDrawing: with layer "0", standard linetypes and styles, model and paper space; otherwise
    // empty, to be filled by reading a file. noDocument: a side database that belongs to no document and
    // needs no document lock.
    explicit AcDbDatabase(bool buildDefaultDrawing = true, bool noDocument = false);
    ~AcDbDatabase() override;  // objects still open are closed

    Acad::ErrorStatus getBlockTable(AcDbBlockTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getSymbolTable(AcDbBlockTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getSymbolTable(AcDbLayerTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getSymbolTable(AcDbLinetypeTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getSymbolTable(AcDbTextStyleTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getSymbolTable(AcDbRegAppTable*& table, AcDb::OpenMode mode) const;
    Acad::ErrorStatus getNamedObjectsDictionary(AcDbDictionary*& dictionary, AcDb::OpenMode mode) const;

    AcDbObjectId blockTableId() const;
    AcDbObjectId layerTableId() const;
    AcDbObjectId linetypeTableId() const;
    AcDbObjectId textStyleTableId() const;
    AcDbObjectId regAppTableId() const;
    AcDbObjectId dimStyleTableId() const;
    AcDbObjectId viewTableId() const;
    AcDbObjectId ucsTableId() const;
    AcDbObjectId viewportTableId() const;
    AcDbObjectId namedObjectsDictionaryId() const;
    AcDbObjectId modelSpaceId() const;
    AcDbObjectId paperSpaceId() const;
    AcDbObjectId layerZero() const;
    AcDbObjectId clayer() const;  // layer of new entities
    Acad::ErrorStatus setClayer(AcDbObjectId id);
    AcDbObjectId textstyle() const;  // style of new texts
    Acad::ErrorStatus setTextstyle(AcDbObjectId id);
    AcDbObjectId byLayerLinetype() const;
    AcDbObjectId byBlockLinetype() const;
    AcDbObjectId continuousLinetype() const;
    AcDbObjectId celtype() const;  // linetype of new entities
    std::uint16_t cecolor() const;
    double ltscale() const;
    double textsize() const;  // height of new texts without a fixed style height
    double dimscale() const;  // size of annotation; 0: by the viewport it is seen through

    // eUnknownHandle when there is no such object.
    Acad::ErrorStatus getAcDbObjectId(AcDbObjectId& id, AcDbHandle handle) const;
    // Adds an object that has no owner yet; the caller closes it.
    Acad::ErrorStatus addAcDbObject(AcDbObjectId& id, AcDbObject* object);
    AcDbTransactionManager* transactionManager() const;

    // Replaces the contents of a side database made empty. message: line number and reason of a failure; may
    // be null.
    Acad::ErrorStatus readDxfFile(const ACHAR* fileName, ACHAR** message = nullptr);
    // The same from a DWG file; a file with DXF content is read too, whatever its name. eFileNotFound,
    // eFileAccessErr; eInvalidFileVersion for a version that cannot be read; eFileInternalErr for a damaged
    // file or no drawing at all, after which the database is still empty. A message was asked for: as above.
    Acad::ErrorStatus readDwgFile(const ACHAR* fileName, int shareMode = AcDb::kDenyWrite,
                                  ACHAR** message = nullptr);
    // Makes the model space of another database a block definition of this one, with all that it refers to:
    // layers, linetypes, styles, applications, blocks. clashes: which of two records of the same name is
    // used. preserveSource false: the source's objects may be used up. id: the definition. A definition of
    // that name is redefined. Nothing is changed when it fails: eInvalidKey for an impossible name,
    // eSelfReference when the source shows a block of that name.
    Acad::ErrorStatus insert(AcDbObjectId& id, const ACHAR* blockName, AcDbDatabase* source,
                             bool preserveSource = true,
                             AcDb::DuplicateRecordCloning clashes = AcDb::kDrcIgnore);
    // Writes a temporary file beside the target and renames it, so that a failure leaves an existing file as
    // it was.
    Acad::ErrorStatus dxfOut(const ACHAR* fileName);
    const ACHAR* fileName() const;  // full path; empty for a new drawing

    struct Impl;
    Impl& impl() const { return *impl_; }  // opaque outside the host

private:
    Impl* impl_;  // owned
};

// Nested transactions of one database. Objects got from a transaction are closed by it; abort restores every
// object that was changed, and removes every object that was added, since the matching start.
class DRAFTHOST_API AcDbTransactionManager {
public:
    virtual ~AcDbTransactionManager();
    virtual Acad::ErrorStatus startTransaction() = 0;
    virtual Acad::ErrorStatus endTransaction() = 0;    // keeps the changes; eNoActiveTransactions
    virtual Acad::ErrorStatus abortTransaction() = 0;  // undoes them; eNoActiveTransactions
    virtual int numActiveTransactions() const = 0;
    virtual Acad::ErrorStatus getObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                        bool openErased = false) = 0;
};

class DRAFTHOST_API AcDbHostApplicationServices {
public:
    enum FindFileHint {
        kDefault = 0,
        kFontFile = 1,
        kShxFontFile = 2,
        kTrueTypeFontFile = 4,
        kEmbeddedImageFile = 5,
        kXRefDrawing = 6
    };
    virtual ~AcDbHostApplicationServices();
    // Where the file is on the search path: the name itself when it is an existing path, the drawing's
    // folder, the support path. eFileNotFound. database: whose folder to search; null: the working one's.
    virtual Acad::ErrorStatus findFile(ACHAR* pathOut, int bufferLength, const ACHAR* fileName,
                                       AcDbDatabase* database = nullptr, FindFileHint hint = kDefault) = 0;
    virtual AcDbDatabase* workingDatabase() const = 0;
    virtual void setWorkingDatabase(AcDbDatabase* database) = 0;
};
DRAFTHOST_API AcDbHostApplicationServices* acdbHostApplicationServices();

// Entity names and ids. A stale or made-up name gives eInvalidAdsName.
DRAFTHOST_API Acad::ErrorStatus acdbGetObjectId(AcDbObjectId& id, const ads_name name);
DRAFTHOST_API Acad::ErrorStatus acdbGetAdsName(ads_name& name, AcDbObjectId id);

// Entity data as value lists of groups, on the working database. Results are AdsResult values.
// application: list of RTSTR application names (wildcards) whose extended data are wanted; null: none. Caller
// frees.
DRAFTHOST_API resbuf* acdbEntGetX(const ads_name name, const resbuf* applications);
DRAFTHOST_API resbuf* acdbEntGet(const ads_name name);
DRAFTHOST_API int acdbEntMake(const resbuf* data);  // into the current space or the block being made
DRAFTHOST_API int acdbEntMakeX(const resbuf* data, ads_name result);  // result: the new entity or definition
DRAFTHOST_API int acdbEntMod(const resbuf* data);                     // named by its group -1
DRAFTHOST_API int acdbEntDel(const ads_name name);                    // erases, or restores an erased one
DRAFTHOST_API int acdbEntUpd(const ads_name name);
DRAFTHOST_API int acdbEntNext(const ads_name after, ads_name result);  // after null or nil: the first
DRAFTHOST_API int acdbEntLast(ads_name result);
DRAFTHOST_API int acdbHandEnt(const ACHAR* handle, ads_name result);
DRAFTHOST_API resbuf* acdbTblSearch(const ACHAR* table, const ACHAR* symbol, bool setNext);  // caller frees
DRAFTHOST_API resbuf* acdbTblNext(const ACHAR* table, bool rewind);                          // caller frees
DRAFTHOST_API int acdbTblObjName(const ACHAR* table, const ACHAR* symbol, ads_name result);
DRAFTHOST_API int acdbRegApp(const ACHAR* application);

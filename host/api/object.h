#pragma once

// Base of everything that lives in a drawing database, and ways to open it.

#include "host/api/database_ids.h"
#include "host/api/graphics.h"
#include "host/api/resbuf.h"

class AcDbAuditInfo;
class AcDbDwgFiler;
class AcDbDxfFiler;
class AcDbObject;
namespace drafthost {
struct ObjectImp;
}

// Opens an object. eWasErased for an erased one unless openErased; eWasOpenForWrite, eWasOpenForRead and
// eWasOpenForNotify when the modes conflict; eOnLockedLayer for an entity on a locked layer that is opened
// for write; eLockViolation when the document is not locked for writing. Any number may read at once; one may
// write, alone.
DRAFTHOST_API Acad::ErrorStatus acdbOpenAcDbObject(AcDbObject*& object, AcDbObjectId id, AcDb::OpenMode mode,
                                                   bool openErased = false);
template <class T>
Acad::ErrorStatus acdbOpenObject(T*& object, AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false);

class DRAFTHOST_API AcDbObject : public AcGiDrawable {
public:
    ACRX_DECLARE_MEMBERS(AcDbObject)
    ~AcDbObject() override;

    AcDbObjectId objectId() const;  // null: not in a database
    AcDbObjectId ownerId() const;
    void setOwnerId(AcDbObjectId owner);
    AcDbHandle handle() const;
    AcDbDatabase* database() const;  // null: not in a database
    AcDbObjectId extensionDictionary() const;

    // Ends one open; objects that are not in a database return eNotInDatabase and are deleted by their owner.
    Acad::ErrorStatus close();
    // From read to write; fails when another reader exists.
    Acad::ErrorStatus upgradeOpen();
    Acad::ErrorStatus downgradeOpen();
    // Marks erased or restores. The id stays valid. Needs write.
    Acad::ErrorStatus erase(bool erasing = true);
    bool isErased() const;
    bool isReadEnabled() const;   // true for objects outside a database
    bool isWriteEnabled() const;  // true for objects outside a database
    bool isModified() const;      // since it was opened for write
    bool isTransactionResident() const;
    // For classes of modules: true when members may be read; true when they may be changed, after their
    // present values were saved for undo and for the running transactions. Call the second before every
    // change.
    bool assertReadEnabled() const { return isReadEnabled(); }
    bool assertWriteEnabled();

    // Extended data of one application, or of all (null or empty name), as a list that starts with group
    // 1001; null when there is none. Caller frees.
    resbuf* xData(const ACHAR* application = nullptr) const;
    // Replaces the data of each application named in the list; a lone 1001 removes that application's data.
    // eRegappIdNotFound when the application is not registered, eInvalidXdata, eXdataSizeExceeded (16383
    // bytes).
    Acad::ErrorStatus setXData(const resbuf* data);

    Acad::ErrorStatus
    dxfOut(AcDbDxfFiler* filer) const;  // with owner, reactors, dictionary and extended data
    Acad::ErrorStatus dxfIn(AcDbDxfFiler* filer);
    // The same in the exact, unnamed form in which objects are copied, undone and inserted. Classes of
    // modules file their own members behind their parent's.
    Acad::ErrorStatus dwgOut(AcDbDwgFiler* filer) const;
    Acad::ErrorStatus dwgIn(AcDbDwgFiler* filer);
    // eMakeMeProxy from reading: the data are of a newer version of the class; the host keeps them in a
    // proxy.
    virtual Acad::ErrorStatus dwgInFields(AcDbDwgFiler* filer);
    virtual Acad::ErrorStatus dwgOutFields(AcDbDwgFiler* filer) const;
    virtual Acad::ErrorStatus dxfInFields(AcDbDxfFiler* filer);
    virtual Acad::ErrorStatus dxfOutFields(AcDbDxfFiler* filer) const;
    // Checks the object's data, and mends them when the audit says so. Called after a drawing was read.
    virtual Acad::ErrorStatus audit(AcDbAuditInfo* info);

    // A copy outside any database; caller owns. Null for classes that cannot be copied.
    AcDbObject* clone() const;

protected:
    AcDbObject();                                    // for classes of modules
    explicit AcDbObject(drafthost::ObjectImp* imp);  // takes ownership
    bool subWorldDraw(AcGiWorldDraw* worldDraw) override;
    virtual Acad::ErrorStatus subErase(bool erasing);

private:
    friend struct drafthost::ObjectImp;
    drafthost::ObjectImp* imp_;  // owned
};

// What an audit found, told by the objects that it checks.
class DRAFTHOST_API AcDbAuditInfo {
public:
    virtual ~AcDbAuditInfo();
    virtual bool fixErrors() const = 0;  // mend what can be mended
    // One error of an object. value: what stands there; validation: what should; mended: what was put there.
    virtual void printError(const AcDbObject* object, const ACHAR* value, const ACHAR* validation,
                            const ACHAR* mended) = 0;
    virtual void errorsFound(int count) = 0;
    virtual void errorsFixed(int count) = 0;
};

template <class T>
Acad::ErrorStatus acdbOpenObject(T*& object, AcDbObjectId id, AcDb::OpenMode mode, bool openErased) {
    object = nullptr;
    AcDbObject* opened = nullptr;
    const Acad::ErrorStatus status = acdbOpenAcDbObject(opened, id, mode, openErased);
    if (status != Acad::eOk)
        return status;
    object = T::cast(opened);
    if (object)
        return Acad::eOk;
    opened->close();
    return Acad::eNotThatKindOfClass;
}

// Opens an object for the lifetime of the pointer and closes it.
template <class T>
class AcDbObjectPointer {
public:
    AcDbObjectPointer() = default;
    AcDbObjectPointer(AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false)
        : status_(acdbOpenObject(object_, id, mode, openErased)) {}
    ~AcDbObjectPointer() { close(); }
    AcDbObjectPointer(const AcDbObjectPointer&) = delete;
    AcDbObjectPointer& operator=(const AcDbObjectPointer&) = delete;
    AcDbObjectPointer(AcDbObjectPointer&& other) noexcept : object_(other.object_), status_(other.status_) {
        other.object_ = nullptr;
    }
    Acad::ErrorStatus openStatus() const { return status_; }
    Acad::ErrorStatus open(AcDbObjectId id, AcDb::OpenMode mode, bool openErased = false) {
        close();
        return status_ = acdbOpenObject(object_, id, mode, openErased);
    }
    Acad::ErrorStatus close() {
        if (!object_)
            return Acad::eNullObjectPointer;
        const Acad::ErrorStatus status = object_->close();
        object_ = nullptr;
        return status;
    }
    T* object() const { return object_; }
    T* operator->() const { return object_; }
    T& operator*() const { return *object_; }
    explicit operator bool() const { return object_ != nullptr; }

private:
    T* object_ = nullptr;
    Acad::ErrorStatus status_ = Acad::eNullObjectPointer;
};

#include "host/api/status.h"

namespace {

struct StatusText {
    Acad::ErrorStatus status;
    const ACHAR* text;
};

#define DRAFTHOST_STATUS(NAME)                                                                               \
    { Acad::NAME, L"" #NAME }
constexpr StatusText kStatusTexts[] = {
    DRAFTHOST_STATUS(eOk),
    DRAFTHOST_STATUS(eNotApplicable),
    DRAFTHOST_STATUS(eInvalidInput),
    DRAFTHOST_STATUS(eOutOfMemory),
    DRAFTHOST_STATUS(eInvalidOpenState),
    DRAFTHOST_STATUS(eHandleExists),
    DRAFTHOST_STATUS(eNullHandle),
    DRAFTHOST_STATUS(eUnknownHandle),
    DRAFTHOST_STATUS(eNullObjectPointer),
    DRAFTHOST_STATUS(eNullObjectId),
    DRAFTHOST_STATUS(eNullBlockName),
    DRAFTHOST_STATUS(eIllegalEntityType),
    DRAFTHOST_STATUS(eKeyNotFound),
    DRAFTHOST_STATUS(eDuplicateKey),
    DRAFTHOST_STATUS(eInvalidIndex),
    DRAFTHOST_STATUS(eAlreadyInDb),
    DRAFTHOST_STATUS(eInvalidExtents),
    DRAFTHOST_STATUS(eInvalidAdsName),
    DRAFTHOST_STATUS(eInvalidKey),
    DRAFTHOST_STATUS(eWrongObjectType),
    DRAFTHOST_STATUS(eWrongDatabase),
    DRAFTHOST_STATUS(eEndOfObject),
    DRAFTHOST_STATUS(eEndOfFile),
    DRAFTHOST_STATUS(eBadDxfSequence),
    DRAFTHOST_STATUS(eFilerError),
    DRAFTHOST_STATUS(eNotOpenForRead),
    DRAFTHOST_STATUS(eNotOpenForWrite),
    DRAFTHOST_STATUS(eWasOpenForRead),
    DRAFTHOST_STATUS(eWasOpenForWrite),
    DRAFTHOST_STATUS(eWasOpenForNotify),
    DRAFTHOST_STATUS(eWasErased),
    DRAFTHOST_STATUS(ePermanentlyErased),
    DRAFTHOST_STATUS(eNotInDatabase),
    DRAFTHOST_STATUS(eNoDatabase),
    DRAFTHOST_STATUS(eNotThatKindOfClass),
    DRAFTHOST_STATUS(eOnLockedLayer),
    DRAFTHOST_STATUS(eNotTopTransaction),
    DRAFTHOST_STATUS(eNoActiveTransactions),
    DRAFTHOST_STATUS(eLockViolation),
    DRAFTHOST_STATUS(eNoDocument),
    DRAFTHOST_STATUS(eSelfReference),
    DRAFTHOST_STATUS(eDegenerateGeometry),
    DRAFTHOST_STATUS(eNonUniformScale),
    DRAFTHOST_STATUS(eFileNotFound),
    DRAFTHOST_STATUS(eFileAccessErr),
    DRAFTHOST_STATUS(eFileInternalErr),
    DRAFTHOST_STATUS(eInvalidFileVersion),
    DRAFTHOST_STATUS(eCannotBeErased),
    DRAFTHOST_STATUS(eIllegalReplacement),
    DRAFTHOST_STATUS(eRegappIdNotFound),
    DRAFTHOST_STATUS(eInvalidXdata),
    DRAFTHOST_STATUS(eXdataSizeExceeded),
    DRAFTHOST_STATUS(eUserBreak),
    DRAFTHOST_STATUS(eMakeMeProxy),
};
#undef DRAFTHOST_STATUS

}  // namespace

const ACHAR* acadErrorStatusText(Acad::ErrorStatus status) {
    for (const StatusText& entry : kStatusTexts) {
        if (entry.status == status)
            return entry.text;
    }
    return L"eUnknownStatus";
}

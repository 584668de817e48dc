#pragma once

#include "host/api/types.h"

// Status values of the database and editor interface.
namespace Acad {
enum ErrorStatus : int {
    eOk = 0,
    eNotApplicable = 2,
    eInvalidInput = 3,
    eOutOfMemory = 6,
    eInvalidOpenState = 8,
    eHandleExists = 10,
    eNullHandle = 11,
    eUnknownHandle = 13,
    eNullObjectPointer = 15,
    eNullObjectId = 16,
    eNullBlockName = 17,
    eIllegalEntityType = 20,
    eKeyNotFound = 21,
    eDuplicateKey = 22,
    eInvalidIndex = 23,
    eAlreadyInDb = 25,
    eInvalidExtents = 29,
    eInvalidAdsName = 30,
    eInvalidKey = 32,
    eWrongObjectType = 33,
    eWrongDatabase = 34,
    eEndOfObject = 39,
    eEndOfFile = 40,
    eBadDxfSequence = 52,
    eFilerError = 53,
    eNotOpenForRead = 60,
    eNotOpenForWrite = 61,
    eWasOpenForRead = 62,   // open for write refused: somebody reads it
    eWasOpenForWrite = 63,  // open refused: somebody writes it
    eWasOpenForNotify = 64,
    eWasErased = 65,
    ePermanentlyErased = 66,
    eNotInDatabase = 67,
    eNoDatabase = 68,
    eNotThatKindOfClass = 69,
    eOnLockedLayer = 70,
    eNotTopTransaction = 71,
    eNoActiveTransactions = 72,
    eLockViolation = 73,  // the document is not locked for writing
    eNoDocument = 74,
    eSelfReference = 75,  // a block that would contain itself
    eDegenerateGeometry = 76,
    eNonUniformScale = 77,
    eFileNotFound = 90,
    eFileAccessErr = 91,
    eFileInternalErr = 92,  // damaged file
    eInvalidFileVersion = 93,
    eCannotBeErased = 94,
    eIllegalReplacement = 95,
    eRegappIdNotFound = 96,
    eInvalidXdata = 97,
    eXdataSizeExceeded = 98,
    eProxyRefused = 99,  // the class of a proxy, which is not there, does not allow the operation
    eUserBreak = 120,
    eMakeMeProxy = 301,
};
}  // namespace Acad

// Text of a status for messages, for example "eWasErased". Never null.
DRAFTHOST_API const ACHAR* acadErrorStatusText(Acad::ErrorStatus status);

#pragma once

// Errors of the database server, with the numbers that programs written for the product's file databases
// know.

#include "server/values/value.h"

#include <exception>

namespace tessary::server {

// Numbers of the errors. Callers compare with 3021 and 3043; the others are for the drafter who looks one up.
enum class ErrorCode : int {
    invalidArgument = 3001,
    couldNotStart = 3002,  // an operation inside an operation, and internal faults
    tableExists = 3010,
    invalidOperation = 3219,
    noCurrentIndex = 3019,
    noCurrentRecord = 3021,
    duplicateKey = 3022,
    fileNotFound = 3024,
    readOnly = 3027,
    diskFull = 3026,
    diskOrNetwork = 3043,
    pathNotValid = 3044,
    cannotOpen = 3051,  // in use exclusively, a folder, or no permission
    tooFewParameters = 3061,
    ambiguousName = 3079,  // a field that several tables of a statement have
    syntax = 3075,
    tableNotFound = 3078,
    unknownFunction = 3085,
    notGrouped = 3122,      // a field beside aggregates that is not in GROUP BY
    divisionByZero = 3058,  // and other results that are no number
    fieldTooSmall = 3163,
    recordDeleted = 3167,
    relatedRecordsExist = 3200,
    relatedRecordMissing = 3201,
    databaseExists = 3204,
    cannotDropRelated = 3281,
    locked = 3218,
    noField = 3264,       // a text file to link without a field
    itemNotFound = 3265,  // a field, index, relation or query that does not exist
    duplicateField = 3191,
    itemExists = 3012,  // a query or relation of that name exists
    indexExists = 3284,
    indexNotFound = 3015,
    fieldNotInDefinition = 3799,
    typeUnknown = 3259,
    nameNotValid = 3125,
    syntaxInDefinition = 3290,
    syntaxInInsert = 3134,
    valueRequired = 3314,
    conversion = 3421,
    noTableOpen = 3420,
    noUniqueIndex = 3609,  // on the fields that a relation refers to
    notADatabase = 3343,
    damaged = 3049,
    cannotUpdateQuery = 3073,
    tooComplex = 3360,
    tooManyFields = 3190,
    autonumberOnlyOne = 3291,
    typeMismatch = 3464,
};

// Thrown by everything below the interface, and turned into a pending error there.
class DatabaseError : public std::exception {
public:
    // The text names the table, field or file it is about, and ends with a full stop.
    DatabaseError(ErrorCode code, Text text) : code_(code), text_(std::move(text)) {}

    ErrorCode code() const { return code_; }
    const Text& text() const { return text_; }
    const char* what() const noexcept override { return "database error"; }

private:
    ErrorCode code_;
    Text text_;
};

}  // namespace tessary::server

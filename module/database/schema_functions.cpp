#include "module/database/schema_functions.h"

#include "host/api/editor.h"
#include "module/binding/argument_readers.h"
#include "module/binding/variant_conversion.h"
#include "module/database/server_connection.h"
#include "module/database/server_results.h"

namespace tessary {

namespace {

using DefinitionMethod = HRESULT (STDMETHODCALLTYPE DatabaseConnection::*)(BSTR, VARIANT, VARIANT_BOOL*);

// A definition is the arguments behind the name, whatever they are: only the server knows what it means.
HandlerStatus defineTable(DatabaseConnection& connection, DefinitionMethod method) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring table;
    if (!readString(cursor, table)) {
        return HandlerStatus::wrongType;
    }
    SafeArray array;
    if (!listToVariantArray(cursor, array)) {
        return HandlerStatus::success;
    }
    const Variant definition = Variant::fromArray(std::move(array));
    return returnText(succeeds(connection, method, Bstr(table).get(), definition.get()), table.c_str());
}

struct TwoTexts {
    std::wstring first;
    std::wstring second;
};

bool readTwoTexts(ArgCursor cursor, TwoTexts& texts) {
    return readString(cursor, texts.first) && readString(cursor, texts.second);
}

}  // namespace

HandlerStatus createTable(DatabaseConnection& connection) {
    return defineTable(connection, &DatabaseConnection::CreateTable);
}

HandlerStatus modifyTable(DatabaseConnection& connection) {
    return defineTable(connection, &DatabaseConnection::ModifyTable);
}

HandlerStatus deleteTable(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    if (!cursor) {
        return HandlerStatus::tooFewArguments;
    }
    std::wstring table;
    if (!readString(cursor, table)) {
        return HandlerStatus::wrongType;
    }
    short withRelations = VARIANT_FALSE;
    readVariantBool(cursor, withRelations);
    if (!succeeds(connection, &DatabaseConnection::DeleteTable, Bstr(table).get(), withRelations)) {
        reportServerError();
    }
    // Also after success: programs find out with ts_exist.
    acedRetNil();
    return HandlerStatus::success;
}

HandlerStatus renameTable(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    TwoTexts names;
    if (!readTwoTexts(arguments.first(), names)) {
        return HandlerStatus::wrongType;
    }
    const bool renamed = succeeds(connection, &DatabaseConnection::RenameTable, Bstr(names.first).get(),
                                  Bstr(names.second).get());
    return returnText(renamed, names.second.c_str());
}

HandlerStatus tableStructure(DatabaseConnection& connection) {
    Variant fields;
    return returnPairs(succeeds(connection, &DatabaseConnection::Structure, fields.receive()), fields);
}

HandlerStatus tableNames(DatabaseConnection& connection) {
    Variant names;
    return returnValues(succeeds(connection, &DatabaseConnection::ListTables, names.receive()), names);
}

HandlerStatus indexNames(DatabaseConnection& connection) {
    Variant names;
    return returnValues(succeeds(connection, &DatabaseConnection::ListIndexes, names.receive()), names);
}

HandlerStatus createIndex(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring table;
    std::wstring index;
    short unique = VARIANT_FALSE;
    short primary = VARIANT_FALSE;
    if (!readString(cursor, table) || !readString(cursor, index) || !readVariantBool(cursor, unique) ||
        !readVariantBool(cursor, primary)) {
        return HandlerStatus::wrongType;
    }
    return returnTruth(succeeds(connection, &DatabaseConnection::CreateIndex, Bstr(table).get(),
                                Bstr(index).get(), unique, primary));
}

HandlerStatus isFieldRequired(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    TwoTexts names;
    if (!readTwoTexts(arguments.first(), names)) {
        return HandlerStatus::wrongType;
    }
    VARIANT_BOOL required = VARIANT_FALSE;
    const bool answered = succeeds(connection, &DatabaseConnection::FieldRequired, Bstr(names.first).get(),
                                   Bstr(names.second).get(), &required);
    return returnTruth(answered, required == VARIANT_TRUE);
}

HandlerStatus fieldAttributes(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring field;
    if (!readString(cursor, field)) {
        return HandlerStatus::wrongType;
    }
    Variant attributes;
    const bool answered =
        succeeds(connection, &DatabaseConnection::Attributes, Bstr(field).get(), attributes.receive());
    return returnPairs(answered, attributes);
}

HandlerStatus relationExists(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    ArgCursor cursor = arguments.first();
    std::wstring relation;
    if (!readString(cursor, relation)) {
        return HandlerStatus::wrongType;
    }
    VARIANT_BOOL exists = VARIANT_FALSE;
    const bool answered =
        succeeds(connection, &DatabaseConnection::RelationExists, Bstr(relation).get(), &exists);
    return returnTruth(answered, exists == VARIANT_TRUE);
}

HandlerStatus deleteRelation(DatabaseConnection& connection) {
    acedRetNil();
    const ArgumentList arguments;
    TwoTexts names;
    if (!readTwoTexts(arguments.first(), names)) {
        return HandlerStatus::wrongType;
    }
    return returnTruth(succeeds(connection, &DatabaseConnection::DeleteRelation, Bstr(names.first).get(),
                                Bstr(names.second).get()));
}

}  // namespace tessary

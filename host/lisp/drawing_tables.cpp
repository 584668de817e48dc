// Symbol tables and dictionaries.

#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/documents/document.h"
#include "host/editor/value_conversion.h"
#include "host/lisp/drawing_functions.h"

namespace drafthost::lisp {

namespace {

using editor::ValueList;

Value tblsearch(Interpreter& interpreter, Arguments arguments) {
    const ValueList groups(
        acdbTblSearch(arguments.string(0).c_str(), arguments.string(1).c_str(), arguments.has(2)));
    return editor::valueFromGroups(interpreter, groups.get());
}

Value tblnext(Interpreter& interpreter, Arguments arguments) {
    const ValueList groups(acdbTblNext(arguments.string(0).c_str(), arguments.has(1)));
    return editor::valueFromGroups(interpreter, groups.get());
}

Value tblobjname(Interpreter& interpreter, Arguments arguments) {
    ads_name name = {0, 0};
    if (acdbTblObjName(arguments.string(0).c_str(), arguments.string(1).c_str(), name) != RTNORM)
        return {};
    return interpreter.entityName(static_cast<std::uint64_t>(name[0]), static_cast<std::uint64_t>(name[1]));
}

AcDbDatabase& databaseOf(Interpreter& interpreter) {
    return *interpreter.attached<Document>().database();
}

Value namedobjdict(Interpreter& interpreter, Arguments) {
    return editor::entityValue(interpreter, databaseOf(interpreter).namedObjectsDictionaryId());
}

AcDbObjectId idArgument(Arguments arguments, std::size_t index) {
    arguments.entityName(index);  // raises for other values
    return editor::entityOf(arguments[index]);
}

Value groupsOf(Interpreter& interpreter, AcDbObjectId id) {
    ads_name name = {0, 0};
    if (acdbGetAdsName(name, id) != Acad::eOk)
        return {};
    const ValueList groups(acdbEntGet(name));
    return editor::valueFromGroups(interpreter, groups.get());
}

// Index of the entry, -1 when there is none.
int entryIndex(const AcDbDictionary& dictionary, const std::wstring& wanted) {
    for (int i = 0; i < dictionary.numEntries(); ++i) {
        const ACHAR* name = nullptr;
        AcDbObjectId id;
        if (dictionary.entryAt(i, name, id) == Acad::eOk && equalNames(name, wanted))
            return i;
    }
    return -1;
}

Value dictsearch(Interpreter& interpreter, Arguments arguments) {
    const AcDbObjectId dictionaryId = idArgument(arguments, 0);
    AcDbObjectId id;
    {
        const AcDbObjectPointer<AcDbDictionary> dictionary(dictionaryId, AcDb::kForRead);
        if (!dictionary || dictionary->getAt(arguments.string(1).c_str(), id) != Acad::eOk)
            return {};
        if (arguments.has(2)) {
            interpreter.attached<Document>().dictionaryPositions()[dictionaryId] =
                entryIndex(*dictionary, arguments.string(1)) + 1;
        }
    }
    return groupsOf(interpreter, id);
}

Value dictnext(Interpreter& interpreter, Arguments arguments) {
    const AcDbObjectId dictionaryId = idArgument(arguments, 0);
    int& position = interpreter.attached<Document>().dictionaryPositions()[dictionaryId];
    if (arguments.has(1))
        position = 0;
    AcDbObjectId id;
    {
        const AcDbObjectPointer<AcDbDictionary> dictionary(dictionaryId, AcDb::kForRead);
        const ACHAR* name = nullptr;
        if (!dictionary || dictionary->entryAt(position, name, id) != Acad::eOk)
            return {};
    }
    ++position;
    return groupsOf(interpreter, id);
}

Value dictremove(Interpreter& interpreter, Arguments arguments) {
    const AcDbObjectPointer<AcDbDictionary> dictionary(idArgument(arguments, 0), AcDb::kForWrite);
    AcDbObjectId id;
    const std::wstring& name = arguments.string(1);
    if (!dictionary || dictionary->getAt(name.c_str(), id) != Acad::eOk ||
        dictionary->remove(name.c_str()) != Acad::eOk) {
        return {};
    }
    return editor::entityValue(interpreter, id);
}

// Names of the layouts in the order of the dictionary, without the model's.
Value layoutlist(Interpreter& interpreter, Arguments) {
    const AcDbObjectPointer<AcDbDictionary> named(databaseOf(interpreter).namedObjectsDictionaryId(),
                                                  AcDb::kForRead);
    AcDbObjectId id;
    if (!named || named->getAt(L"ACAD_LAYOUT", id) != Acad::eOk)
        return {};
    const AcDbObjectPointer<AcDbDictionary> layouts(id, AcDb::kForRead);
    ListBuilder names(interpreter);
    for (int i = 0; layouts && i < layouts->numEntries(); ++i) {
        const ACHAR* name = nullptr;
        if (layouts->entryAt(i, name, id) == Acad::eOk && !equalNames(name, L"Model")) {
            names.append(interpreter.string(name));
        }
    }
    return names.list();
}

Value snvalid(Interpreter& interpreter, Arguments arguments) {
    return interpreter.boolean(isValidSymbolName(arguments.string(0)));
}

constexpr BuiltinDefinition kTable[] = {
    {L"tblsearch", tblsearch, 2, 3, L"(tblsearch table name [setnext]) -> groups of the record, or nil"},
    {L"tblnext", tblnext, 1, 2, L"(tblnext table [rewind]) -> groups of the next record, or nil"},
    {L"tblobjname", tblobjname, 2, 2, L"(tblobjname table name) -> entity name of the record, or nil"},
    {L"namedobjdict", namedobjdict, 0, 0, L"(namedobjdict) -> entity name of the named objects dictionary"},
    {L"dictsearch", dictsearch, 2, 3,
     L"(dictsearch dictionary name [setnext]) -> groups of the entry, or nil"},
    {L"dictnext", dictnext, 1, 2, L"(dictnext dictionary [rewind]) -> groups of the next entry, or nil"},
    {L"dictremove", dictremove, 2, 2, L"(dictremove dictionary name) -> entity name of the entry, or nil"},
    {L"layoutlist", layoutlist, 0, 0, L"(layoutlist) -> names of the paper space layouts"},
    {L"snvalid", snvalid, 1, 2, L"(snvalid name) -> T when the name can be a symbol table record's"},
};

}  // namespace

std::span<const BuiltinDefinition> drawingTableFunctions() {
    return kTable;
}

}  // namespace drafthost::lisp

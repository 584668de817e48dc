#include "module/standards/standards_record.h"

#include <comdef.h>

#include <algorithm>
#include <cwctype>
#include <iterator>
#include <type_traits>
#include <utility>

namespace tessary {

namespace {

constexpr std::size_t keyField = 0;
constexpr std::size_t masterLinkFields = 2;
constexpr const wchar_t* currentOrder = L"";

std::wstring withoutTrailingSpace(std::wstring text) {
    while (!text.empty() && std::iswspace(text.back())) {
        text.pop_back();
    }
    return text;
}

// The value in another type; VT_EMPTY when there is no such value.
Variant converted(const VARIANT& value, VARTYPE type) {
    Variant result;
    if (FAILED(VariantChangeType(result.receive(), const_cast<VARIANT*>(&value), 0, type))) {
        return Variant();
    }
    return result;
}

bool isNothing(const VARIANT& value) {
    return value.vt == VT_EMPTY || value.vt == VT_NULL;
}

}  // namespace

StandardsRecord::StandardsRecord(const StandardsTable& table, bool skipMasterLink,
                                 ConnectionPointer connection)
    : connection_(std::move(connection)), table_(table), skipMasterLink_(skipMasterLink) {
    std::transform(table.fields.begin(), table.fields.end(), std::back_inserter(fields_),
                   [](const StandardsField& field) {
                       return Field{.value = emptyValue(field.type), .isNull = field.canBeNull};
                   });
}

StandardsRecord::Value StandardsRecord::emptyValue(FieldType type) {
    switch (type) {
        case FieldType::text: return std::wstring();
        case FieldType::yesNo: return false;
        case FieldType::real: return 0.0;
        case FieldType::number: break;
    }
    return 0;
}

StandardsRecord::Value StandardsRecord::loadedValue(FieldType type, const VARIANT& value) {
    switch (type) {
        case FieldType::text:
            return withoutTrailingSpace(value.vt == VT_BSTR ? textOf(value.bstrVal) : std::wstring());
        case FieldType::yesNo: {
            // As a number, since any number but 0 would become a truth value that is true.
            const Variant flag = converted(value, VT_I2);
            return flag.type() == VT_I2 && flag.get().iVal == VARIANT_TRUE;
        }
        case FieldType::real: {
            const Variant real = converted(value, VT_R8);
            return real.type() == VT_R8 ? real.get().dblVal : 0.0;
        }
        case FieldType::number: break;
    }
    const Variant number = converted(value, VT_I4);
    return number.type() == VT_I4 ? static_cast<int>(number.get().lVal) : 0;
}

Variant StandardsRecord::writtenValue(const Field& field) {
    if (field.isNull) {
        return Variant::null();
    }
    const auto write = [](const auto& value) {
        using Type = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<Type, bool>) {
            return Variant::fromShort(value ? VARIANT_TRUE : VARIANT_FALSE);
        } else if constexpr (std::is_same_v<Type, double>) {
            return Variant::fromReal(value);
        } else if constexpr (std::is_same_v<Type, int>) {
            return variantFromLong(value);
        } else {
            return variantFromString(value);
        }
    };
    return std::visit(write, field.value);
}

// Whatever follows is not done on a table that could not be opened: it would meet the one opened before.
bool StandardsRecord::selectTable(const wchar_t* index) {
    return connection_ && succeeds(*connection_, &DatabaseConnection::SelectTable, Bstr(table_.name).get(),
                                   Bstr(index).get());
}

void StandardsRecord::setIndex(const std::wstring& name) {
    selectTable(name.c_str());
}

bool StandardsRecord::seek(const wchar_t* index, const Variant& key) {
    Variant row;
    if (!selectTable(index) || !succeeds(*connection_, &DatabaseConnection::Seek, key.get(), row.receive())) {
        return false;
    }
    loadRecord(row.get());
    return true;
}

bool StandardsRecord::seekByIx(int key) {
    return seek(table_.keyIndex, variantFromLong(key));
}

bool StandardsRecord::isAt(Method test) {
    return !selectTable(currentOrder) || callForFlag(*connection_, test) == VARIANT_TRUE;
}

bool StandardsRecord::isBOF() {
    return isAt(&DatabaseConnection::IsAtBeginning);
}

bool StandardsRecord::isEOF() {
    return isAt(&DatabaseConnection::IsAtEnd);
}

template <class MoveTo, class... Arguments>
void StandardsRecord::move(MoveTo method, Arguments... arguments) {
    Variant row;
    if (selectTable(currentOrder) && succeeds(*connection_, method, arguments..., row.receive())) {
        loadRecord(row.get());
    }
}

void StandardsRecord::moveFirst() {
    move(&DatabaseConnection::MoveFirst);
}

void StandardsRecord::moveNext() {
    move(&DatabaseConnection::Skip, 1L);
}

void StandardsRecord::moveLast() {
    move(&DatabaseConnection::MoveLast);
}

void StandardsRecord::clearChanges() {
    for (Field& field : fields_) {
        field.changed = false;
    }
}

void StandardsRecord::addNew() {
    if (connection_) {
        mode_ = Mode::adding;
        clearChanges();
    }
}

void StandardsRecord::edit() {
    if (connection_) {
        mode_ = Mode::editing;
        clearChanges();
        savedKey_ = value<int>(keyField);
    }
}

void StandardsRecord::remove() {
    if (selectTable(table_.keyIndex) && seekByIx(value<int>(keyField))) {
        succeeds(*connection_, &DatabaseConnection::DeleteRecord);
    }
}

void StandardsRecord::setNull(std::size_t field) {
    if (connection_) {
        fields_[field].isNull = true;
        fields_[field].changed = true;
    }
}

void StandardsRecord::loadField(const VARIANT& name, const VARIANT& value) {
    const std::wstring wanted = name.vt == VT_BSTR ? textOf(name.bstrVal) : std::wstring();
    const auto found = std::find_if(table_.fields.begin(), table_.fields.end(),
                                    [&](const StandardsField& field) { return wanted == field.name; });
    if (found == table_.fields.end()) {
        return;
    }
    Field& field = fields_[static_cast<std::size_t>(found - table_.fields.begin())];
    field.isNull = found->canBeNull && isNothing(value);
    field.value = loadedValue(found->type, value);
}

void StandardsRecord::loadRecord(const VARIANT& row) {
    if (!connection_) {
        return;
    }
    const VariantElements elements(row.vt == (VT_ARRAY | VT_VARIANT) ? row.parray : nullptr);
    const std::span<const VARIANT> values = elements.values();
    for (std::size_t i = 0; i < values.size(); i += 2) {
        if (i + 1 == values.size()) {
            throw _com_error(DISP_E_BADINDEX);
        }
        loadField(values[i], values[i + 1]);
    }
    clearChanges();
    savedKey_ = 0;
}

std::vector<Variant> StandardsRecord::changedPairs() const {
    const std::size_t written = fields_.size() - (skipMasterLink_ ? masterLinkFields : 0);
    std::vector<Variant> pairs;
    for (std::size_t i = 0; i < written; ++i) {
        if (fields_[i].changed) {
            pairs.push_back(variantFromString(table_.fields[i].name));
            pairs.push_back(writtenValue(fields_[i]));
        }
    }
    return pairs;
}

bool StandardsRecord::append(const Variant& row) {
    Variant stored;
    if (!selectTable(table_.keyIndex) || !succeeds(*connection_, &DatabaseConnection::Append, row.get(),
                                                   VARIANT_BOOL{VARIANT_FALSE}, stored.receive())) {
        return false;
    }
    loadRecord(stored.get());
    return true;
}

bool StandardsRecord::replace(const Variant& row) {
    // Finding the row loads it over what was set, which a declined change has to leave.
    std::vector<Field> asSet = fields_;
    Variant stored;
    if (!seekByIx(savedKey_)) {
        return false;
    }
    if (succeeds(*connection_, &DatabaseConnection::Replace, row.get(), stored.receive())) {
        loadRecord(stored.get());
        return true;
    }
    fields_ = std::move(asSet);
    return false;
}

bool StandardsRecord::update() {
    std::vector<Variant> pairs = connection_ ? changedPairs() : std::vector<Variant>();
    if (pairs.empty()) {
        return false;
    }
    const Variant row = Variant::fromArray(makeVariantArray(pairs));
    const bool written = (mode_ == Mode::adding && append(row)) || (mode_ == Mode::editing && replace(row));
    mode_ = Mode::browsing;
    clearChanges();
    return written;
}

}  // namespace tessary

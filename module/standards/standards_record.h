#pragma once

// What the record classes of the standards database have in common. A record stands for one row of its table
// at a time: the one that a seek or a move found last, or one that is being added. All work goes through a
// connection that has the database open already; without a connection nothing is done and the answers are
// false.
//
// A call that fails as such is thrown as a _com_error.

#include "module/database/server_connection.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace tessary {

// How a field is kept and how its value travels: number as VT_I4, text as VT_BSTR, yesNo as VT_I2 (-1 or 0),
// real as VT_R8.
enum class FieldType { number, text, yesNo, real };

struct StandardsField {
    const wchar_t* name;
    FieldType type;
    bool canBeNull = false;
};

// A table as its record class sees it. fields: in the table's order, in which they are also written; the
// first is the key, which the database assigns, the last two link the row to the master database.
struct StandardsTable {
    const wchar_t* name;
    const wchar_t* keyIndex;
    std::span<const StandardsField> fields;
};

class StandardsRecord {
public:
    // table lives as long as the record. skipMasterLink: the two fields that link a row to the master
    // database are not written.
    StandardsRecord(const StandardsTable& table, bool skipMasterLink, ConnectionPointer connection);
    virtual ~StandardsRecord() = default;

    // False when there is no such row; the record then keeps the row that it stood for.
    bool seekByIx(int key);
    // The index becomes the order of moveFirst and moveNext.
    void setIndex(const std::wstring& name);

    // The next update changes the loaded row.
    void edit();
    // Writes the fields that were set since edit or addNew, and loads the row as the database keeps it. When
    // nothing was set, nothing is written and the record stays in its mode. A row that the database declines
    // is lost without a message; the fields then stay as they were set. Whether a row was written.
    bool update();
    // row: name, value, name, value ... Names that are no field are ignored. A value of another type than the
    // field's is converted; what cannot be converted counts as 0. Text loses its white space at the end.
    // Throws a _com_error when the last name is without a value.
    void loadRecord(const VARIANT& row);

protected:
    using Method = HRESULT (STDMETHODCALLTYPE DatabaseConnection::*)(VARIANT_BOOL*);

    // Offered by the classes of tables that are walked through. Both ends: true also without a connection,
    // and for a table that cannot be opened, which has no rows to walk through.
    bool isBOF();
    bool isEOF();
    void moveFirst();
    void moveNext();
    void moveLast();
    // The next update appends a row.
    void addNew();
    // Deletes the loaded row.
    void remove();
    bool seek(const wchar_t* index, const Variant& key);

    // Fields by their position in the table, which says their type: int, std::wstring, bool or double.
    template <class Value>
    const Value& value(std::size_t field) const {
        return std::get<Value>(fields_[field].value);
    }
    bool isNull(std::size_t field) const { return fields_[field].isNull; }
    // Nothing where the field is null.
    template <class Value>
    std::optional<Value> valueOrNull(std::size_t field) const {
        return isNull(field) ? std::nullopt : std::optional(value<Value>(field));
    }
    template <class Value>
    void set(std::size_t field, const Value& value) {
        if (connection_) {
            fields_[field] = {.value = value, .isNull = false, .changed = true};
        }
    }
    // The value that a null field has besides stays; it is neither read nor written.
    void setNull(std::size_t field);
    template <class Value>
    void setOrNull(std::size_t field, const std::optional<Value>& value) {
        value ? set(field, *value) : setNull(field);
    }

private:
    using Value = std::variant<int, std::wstring, bool, double>;
    struct Field {
        Value value;
        bool isNull = false;
        bool changed = false;
    };
    enum class Mode { browsing, adding, editing };

    static Value emptyValue(FieldType type);
    static Value loadedValue(FieldType type, const VARIANT& value);
    static Variant writtenValue(const Field& field);

    bool selectTable(const wchar_t* index);
    bool isAt(Method test);
    template <class MoveTo, class... Arguments>
    void move(MoveTo method, Arguments... arguments);
    void loadField(const VARIANT& name, const VARIANT& value);
    void clearChanges();
    std::vector<Variant> changedPairs() const;
    bool append(const Variant& row);
    bool replace(const Variant& row);

    ConnectionPointer connection_;
    const StandardsTable& table_;
    std::vector<Field> fields_;
    bool skipMasterLink_;
    Mode mode_ = Mode::browsing;
    int savedKey_ = 0;  // of the row that edit began with
};

}  // namespace tessary

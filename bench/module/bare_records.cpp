#include "bench/module/bare_records.h"

#include <windows.h>

#include "host/api/editor.h"

#include <sqlite3.h>

#include <string>
#include <vector>

namespace {

// The end of a list that grows.
class Tail {
public:
    void add(int type) {
        resbuf* node = acutNewRb(type);
        (last_ ? last_->rbnext : first_) = node;
        last_ = node;
    }
    void add(const std::wstring& text) {
        add(RTSTR);
        acutDelString(last_->resval.rstring);
        acutNewString(text.c_str(), last_->resval.rstring);
    }
    resbuf* last() const { return last_; }
    resbuf* first() const { return first_; }

private:
    resbuf* first_ = nullptr;
    resbuf* last_ = nullptr;
};

void addColumn(Tail& list, sqlite3_stmt* row, int column) {
    switch (sqlite3_column_type(row, column)) {
        case SQLITE_INTEGER:
            list.add(RTLONG);
            list.last()->resval.rlong = sqlite3_column_int(row, column);
            break;
        case SQLITE_FLOAT:
            list.add(RTREAL);
            list.last()->resval.rreal = sqlite3_column_double(row, column);
            break;
        case SQLITE_TEXT: list.add(static_cast<const wchar_t*>(sqlite3_column_text16(row, column))); break;
        default: list.add(RTNIL);
    }
}

void addRecord(Tail& list, sqlite3_stmt* row, const std::vector<std::wstring>& names) {
    list.add(RTLB);
    for (std::size_t column = 0; column < names.size(); ++column) {
        list.add(RTLB);
        list.add(names[column]);
        list.add(RTDOTE);
        addColumn(list, row, static_cast<int>(column));
        list.add(RTLE);
    }
    list.add(RTLE);
}

std::wstring textArgument(resbuf*& argument) {
    const std::wstring text = argument && argument->restype == RTSTR ? argument->resval.rstring : L"";
    argument = argument ? argument->rbnext : nullptr;
    return text;
}

}  // namespace

int bareRecords() {
    resbuf* arguments = acedGetArgs();
    resbuf* next = arguments;
    const std::wstring file = textArgument(next);
    const std::wstring statement = textArgument(next);
    acutRelRb(arguments);
    sqlite3* connection = nullptr;
    sqlite3_stmt* rows = nullptr;
    acedRetNil();
    if (sqlite3_open16(file.c_str(), &connection) == SQLITE_OK &&
        sqlite3_prepare16_v2(connection, statement.c_str(), -1, &rows, nullptr) == SQLITE_OK) {
        std::vector<std::wstring> names;
        for (int column = 0; column < sqlite3_column_count(rows); ++column)
            names.emplace_back(static_cast<const wchar_t*>(sqlite3_column_name16(rows, column)));
        Tail list;
        list.add(RTLB);
        while (sqlite3_step(rows) == SQLITE_ROW)
            addRecord(list, rows, names);
        list.add(RTLE);
        acedRetList(list.first());
        acutRelRb(list.first());
    }
    sqlite3_finalize(rows);
    sqlite3_close(connection);
    return RSRSLT;
}

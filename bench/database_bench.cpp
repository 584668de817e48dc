// What the database server adds to the SQLite under it, in one process: the server's library is asked by its
// interface and answers in variants; the baseline walks the same file with prepared statements and builds the
// same variants.

#include "tessary_server.h"

#include <benchmark/benchmark.h>
#include <oleauto.h>
#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

constexpr const char* fieldNames[] = {"ixRow",  "iNumber", "sName",  "dValue", "bFlag",
                                      "dtWhen", "iOther",  "sOther", "dOther", "sThird"};
constexpr int fieldCount = 10;

class Text {
public:
    explicit Text(const wchar_t* text) : text_(SysAllocString(text)) {}
    explicit Text(const std::wstring& text) : Text(text.c_str()) {}
    ~Text() { SysFreeString(text_); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;
    BSTR get() const { return text_; }

private:
    BSTR text_;
};

class Value {
public:
    Value() { VariantInit(&value_); }
    ~Value() { VariantClear(&value_); }
    Value(const Value&) = delete;
    Value& operator=(const Value&) = delete;
    VARIANT* out() {
        VariantClear(&value_);
        return &value_;
    }

private:
    VARIANT value_;
};

struct Release {
    void operator()(IUnknown* object) const { object->Release(); }
};
using Connection = std::unique_ptr<DatabaseConnection, Release>;

void require(bool condition, const char* what) {
    if (!condition)
        throw std::runtime_error(what);
}

// From the library beside this program, whatever is registered.
Connection makeConnection() {
    static const HMODULE library = LoadLibraryW(L"TessaryServer.dll");
    require(library, "TessaryServer.dll is missing");
    using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    const auto get = reinterpret_cast<GetClassObject>(GetProcAddress(library, "DllGetClassObject"));
    IClassFactory* factory = nullptr;
    require(get && SUCCEEDED(get(CLSID_DatabaseConnectionObject, IID_IClassFactory,
                                 reinterpret_cast<void**>(&factory))),
            "no class object");
    DatabaseConnection* connection = nullptr;
    const HRESULT result =
        factory->CreateInstance(nullptr, IID_DatabaseConnection, reinterpret_cast<void**>(&connection));
    factory->Release();
    require(SUCCEEDED(result), "no connection object");
    return Connection(connection);
}

void command(DatabaseConnection& connection, const wchar_t* statement) {
    long count = 0;
    VARIANT_BOOL ok = VARIANT_FALSE;
    connection.RunCommand(Text(statement).get(), &count, &ok);
    require(ok, "a statement failed");
}

// Tables of 1,000, 100,000 and 1,000,000 records; made once a run, by statements that multiply ten digits.
class Fixture {
public:
    Fixture() : file(std::filesystem::temp_directory_path() / "tessary_bench.qn") {
        std::filesystem::remove(file);
        VARIANT_BOOL ok = VARIANT_FALSE;
        connection->CreateDatabase(Text(file.wstring()).get(), &ok);
        require(ok, "the database was not created");
        BSTR status = nullptr;
        connection->OpenDatabase(Text(file.wstring()).get(), VARIANT_FALSE, VARIANT_FALSE, &status);
        require(SysStringLen(status) > 0, "the database was not opened");
        SysFreeString(status);
        fillDigits();
        fill(L"small_rows", L"digits a, digits b, digits c", L"a.n + 10 * b.n + 100 * c.n");
        fill(L"rows", L"small_rows s, digits a, digits b", L"s.iNumber + 1000 * a.n + 10000 * b.n");
        fill(L"large_rows", L"rows r, digits a", L"r.iNumber + 100000 * a.n");
    }
    ~Fixture() {
        connection.reset();
        std::error_code ignored;
        std::filesystem::remove(file, ignored);
    }

    std::filesystem::path file;
    Connection connection = makeConnection();

private:
    void fillDigits() {
        command(*connection, L"create table digits (n long)");
        for (int digit = 0; digit < 10; ++digit)
            command(*connection, (L"insert into digits values (" + std::to_wstring(digit) + L")").c_str());
    }

    void fill(const std::wstring& table, const std::wstring& sources, const std::wstring& number) {
        command(*connection, (L"create table " + table +
                              L" (ixRow counter primary key, iNumber long, sName text(50), dValue double, "
                              L"bFlag yesno, dtWhen datetime, iOther long, sOther text(50), dOther double, "
                              L"sThird text(80))")
                                 .c_str());
        command(*connection,
                (L"insert into " + table +
                 L" (iNumber, sName, dValue, bFlag, dtWhen, iOther, sOther, dOther, sThird) select " +
                 number + L", \"Layer \" & (" + number + L"), (" + number +
                 L") * 0.25, True, #7/4/2010#, 7, \"Continuous\", "
                 L"1.5, \"a longer description of the layer\" from " +
                 sources)
                    .c_str());
        command(*connection, (L"create index iNumber on " + table + L" (iNumber)").c_str());
    }
};

Fixture& fixture() {
    static Fixture made;
    return made;
}

// The same file by SQLite alone.
class Raw {
public:
    explicit Raw(const char* statement) {
        require(sqlite3_open(fixture().file.string().c_str(), &connection_) == SQLITE_OK,
                "SQLite did not open");
        require(sqlite3_prepare_v2(connection_, statement, -1, &statement_, nullptr) == SQLITE_OK,
                "SQLite did not prepare");
    }
    ~Raw() {
        sqlite3_finalize(statement_);
        sqlite3_close(connection_);
    }
    Raw(const Raw&) = delete;
    Raw& operator=(const Raw&) = delete;
    sqlite3_stmt* statement() { return statement_; }

private:
    sqlite3* connection_ = nullptr;
    sqlite3_stmt* statement_ = nullptr;
};

VARIANT textVariant(const wchar_t* text, int length) {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_BSTR;
    value.bstrVal = SysAllocStringLen(text, static_cast<UINT>(length));
    return value;
}

VARIANT columnVariant(sqlite3_stmt* row, int column) {
    VARIANT value;
    VariantInit(&value);
    switch (sqlite3_column_type(row, column)) {
        case SQLITE_INTEGER:
            value.vt = VT_I4;
            value.lVal = sqlite3_column_int(row, column);
            break;
        case SQLITE_FLOAT:
            value.vt = VT_R8;
            value.dblVal = sqlite3_column_double(row, column);
            break;
        case SQLITE_TEXT: {
            const auto* text = static_cast<const wchar_t*>(sqlite3_column_text16(row, column));
            return textVariant(text, sqlite3_column_bytes16(row, column) / 2);
        }
        default: value.vt = VT_NULL;
    }
    return value;
}

void appendRow(sqlite3_stmt* row, std::vector<VARIANT>& values) {
    static const std::vector<std::wstring> names = [] {
        std::vector<std::wstring> made;
        for (const char* name : fieldNames)
            made.emplace_back(name, name + std::char_traits<char>::length(name));
        return made;
    }();
    for (int column = 0; column < fieldCount; ++column) {
        const std::wstring& name = names[static_cast<std::size_t>(column)];
        values.push_back(textVariant(name.data(), static_cast<int>(name.size())));
        values.push_back(columnVariant(row, column));
    }
}

void moveToArray(std::vector<VARIANT>& values, VARIANT* result) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(values.size()));
    std::copy(values.begin(), values.end(), static_cast<VARIANT*>(array->pvData));
    values.clear();
    result->vt = VT_ARRAY | VT_VARIANT;
    result->parray = array;
}

// One run of a benchmark; what goes wrong is told in the report instead of ending the program.
template <class Work>
void guarded(benchmark::State& state, Work work) {
    try {
        work();
    } catch (const std::exception& error) {
        state.SkipWithError(error.what());
    }
}

void cursorOurs(benchmark::State& state) {
    guarded(state, [&state] {
        DatabaseConnection& connection = *fixture().connection;
        VARIANT_BOOL ok = VARIANT_FALSE;
        connection.SelectTable(Text(L"rows").get(), Text(L"").get(), &ok);
        Value record;
        connection.MoveFirst(record.out(), &ok);
        for (auto _ : state) {
            connection.Skip(1, record.out(), &ok);
            if (!ok)
                connection.MoveFirst(record.out(), &ok);
        }
        require(ok, "the walk failed");
    });
}

void cursorBaseline(benchmark::State& state) {
    guarded(state, [&state] {
        Raw raw("SELECT * FROM \"rows\" WHERE \"ixRow\" > ? ORDER BY \"ixRow\" LIMIT 1");
        std::vector<VARIANT> values;
        sqlite3_int64 last = 0;
        for (auto _ : state) {
            sqlite3_bind_int64(raw.statement(), 1, last % 99000);
            if (sqlite3_step(raw.statement()) == SQLITE_ROW) {
                last = sqlite3_column_int64(raw.statement(), 0);
                appendRow(raw.statement(), values);
                Value record;
                moveToArray(values, record.out());
            }
            sqlite3_reset(raw.statement());
        }
        state.SetLabel("SQLite: prepared statement for the next record, the same variants");
    });
}

void queryOurs(benchmark::State& state) {
    guarded(state, [&state] {
        for (auto _ : state) {
            Value records;
            VARIANT_BOOL ok = VARIANT_FALSE;
            fixture().connection->RunSql(Text(L"select * from rows").get(), records.out(), &ok);
            require(ok, "the query failed");
        }
    });
}

void queryBaseline(benchmark::State& state) {
    guarded(state, [&state] {
        for (auto _ : state) {
            Raw raw("SELECT * FROM \"rows\"");
            std::vector<VARIANT> values;
            while (sqlite3_step(raw.statement()) == SQLITE_ROW) {
                values.push_back(textVariant(L"*NewRecord*", 11));
                appendRow(raw.statement(), values);
            }
            Value records;
            moveToArray(values, records.out());
        }
        state.SetLabel("SQLite: 100,000 rows of 10 fields, the same variants");
    });
}

void seek(benchmark::State& state, const wchar_t* table, long size, const char* label) {
    guarded(state, [&] {
        DatabaseConnection& connection = *fixture().connection;
        VARIANT_BOOL ok = VARIANT_FALSE;
        connection.SelectTable(Text(table).get(), Text(L"iNumber").get(), &ok);
        VARIANT key;
        VariantInit(&key);
        key.vt = VT_I4;
        key.lVal = 0;
        Value record;
        const auto seekNext = [&] {
            key.lVal = static_cast<long>((key.lVal * 7919LL + 12345) % size);
            connection.Seek(key, record.out(), &ok);
        };
        for (int i = 0; i < 20'000; ++i)  // the file's pages are read for the first time
            seekNext();
        for (auto _ : state)
            seekNext();
        require(ok, "nothing was found");
        state.SetLabel(label);
    });
}

void seekOurs(benchmark::State& state) {
    seek(state, L"large_rows", 1'000'000, "");
}

void seekBaseline(benchmark::State& state) {
    seek(state, L"small_rows", 1'000, "a seek in 1,000 records (ours: 1,000,000)");
}

BENCHMARK(cursorOurs)->Name("database/cursor_step/ours");
BENCHMARK(cursorBaseline)->Name("database/cursor_step/baseline");
BENCHMARK(queryOurs)->Name("database/query_rows/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(queryBaseline)->Name("database/query_rows/baseline")->Unit(benchmark::kMillisecond);
BENCHMARK(seekOurs)->Name("database/seek/ours");
BENCHMARK(seekBaseline)->Name("database/seek/baseline");

}  // namespace

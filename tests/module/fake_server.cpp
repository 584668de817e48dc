#include "tests/module/fake_server.h"

#include <algorithm>
#include <memory>
#include <sstream>
#include <utility>

namespace tessary::testing {

namespace {

// What health checks and error questions succeed with has its own rules; everything else succeeds.
constexpr VARIANT_BOOL succeeded = VARIANT_TRUE;

std::string narrow(const std::wstring& text) {
    return std::string(text.begin(), text.end());
}

void show(std::ostream& out, BSTR text) {
    out << ' ' << narrow(textOf(text));
}
void show(std::ostream& out, VARIANT_BOOL flag) {
    out << ' ' << flag;
}
void show(std::ostream& out, long number) {
    out << ' ' << number;
}
void show(std::ostream& out, const VARIANT& value) {
    switch (value.vt) {
        case VT_EMPTY: out << " empty"; break;
        case VT_NULL: out << " null"; break;
        case VT_I4: out << ' ' << value.lVal; break;
        case VT_I2: out << " short:" << value.iVal; break;
        case VT_R8: out << " real:" << value.dblVal; break;
        case VT_BOOL: out << " bool:" << value.boolVal; break;
        case VT_BSTR: out << " '" << narrow(textOf(value.bstrVal)) << "'"; break;
        case VT_ARRAY | VT_VARIANT: {
            out << " [";
            const VariantElements elements(value.parray);
            for (const VARIANT& element : elements.values()) {
                show(out, element);
            }
            out << " ]";
            break;
        }
        default: out << " type:" << value.vt;
    }
}

// Reference counting and automation's part, which nobody uses here.
template <class Interface>
class FakeObject : public Interface {
public:
    explicit FakeObject(int& objectCount) : objectCount_(objectCount) { ++objectCount_; }
    virtual ~FakeObject() { --objectCount_; }
    FakeObject(const FakeObject&) = delete;
    FakeObject& operator=(const FakeObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool known = id == IID_IUnknown || id == IID_IDispatch || id == __uuidof(Interface);
        *object = known ? this : nullptr;
        if (known) {
            AddRef();
        }
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            delete this;
        }
        return left;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

private:
    ULONG references_ = 0;
    int& objectCount_;
};

}  // namespace

class FakeService final : public FakeObject<DatabaseService> {
public:
    explicit FakeService(FakeServer& server) : FakeObject(server.objectCount_), server_(server) {}
    HRESULT STDMETHODCALLTYPE Start() override { return call("Start"); }
    HRESULT STDMETHODCALLTYPE Stop() override { return call("Stop"); }

private:
    HRESULT call(const std::string& method) {
        server_.record("S." + method);
        return server_.takeFailure(method);
    }
    FakeServer& server_;
};

class FakeConnection final : public FakeObject<DatabaseConnection> {
public:
    explicit FakeConnection(FakeServer& server)
        : FakeObject(server.objectCount_), server_(server), number_(++server.connectionNumber_) {}

    HRESULT STDMETHODCALLTYPE OpenDatabase(BSTR path, VARIANT_BOOL exclusive, VARIANT_BOOL readOnly,
                                           BSTR* status) override {
        record("OpenDatabase", path, exclusive, readOnly);
        const std::wstring text = server_.takeText("OpenDatabase", textOf(path));
        path_ = text == L"*REPAIR*" ? L"" : text;
        *status = SysAllocString(text.c_str());
        return failure("OpenDatabase");
    }
    HRESULT STDMETHODCALLTYPE CloseDatabase(VARIANT_BOOL* ok) override {
        path_.clear();
        return call("CloseDatabase", ok);
    }
    HRESULT STDMETHODCALLTYPE IsOpen(VARIANT_BOOL* ok) override {
        record("IsOpen");
        *ok = server_.takeFlag("IsOpen", path_.empty() ? VARIANT_FALSE : VARIANT_TRUE);
        return failure("IsOpen");
    }
    HRESULT STDMETHODCALLTYPE DatabasePath(BSTR* path) override {
        record("DatabasePath");
        *path = SysAllocString(server_.takeText("DatabasePath", path_).c_str());
        return failure("DatabasePath");
    }
    HRESULT STDMETHODCALLTYPE IsErrorPending(VARIANT_BOOL* ok) override {
        record("IsErrorPending");
        *ok = server_.takeFlag("IsErrorPending", server_.errorCode_ != 0 ? VARIANT_TRUE : VARIANT_FALSE);
        return failure("IsErrorPending");
    }
    HRESULT STDMETHODCALLTYPE GetError(long* code, BSTR* text) override {
        record("GetError");
        *code = server_.errorCode_;
        *text = SysAllocString(server_.errorText_.c_str());
        return failure("GetError");
    }
    HRESULT STDMETHODCALLTYPE Version(short* version) override {
        record("Version");
        *version = 64;
        return failure("Version");
    }
    HRESULT STDMETHODCALLTYPE SelectTable(BSTR table, BSTR index, VARIANT_BOOL* ok) override {
        return call("SelectTable", ok, table, index);
    }
    HRESULT STDMETHODCALLTYPE MoveFirst(VARIANT* record, VARIANT_BOOL* ok) override {
        return callValue("MoveFirst", record, ok);
    }
    HRESULT STDMETHODCALLTYPE Skip(long count, VARIANT* record, VARIANT_BOOL* ok) override {
        return callValue("Skip", record, ok, count);
    }
    HRESULT STDMETHODCALLTYPE GetRecord(VARIANT* record, VARIANT_BOOL* ok) override {
        return callValue("GetRecord", record, ok);
    }
    HRESULT STDMETHODCALLTYPE IsAlive(VARIANT_BOOL* ok) override { return call("IsAlive", ok); }
    HRESULT STDMETHODCALLTYPE Append(VARIANT fields, VARIANT_BOOL stay, VARIANT* record,
                                     VARIANT_BOOL* ok) override {
        return callValue("Append", record, ok, fields, stay);
    }
    HRESULT STDMETHODCALLTYPE MoveLast(VARIANT* record, VARIANT_BOOL* ok) override {
        return callValue("MoveLast", record, ok);
    }
    HRESULT STDMETHODCALLTYPE CloseTable(VARIANT_BOOL* ok) override { return call("CloseTable", ok); }
    HRESULT STDMETHODCALLTYPE CloseAllTables(VARIANT_BOOL* ok) override { return call("CloseAllTables", ok); }
    HRESULT STDMETHODCALLTYPE Count(long* count, VARIANT_BOOL* ok) override {
        return callCount("Count", count, ok);
    }
    HRESULT STDMETHODCALLTYPE DeleteRecord(VARIANT_BOOL* ok) override { return call("DeleteRecord", ok); }
    HRESULT STDMETHODCALLTYPE IsWritable(VARIANT_BOOL* ok) override { return call("IsWritable", ok); }
    HRESULT STDMETHODCALLTYPE TableExists(BSTR table, VARIANT_BOOL* answer, VARIANT_BOOL* ok) override {
        return callAnswer("TableExists", answer, ok, table);
    }
    HRESULT STDMETHODCALLTYPE Structure(VARIANT* value, VARIANT_BOOL* ok) override {
        return callValue("Structure", value, ok);
    }
    HRESULT STDMETHODCALLTYPE ListIndexes(VARIANT* value, VARIANT_BOOL* ok) override {
        return callValue("ListIndexes", value, ok);
    }
    HRESULT STDMETHODCALLTYPE ModifyTable(BSTR table, VARIANT definition, VARIANT_BOOL* ok) override {
        return call("ModifyTable", ok, table, definition);
    }
    HRESULT STDMETHODCALLTYPE RenameTable(BSTR oldName, BSTR newName, VARIANT_BOOL* ok) override {
        return call("RenameTable", ok, oldName, newName);
    }
    HRESULT STDMETHODCALLTYPE CurrentIndex(BSTR* name) override { return callText("CurrentIndex", name); }
    HRESULT STDMETHODCALLTYPE CurrentTable(BSTR* name) override { return callText("CurrentTable", name); }
    HRESULT STDMETHODCALLTYPE Replace(VARIANT fields, VARIANT* record, VARIANT_BOOL* ok) override {
        return callValue("Replace", record, ok, fields);
    }
    HRESULT STDMETHODCALLTYPE Seek(VARIANT key, VARIANT* record, VARIANT_BOOL* ok) override {
        return callValue("Seek", record, ok, key);
    }
    HRESULT STDMETHODCALLTYPE Seek2(VARIANT key1, VARIANT key2, VARIANT* record, VARIANT_BOOL* ok) override {
        return callValue("Seek2", record, ok, key1, key2);
    }
    HRESULT STDMETHODCALLTYPE Seek3(VARIANT key1, VARIANT key2, VARIANT key3, VARIANT* record,
                                    VARIANT_BOOL* ok) override {
        return callValue("Seek3", record, ok, key1, key2, key3);
    }
    HRESULT STDMETHODCALLTYPE SeekKeys(VARIANT key1, VARIANT key2, VARIANT key3, VARIANT key4, VARIANT key5,
                                       VARIANT key6, VARIANT key7, VARIANT key8, VARIANT key9, VARIANT key10,
                                       long count, VARIANT* record, VARIANT_BOOL* ok) override {
        return callValue("SeekKeys", record, ok, key1, key2, key3, key4, key5, key6, key7, key8, key9, key10,
                         count);
    }
    HRESULT STDMETHODCALLTYPE CreateDatabase(BSTR path, VARIANT_BOOL* ok) override {
        return call("CreateDatabase", ok, path);
    }
    HRESULT STDMETHODCALLTYPE CreateTable(BSTR table, VARIANT definition, VARIANT_BOOL* ok) override {
        return call("CreateTable", ok, table, definition);
    }
    HRESULT STDMETHODCALLTYPE IsReadOnly(VARIANT_BOOL* ok) override { return call("IsReadOnly", ok); }
    HRESULT STDMETHODCALLTYPE DeleteTable(BSTR table, VARIANT_BOOL withRelations, VARIANT_BOOL* ok) override {
        return call("DeleteTable", ok, table, withRelations);
    }
    HRESULT STDMETHODCALLTYPE ListTables(VARIANT* value, VARIANT_BOOL* ok) override {
        return callValue("ListTables", value, ok);
    }
    HRESULT STDMETHODCALLTYPE RunSql(BSTR statement, VARIANT* value, VARIANT_BOOL* ok) override {
        return callValue("RunSql", value, ok, statement);
    }
    HRESULT STDMETHODCALLTYPE ExecuteSql(BSTR statement, VARIANT_BOOL* ok) override {
        return call("ExecuteSql", ok, statement);
    }
    HRESULT STDMETHODCALLTYPE RelationExists(BSTR relation, VARIANT_BOOL* answer, VARIANT_BOOL* ok) override {
        return callAnswer("RelationExists", answer, ok, relation);
    }
    HRESULT STDMETHODCALLTYPE DeleteRelation(BSTR table, BSTR relation, VARIANT_BOOL* ok) override {
        return call("DeleteRelation", ok, table, relation);
    }
    HRESULT STDMETHODCALLTYPE Compact(BSTR source, BSTR target, VARIANT_BOOL* ok) override {
        return call("Compact", ok, source, target);
    }
    HRESULT STDMETHODCALLTYPE LinkTable(BSTR name, BSTR file, BSTR table, VARIANT_BOOL* answer,
                                        VARIANT_BOOL* ok) override {
        return callAnswer("LinkTable", answer, ok, name, file, table);
    }
    HRESULT STDMETHODCALLTYPE RunQuery(BSTR query, VARIANT parameters, VARIANT* value,
                                       VARIANT_BOOL* ok) override {
        return callValue("RunQuery", value, ok, query, parameters);
    }
    HRESULT STDMETHODCALLTYPE CreateIndex(BSTR table, BSTR index, VARIANT_BOOL unique, VARIANT_BOOL primary,
                                          VARIANT_BOOL* ok) override {
        return call("CreateIndex", ok, table, index, unique, primary);
    }
    HRESULT STDMETHODCALLTYPE CreateQuery(BSTR name, BSTR statement, VARIANT_BOOL* ok) override {
        return call("CreateQuery", ok, name, statement);
    }
    HRESULT STDMETHODCALLTYPE OpenForCustomization(BSTR path, VARIANT_BOOL* answer,
                                                   VARIANT_BOOL* ok) override {
        return callAnswer("OpenForCustomization", answer, ok, path);
    }
    HRESULT STDMETHODCALLTYPE IsAtEnd(VARIANT_BOOL* ok) override { return call("IsAtEnd", ok); }
    HRESULT STDMETHODCALLTYPE IsAtBeginning(VARIANT_BOOL* ok) override { return call("IsAtBeginning", ok); }
    HRESULT STDMETHODCALLTYPE FieldRequired(BSTR table, BSTR field, VARIANT_BOOL* answer,
                                            VARIANT_BOOL* ok) override {
        return callAnswer("FieldRequired", answer, ok, table, field);
    }
    HRESULT STDMETHODCALLTYPE Attributes(BSTR name, VARIANT* value, VARIANT_BOOL* ok) override {
        return callValue("Attributes", value, ok, name);
    }
    HRESULT STDMETHODCALLTYPE RunCommand(BSTR statement, long* count, VARIANT_BOOL* ok) override {
        return callCount("RunCommand", count, ok, statement);
    }
    HRESULT STDMETHODCALLTYPE Reserved10() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved11() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved12() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved18() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved19() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Reserved61() override { return E_NOTIMPL; }

private:
    template <class... Values>
    void record(const char* method, const Values&... values) {
        std::ostringstream out;
        out << number_ << '.' << method;
        (show(out, values), ...);
        server_.record(out.str());
    }
    template <class... Values>
    HRESULT call(const char* method, VARIANT_BOOL* ok, const Values&... values) {
        record(method, values...);
        *ok = server_.takeFlag(method, succeeded);
        return failure(method);
    }
    template <class... Values>
    HRESULT callValue(const char* method, VARIANT* value, VARIANT_BOOL* ok, const Values&... values) {
        *value = server_.takeValue(method).release();
        return call(method, ok, values...);
    }
    // Methods that answer a question have two flags; the second is asked for with a ? behind the name.
    template <class... Values>
    HRESULT callAnswer(const char* method, VARIANT_BOOL* answer, VARIANT_BOOL* ok, const Values&... values) {
        *answer = server_.takeFlag(std::string(method) + "?", VARIANT_TRUE);
        return call(method, ok, values...);
    }
    template <class... Values>
    HRESULT callCount(const char* method, long* count, VARIANT_BOOL* ok, const Values&... values) {
        const Variant value = server_.takeValue(method);
        *count = value.type() == VT_I4 ? value.get().lVal : 0;
        return call(method, ok, values...);
    }
    HRESULT callText(const char* method, BSTR* text) {
        record(method);
        *text = SysAllocString(server_.takeText(method, L"").c_str());
        return failure(method);
    }

    HRESULT failure(const char* method) {
        return number_ <= server_.lastLost_ ? RPC_E_DISCONNECTED : server_.takeFailure(method);
    }

    FakeServer& server_;
    const int number_;
    std::wstring path_;
};

class FakeFactory final : public IClassFactory {
public:
    FakeFactory(FakeServer& server, bool makesConnections)
        : server_(server), makesConnections_(makesConnections) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        const bool known = id == IID_IUnknown || id == IID_IClassFactory;
        *object = known ? this : nullptr;
        if (known) {
            AddRef();
        }
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            delete this;
        }
        return left;
    }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown*, REFIID id, void** object) override {
        *object = nullptr;
        if (server_.refusesObjects_) {
            return E_OUTOFMEMORY;
        }
        if (const HRESULT failure = server_.takeFailure("CreateInstance"); FAILED(failure)) {
            return failure;
        }
        if (makesConnections_) {
            return ComPointer<IUnknown>(new FakeConnection(server_))->QueryInterface(id, object);
        }
        return ComPointer<IUnknown>(new FakeService(server_))->QueryInterface(id, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

private:
    virtual ~FakeFactory() = default;
    FakeServer& server_;
    bool makesConnections_;
    ULONG references_ = 0;
};

FakeServer::FakeServer() {
    const auto offer = [this](REFCLSID classId, bool makesConnections) {
        const ComPointer<IUnknown> factory(new FakeFactory(*this, makesConnections));
        DWORD registration = 0;
        CoRegisterClassObject(classId, factory.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                              &registration);
        registrations_.push_back(registration);
    };
    offer(CLSID_DatabaseServiceObject, false);
    offer(CLSID_DatabaseConnectionObject, true);
}

FakeServer::~FakeServer() {
    for (const DWORD registration : registrations_) {
        CoRevokeClassObject(registration);
    }
}

std::vector<std::string> FakeServer::calls() const {
    std::vector<std::string> calls;
    std::copy_if(calls_.begin(), calls_.end(), std::back_inserter(calls), [](const std::string& call) {
        return !call.ends_with(".IsAlive") && !call.ends_with(".IsOpen") && !call.starts_with("S.");
    });
    return calls;
}

void FakeServer::record(const std::string& call) {
    calls_.push_back(call);
    if (const auto reaction = reactions_.extract(call)) {
        reaction.mapped()();
    }
}

HRESULT FakeServer::takeFailure(const std::string& method) {
    const auto failure = failures_.find(method);
    return failure == failures_.end() ? S_OK : failures_.extract(failure).mapped();
}

VARIANT_BOOL FakeServer::takeFlag(const std::string& method, VARIANT_BOOL otherwise) {
    auto& flags = flags_[method];
    if (flags.empty()) {
        return otherwise;
    }
    const VARIANT_BOOL flag = flags.front();
    flags.pop_front();
    return flag;
}

std::wstring FakeServer::takeText(const std::string& method, const std::wstring& otherwise) {
    auto& texts = texts_[method];
    if (texts.empty()) {
        return otherwise;
    }
    const std::wstring text = texts.front();
    texts.pop_front();
    return text;
}

Variant FakeServer::takeValue(const std::string& method) {
    auto& values = values_[method];
    if (values.empty()) {
        return Variant();
    }
    Variant value = std::move(values.front());
    values.pop_front();
    return value;
}

Variant arrayOf(std::vector<Variant> elements) {
    return Variant::fromArray(makeVariantArray(elements));
}

}  // namespace tessary::testing

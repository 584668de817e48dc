#pragma once

// Calls the server as compiled clients do: by the number of a slot, counted by hand, in the library beside
// this program. No registration is needed.

#include <gtest/gtest.h>

#include <windows.h>

#include <oleauto.h>
#include <tessary_server.h>
#include <wrl/client.h>

#include <filesystem>
#include <string>
#include <vector>

namespace tessary::server {

using Microsoft::WRL::ComPtr;

struct ServerLibrary {
    HMODULE module = LoadLibraryW(L"TessaryServer.dll");

    template <class Function>
    Function function(const char* name) const {
        return reinterpret_cast<Function>(GetProcAddress(module, name));
    }
    template <class Interface>
    ComPtr<Interface> create(REFCLSID id) const {
        const auto getClass = function<decltype(&DllGetClassObject)>("DllGetClassObject");
        ComPtr<IClassFactory> factory;
        ComPtr<Interface> object;
        EXPECT_EQ(getClass(id, IID_IClassFactory, &factory), S_OK);
        EXPECT_EQ(factory->CreateInstance(nullptr, __uuidof(Interface), &object), S_OK);
        return object;
    }
};

inline const ServerLibrary& serverLibrary() {
    static const ServerLibrary library;
    return library;
}

// A BSTR argument, freed with this object.
class Bstr {
public:
    Bstr(const wchar_t* text) : text_(SysAllocString(text)) {}
    Bstr(const std::wstring& text) : text_(SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))) {}
    ~Bstr() { SysFreeString(text_); }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;
    operator BSTR() const { return text_; }
    BSTR* address() { return &text_; }
    std::wstring text() const { return text_ ? std::wstring(text_, SysStringLen(text_)) : std::wstring(); }

private:
    BSTR text_;
};

// A VARIANT cleared with this object.
struct Variant : VARIANT {
    Variant() { VariantInit(this); }
    Variant(int number) : Variant() { vt = VT_I4, lVal = number; }
    Variant(double number) : Variant() { vt = VT_R8, dblVal = number; }
    Variant(bool flag) : Variant() { vt = VT_BOOL, boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE; }
    Variant(const wchar_t* text) : Variant() { vt = VT_BSTR, bstrVal = SysAllocString(text); }
    Variant(const Variant& other) : Variant() { VariantCopy(this, const_cast<Variant*>(&other)); }
    Variant& operator=(const Variant& other) {
        VariantCopy(this, const_cast<Variant*>(&other));
        return *this;
    }
    ~Variant() { VariantClear(this); }
};

inline Variant arrayFrom(const std::vector<Variant>& elements, LONG lowerBound = 0) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, lowerBound, static_cast<ULONG>(elements.size()));
    for (LONG i = 0; i < static_cast<LONG>(elements.size()); ++i) {
        LONG index = lowerBound + i;
        SafeArrayPutElement(array, &index, const_cast<Variant*>(&elements[static_cast<std::size_t>(i)]));
    }
    Variant result;
    result.vt = VT_ARRAY | VT_VARIANT;
    result.parray = array;
    return result;
}

// "I4:7", "BSTR:duct", "NULL"; arrays as their elements with a bar between.
inline std::string shown(const VARIANT& value) {
    if (value.vt == (VT_ARRAY | VT_VARIANT)) {
        LONG lower = 0;
        LONG upper = 0;
        SafeArrayGetLBound(value.parray, 1, &lower);
        SafeArrayGetUBound(value.parray, 1, &upper);
        std::string text = lower == 0 ? "" : "from " + std::to_string(lower) + " ";
        for (LONG i = lower; i <= upper; ++i) {
            Variant element;
            SafeArrayGetElement(value.parray, &i, &element);
            text += (i == lower ? "" : "|") + shown(element);
        }
        return text;
    }
    switch (value.vt) {
        case VT_EMPTY: return "EMPTY";
        case VT_NULL: return "NULL";
        case VT_UI1: return "UI1:" + std::to_string(value.bVal);
        case VT_I2: return "I2:" + std::to_string(value.iVal);
        case VT_I4: return "I4:" + std::to_string(value.lVal);
        case VT_R4: return "R4:" + std::to_string(value.fltVal);
        case VT_R8: return "R8:" + std::to_string(value.dblVal);
        case VT_DATE: return "DATE:" + std::to_string(value.date);
        case VT_BOOL: return "BOOL:" + std::to_string(value.boolVal);
        case VT_BSTR: {
            std::string text;
            for (UINT i = 0; i < SysStringLen(value.bstrVal); ++i) {
                text += value.bstrVal[i] == 0 ? '@' : static_cast<char>(value.bstrVal[i]);
            }
            return "BSTR:" + text;
        }
        default: return "type " + std::to_string(value.vt);
    }
}

class ConnectionTest : public ::testing::Test {
protected:
    ConnectionTest()
        : connection(serverLibrary().create<DatabaseConnection>(CLSID_DatabaseConnectionObject)) {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        folder = std::filesystem::temp_directory_path() / (std::string("tessary-com-") + info->name());
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
    }
    ~ConnectionTest() override {
        connection.Reset();
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    std::wstring file(const wchar_t* name) const { return (folder / name).wstring(); }

    // The method in the slot, called with exactly these arguments.
    template <class... Arguments>
    HRESULT slot(int number, Arguments... arguments) {
        using Method = HRESULT(STDMETHODCALLTYPE*)(void*, Arguments...);
        void** table = *reinterpret_cast<void***>(connection.Get());
        return reinterpret_cast<Method>(table[number])(connection.Get(), arguments...);
    }
    // A slot whose last argument is ok; its failure is shown as "error NUMBER".
    template <class... Arguments>
    std::string call(int number, Arguments... arguments) {
        VARIANT_BOOL ok = 7;
        const HRESULT result = slot(number, arguments..., &ok);
        if (result != S_OK) {
            return "result " + std::to_string(result);
        }
        return ok == VARIANT_TRUE    ? "ok"
               : ok == VARIANT_FALSE ? "error " + std::to_string(errorCode())
                                     : "no answer";
    }
    // The same for slots with a variant before ok.
    template <class... Arguments>
    std::string ask(int number, Arguments... arguments) {
        Variant answer;
        const std::string outcome = call(number, arguments..., static_cast<VARIANT*>(&answer));
        return outcome == "ok" ? shown(answer) : outcome + (answer.vt == VT_EMPTY ? "" : " with an answer");
    }
    std::string flag(int number) {
        VARIANT_BOOL answer = 7;
        EXPECT_EQ(slot(number, &answer), S_OK);
        return answer == VARIANT_TRUE ? "yes" : answer == VARIANT_FALSE ? "no" : "no answer";
    }
    std::wstring text(int number) {
        Bstr answer(nullptr);
        EXPECT_EQ(slot(number, answer.address()), S_OK);
        return answer.text();
    }
    LONG errorCode() { return error().first; }
    std::pair<LONG, std::wstring> error() {
        LONG code = -1;
        Bstr description(nullptr);
        EXPECT_EQ(slot(27, &code, description.address()), S_OK);
        return {code, description.text()};
    }
    std::wstring open(const wchar_t* name, bool exclusive = false, bool readOnly = false) {
        Bstr status(nullptr);
        const auto flagOf = [](bool value) { return value ? VARIANT_TRUE : VARIANT_FALSE; };
        EXPECT_EQ(slot(7, BSTR(Bstr(file(name))), flagOf(exclusive), flagOf(readOnly), status.address()),
                  S_OK);
        return status.text();
    }
    void createAndOpen() {
        EXPECT_EQ(call(42, BSTR(Bstr(file(L"plan.qn")))), "ok");
        EXPECT_EQ(open(L"plan.qn"), file(L"plan.qn"));
    }
    std::string execute(const wchar_t* statement) { return call(48, BSTR(Bstr(statement))); }
    std::string select(const wchar_t* table, const wchar_t* index = L"") {
        return call(8, BSTR(Bstr(table)), BSTR(Bstr(index)));
    }

    ComPtr<DatabaseConnection> connection;
    std::filesystem::path folder;
};

}  // namespace tessary::server

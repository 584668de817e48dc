#include "server/com/registration.h"

#include "server/com/class_factory.h"

#include <tessary_server.h>

#include <array>
#include <vector>

namespace tessary::server {

namespace {

constexpr const wchar_t* classesPath = L"Software\\Classes\\";
// Marshals by the type library.
constexpr const wchar_t* automationMarshaler = L"{00020424-0000-0000-C000-000000000046}";
constexpr const wchar_t* libraryVersion = L"1.0";
constexpr const wchar_t* classVersion = L".1";

struct RegistryValue {
    std::wstring key;   // below the classes
    std::wstring name;  // empty: the key's own value
    std::wstring text;
};

std::wstring braced(REFGUID id) {
    std::array<wchar_t, 39> text{};
    StringFromGUID2(id, text.data(), static_cast<int>(text.size()));
    return text.data();
}

std::wstring classKey(const ServerClass& serverClass) {
    return L"CLSID\\" + braced(*serverClass.id);
}

std::wstring interfaceKey(REFIID id) {
    return L"Interface\\" + braced(id);
}

std::wstring libraryKey() {
    return L"TypeLib\\" + braced(LIBID_TessaryServer);
}

std::wstring versionedName(const ServerClass& serverClass) {
    return std::wstring(serverClass.programId) + classVersion;
}

void addClass(std::vector<RegistryValue>& values, const ServerClass& serverClass, ServerKind kind,
              const std::wstring& file) {
    const std::wstring key = classKey(serverClass);
    const std::wstring id = braced(*serverClass.id);
    values.push_back({key, L"", serverClass.description});
    values.push_back({key + L"\\ProgID", L"", versionedName(serverClass)});
    values.push_back({key + L"\\VersionIndependentProgID", L"", serverClass.programId});
    values.push_back({key + L"\\TypeLib", L"", braced(LIBID_TessaryServer)});
    if (kind == ServerKind::local) {
        values.push_back({key + L"\\LocalServer32", L"", L"\"" + file + L"\""});
    } else {
        values.push_back({key + L"\\InprocServer32", L"", file});
        values.push_back({key + L"\\InprocServer32", L"ThreadingModel", L"Both"});
    }
    for (const std::wstring& name : {std::wstring(serverClass.programId), versionedName(serverClass)}) {
        values.push_back({name, L"", serverClass.description});
        values.push_back({name + L"\\CLSID", L"", id});
    }
    values.push_back({std::wstring(serverClass.programId) + L"\\CurVer", L"", versionedName(serverClass)});
}

void addInterface(std::vector<RegistryValue>& values, REFIID id, const wchar_t* name) {
    const std::wstring key = interfaceKey(id);
    values.push_back({key, L"", name});
    values.push_back({key + L"\\ProxyStubClsid32", L"", automationMarshaler});
    values.push_back({key + L"\\TypeLib", L"", braced(LIBID_TessaryServer)});
    values.push_back({key + L"\\TypeLib", L"Version", libraryVersion});
}

std::vector<RegistryValue> registryValues(ServerKind kind, const std::wstring& file) {
    std::vector<RegistryValue> values;
    for (const ServerClass& serverClass : serverClasses()) {
        addClass(values, serverClass, kind, file);
    }
    addInterface(values, IID_DatabaseService, L"DatabaseService");
    addInterface(values, IID_DatabaseConnection, L"DatabaseConnection");
    const std::wstring library = libraryKey() + L"\\" + libraryVersion;
    values.push_back({library, L"", L"Tessary database server"});
    values.push_back({library + L"\\FLAGS", L"", L"0"});
    values.push_back({library + L"\\0\\win64", L"", file});
    values.push_back({library + L"\\HELPDIR", L"", file.substr(0, file.find_last_of(L'\\'))});
    return values;
}

std::vector<std::wstring> registryKeys() {
    std::vector<std::wstring> keys{libraryKey(), interfaceKey(IID_DatabaseService),
                                   interfaceKey(IID_DatabaseConnection)};
    for (const ServerClass& serverClass : serverClasses()) {
        keys.push_back(classKey(serverClass));
        keys.push_back(serverClass.programId);
        keys.push_back(versionedName(serverClass));
    }
    return keys;
}

HRESULT failure(LSTATUS status, const std::wstring& key, std::wstring& problem) {
    problem = L"the registry key " + key + L" cannot be changed (error " + std::to_wstring(status) + L")";
    return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
}

LSTATUS writeValue(HKEY root, const RegistryValue& value) {
    const DWORD size = static_cast<DWORD>((value.text.size() + 1) * sizeof(wchar_t));
    return RegSetKeyValueW(root, (classesPath + value.key).c_str(), value.name.c_str(), REG_SZ,
                           value.text.c_str(), size);
}

// Whether clients find classes that are registered for the user alone. Wine up to version 8 looks only at
// those of the machine, which in a Wine prefix are the user's as well.
bool areUserClassesFound() {
    const RegistryValue probe{L"Tessary.RegistrationProbe", L"", L""};
    HKEY key = nullptr;
    if (writeValue(HKEY_CURRENT_USER, probe) != ERROR_SUCCESS) {
        return false;
    }
    const bool isFound =
        RegOpenKeyExW(HKEY_CLASSES_ROOT, probe.key.c_str(), 0, KEY_READ, &key) == ERROR_SUCCESS;
    if (isFound) {
        RegCloseKey(key);
    }
    RegDeleteTreeW(HKEY_CURRENT_USER, (classesPath + probe.key).c_str());
    return isFound;
}

HRESULT removeKeys(HKEY root, std::wstring& problem) {
    for (const std::wstring& key : registryKeys()) {
        const LSTATUS status = RegDeleteTreeW(root, (classesPath + key).c_str());
        if (status != ERROR_SUCCESS && status != ERROR_FILE_NOT_FOUND) {
            return failure(status, key, problem);
        }
    }
    return S_OK;
}

}  // namespace

HRESULT registerServer(ServerKind kind, const std::wstring& file, std::wstring& problem) {
    const HRESULT removed = unregisterServer(problem);
    if (FAILED(removed)) {
        return removed;
    }
    const HKEY root = areUserClassesFound() ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
    for (const RegistryValue& value : registryValues(kind, file)) {
        const LSTATUS status = writeValue(root, value);
        if (status != ERROR_SUCCESS) {
            return failure(status, value.key, problem);
        }
    }
    return S_OK;
}

HRESULT unregisterServer(std::wstring& problem) {
    const HRESULT ofUser = removeKeys(HKEY_CURRENT_USER, problem);
    if (FAILED(ofUser) || areUserClassesFound()) {
        return ofUser;
    }
    return removeKeys(HKEY_LOCAL_MACHINE, problem);
}

}  // namespace tessary::server

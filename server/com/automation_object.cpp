#include "server/com/automation_object.h"

#include "server/com/module_file.h"

namespace tessary::server {

using Microsoft::WRL::ComPtr;

HRESULT loadTypeInfo(REFIID interfaceId, ITypeInfo** info) {
    HRESULT result = E_FAIL;
    const HRESULT called = guarded(interfaceId, [&] {
        ComPtr<ITypeLib> library;
        result = LoadTypeLibEx(fileOf(thisModule()).c_str(), REGKIND_NONE, library.GetAddressOf());
        if (SUCCEEDED(result)) {
            result = library->GetTypeInfoOfGuid(interfaceId, info);
        }
    });
    return FAILED(called) ? called : result;
}

// Without memory for the text the result alone has to tell of the failure.
void setErrorInformation(REFIID interfaceId, const char* text) {
    ComPtr<ICreateErrorInfo> creator;
    ComPtr<IErrorInfo> information;
    if (FAILED(CreateErrorInfo(creator.GetAddressOf()))) {
        return;
    }
    std::wstring description(text, text + strlen(text));
    wchar_t source[] = L"Tessary.DatabaseServer";
    creator->SetGUID(interfaceId);
    creator->SetSource(source);
    creator->SetDescription(description.data());
    if (SUCCEEDED(creator.As(&information))) {
        SetErrorInfo(0, information.Get());
    }
}

}  // namespace tessary::server

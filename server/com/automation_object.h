#pragma once

// What all automation objects of the server have in common.

#include "server/com/script_arguments.h"

#include <oleauto.h>
#include <wrl/client.h>

#include <atomic>
#include <exception>
#include <mutex>
#include <new>

namespace tessary::server {

// The description of an interface, from the type library that is part of this program or library.
HRESULT loadTypeInfo(REFIID interfaceId, ITypeInfo** info);
// Makes the text the calling thread's error information, which goes with the failing result to the client.
void setErrorInformation(REFIID interfaceId, const char* text);

// Runs a method's work: no exception leaves the server.
template <class Work>
HRESULT guarded(REFIID interfaceId, Work&& work) noexcept {
    try {
        work();
        return S_OK;
    } catch (const std::bad_alloc&) {
        return E_OUTOFMEMORY;
    } catch (const std::exception& error) {
        setErrorInformation(interfaceId,
                            ("Internal error of the database server: " + std::string(error.what())).c_str());
    } catch (...) {
        setErrorInformation(interfaceId, "Internal error of the database server");
    }
    return E_FAIL;
}

// IUnknown, IDispatch through the type library, and ISupportErrorInfo of a coclass with one dual interface.
// Objects are made with new and one reference, and delete themselves; any thread may use them.
template <class Interface>
class AutomationObject : public Interface, public ISupportErrorInfo {
public:
    AutomationObject(const AutomationObject&) = delete;
    AutomationObject& operator=(const AutomationObject&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (!object) {
            return E_POINTER;
        }
        *object = nullptr;
        if (id == IID_IUnknown || id == IID_IDispatch || id == __uuidof(Interface)) {
            *object = static_cast<Interface*>(this);
        } else if (id == IID_ISupportErrorInfo) {
            *object = static_cast<ISupportErrorInfo*>(this);
        } else {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) {
            delete this;
        }
        return left;
    }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        if (!count) {
            return E_POINTER;
        }
        *count = 1;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID, ITypeInfo** info) override {
        if (!info) {
            return E_POINTER;
        }
        *info = nullptr;
        return index == 0 ? typeInfo(info) : DISP_E_BADINDEX;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override {
        Microsoft::WRL::ComPtr<ITypeInfo> info;
        const HRESULT result = typeInfo(info.GetAddressOf());
        return FAILED(result) ? result : DispGetIDsOfNames(info.Get(), names, count, ids);
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* arguments,
                                     VARIANT* result, EXCEPINFO* exception, UINT* badArgument) override {
        Microsoft::WRL::ComPtr<ITypeInfo> info;
        const HRESULT loaded = typeInfo(info.GetAddressOf());
        if (FAILED(loaded)) {
            return loaded;
        }
        if (!arguments) {
            return E_INVALIDARG;
        }
        HRESULT invoked = E_FAIL;
        const HRESULT called = guarded(__uuidof(Interface), [&] {
            ScriptArguments typed(*info.Get(), member, *arguments);
            invoked = DispInvoke(static_cast<Interface*>(this), info.Get(), member, flags, typed.get(),
                                 result, exception, badArgument);
            typed.storeResults();
        });
        return FAILED(called) ? called : invoked;
    }

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID id) override {
        return id == __uuidof(Interface) ? S_OK : S_FALSE;
    }

protected:
    AutomationObject() = default;
    virtual ~AutomationObject() = default;

private:
    // Loaded when the first script asks: compiled clients do without.
    HRESULT typeInfo(ITypeInfo** info) {
        const std::lock_guard lock(typeInfoMutex_);
        if (!typeInfo_) {
            const HRESULT result = loadTypeInfo(__uuidof(Interface), typeInfo_.ReleaseAndGetAddressOf());
            if (FAILED(result)) {
                return result;
            }
        }
        return typeInfo_.CopyTo(info);
    }

    std::atomic<ULONG> references_{1};
    std::mutex typeInfoMutex_;
    Microsoft::WRL::ComPtr<ITypeInfo> typeInfo_;
};

}  // namespace tessary::server

#pragma once

#include <unknwn.h>

namespace tessary::server {

// IUnknown of an object that lives as long as the program: references to it are not counted.
template <class Interface>
class LastingObject : public Interface {
public:
    // interfaceId: what it offers besides IUnknown.
    explicit LastingObject(REFIID interfaceId) : interfaceId_(interfaceId) {}

    REFIID interfaceId() const { return interfaceId_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (!object) {
            return E_POINTER;
        }
        *object = id == IID_IUnknown || id == interfaceId_ ? static_cast<Interface*>(this) : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

private:
    IID interfaceId_;
};

}  // namespace tessary::server

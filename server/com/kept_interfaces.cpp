#include "server/com/kept_interfaces.h"

#include <wrl/client.h>

#include <tessary_server.h>

namespace tessary::server {

namespace {

// Claims to have the interface and is never called: nobody gets the reference to it.
class Placeholder final : public IUnknown {
public:
    explicit Placeholder(REFIID interfaceId) : interfaceId_(interfaceId) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override {
        if (!object) {
            return E_POINTER;
        }
        *object = id == IID_IUnknown || id == interfaceId_ ? this : nullptr;
        return *object ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    REFIID interfaceId() const { return interfaceId_; }

private:
    IID interfaceId_;
};

}  // namespace

void keepInterfacesOffered() {
    static Placeholder placeholders[] = {
        Placeholder(IID_IClassFactory),         Placeholder(IID_IDispatch),
        Placeholder(IID_ISupportErrorInfo),     Placeholder(IID_ITypeInfo),
        Placeholder(__uuidof(DatabaseService)), Placeholder(__uuidof(DatabaseConnection)),
    };
    for (Placeholder& placeholder : placeholders) {
        // A reference in a table counts until somebody takes it out of the stream, which nobody does.
        Microsoft::WRL::ComPtr<IStream> table;
        if (SUCCEEDED(CreateStreamOnHGlobal(nullptr, TRUE, table.GetAddressOf()))) {
            CoMarshalInterface(table.Get(), placeholder.interfaceId(), &placeholder, MSHCTX_LOCAL, nullptr,
                               MSHLFLAGS_TABLESTRONG);
        }
    }
}

}  // namespace tessary::server

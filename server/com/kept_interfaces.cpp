#include "server/com/kept_interfaces.h"

#include "server/com/lasting_object.h"

#include <wrl/client.h>

#include <tessary_server.h>

namespace tessary::server {

namespace {

// Claims to have an interface and is never called: nobody gets the reference to it.
using Placeholder = LastingObject<IUnknown>;

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

// server_client: a client of the database server that is done quickly. It makes a connection, asks whether it
// is alive, releases it and ends: with status 0 if all went well.

#include <tessary_server.h>

#include <wrl/client.h>

#include <cstdio>
#include <cstdlib>

namespace {

HRESULT useServer() {
    Microsoft::WRL::ComPtr<DatabaseConnection> connection;
    const HRESULT made =
        CoCreateInstance(CLSID_DatabaseConnectionObject, nullptr, CLSCTX_LOCAL_SERVER,
                         __uuidof(DatabaseConnection), reinterpret_cast<void**>(connection.GetAddressOf()));
    VARIANT_BOOL alive = VARIANT_FALSE;
    const HRESULT asked = SUCCEEDED(made) ? connection->IsAlive(&alive) : made;
    return SUCCEEDED(asked) && alive == VARIANT_FALSE ? E_UNEXPECTED : asked;
}

}  // namespace

int main() {
    HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (SUCCEEDED(result)) {
        result = useServer();
        CoUninitialize();
    }
    if (FAILED(result)) {
        std::printf("failed with %08lx\n", static_cast<unsigned long>(result));
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

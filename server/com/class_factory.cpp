#include "server/com/class_factory.h"

#include "server/com/connection_object.h"
#include "server/com/lasting_object.h"
#include "server/com/service_object.h"

#include <array>

namespace tessary::server {

namespace {

std::shared_ptr<Engine> sharedEngine() {
    static const std::shared_ptr<Engine> engine = makeSqliteEngine();
    return engine;
}

template <class Make>
HRESULT createObject(REFIID interfaceId, void** object, Make make) {
    HRESULT result = E_FAIL;
    const HRESULT made = guarded(interfaceId, [&] {
        auto* created = make();
        result = created->QueryInterface(interfaceId, object);
        created->Release();
    });
    return FAILED(made) ? made : result;
}

HRESULT createService(REFIID interfaceId, void** object) {
    return createObject(interfaceId, object, [] { return new ServiceObject; });
}

HRESULT createConnection(REFIID interfaceId, void** object) {
    return createObject(interfaceId, object, [] { return new ConnectionObject(sharedEngine()); });
}

constexpr ServerClass classes[] = {
    {&CLSID_DatabaseServiceObject, L"Tessary.DatabaseService", L"Tessary database service", createService},
    {&CLSID_DatabaseConnectionObject, L"Tessary.DatabaseConnection", L"Tessary database connection",
     createConnection},
};

class ClassFactory final : public LastingObject<IClassFactory> {
public:
    explicit ClassFactory(const ServerClass& serverClass)
        : LastingObject(IID_IClassFactory), class_(serverClass) {}

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID id, void** object) override {
        if (!object) {
            return E_POINTER;
        }
        *object = nullptr;
        return outer ? CLASS_E_NOAGGREGATION : class_.create(id, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        return guarded(IID_IClassFactory, [lock] { lock ? serverUse().hold() : serverUse().releaseHold(); });
    }

private:
    const ServerClass& class_;
};

}  // namespace

std::span<const ServerClass> serverClasses() {
    return classes;
}

IClassFactory* factoryOf(const ServerClass& serverClass) {
    static std::array<ClassFactory, std::size(classes)> factories{ClassFactory(classes[0]),
                                                                  ClassFactory(classes[1])};
    return &factories[static_cast<std::size_t>(&serverClass - classes)];
}

}  // namespace tessary::server

#include "host/database/class_registry.h"

#include <functional>
#include <memory>
#include <unordered_map>

#include "host/database/built_in_classes.h"
#include "host/database/entity_data.h"
#include "host/database/names.h"
#include "host/database/proxies.h"

namespace drafthost {
namespace {

// All descriptors of the process. Made when the first class registers; lives until the process ends, because
// modules' objects may ask for their class during shutdown.
struct ClassRegistry {
    // Descriptors of classes that went: modules may still have their addresses at hand and ask with them.
    std::vector<std::unique_ptr<AcRxClass>> gone;
    std::unordered_map<const AcRxClass*, AcRxClass::Impl*> insides;
    std::unordered_map<std::wstring, std::unique_ptr<AcRxClass>> byName;
    std::unordered_map<std::wstring, AcRxClass*> byDxfName;  // by folded name
};

ClassRegistry& registry() {
    static auto* const instance = new ClassRegistry;
    return *instance;
}

void registerBuiltInClasses() {
    static const bool done = [] {
        for (const ClassDescriptor describe : builtInClasses())
            describe();
        return true;
    }();
    static_cast<void>(done);
}

// The class dictionary and the registry that holds it: views of the registry above.
class ClassDictionary final : public AcRxDictionary {
public:
    AcRxObject* at(const ACHAR* name) const override { return acrxFindClass(name); }
    std::uint32_t numEntries() const override {
        registerBuiltInClasses();
        return static_cast<std::uint32_t>(registry().byName.size());
    }
};

class SystemRegistry final : public AcRxDictionary {
public:
    AcRxObject* at(const ACHAR* name) const override {
        static ClassDictionary classes;
        return name && std::wstring_view(name) == ACRX_CLASS_DICTIONARY ? &classes : nullptr;
    }
    std::uint32_t numEntries() const override { return 1; }
};

AcRxClass* insert(std::unique_ptr<AcRxClass::Impl> impl, const std::vector<const AcRxClass*>& parentLine) {
    const std::wstring name = impl->name;
    const std::wstring dxfName = foldCase(impl->dxfName);
    AcRxClass::Impl* const raw = impl.get();
    auto descriptor = std::make_unique<AcRxClass>(impl.release());
    AcRxClass* const result = descriptor.get();
    raw->ancestors = parentLine;
    raw->ancestors.push_back(result);
    registry().insides.emplace(result, raw);
    registry().byName.emplace(name, std::move(descriptor));
    if (!dxfName.empty())
        registry().byDxfName.emplace(dxfName, result);
    return result;
}

std::unique_ptr<AcRxClass::Impl> describe(const ACHAR* name, AcRxClass* parent, const ACHAR* dxfName,
                                          AcRxConstructor constructor) {
    auto impl = std::make_unique<AcRxClass::Impl>();
    impl->name = name;
    if (dxfName)
        impl->dxfName = dxfName;
    impl->parent = parent;
    impl->constructor = constructor;
    return impl;
}

std::vector<const AcRxClass*> lineOf(const AcRxClass* cls);

}  // namespace

AcRxClass* registerBuiltInClass(const ACHAR* name, AcRxClass* parent, const ACHAR* dxfName,
                                AcRxConstructor constructor) {
    return insert(describe(name, parent, dxfName, constructor), lineOf(parent));
}

AcRxClass* findClassByDxfName(std::wstring_view dxfName) {
    registerBuiltInClasses();
    const auto found = registry().byDxfName.find(foldCase(dxfName));
    return found == registry().byDxfName.end() ? nullptr : found->second;
}

namespace {

// The ancestors of a class are read back through its public parent chain, so that the descriptor keeps its
// insides.
std::vector<const AcRxClass*> lineOf(const AcRxClass* cls) {
    std::vector<const AcRxClass*> line;
    for (; cls; cls = cls->myParent())
        line.insert(line.begin(), cls);
    return line;
}

}  // namespace
}  // namespace drafthost

AcRxObject::~AcRxObject() = default;

AcRxClass* AcRxObject::desc() {
    static AcRxClass* const descriptor =
        drafthost::registerBuiltInClass(L"AcRxObject", nullptr, nullptr, nullptr);
    return descriptor;
}

AcRxClass* AcRxObject::isA() const {
    return desc();
}

bool AcRxObject::isKindOf(const AcRxClass* cls) const {
    return isA()->isDerivedFrom(cls);
}

DRAFTHOST_DEFINE_CLASS(AcRxClass, AcRxObject, nullptr, nullptr)
DRAFTHOST_DEFINE_CLASS(AcRxDictionary, AcRxObject, nullptr, nullptr)

AcRxDictionary* acrxSysRegistry() {
    static drafthost::SystemRegistry registry;
    return &registry;
}

AcRxClass::AcRxClass(Impl* impl) : impl_(impl) {}
AcRxClass::~AcRxClass() {
    delete impl_;
}
const ACHAR* AcRxClass::name() const {
    return impl_->name.c_str();
}
const ACHAR* AcRxClass::dxfName() const {
    return impl_->dxfName.empty() ? nullptr : impl_->dxfName.c_str();
}
const ACHAR* AcRxClass::appName() const {
    return impl_->appName.empty() ? nullptr : impl_->appName.c_str();
}
int AcRxClass::proxyFlags() const {
    return impl_->proxyFlags;
}
void AcRxClass::getClassVersion(int& dwgVersion, int& maintenanceVersion) const {
    dwgVersion = impl_->dwgVersion;
    maintenanceVersion = impl_->maintenanceVersion;
}
AcRxClass* AcRxClass::myParent() const {
    return impl_->parent;
}
AcRxObject* AcRxClass::create() const {
    return impl_->constructor ? impl_->constructor() : nullptr;
}

bool AcRxClass::isDerivedFrom(const AcRxClass* ancestor) const {
    if (!ancestor)
        return false;
    const std::size_t depth = ancestor->impl_->ancestors.size();
    return depth <= impl_->ancestors.size() && impl_->ancestors[depth - 1] == ancestor;
}

AcRxClass* newAcRxClass(const ACHAR* name, const ACHAR* parentName, int dwgVersion, int maintenanceVersion,
                        int proxyFlags, AcRxConstructor constructor, const ACHAR* dxfName,
                        const ACHAR* appName) {
    if (!name || !*name || acrxFindClass(name))
        return nullptr;
    AcRxClass* const parent = parentName ? acrxFindClass(parentName) : AcRxObject::desc();
    if (!parent)
        return nullptr;
    if (dxfName && *dxfName && drafthost::findClassByDxfName(dxfName))
        return nullptr;
    auto impl = drafthost::describe(name, parent, dxfName, constructor);
    // A class of a module is told by its application, so each has one.
    impl->appName = appName && *appName ? appName : name;
    impl->proxyFlags = proxyFlags;
    impl->dwgVersion = dwgVersion;
    impl->maintenanceVersion = maintenanceVersion;
    return drafthost::insert(std::move(impl), drafthost::lineOf(parent));
}

void deleteAcRxClass(AcRxClass* cls) {
    if (!cls || !cls->appName())
        return;  // the built-in classes stay
    auto& classes = drafthost::registry();
    const auto entry = classes.byName.find(cls->name());
    if (entry == classes.byName.end() || entry->second.get() != cls)
        return;  // it went before
    // What derives from it cannot stay without it. Their objects go together with its own.
    drafthost::replaceObjectsByProxies(cls);
    drafthost::forgetMakingOf(cls);
    std::erase_if(classes.byDxfName, [cls](const auto& known) { return known.second->isDerivedFrom(cls); });
    for (auto known = classes.byName.begin(); known != classes.byName.end();) {
        if (!known->second->isDerivedFrom(cls)) {
            ++known;
            continue;
        }
        classes.insides.at(known->second.get())->constructor = nullptr;  // its module's code goes
        classes.gone.push_back(std::move(known->second));
        known = classes.byName.erase(known);
    }
}

void drafthost::deleteClassesMadeIn(const void* begin, const void* end) {
    std::vector<AcRxClass*> left;
    for (const auto& [cls, impl] : registry().insides) {
        const void* const code = reinterpret_cast<const void*>(impl->constructor);
        if (code && !std::less<>()(code, begin) && std::less<>()(code, end))
            left.push_back(const_cast<AcRxClass*>(cls));
    }
    // One may have gone with another that it derives from.
    for (AcRxClass* const cls : left)
        deleteAcRxClass(cls);
}

AcRxClass* acrxFindClass(const ACHAR* name) {
    if (!name)
        return nullptr;
    drafthost::registerBuiltInClasses();
    const auto& classes = drafthost::registry().byName;
    const auto found = classes.find(name);
    return found == classes.end() ? nullptr : found->second.get();
}

// Ancestor tables are built as classes register; what is left to do is to bring objects that were kept
// without their class to life.
void acrxBuildClassHierarchy() {
    drafthost::replaceProxiesByObjects();
}

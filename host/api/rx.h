#pragma once

// Runtime classes, and loading of add-in modules.

#include "host/api/types.h"

class AcRxClass;
class AcRxObject;

namespace AcRx {
// Messages that a module's acrxEntryPoint receives.
enum AppMsgCode : int {
    kNullMsg = 0,
    kInitAppMsg = 1,    // the module was loaded
    kUnloadAppMsg = 2,  // the module is about to be unloaded
    kLoadDwgMsg = 3,    // a document was opened and is current
    kUnloadDwgMsg = 4,  // a document, the current one, is about to close
    kInvkSubrMsg = 5,   // a function registered without acedRegFunc was called
};
enum AppRetCode : int { kRetOK = 0, kRetError = 3 };
}  // namespace AcRx

// Interface version that a module must report through its export acrxGetApiVersion.
constexpr std::uint32_t kHostApiVersion = 0x00120000;

extern "C" {
using AcrxEntryPoint = AcRx::AppRetCode(AcRx::AppMsgCode message, void* packet);
using AcrxGetApiVersion = std::uint32_t();
}

// Root of the objects with runtime class information.
class DRAFTHOST_API AcRxObject {
public:
    AcRxObject() = default;
    AcRxObject(const AcRxObject&) = delete;
    AcRxObject& operator=(const AcRxObject&) = delete;
    virtual ~AcRxObject();
    static AcRxClass* desc();
    virtual AcRxClass* isA() const;
    // True when this is of the class or of one derived from it.
    bool isKindOf(const AcRxClass* cls) const;
};

// Declares the runtime class members of a class derived from AcRxObject.
#define ACRX_DECLARE_MEMBERS(CLASS)                                                                          \
    static AcRxClass* desc();                                                                                \
    AcRxClass* isA() const override;                                                                         \
    static CLASS* cast(const AcRxObject* object) {                                                           \
        return object && object->isKindOf(CLASS::desc())                                                     \
                   ? static_cast<CLASS*>(const_cast<AcRxObject*>(object))                                    \
                   : nullptr;                                                                                \
    }

using AcRxConstructor = AcRxObject* (*)();

// Describes one runtime class. Descriptors are created by newAcRxClass and live until deleteAcRxClass. They
// are found by name in the dictionary ACRX_CLASS_DICTIONARY of the system registry.
class DRAFTHOST_API AcRxClass : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcRxClass)
    const ACHAR* name() const;
    const ACHAR* dxfName() const;  // null: the class is never filed on its own
    const ACHAR* appName() const;  // null for the host's own classes
    // What the drafter may do to an object of the class while its module is away: AcRxProxyFlags together.
    int proxyFlags() const;
    // Version of drawing files that the class appeared with: both 0 for the host's own classes.
    void getClassVersion(int& dwgVersion, int& maintenanceVersion) const;
    AcRxClass* myParent() const;
    bool isDerivedFrom(const AcRxClass* ancestor) const;
    // A new default object, caller owns; null for an abstract class.
    AcRxObject* create() const;

    struct Impl;
    explicit AcRxClass(Impl* impl);
    ~AcRxClass() override;

private:
    Impl* impl_;  // owned
};

// Objects by name. Names are compared as they stand. The host's dictionaries live as long as the host.
class DRAFTHOST_API AcRxDictionary : public AcRxObject {
public:
    ACRX_DECLARE_MEMBERS(AcRxDictionary)
    // The object of that name, null when there is none or for a null name. Stays the dictionary's.
    virtual AcRxObject* at(const ACHAR* name) const = 0;
    virtual std::uint32_t numEntries() const = 0;
};

constexpr const ACHAR* ACRX_CLASS_DICTIONARY = L"ClassDictionary";  // of all runtime classes
// The dictionary of the host's dictionaries. Never null.
DRAFTHOST_API AcRxDictionary* acrxSysRegistry();

// What may be done to a proxy, an object whose class is not there; 0: nothing.
enum AcRxProxyFlags : int {
    kProxyNoOperation = 0,
    kProxyEraseAllowed = 1,
    kProxyTransformAllowed = 2,
    kProxyColorChangeAllowed = 4,
    kProxyLayerChangeAllowed = 8,
    kProxyLinetypeChangeAllowed = 16,
    kProxyLinetypeScaleChangeAllowed = 32,
    kProxyVisibilityChangeAllowed = 64,
    kProxyCloningAllowed = 128,
    kProxyLineWeightChangeAllowed = 256,
    kProxyAllOperations = 511,
};

// Registers a class. dwgVersion, maintenanceVersion: see getClassVersion. constructor null: abstract. dxfName
// null: not filed. appName: the application that brings the class, shown to drafters who lack it; texts
// between bars in one pair of double quotes by custom. Returns null when the name or the DXF name is taken,
// or the parent is not known.
DRAFTHOST_API AcRxClass* newAcRxClass(const ACHAR* name, const ACHAR* parentName, int dwgVersion,
                                      int maintenanceVersion, int proxyFlags, AcRxConstructor constructor,
                                      const ACHAR* dxfName, const ACHAR* appName);
// Objects of the class in all drawings become proxies that keep their data. Built-in classes stay.
DRAFTHOST_API void deleteAcRxClass(AcRxClass* cls);
// The registered class of that name, or null.
DRAFTHOST_API AcRxClass* acrxFindClass(const ACHAR* name);
// Brings the derivation tables up to date after classes were added or removed, and turns proxies of classes
// that are known now back into objects of them.
DRAFTHOST_API void acrxBuildClassHierarchy();
// Ends the host at once, for faults after which no drawing may be saved. The message, formatted as by printf,
// goes to the drafter.
[[noreturn]] DRAFTHOST_API void acrx_abort(const ACHAR* format, ...);

// Loads a module from the host's search path and sends it kInitAppMsg. Returns true when it is loaded
// afterwards. printMessage: print why it could not be loaded. asCommand: load for a command, not for a
// module.
DRAFTHOST_API bool acrxLoadModule(const ACHAR* fileName, bool printMessage, bool asCommand);
// Unloads a module that acrxLoadModule loaded, after kUnloadAppMsg. False when it is not loaded or locked.
DRAFTHOST_API bool acrxUnloadModule(const ACHAR* fileName, bool asCommand);
// packet: the packet of kInitAppMsg. Lets the drafter unload the module; modules start locked.
DRAFTHOST_API bool acrxUnlockApplication(void* packet);
// packet: the packet of kInitAppMsg. Says the module serves several open documents.
DRAFTHOST_API bool acrxRegisterAppMDIAware(void* packet);

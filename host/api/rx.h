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

using AcRxConstructor = AcRxObject* (*)();

// Describes one runtime class. Descriptors are created by newAcRxClass and live until deleteAcRxClass.
class DRAFTHOST_API AcRxClass {
public:
    const ACHAR* name() const;
    const ACHAR* dxfName() const;  // null: the class is never filed on its own
    const ACHAR* appName() const;  // null for the host's own classes
    int proxyFlags() const;
    AcRxClass* myParent() const;
    bool isDerivedFrom(const AcRxClass* ancestor) const;
    // A new default object, caller owns; null for an abstract class.
    AcRxObject* create() const;

    struct Impl;
    explicit AcRxClass(Impl* impl);
    ~AcRxClass();
    AcRxClass(const AcRxClass&) = delete;
    AcRxClass& operator=(const AcRxClass&) = delete;

private:
    Impl* impl_;  // owned
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

// Registers a class. constructor null: abstract. dxfName null: not filed. Returns null when the name is
// taken.
DRAFTHOST_API AcRxClass* newAcRxClass(const ACHAR* name, const ACHAR* parentName, AcRxConstructor constructor,
                                      const ACHAR* dxfName, const ACHAR* appName, int proxyFlags);
DRAFTHOST_API void deleteAcRxClass(AcRxClass* cls);
// The registered class of that name, or null.
DRAFTHOST_API AcRxClass* acrxFindClass(const ACHAR* name);
// Brings the derivation tables up to date after classes were added or removed.
DRAFTHOST_API void acrxBuildClassHierarchy();

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

#pragma once

// Runtime classes: the descriptors behind AcRxClass, and the definition of the built-in ones.
//
// A descriptor knows its line of ancestors, so isKindOf is one comparison at the ancestor's depth. Built-in
// classes are registered when their desc() is first called; look-ups by name first register them all
// (built_in_classes.cpp lists them), so nothing depends on the order of static initialisation.

#include <string>
#include <string_view>
#include <vector>

#include "host/api/rx.h"

struct AcRxClass::Impl {
    std::wstring name;
    std::wstring dxfName;  // empty: not filed
    std::wstring appName;  // empty: built in
    int proxyFlags = 0;
    int dwgVersion = 0, maintenanceVersion = 0;
    AcRxClass* parent = nullptr;
    AcRxConstructor constructor = nullptr;
    std::vector<const AcRxClass*> ancestors;  // from the root to the class itself
};

class AcDbObject;

namespace drafthost {

// Registers a built-in class. parent null: the root. The registry owns the descriptor.
AcRxClass* registerBuiltInClass(const ACHAR* name, AcRxClass* parent, const ACHAR* dxfName,
                                AcRxConstructor constructor);

// The class filed under that DXF name ("LINE"), without regard to case; null when there is none.
AcRxClass* findClassByDxfName(std::wstring_view dxfName);

// Takes back the classes whose objects are made by code between the two addresses: that of a module which
// goes without having done so. Their objects' code is still there.
void deleteClassesMadeIn(const void* begin, const void* end);

// The name under which the object is filed: its class's, or the kept one of an object of an unknown class.
const ACHAR* dxfNameOf(const AcDbObject& object);

template <class T>
AcRxObject* constructObject() {
    return new T();
}

}  // namespace drafthost

// Defines desc() and isA() of a built-in class, at global scope. DXFNAME: L"LINE", or nullptr for classes
// that are not filed under a name of their own. CONSTRUCTOR: &drafthost::constructObject<CLASS>, or nullptr
// for an abstract class.
#define DRAFTHOST_DEFINE_CLASS(CLASS, PARENT, DXFNAME, CONSTRUCTOR)                                          \
    AcRxClass* CLASS::desc() {                                                                               \
        static AcRxClass* const descriptor =                                                                 \
            drafthost::registerBuiltInClass(L"" #CLASS, PARENT::desc(), DXFNAME, CONSTRUCTOR);               \
        return descriptor;                                                                                   \
    }                                                                                                        \
    AcRxClass* CLASS::isA() const {                                                                          \
        return CLASS::desc();                                                                                \
    }

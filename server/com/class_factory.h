#pragma once

// The server's coclasses for those who create objects.

#include <windows.h>

#include <unknwn.h>

#include <span>

namespace tessary::server {

struct ServerClass {
    const CLSID* id;
    const wchar_t* programId;  // without its version
    const wchar_t* description;
    // A new object's interface.
    HRESULT (*create)(REFIID interfaceId, void** object);
};

std::span<const ServerClass> serverClasses();

// Factories exist once and for as long as the program; their references are not counted.
IClassFactory* factoryOf(const ServerClass& serverClass);

}  // namespace tessary::server

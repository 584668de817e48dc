#pragma once

// The server's entries in the registry: classes, program identifiers, interfaces and type library.

#include <windows.h>

#include <string>

namespace tessary::server {

// How objects are made: by a program of their own, or in the client's process. One at a time is registered,
// so that clients that would take either find the one that was chosen.
enum class ServerKind { local, inProcess };

// file: the program or library, which also holds the type library. A failing result names what could not be
// written in `problem`.
HRESULT registerServer(ServerKind kind, const std::wstring& file, std::wstring& problem);
// Removes the entries of both kinds.
HRESULT unregisterServer(std::wstring& problem);

}  // namespace tessary::server

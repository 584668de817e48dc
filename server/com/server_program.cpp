// TessaryServer.exe: the database server as a process of its own.
//
// COM starts it with -Embedding when a client wants an object, and it ends by itself some seconds after the
// last use. By hand it changes the registration: /RegServer makes clients use this program, /RegServer inproc
// the library TessaryServer.dll beside it, /UnregServer removes either.

#include "server/com/class_factory.h"
#include "server/com/kept_interfaces.h"
#include "server/com/module_file.h"
#include "server/com/registration.h"
#include "server/com/server_use.h"

#include <objbase.h>

#include <cstdio>
#include <cwchar>
#include <vector>

using namespace tessary::server;

namespace {

constexpr DWORD idleMilliseconds = 5000;
// For clients that found the classes just before they were withdrawn, until they have made their first
// object.
constexpr DWORD lateComerMilliseconds = 1000;
constexpr int usageStatus = 2;

// The factories of all classes, offered to other processes while this object lives.
class OfferedClasses {
public:
    OfferedClasses() {
        for (const ServerClass& serverClass : serverClasses()) {
            DWORD cookie = 0;
            result_ = CoRegisterClassObject(*serverClass.id, factoryOf(serverClass), CLSCTX_LOCAL_SERVER,
                                            REGCLS_MULTIPLEUSE | REGCLS_SUSPENDED, &cookie);
            if (FAILED(result_)) {
                return;
            }
            cookies_.push_back(cookie);
        }
        result_ = CoResumeClassObjects();
    }
    ~OfferedClasses() {
        CoSuspendClassObjects();
        for (const DWORD cookie : cookies_) {
            CoRevokeClassObject(cookie);
        }
    }
    OfferedClasses(const OfferedClasses&) = delete;
    OfferedClasses& operator=(const OfferedClasses&) = delete;

    HRESULT result() const { return result_; }

private:
    std::vector<DWORD> cookies_;
    HRESULT result_ = S_OK;
};

// Returns when nobody has used the server for that time.
void waitUntilIdle(DWORD milliseconds) {
    ServerUse& use = serverUse();
    for (;;) {
        const bool isInUse = use.isInUse();
        if (WaitForSingleObject(use.changed(), isInUse ? INFINITE : milliseconds) == WAIT_TIMEOUT &&
            !use.isInUse()) {
            return;
        }
    }
}

int complain(const wchar_t* text) {
    fwprintf(stderr, L"TessaryServer: %ls\n", text);
    return EXIT_FAILURE;
}

int serve() {
    if (FAILED(CoInitializeEx(nullptr, COINIT_MULTITHREADED))) {
        return complain(L"COM cannot be started");
    }
    serverUse().watchClients();
    keepInterfacesOffered();
    {
        const OfferedClasses offered;
        if (FAILED(offered.result())) {
            return complain(L"the classes cannot be registered with COM");
        }
        waitUntilIdle(idleMilliseconds);
    }
    // Late-comers are served to their end. Other clients start another process by now, which does no harm:
    // databases are shared between processes.
    waitUntilIdle(lateComerMilliseconds);
    // Objects of clients that died are still known to COM, so it is not shut down in order.
    ExitProcess(EXIT_SUCCESS);
}

int changeRegistration(HRESULT result, const std::wstring& problem) {
    return SUCCEEDED(result) ? EXIT_SUCCESS : complain(problem.c_str());
}

std::wstring libraryBeside(const std::wstring& program) {
    return program.substr(0, program.find_last_of(L'\\') + 1) + L"TessaryServer.dll";
}

int registerProgram() {
    std::wstring problem;
    return changeRegistration(registerServer(ServerKind::local, fileOf(nullptr), problem), problem);
}

int registerLibrary() {
    const std::wstring library = libraryBeside(fileOf(nullptr));
    if (GetFileAttributesW(library.c_str()) == INVALID_FILE_ATTRIBUTES) {
        return complain((L"there is no library " + library).c_str());
    }
    std::wstring problem;
    return changeRegistration(registerServer(ServerKind::inProcess, library, problem), problem);
}

int unregister() {
    std::wstring problem;
    return changeRegistration(unregisterServer(problem), problem);
}

int showUsage() {
    fwprintf(stderr, L"TessaryServer /RegServer         clients use this program\n"
                     L"TessaryServer /RegServer inproc  clients use the library TessaryServer.dll beside it\n"
                     L"TessaryServer /UnregServer       no client finds the server any more\n"
                     L"TessaryServer -Embedding         serves clients; started by COM\n");
    return usageStatus;
}

// Options begin with a slash or a hyphen; case does not matter.
bool isOption(const std::wstring& argument, const wchar_t* name) {
    return argument.size() > 1 && (argument[0] == L'/' || argument[0] == L'-') &&
           _wcsicmp(argument.c_str() + 1, name) == 0;
}

}  // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int) {
    const std::vector<std::wstring> arguments(__wargv + 1, __wargv + __argc);
    if (arguments.size() == 1 && isOption(arguments[0], L"Embedding")) {
        return serve();
    }
    if (arguments.size() == 1 && isOption(arguments[0], L"RegServer")) {
        return registerProgram();
    }
    if (arguments.size() == 2 && isOption(arguments[0], L"RegServer") &&
        _wcsicmp(arguments[1].c_str(), L"inproc") == 0) {
        return registerLibrary();
    }
    if (arguments.size() == 1 && isOption(arguments[0], L"UnregServer")) {
        return unregister();
    }
    return showUsage();
}

#include "host/documents/modules.h"

#include <windows.h>

#include <psapi.h>

#include <algorithm>
#include <cwchar>

#include "host/database/class_registry.h"
#include "host/database/names.h"
#include "host/documents/host.h"
#include "host/lisp/utf8.h"

namespace drafthost {

namespace {

std::wstring systemMessage(DWORD error) {
    wchar_t text[512] = L"";
    FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error, 0, text,
                   static_cast<DWORD>(std::size(text)), nullptr);
    std::wstring message = text;
    while (!message.empty() && (message.back() < L' ' || message.back() == L'.'))
        message.pop_back();
    // Some of the system's messages name the file themselves.
    if (const std::size_t place = message.find(L"%1"); place != std::wstring::npos)
        message.replace(place, 2, L"the file");
    return message.empty() ? L"error " + std::to_wstring(error) : message;
}

std::wstring hexadecimal(std::uint32_t number) {
    wchar_t text[16];
    std::swprintf(text, std::size(text), L"0x%08x", static_cast<unsigned>(number));
    return text;
}

template <class Function>
Function* exported(void* library, const char* name) {
    return reinterpret_cast<Function*>(GetProcAddress(static_cast<HMODULE>(library), name));
}

// What a module that goes has left behind in the host would be called without its code.
void release(HMODULE library) {
    MODULEINFO info{};
    if (GetModuleInformation(GetCurrentProcess(), library, &info, sizeof info)) {
        const auto* const begin = static_cast<const char*>(info.lpBaseOfDll);
        deleteClassesMadeIn(begin, begin + info.SizeOfImage);
    }
    FreeLibrary(library);
}

std::wstring fileNameOf(const std::wstring& path) {
    return path.substr(folderOf(path).size());
}

}  // namespace

std::wstring Module::fileName() const {
    return fileNameOf(path);
}

Module* Modules::findByName(const std::wstring& file) const {
    const std::wstring name = fileNameOf(file);
    for (const auto& module : modules_) {
        if (equalNames(module->fileName(), name))
            return module.get();
    }
    return nullptr;
}

Module* Modules::find(const void* packet) const {
    for (const auto& module : modules_) {
        if (module.get() == packet)
            return module.get();
    }
    return nullptr;
}

bool Modules::open(Module& module, std::wstring& message) {
    const std::wstring& path = module.path;
    module.library = LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!module.library) {
        message = path + L" cannot be loaded: " + systemMessage(GetLastError()) + L".";
        return false;
    }
    module.entryPoint = exported<AcrxEntryPoint>(module.library, "acrxEntryPoint");
    const auto version = exported<AcrxGetApiVersion>(module.library, "acrxGetApiVersion");
    if (!module.entryPoint || !version) {
        message = path + L" is no module of this host: it does not export " +
                  (module.entryPoint ? L"acrxGetApiVersion" : L"acrxEntryPoint") + L".";
        return false;
    }
    if (const std::uint32_t built = version(); built != kHostApiVersion) {
        message = path + L" was built for interface version " + hexadecimal(built) + L"; this host offers " +
                  hexadecimal(kHostApiVersion) + L".";
        return false;
    }
    return true;
}

bool Modules::load(const std::wstring& file, std::wstring& message) {
    if (findByName(file))
        return true;
    const auto path = host_.services().find(file, host_.services().workingDatabase());
    if (!path) {
        message = file + L" was not found.";
        return false;
    }
    auto owned = std::make_unique<Module>();
    Module* const module = owned.get();
    module->path = *path;
    if (!open(*module, message)) {
        if (module->library)
            FreeLibrary(static_cast<HMODULE>(module->library));
        return false;
    }
    modules_.push_back(std::move(owned));
    if (send(*module, AcRx::kInitAppMsg, module) == AcRx::kRetError) {
        message = *path + L" refused to be loaded.";
        release(static_cast<HMODULE>(module->library));
        std::erase_if(modules_, [&](const auto& entry) { return entry.get() == module; });
        return false;
    }
    Document* const current = host_.documents().current();
    for (const auto& document : host_.documents().all()) {
        host_.documents().setCurrent(document.get());
        send(*module, AcRx::kLoadDwgMsg, nullptr);
    }
    host_.documents().setCurrent(current);
    return true;
}

bool Modules::unload(const std::wstring& file, bool evenLocked, std::wstring& message) {
    Module* const module = findByName(file);
    if (!module) {
        message = file + L" is not loaded.";
        return false;
    }
    if (module->locked && !evenLocked) {
        message = file + L" is locked and cannot be unloaded.";
        return false;
    }
    if (module == running_) {
        message = file + L" cannot be unloaded while it runs.";
        return false;
    }
    Document* const current = host_.documents().current();
    for (const auto& document : host_.documents().all()) {
        host_.documents().setCurrent(document.get());
        send(*module, AcRx::kUnloadDwgMsg, nullptr);
        document->forgetModule(module);
    }
    host_.documents().setCurrent(current);
    send(*module, AcRx::kUnloadAppMsg, module);
    release(static_cast<HMODULE>(module->library));
    std::erase_if(modules_, [&](const auto& entry) { return entry.get() == module; });
    return true;
}

void Modules::unloadAll() {
    std::wstring message;
    while (!modules_.empty() && unload(modules_.back()->fileName(), true, message)) {
    }
}

void Modules::documentOpened() {
    // A module that is loaded meanwhile has been told already.
    const std::size_t count = modules_.size();
    for (std::size_t i = 0; i < count && i < modules_.size(); ++i)
        send(*modules_[i], AcRx::kLoadDwgMsg, nullptr);
}

void Modules::documentCloses() {
    for (std::size_t i = modules_.size(); i-- > 0;)
        send(*modules_[i], AcRx::kUnloadDwgMsg, nullptr);
}

AcRx::AppRetCode Modules::send(Module& module, AcRx::AppMsgCode message, void* packet) {
    const RunScope scope(*this, &module);
    std::wstring reason;
    try {
        return module.entryPoint(message, packet);
    } catch (const std::exception& error) {
        reason = lisp::fromUtf8(error.what());
    } catch (...) {
        reason = L"an exception of its own";
    }
    host_.warn(module.fileName() + L" failed at message " + std::to_wstring(message) + L": " + reason);
    return AcRx::kRetError;
}

}  // namespace drafthost

using drafthost::theHost;

bool acrxLoadModule(const ACHAR* fileName, bool printMessage, bool) {
    if (!fileName)
        return false;
    std::wstring message;
    const bool loaded = theHost().modules().load(fileName, message);
    if (!loaded && printMessage)
        theHost().commandLine().write(L"\n" + message + L"\n");
    return loaded;
}

bool acrxUnloadModule(const ACHAR* fileName, bool) {
    std::wstring message;
    return fileName && theHost().modules().unload(fileName, false, message);
}

bool acrxUnlockApplication(void* packet) {
    drafthost::Module* const module = theHost().modules().find(packet);
    if (module)
        module->locked = false;
    return module != nullptr;
}

bool acrxRegisterAppMDIAware(void* packet) {
    drafthost::Module* const module = theHost().modules().find(packet);
    if (module)
        module->servesSeveralDocuments = true;
    return module != nullptr;
}

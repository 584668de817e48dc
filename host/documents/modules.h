#pragma once

// Add-in modules: libraries that export acrxEntryPoint and acrxGetApiVersion.

#include <memory>
#include <string>
#include <vector>

#include "host/api/rx.h"

namespace drafthost {

class Document;
class Host;

struct Module {
    std::wstring path;  // full
    void* library = nullptr;
    AcrxEntryPoint* entryPoint = nullptr;
    bool locked = true;  // the drafter may not unload it
    bool servesSeveralDocuments = false;
    std::wstring fileName() const;
};

class Modules {
public:
    explicit Modules(Host& host) : host_(host) {}

    // Loads from a full path, or a name on the search path, sends kInitAppMsg and, for every open document,
    // kLoadDwgMsg. Loading a module twice does nothing. False: not loaded, for the reason in message.
    bool load(const std::wstring& file, std::wstring& message);
    // False when there is no such module, it is locked (unless evenLocked: the host ends), or it is running.
    bool unload(const std::wstring& file, bool evenLocked, std::wstring& message);
    void unloadAll();

    // The document is current.
    void documentOpened();
    void documentCloses();

    // Result of the entry point; exceptions are reported and count as kRetError.
    AcRx::AppRetCode send(Module& module, AcRx::AppMsgCode message, void* packet);
    // Module whose code is running; null for none.
    Module* running() const { return running_; }
    Module* find(const void* packet) const;
    const std::vector<std::unique_ptr<Module>>& all() const { return modules_; }

    // While code of a module runs.
    class RunScope {
    public:
        RunScope(Modules& modules, Module* module) : modules_(modules), before_(modules.running_) {
            modules_.running_ = module;
        }
        ~RunScope() { modules_.running_ = before_; }
        RunScope(const RunScope&) = delete;
        RunScope& operator=(const RunScope&) = delete;

    private:
        Modules& modules_;
        Module* before_;
    };

private:
    Module* findByName(const std::wstring& file) const;
    bool open(Module& module, std::wstring& message);

    Host& host_;
    std::vector<std::unique_ptr<Module>> modules_;
    Module* running_ = nullptr;
};

}  // namespace drafthost

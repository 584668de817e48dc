#pragma once

// The host of the process: everything that is there once. Made by the first use, ended by endHost().

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "host/dialogs/dialog_answers.h"
#include "host/documents/document_manager.h"
#include "host/documents/host_services.h"
#include "host/documents/modules.h"
#include "host/editor/command_line.h"
#include "host/editor/external_calls.h"
#include "host/editor/selection_set.h"
#include "host/editor/system_variables.h"

namespace drafthost {

class Host {
public:
    Host();
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    editor::CommandLine& commandLine() { return commandLine_; }
    HostServices& services() { return services_; }
    SupportFiles& files() { return files_; }
    editor::VariableStore& variables() { return variables_; }
    editor::SelectionSets& selectionSets() { return selectionSets_; }
    Modules& modules() { return modules_; }
    editor::ExternalCalls& calls() { return calls_; }
    DocumentManager& documents() { return documents_; }

    // Who answers. The source must live as long as it is set; null: nobody.
    void setInput(std::unique_ptr<editor::InputSource> source);
    editor::InputSource& input() { return *input_; }

    // Diagnostics, on standard error.
    void warn(const std::wstring& message);
    void log(const std::wstring& message);  // with --verbose only
    void setVerbose(bool verbose) { verbose_ = verbose; }

    // Ends the run: reports the reason, cancels what is running, and answers nothing from now on.
    void failRun(const std::wstring& reason);
    bool runFailed() const { return runFailed_; }

    // The drafter pressed Ctrl-C; any thread. Held until the running evaluation has ended.
    void interrupt();
    bool interrupted() const { return interrupted_; }
    void clearInterrupt() { interrupted_ = false; }

private:
    std::atomic<bool> interrupted_ = false;
    bool verbose_ = false;
    bool runFailed_ = false;
    editor::CommandLine commandLine_;
    std::unique_ptr<editor::InputSource> input_;
    HostServices services_;
    SupportFiles files_;
    editor::VariableStore variables_;
    editor::SelectionSets selectionSets_;
    Modules modules_;
    editor::ExternalCalls calls_;
    DocumentManager documents_;
    dialogs::DialogAnswers dialogAnswers_;
};

Host& theHost();
// Closes all documents and unloads all modules.
void endHost();

}  // namespace drafthost

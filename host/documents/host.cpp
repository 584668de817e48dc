#include "host/documents/host.h"

#include "host/database/database_impl.h"
#include "host/database/open_counters.h"

namespace drafthost {

namespace {

// The host lives from its first use to endHost().
std::unique_ptr<Host>& instance() {
    static std::unique_ptr<Host> host;
    return host;
}

bool documentWritable(const AcDbDatabase* database) {
    const Document* const document = instance() ? instance()->documents().find(database) : nullptr;
    return !document || document->writable();
}

void argumentsReleased(const resbuf* list) {
    if (instance())
        instance()->calls().listReleased(list);
}

}  // namespace

Host::Host()
    : services_(*this), files_(services_), modules_(*this), calls_(*this), documents_(*this),
      dialogAnswers_(*this) {
    setInput(nullptr);
    writeAllowed = documentWritable;
    valueListReleased = argumentsReleased;
}

Host::~Host() {
    writeAllowed = nullptr;
    valueListReleased = nullptr;
}

void Host::setInput(std::unique_ptr<editor::InputSource> source) {
    if (!source)
        source = std::make_unique<editor::EmptySource>([this](const std::wstring& text) { warn(text); });
    input_ = std::move(source);
}

void Host::warn(const std::wstring& message) {
    commandLine_.flush();
    editor::reportOnStandardError(L"warning: " + message);
}

void Host::log(const std::wstring& message) {
    if (!verbose_)
        return;
    commandLine_.flush();
    editor::reportOnStandardError(message);
}

void Host::failRun(const std::wstring& reason) {
    if (runFailed_)
        return;
    runFailed_ = true;
    commandLine_.freshLine();
    commandLine_.flush();
    editor::reportOnStandardError(reason);
    for (const auto& document : documents_.all())
        document->interpreter().requestCancel();
}

void Host::interrupt() {
    interrupted_ = true;
    for (const auto& document : documents_.all())
        document->interpreter().requestCancel();
}

Host& theHost() {
    if (!instance())
        instance() = std::make_unique<Host>();
    return *instance();
}

void endHost() {
    if (!instance())
        return;
    // Modules call back into the host while they are told.
    instance()->documents().closeAll();
    instance()->modules().unloadAll();
    instance()->commandLine().flush();
    instance().reset();
}

}  // namespace drafthost

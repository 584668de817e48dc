#include "host/documents/document.h"

#include <algorithm>

#include "host/database/database_impl.h"
#include "host/documents/host.h"
#include "host/editor/commands.h"
#include "host/editor/coordinates.h"
#include "host/editor/value_conversion.h"
#include "host/lisp/drawing_functions.h"

namespace drafthost {

Document::Document(Host& host, std::unique_ptr<AcDbDatabase> database, std::wstring name)
    : host_(host), database_(std::move(database)), undo_(*database_), name_(std::move(name)),
      prompts_(*this) {
    interpreter_ = std::make_unique<lisp::Interpreter>(host.commandLine(), host.files());
    interpreter_->attach(this);
    interpreter_->setVariableReader([this](std::wstring_view variable) -> std::optional<int> {
        const auto value = editor::getVariable(*this, variable);
        const int* number = value ? std::get_if<int>(&*value) : nullptr;
        return number ? std::optional(*number) : std::nullopt;
    });
    interpreter_->setFormFinished([this] { endLispStep(); });
    lisp::defineDrawingFunctions(*interpreter_);
    commands_ = std::make_unique<editor::CommandRunner>(*this);
}

Document::~Document() {
    commands_->cancel();  // while prompts still find their way here
    commands_.reset();
    interpreter_.reset();
}

void Document::endLispStep() {
    if (!commands_ || !commands_->active())
        undo_.endStep(L"LISP");
}

AcAp::DocLockMode Document::lockMode() const {
    if (locks_ > 0)
        return AcAp::kWrite;
    return evaluations_ > 0 ? AcAp::kAutoWrite : AcAp::kNotLocked;
}

ModuleFunction* Document::findModuleFunction(Module* module, short number) {
    const auto found = std::find_if(functions_.begin(), functions_.end(), [&](const auto& entry) {
        return entry->module == module && entry->number == number;
    });
    return found == functions_.end() ? nullptr : found->get();
}

ModuleFunction& Document::moduleFunction(Module* module, short number) {
    if (ModuleFunction* known = findModuleFunction(module, number))
        return *known;
    functions_.push_back(std::make_unique<ModuleFunction>());
    functions_.back()->module = module;
    functions_.back()->number = number;
    return *functions_.back();
}

void Document::forgetModule(Module* module) {
    std::erase_if(functions_, [&](const auto& entry) {
        if (entry->module != module)
            return false;
        interpreter_->undefineExternal(entry->name);
        return true;
    });
}

editor::InputSource& Document::source() {
    return commands_->source();
}

editor::CommandLine& Document::commandLine() {
    return host_.commandLine();
}

bool Document::stopped() const {
    return host_.runFailed() || host_.interrupted();
}

AcGeMatrix3d Document::worldToUcs() const {
    return editor::ucsToWorld(*database_).inverse();
}

double Document::angleBase() const {
    return database_->impl().settings.header.real(L"$ANGBASE", 0);
}

editor::LengthUnits Document::lengthUnits() const {
    constexpr int kEngineering = 3, kArchitectural = 4;
    const int units = database_->impl().settings.header.integer(L"$LUNITS", 2);
    return units == kEngineering || units == kArchitectural ? editor::LengthUnits::FeetAndInches
                                                            : editor::LengthUnits::Decimal;
}

std::optional<editor::Answer> Document::evaluateTyped(const std::wstring& text) {
    const std::wstring expression = text[0] == L'!' ? text.substr(1) : text;
    std::optional<editor::Answer> answer;
    commands_->runOnThread([&] {
        const lisp::Outcome outcome = interpreter_->evaluateTopLevel(expression);
        if (outcome.succeeded)
            answer = editor::answerFromValue(outcome.value);
    });
    return answer;
}

}  // namespace drafthost

#include "host/editor/commands.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "host/database/names.h"
#include "host/documents/host.h"
#include "host/editor/command_context.h"
#include "host/lisp/lisp_error.h"
#include "host/lisp/utf8.h"

namespace drafthost::editor {

namespace {

constexpr SIZE_T kFiberStack = 1024 * 1024;

// The thread's own fiber, made by the first command.
void* threadFiber() {
    return IsThreadAFiber() ? GetCurrentFiber() : ConvertThreadToFiber(nullptr);
}

bool takesDegrees(InputRequest::Kind kind) {
    return kind == InputRequest::Kind::Angle || kind == InputRequest::Kind::Orientation;
}

// A program's value as the kind of answer that is waited for: numbers may be typed texts and degrees.
Answer adapted(Answer answer, const InputRequest& request) {
    const bool number = answer.kind == Answer::Kind::Integer || answer.kind == Answer::Kind::Real;
    const double value = answer.kind == Answer::Kind::Integer ? answer.integer : answer.number;
    if (number && request.kind == InputRequest::Kind::Text) {
        return Answer::ofText(Answer::Kind::Typed, shownText(answer));
    }
    if (number && request.kind == InputRequest::Kind::Keyword) {
        return Answer::ofText(Answer::Kind::Typed, shownText(answer));
    }
    if (number && takesDegrees(request.kind)) {
        answer.kind = Answer::Kind::Angle;
        answer.number = value * std::numbers::pi / 180;
    }
    if (answer.kind == Answer::Kind::Real && request.kind == InputRequest::Kind::Integer &&
        value == std::floor(value) && std::abs(value) < 1e9) {
        answer.kind = Answer::Kind::Integer;
        answer.integer = static_cast<int>(value);
    }
    return answer;
}

}  // namespace

// A command in progress, and the fiber it runs on.
struct CommandRunner::Running {
    CommandRunner& runner;
    const CommandDefinition* definition;
    std::wstring name;
    void* fiber = nullptr;
    void* caller = nullptr;  // the fiber that resumed it
    bool finished = false;
    bool cancelled = false;
    std::wstring failure = {};

    // Without the marks that the name was called with; a variable's own name.
    std::wstring shownName() const { return *definition->name ? definition->name : name; }

    ~Running() {
        if (fiber)
            DeleteFiber(fiber);
    }
};

// The words of the program; when they are used up, the command's fiber waits for more.
class CommandRunner::WordSource final : public InputSource {
public:
    explicit WordSource(CommandRunner& runner) : runner_(runner) {}

    std::deque<CommandWord> words;
    bool drafterAnswers = false;  // the program has ended, or it paused for this answer
    bool cancelling = false;
    bool refused = false;  // a word did not fit

    Answer next(const InputRequest& request) override {
        paused_ = false;
        for (;;) {
            if (cancelling)
                return Answer::of(Answer::Kind::Cancel);
            if (drafterAnswers)
                return drafter().next(request);
            if (!words.empty())
                break;
            SwitchToFiber(runner_.command_->caller);
        }
        CommandWord word = std::move(words.front());
        words.pop_front();
        paused_ = word.pause;
        return word.pause ? drafter().next(request) : adapted(std::move(word.answer), request);
    }

    Answer nextForBox(const BoxRequest& box) override { return drafter().nextForBox(box); }

    bool refuse(const Answer& answer, const std::wstring& waitedFor, const std::wstring& complaint) override {
        if (drafterAnswers || paused_)
            return drafter().refuse(answer, waitedFor, complaint);
        CommandLine& line = runner_.document_.commandLine();
        line.freshLine();
        line.write(complaint + L"\n");
        refused = true;
        return false;
    }

    bool needsEcho() const override {
        if (drafterAnswers || paused_)
            return runner_.document_.host().input().needsEcho();
        return showsPrompts();
    }
    bool showsPrompts() const override {
        if (drafterAnswers)
            return true;
        const auto echo = getVariable(runner_.document_, L"CMDECHO");
        const int* number = echo ? std::get_if<int>(&*echo) : nullptr;
        return !number || *number != 0;
    }

private:
    InputSource& drafter() { return runner_.document_.host().input(); }

    CommandRunner& runner_;
    bool paused_ = false;
};

CommandRunner::CommandRunner(Document& document)
    : document_(document), words_(std::make_unique<WordSource>(*this)) {}

CommandRunner::~CommandRunner() {
    cancel();
}

InputSource& CommandRunner::source() {
    return command_ ? static_cast<InputSource&>(*words_) : document_.host().input();
}

std::wstring CommandRunner::activeName() const {
    return command_ ? command_->shownName() : L"";
}

const CommandDefinition* findCommand(std::wstring_view given) {
    while (!given.empty() && (given[0] == L'_' || given[0] == L'.' || given[0] == L'-'))
        given.remove_prefix(1);
    static const std::vector<CommandDefinition> commands = allCommands();
    const auto found = std::find_if(commands.begin(), commands.end(), [&](const CommandDefinition& row) {
        return equalNames(given, row.name);
    });
    return found == commands.end() ? nullptr : &*found;
}

void CommandRunner::fiberEntry(void* data) {
    Running& running = *static_cast<Running*>(data);
    try {
        CommandContext context(running.runner.document_, running.name);
        running.definition->function(context);
    } catch (const CommandCancelled&) {
        running.cancelled = true;
    } catch (const std::exception& error) {
        running.cancelled = true;
        running.failure = lisp::fromUtf8(error.what());
    }
    running.finished = true;
    SwitchToFiber(running.caller);
}

bool CommandRunner::begin(const std::wstring& name) {
    const CommandDefinition* definition = findCommand(name);
    if (!definition && getVariable(document_, name))
        definition = &variableCommand();
    if (!definition) {
        document_.commandLine().freshLine();
        document_.commandLine().write(L"Unknown command \"" + foldCase(name) + L"\".  Press F1 for help.\n");
        return false;
    }
    document_.undo().endStep(L"LISP");
    command_ =
        std::make_unique<Running>(Running{.runner = *this, .definition = definition, .name = foldCase(name)});
    command_->fiber = CreateFiberEx(64 * 1024, kFiberStack, 0,
                                    reinterpret_cast<LPFIBER_START_ROUTINE>(&fiberEntry), command_.get());
    if (!command_->fiber) {
        command_.reset();
        throw lisp::LispError(L"insufficient memory");
    }
    return true;
}

// Runs the command until it ends or wants more words.
void CommandRunner::resume() {
    const EvaluationScope scope(document_);
    command_->caller = threadFiber();
    for (;;) {
        onFiber_ = true;
        SwitchToFiber(command_->fiber);
        onFiber_ = false;
        if (!thread_)
            break;
        (*thread_)();
        thread_ = nullptr;
    }
    if (!command_->finished)
        return;
    if (!command_->failure.empty())
        document_.host().warn(command_->name + L" failed: " + command_->failure);
    document_.undo().endStep(command_->shownName());
    command_.reset();
}

void CommandRunner::runOnThread(const std::function<void()>& body) {
    if (!onFiber_)
        return body();
    thread_ = &body;
    SwitchToFiber(command_->caller);
}

bool CommandRunner::feed(std::vector<CommandWord> given) {
    words_->drafterAnswers = false;
    words_->words.assign(std::make_move_iterator(given.begin()), std::make_move_iterator(given.end()));
    while (!words_->words.empty()) {
        if (!command_) {
            const Answer name = words_->words.front().answer;
            words_->words.pop_front();
            // An empty word where a command is expected would repeat the last one; programs use it to end
            // commands.
            if (name.kind == Answer::Kind::Enter || name.kind == Answer::Kind::Cancel)
                continue;
            if (name.kind != Answer::Kind::Typed || !begin(name.text)) {
                words_->words.clear();
                return false;
            }
        }
        resume();
        if (words_->refused) {
            words_->words.clear();
            return words_->refused = false;
        }
    }
    return true;
}

void CommandRunner::run(const std::wstring& name) {
    if (!begin(name))
        return;
    words_->drafterAnswers = true;
    resume();
}

void CommandRunner::finishWithDrafter() {
    if (!command_)
        return;
    words_->drafterAnswers = true;
    resume();
}

void CommandRunner::cancel() {
    if (!command_)
        return;
    words_->words.clear();
    words_->cancelling = true;
    resume();
    words_->cancelling = false;
}

}  // namespace drafthost::editor

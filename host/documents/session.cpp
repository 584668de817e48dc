#include "host/documents/session.h"

#include <windows.h>

#include <objbase.h>

#include <algorithm>

#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/database/open_counters.h"
#include "host/documents/host.h"
#include "host/editor/answers_file.h"
#include "host/editor/commands.h"
#include "host/editor/terminal_input.h"
#include "host/graphics/picture.h"
#include "host/graphics/solid_export.h"
#include "host/lisp/utf8.h"

namespace drafthost {

namespace {

// Everything that an evaluation must leave as it found it.
struct Balance {
    std::int64_t openObjects, valueNodes;
    std::int64_t locks;

    static Balance now() {
        const OpenCounters& counters = openCounters();
        return {counters.openObjects, counters.valueNodes, theHost().documents().heldLocks()};
    }
};

std::wstring counted(std::int64_t count, const wchar_t* one, const wchar_t* several) {
    return std::to_wstring(count) + (count == 1 ? one : several);
}

BOOL WINAPI onConsoleEvent(DWORD event) {
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT)
        return FALSE;
    theHost().interrupt();
    editor::interruptReading();
    return TRUE;
}

// Without a display that can be reached there are no windows.
bool hasScreen() {
    const HWND window =
        CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    return window && DestroyWindow(window);
}

// COM on the main thread, for modules too: they create objects as soon as they are loaded, and release them
// while they are unloaded.
class ComApartment {
public:
    ComApartment() : entered_(SUCCEEDED(CoInitialize(nullptr))) {}
    ~ComApartment() {
        if (entered_)
            CoUninitialize();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

private:
    bool entered_;
};

class Session {
public:
    explicit Session(const SessionOptions& options) : options_(options), host_(theHost()) {}

    int run() {
        host_.setVerbose(options_.verbose);
        for (const std::wstring& folder : options_.supportFolders)
            host_.services().addSupportFolder(folder);
        if (!checkScreen() || !prepareInput() || !openDrawing())
            return kSessionFailed;
        SetConsoleCtrlHandler(onConsoleEvent, TRUE);
        if (!loadModules())
            return kSessionFailed;
        bool good = runPrograms();
        if (good && options_.interactive)
            readInputs();
        good = good && !host_.runFailed();
        reportUnusedAnswers();
        // A drawing is only written when everything before went well: an unfinished one must not replace a
        // good one.
        if (good)
            good = writeResults();
        if (!good)
            return kSessionFailed;
        return unbalanced_ ? kSessionUnbalanced : kSessionDone;
    }

private:
    bool fail(const std::wstring& message) {
        host_.commandLine().freshLine();
        host_.commandLine().flush();
        editor::reportOnStandardError(message);
        return false;
    }

    bool checkScreen() {
        return !options_.screen || hasScreen() || fail(L"--screen: the display cannot be opened");
    }

    bool prepareInput() {
        if (!options_.answers.empty())
            return prepareAnswers();
        const auto dialogs = options_.screen ? editor::Dialogs::LeftAlone : editor::Dialogs::Answered;
        if (options_.interactive) {
            host_.setInput(
                std::make_unique<editor::TerminalInput>(lines_, host_.commandLine(), options_.echo, dialogs));
        } else {
            host_.setInput(std::make_unique<editor::EmptySource>(
                [this](const std::wstring& message) { host_.warn(message); }, dialogs));
        }
        return true;
    }

    bool prepareAnswers() {
        const auto text = host_.files().readText(fullPath(options_.answers));
        if (!text)
            return fail(options_.answers + L" cannot be read.");
        const std::wstring name = options_.answers.substr(folderOf(options_.answers).size());
        editor::AnswersFileError problem;
        std::vector<editor::Answer> answers = editor::parseAnswers(*text, name, problem);
        if (problem.line > 0) {
            return fail(name + L" line " + std::to_wstring(problem.line) + L": " + problem.message);
        }
        auto drafter = std::make_unique<editor::ScriptedDrafter>(
            std::move(answers), name, [this](const std::wstring& message) { host_.warn(message); },
            [this](const std::wstring& reason) { host_.failRun(reason); });
        drafter_ = drafter.get();
        host_.setInput(std::move(drafter));
        return true;
    }

    void reportUnusedAnswers() {
        const editor::Answer* const unused =
            drafter_ && !host_.runFailed() ? drafter_->firstUnused() : nullptr;
        if (unused)
            host_.warn(L"nothing asked for the answers from " + unused->origin + L" on");
    }

    bool openDrawing() {
        std::wstring problem;
        if (host_.documents().open(options_.open, problem))
            return true;
        return fail(problem);
    }

    bool loadModules() {
        for (const std::wstring& file : options_.modules) {
            std::wstring message;
            if (!host_.modules().load(file, message))
                return fail(message);
        }
        host_.commandLine().freshLine();
        return true;
    }

    Document& document() { return *host_.documents().current(); }

    // Evaluates, lets the drafter finish what was begun, and checks that nothing was left behind.
    template <class Evaluate>
    bool evaluate(const std::wstring& what, Evaluate body) {
        const Balance before = Balance::now();
        bool succeeded = false;
        {
            const EvaluationScope scope(document());
            succeeded = body();
            document().commands().finishWithDrafter();
        }
        forgetInterrupt();
        checkBalance(before, what);
        return succeeded;
    }

    void forgetInterrupt() {
        host_.clearInterrupt();
        if (options_.interactive)
            editor::forgetInterruption();
    }

    void checkBalance(const Balance& before, const std::wstring& what) {
        const Balance after = Balance::now();
        report(after.openObjects - before.openObjects, L" object left open by ", L" objects left open by ",
               what);
        report(after.valueNodes - before.valueNodes, L" value list node left by ",
               L" value list nodes left by ", what);
        report(after.locks - before.locks, L" document lock left by ", L" document locks left by ", what);
    }

    void report(std::int64_t difference, const wchar_t* one, const wchar_t* several,
                const std::wstring& what) {
        if (difference == 0)
            return;
        unbalanced_ = true;
        host_.commandLine().flush();
        editor::reportOnStandardError(L"internal: " + counted(difference, one, several) + what);
    }

    bool runPrograms() {
        for (const std::wstring& program : options_.programs) {
            const auto path = host_.files().resolveProgram(program);
            const auto text = path ? host_.files().readText(*path) : std::nullopt;
            if (!text)
                return fail(program + L" cannot be read.");
            const std::wstring name = path->filename().wstring();
            const bool succeeded = evaluate(
                name, [&] { return document().interpreter().evaluateTopLevel(*text, name).succeeded; });
            host_.commandLine().freshLine();
            if (!succeeded || host_.runFailed())
                return false;
        }
        return true;
    }

    // --- the prompt ---

    void readInputs() {
        while (!host_.runFailed()) {
            host_.commandLine().ownFreshLine();
            const auto input = readInput();
            if (!input)
                break;
            take(*input);
        }
        host_.commandLine().freshLine();
    }

    std::optional<std::wstring> readLine(const wchar_t* prompt) {
        host_.commandLine().write(prompt);
        host_.commandLine().flush();
        auto line = lines_.next();
        if (line == L"\x1b") {
            forgetInterrupt();
            line.emplace();
        }
        if (line && options_.echo)
            host_.commandLine().write(*line + L"\n");
        // Without echo the drafter's own Return has ended the line.
        if (line && !options_.echo)
            host_.commandLine().lineEndedOutside();
        return line;
    }

    static bool isExpression(const std::wstring& text) { return text.starts_with(L"("); }

    // One line, and for an unfinished expression those that finish it.
    std::optional<std::wstring> readInput() {
        auto input = readLine(L"Command: ");
        if (!input)
            return std::nullopt;
        input->erase(0, std::min(input->find_first_not_of(L" \t"), input->size()));
        while (isExpression(*input) &&
               lisp::Interpreter::inputState(*input) == lisp::InputState::incomplete) {
            const auto more = readLine(L"(_> ");
            if (!more)
                break;
            *input += L"\n" + *more;
        }
        return input;
    }

    void take(const std::wstring& input) {
        if (input.empty())
            return;
        const std::wstring what = input.substr(0, 60);
        evaluate(what, [&] {
            if (isExpression(input)) {
                document().interpreter().evaluateAndPrint(input);
            } else if (input[0] == L'!') {
                document().interpreter().evaluateAndPrint(input.substr(1));
            } else {
                takeCommand(input.substr(0, input.find_first_of(L" \t")));
            }
            return true;
        });
    }

    // A function C:NAME wins over the host's own command.
    void takeCommand(const std::wstring& name) {
        const lisp::Value function = document().interpreter().findFunction(L"C:" + name);
        if (function.isNil())
            return document().commands().run(name);
        const lisp::Outcome outcome = document().interpreter().callTopLevel(function, {});
        if (!outcome.succeeded || outcome.value == document().interpreter().nullSymbol())
            return;
        host_.commandLine().freshLine();
        host_.commandLine().write(document().interpreter().prin1ToString(outcome.value) + L"\n");
    }

    // --- results ---

    bool writeResults() {
        AcDbDatabase& database = *document().database();
        bool good = true;
        if (!options_.save.empty()) {
            const std::wstring path = fullPath(options_.save);
            const Acad::ErrorStatus status = database.dxfOut(path.c_str());
            if (status != Acad::eOk) {
                good = fail(path + L" cannot be written: " + acadErrorStatusText(status) + L".");
            }
        }
        const int size = options_.pictureSize > 0 ? options_.pictureSize : graphics::kPictureSize;
        for (const std::wstring& picture : options_.pictures) {
            std::wstring problem;
            if (!graphics::writePicture(database, fullPath(picture), problem, size))
                good = fail(problem);
        }
        for (const ShadedPicture& picture : options_.shadedPictures) {
            std::wstring problem;
            if (!graphics::writeShadedPicture(database, picture.towardsEye, fullPath(picture.path), problem,
                                              size))
                good = fail(problem);
        }
        for (const std::wstring& file : options_.exports) {
            std::wstring problem;
            if (!graphics::writeSolids(database, fullPath(file), problem))
                good = fail(problem);
        }
        return good;
    }

    const SessionOptions& options_;
    Host& host_;
    editor::LineReader lines_;
    editor::ScriptedDrafter* drafter_ = nullptr;  // owned by the host
    bool unbalanced_ = false;
};

}  // namespace

int runSession(const SessionOptions& options) {
    const ComApartment apartment;
    int status = kSessionFailed;
    {
        Session session(options);
        status = session.run();
        endHost();
    }
    return status;
}

}  // namespace drafthost

int drafthostMain(int argumentCount, wchar_t** arguments) {
    using namespace drafthost;
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
    SessionOptions options;
    std::wstring problem;
    if (!parseArguments({arguments + 1, arguments + argumentCount}, options, problem)) {
        editor::reportOnStandardError(problem + L"\n" + kUsage);
        return kSessionBadUsage;
    }
    try {
        return runSession(options);
    } catch (const std::exception& error) {
        editor::reportOnStandardError(L"internal: " + lisp::fromUtf8(error.what()));
        return kSessionUnbalanced;
    }
}

#pragma once

// The host's own drawing commands, run by the drafter or word by word by programs.
//
// A command runs on a fiber of its own, so that (command "LINE" p1) can stop in the middle and a later
// (command p2 "") can go on. What a program leaves unfinished, the drafter finishes.

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/editor/input_source.h"

namespace drafthost {
class Document;
}

namespace drafthost::editor {

class CommandContext;

using CommandFunction = void (*)(CommandContext& context);
struct CommandDefinition {
    const wchar_t* name;  // capitals
    CommandFunction function;
};
// The table of commands (drawing_commands.cpp and others).
std::vector<CommandDefinition> allCommands();
// Null for an unknown name; leading "_", "." and "-" do not matter.
const CommandDefinition* findCommand(std::wstring_view name);

// One word of (command ...): an answer, or a pause for the drafter.
struct CommandWord {
    bool pause = false;
    Answer answer;
};

// Asks for the value of the system variable by whose name the command was called.
const CommandDefinition& variableCommand();

class CommandRunner {
public:
    explicit CommandRunner(Document& document);
    ~CommandRunner();  // cancels
    CommandRunner(const CommandRunner&) = delete;
    CommandRunner& operator=(const CommandRunner&) = delete;

    // Each word goes to the running command, or begins one. False when a command was not known or was
    // cancelled.
    bool feed(std::vector<CommandWord> words);
    // A command typed by the drafter, or a system variable's name, up to its end.
    void run(const std::wstring& name);
    // Lets the drafter finish what a program left.
    void finishWithDrafter();
    void cancel();

    bool active() const { return command_ != nullptr; }
    std::wstring activeName() const;
    // Running on the command's own fiber, or evaluating for it: no words can be fed.
    bool busy() const { return onFiber_ || thread_ != nullptr; }
    // Runs the body on the thread's own stack, which LISP needs, also when a command asks for it.
    void runOnThread(const std::function<void()>& body);
    // Where prompts get their answers: the program's words while it runs a command, else the drafter.
    InputSource& source();

private:
    struct Running;
    class WordSource;

    bool begin(const std::wstring& name);
    void resume();
    static void fiberEntry(void* running);

    Document& document_;
    std::unique_ptr<WordSource> words_;
    std::unique_ptr<Running> command_;
    bool onFiber_ = false;
    const std::function<void()>* thread_ = nullptr;  // what the command wants run on the thread's stack
};

}  // namespace drafthost::editor

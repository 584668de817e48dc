#pragma once

// Where answers come from: an answers file, the terminal, the words of a (command ...) call, or nowhere.
//
// Contract of every source: next() gives the answers in order, one a call, whatever is asked for; when they
// are used up it gives Exhausted, now and ever after, and warns once on standard error. It is refuse() that
// decides what an answer that does not fit means. A source never prints to the command line itself, except
// the complaint of refuse().

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/editor/answer.h"
#include "host/editor/input_request.h"

namespace drafthost::editor {

// What a source does with the dialogs of the process.
enum class Dialogs {
    Answered,
    LeftAlone,  // somebody sees them and has a mouse and a keyboard
};

class InputSource {
public:
    virtual ~InputSource() = default;
    virtual Answer next(const InputRequest& request) = 0;
    // A dialog waits. Message boxes take Press, Enter and Cancel only.
    virtual Answer nextForBox(const BoxRequest& box) = 0;
    // False: dialogs and message boxes are left to the drafter's own mouse and keyboard.
    virtual bool answersDialogs() const { return true; }
    // True: the request is put again. False: it counts as cancelled.
    virtual bool refuse(const Answer& answer, const std::wstring& waitedFor,
                        const std::wstring& complaint) = 0;
    // The answers must be printed, because the drafter's own typing does not show them.
    virtual bool needsEcho() const { return true; }
    virtual bool showsPrompts() const { return true; }
};

// For runs without a drafter: every response is empty.
class EmptySource final : public InputSource {
public:
    explicit EmptySource(std::function<void(const std::wstring&)> warn, Dialogs dialogs = Dialogs::Answered)
        : warn_(std::move(warn)), dialogs_(dialogs) {}
    Answer next(const InputRequest& request) override;
    Answer nextForBox(const BoxRequest& box) override;
    bool answersDialogs() const override { return dialogs_ == Dialogs::Answered; }
    bool refuse(const Answer&, const std::wstring&, const std::wstring&) override { return false; }

private:
    std::function<void(const std::wstring&)> warn_;
    Dialogs dialogs_;
    bool warned_ = false;
};

}  // namespace drafthost::editor

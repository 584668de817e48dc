#pragma once

// The scripted drafter: answers from a file, one action a line (docs/answers-file.md).

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "host/editor/input_source.h"

namespace drafthost::editor {

struct AnswersFileError {
    int line = 0;
    std::wstring message;
};

// The actions of an answers file. The first unusable line ends the reading and is described in problem.
// name: how the file is called in messages.
std::vector<Answer> parseAnswers(std::wstring_view text, const std::wstring& name, AnswersFileError& problem);

// One action, into the answer; what is wrong with it, as a sentence without a capital and a full stop, or
// empty.
std::wstring parseAction(std::wstring_view line, Answer& answer);

class ScriptedDrafter final : public InputSource {
public:
    // warn: prints on standard error. fail: ends the run, with the reason.
    ScriptedDrafter(std::vector<Answer> actions, std::wstring name,
                    std::function<void(const std::wstring&)> warn,
                    std::function<void(const std::wstring&)> fail);
    Answer next(const InputRequest& request) override;
    Answer nextForBox(const BoxRequest& box) override;
    bool refuse(const Answer& answer, const std::wstring& waitedFor, const std::wstring& complaint) override;
    // The first action that nobody asked for; null when all were used.
    const Answer* firstUnused() const { return position_ < actions_.size() ? &actions_[position_] : nullptr; }

private:
    Answer take(const std::wstring& waitedFor);

    std::vector<Answer> actions_;
    std::wstring name_;
    std::function<void(const std::wstring&)> warn_, fail_;
    std::size_t position_ = 0;
    bool warned_ = false;
    bool dialogWaits_ = false;  // for the answer taken last
};

}  // namespace drafthost::editor

#pragma once

// Asking the drafter: prints prompts, takes answers from the current input source, checks them against what
// is waited for, and asks again where the source has somebody to ask.

#include <functional>
#include <optional>
#include <string>

#include "host/editor/command_line.h"
#include "host/editor/input_source.h"
#include "host/editor/typed_text.h"

namespace drafthost::editor {

struct InputResult {
    int status = RTNONE;  // RTNORM, RTNONE, RTCAN or RTKWORD, as acedGet... answers
    AcGePoint3d point = {};
    int dimension = 3;
    double number = 0;
    int integer = 0;
    std::wstring text = {};  // keyword or text
    Answer answer = {};      // as given, for selection, picks and the cursor
};

// What prompts need of the document they run in.
class PromptSurroundings {
public:
    virtual ~PromptSurroundings() = default;
    virtual InputSource& source() = 0;
    virtual CommandLine& commandLine() = 0;
    // The run is being ended or the drafter pressed Ctrl-C: nothing is asked any more.
    virtual bool stopped() const = 0;
    virtual AcGeMatrix3d worldToUcs() const = 0;
    virtual double angleBase() const = 0;  // ANGBASE, radians
    virtual LengthUnits lengthUnits() const = 0;
    // An expression or !variable typed as an answer; nothing when it failed or has no use as one.
    virtual std::optional<Answer> evaluateTyped(const std::wstring& text) = 0;
};

class Prompts {
public:
    explicit Prompts(PromptSurroundings& surroundings) : surroundings_(surroundings) {}

    // For the next request only.
    void initGet(int control, std::wstring_view keywords);
    // Control bits and keywords of the request are those of initGet, which end with it, where it takes any.
    InputResult ask(InputRequest request);

    // The keyword or text of the last answer.
    const std::wstring& lastInput() const { return lastInput_; }
    AcGePoint3d lastPoint() const { return lastPoint_; }
    void setLastPoint(const AcGePoint3d& point) { lastPoint_ = point; }

private:
    // Nothing: the answer does not fit, for the reason in complaint.
    std::optional<InputResult> interpret(const InputRequest& request, const Answer& answer,
                                         std::wstring& complaint);
    std::optional<InputResult> interpretTyped(const InputRequest& request, const Answer& answer,
                                              std::wstring& complaint);
    std::optional<InputResult> interpretEmpty(const InputRequest& request, const Answer& answer) const;
    std::optional<InputResult> fromPoint(const InputRequest& request, const Answer& answer,
                                         std::wstring& complaint);
    std::optional<Answer> understand(const InputRequest& request, const std::wstring& text) const;
    void show(const InputRequest& request);
    void echo(const Answer& answer);

    PromptSurroundings& surroundings_;
    int control_ = 0;
    Keywords keywords_;
    std::wstring lastInput_;
    AcGePoint3d lastPoint_;
};

}  // namespace drafthost::editor

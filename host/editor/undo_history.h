#pragma once

// What U, UNDO and REDO go back and forth over: the steps of one document since it was opened.
//
// A step is what a drafter sees as one: a command, or what LISP changed between commands. Whoever runs those
// ends the steps; everything that changed the database since the last end belongs to the next one. A step
// that changed nothing is none. While a transaction runs no step ends, and nothing can be undone.
//
// A change after an undo drops what could be redone. Saving keeps the history. Of more than kMaxSteps steps
// the oldest are forgotten.

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "host/database/change_log.h"

namespace drafthost::editor {

class UndoHistory {
public:
    static constexpr std::size_t kMaxSteps = 20000;

    // Listens to the database from now on; the database must live longer.
    explicit UndoHistory(AcDbDatabase& database);
    ~UndoHistory();
    UndoHistory(const UndoHistory&) = delete;
    UndoHistory& operator=(const UndoHistory&) = delete;

    // Ends the step in progress. name: of the command, for messages.
    void endStep(std::wstring_view name);

    enum class Recording { None, One, All };  // One: only the newest step is kept
    Recording recording() const { return recording_; }
    void setRecording(Recording recording);  // None forgets everything

    // Steps from here to endGroup become one. A group that is open already ends first.
    void beginGroup();
    void endGroup();
    bool groupOpen() const { return group_.has_value(); }

    void mark();
    std::size_t marks() const;

    enum class Stop {
        Done,        // as much as was asked for
        Everything,  // there is nothing more to take back, or to redo
        Mark,        // a mark was met, and taken away
        GroupBegin,  // the beginning of the open group
        Busy         // a transaction runs or an object is open: nothing was done from there on
    };
    struct Outcome {
        std::vector<std::wstring> names;  // of the steps taken back or redone, in that order
        Stop stop = Stop::Done;
    };
    // A mark counts as a step, and is the last that is taken back.
    Outcome undo(int steps);
    // Back to the last mark, which goes; without one, to the beginning.
    Outcome undoToMark();
    // Everything that the last undo took back.
    Outcome redo();

    // To be called when the drawing was saved. Afterwards the drawing counts as unmodified again when undo or
    // redo lead back to what was saved.
    void saved();

    std::size_t steps() const { return steps_.size(); }

private:
    // Where the count of modifications stood. It says nothing any more once the drawing was saved after it.
    struct Moment {
        std::uint64_t modifications = 0;
        unsigned saves = 0;
    };
    struct Step {
        std::wstring name;
        ChangeLog log;
        Moment before;
        bool mark = false;
    };
    using Batch = std::vector<Step>;  // what one undo took back, newest first

    Moment now() const;
    bool inTransaction() const;
    void listen(bool on);
    // Takes a step's changes back, which may be those of an undo. Gives the step that does them again.
    Step reverted(Step step);
    // Takes the newest step back; false when it cannot be.
    bool undoNewest(Outcome& outcome, Batch& batch);
    void keepForRedo(Batch batch);
    void forgetOldest();

    AcDbDatabase& database_;
    Recording recording_ = Recording::None;
    ChangeLog current_;
    Moment currentBegin_;
    std::deque<Step> steps_;
    std::vector<Batch> redo_;
    std::optional<std::size_t> group_;  // place of the open group's first step
    unsigned saves_ = 0;
};

}  // namespace drafthost::editor

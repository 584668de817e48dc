#include "host/editor/undo_history.h"

#include <algorithm>
#include <iterator>
#include <ranges>
#include <utility>

#include "host/database/database_impl.h"

namespace drafthost::editor {

UndoHistory::UndoHistory(AcDbDatabase& database) : database_(database) {
    setRecording(Recording::All);
}

UndoHistory::~UndoHistory() {
    listen(false);
}

UndoHistory::Moment UndoHistory::now() const {
    return {database_.impl().modifications, saves_};
}

bool UndoHistory::inTransaction() const {
    return database_.transactionManager()->numActiveTransactions() > 0;
}

void UndoHistory::listen(bool on) {
    AcDbDatabase::Impl& impl = database_.impl();
    std::erase(impl.logs, &current_);
    impl.undoStep = on ? &current_ : nullptr;
    if (on && !inTransaction())
        impl.logs.push_back(&current_);
}

void UndoHistory::setRecording(Recording recording) {
    recording_ = recording;
    listen(recording != Recording::None);
    if (recording == Recording::None) {
        current_ = ChangeLog();
        steps_.clear();
        redo_.clear();
        group_.reset();
    }
    currentBegin_ = now();
    forgetOldest();
}

void UndoHistory::endStep(std::wstring_view name) {
    if (recording_ == Recording::None || inTransaction())
        return;
    current_.forgetRemoved();
    if (!current_.empty()) {
        steps_.push_back({std::wstring(name), std::exchange(current_, ChangeLog()), currentBegin_});
        redo_.clear();
        forgetOldest();
    }
    currentBegin_ = now();
}

// Of an open group nothing is forgotten, since it is undone as a whole; its oldest steps become one early.
void UndoHistory::forgetOldest() {
    const std::size_t limit = recording_ == Recording::One && !group_ ? 1 : kMaxSteps;
    while (steps_.size() > limit) {
        if (group_ == 0u) {
            steps_[1].log.mergeInto(steps_[0].log);
            steps_.erase(steps_.begin() + 1);
            continue;
        }
        steps_.pop_front();
        if (group_)
            --*group_;
    }
}

void UndoHistory::beginGroup() {
    endGroup();
    if (recording_ != Recording::None)
        group_ = steps_.size();
}

// Marks inside the group go: it is undone as a whole.
void UndoHistory::endGroup() {
    if (!group_)
        return;
    const auto first = steps_.begin() + static_cast<std::ptrdiff_t>(*std::exchange(group_, std::nullopt));
    steps_.erase(std::remove_if(first, steps_.end(), [](const Step& step) { return step.mark; }),
                 steps_.end());
    if (first != steps_.end()) {
        for (Step& step : std::ranges::subrange(first + 1, steps_.end()))
            step.log.mergeInto(first->log);
        first->name = L"GROUP";
        steps_.erase(first + 1, steps_.end());
    }
    forgetOldest();
}

void UndoHistory::mark() {
    if (recording_ != Recording::None)
        steps_.push_back({{}, {}, now(), true});
    forgetOldest();
}

std::size_t UndoHistory::marks() const {
    return static_cast<std::size_t>(std::ranges::count(steps_, true, &Step::mark));
}

UndoHistory::Step UndoHistory::reverted(Step step) {
    Step opposite{std::move(step.name), {}, now(), step.mark};
    if (step.mark)
        return opposite;
    opposite.log = step.log.revert(database_, ChangeLog::Removal::AsErased);
    database_.impl().modifications =
        step.before.saves == saves_ ? step.before.modifications : opposite.before.modifications + 1;
    return opposite;
}

bool UndoHistory::undoNewest(Outcome& outcome, Batch& batch) {
    if (steps_.size() == group_.value_or(0)) {
        outcome.stop = group_ ? Stop::GroupBegin : Stop::Everything;
        return false;
    }
    if (inTransaction() || steps_.back().log.holdsOpenObject()) {
        outcome.stop = Stop::Busy;
        return false;
    }
    Step step = std::move(steps_.back());
    steps_.pop_back();
    if (!step.mark)
        outcome.names.push_back(step.name);
    batch.push_back(reverted(std::move(step)));
    return true;
}

void UndoHistory::keepForRedo(Batch batch) {
    if (!batch.empty())
        redo_.push_back(std::move(batch));
    currentBegin_ = now();
}

UndoHistory::Outcome UndoHistory::undo(int steps) {
    Outcome outcome;
    Batch batch;
    while (steps-- > 0 && undoNewest(outcome, batch)) {
        if (batch.back().mark) {
            outcome.stop = Stop::Mark;
            break;
        }
    }
    keepForRedo(std::move(batch));
    return outcome;
}

UndoHistory::Outcome UndoHistory::undoToMark() {
    // A group that has no mark of its own is left behind.
    const auto newest = std::ranges::find(steps_.rbegin(), steps_.rend(), true, &Step::mark);
    const auto below = static_cast<std::size_t>(steps_.rend() - newest);  // steps up to the mark
    if (group_ && below <= *group_)
        group_.reset();
    Outcome outcome;
    Batch batch;
    while (undoNewest(outcome, batch)) {
        if (batch.back().mark) {
            outcome.stop = Stop::Mark;
            break;
        }
    }
    keepForRedo(std::move(batch));
    return outcome;
}

UndoHistory::Outcome UndoHistory::redo() {
    Outcome outcome;
    if (redo_.empty()) {
        outcome.stop = Stop::Everything;
        return outcome;
    }
    Batch& batch = redo_.back();
    while (!batch.empty()) {
        if (inTransaction() || batch.back().log.holdsOpenObject()) {
            outcome.stop = Stop::Busy;
            break;
        }
        Step step = reverted(std::move(batch.back()));
        batch.pop_back();
        if (!step.mark)
            outcome.names.push_back(step.name);
        steps_.push_back(std::move(step));
    }
    if (batch.empty())
        redo_.pop_back();
    currentBegin_ = now();
    return outcome;
}

void UndoHistory::saved() {
    ++saves_;
    if (current_.empty())
        currentBegin_ = now();
}

}  // namespace drafthost::editor

// U, UNDO, REDO.

#include "host/documents/host.h"
#include "host/editor/command_context.h"
#include "host/editor/command_tables.h"
#include "host/editor/undo_history.h"

namespace drafthost::editor {

namespace {

using Kind = InputRequest::Kind;
using Recording = UndoHistory::Recording;
using Stop = UndoHistory::Stop;

constexpr wchar_t kDisabled[] = L"U command disabled. Use UNDO command to turn it on";

UndoHistory& historyOf(CommandContext& context) {
    return context.document().undo();
}

void report(CommandContext& context, const UndoHistory::Outcome& outcome, const wchar_t* atEnd) {
    std::wstring names;
    for (const std::wstring& name : outcome.names)
        names += (names.empty() ? L"" : L" ") + name;
    if (!names.empty())
        context.print(names);
    switch (outcome.stop) {
        case Stop::Done: break;
        case Stop::Everything: context.print(atEnd); break;
        case Stop::Mark: context.print(L"Mark encountered"); break;
        case Stop::GroupBegin: context.print(L"Beginning of the group encountered"); break;
        case Stop::Busy: context.print(L"The drawing is in use by a program; nothing was undone."); break;
    }
}

void undoSteps(CommandContext& context, int steps) {
    report(context, historyOf(context).undo(steps), L"Everything has been undone");
}

void uCommand(CommandContext& context) {
    if (historyOf(context).recording() == Recording::None)
        return context.print(kDisabled);
    undoSteps(context, 1);
}

void redoCommand(CommandContext& context) {
    report(context, historyOf(context).redo(), L"Nothing to redo");
}

// Programs that turn undo on again say "Control" first whether it is asked for or not.
void askControl(CommandContext& context) {
    std::wstring option;
    do {
        option =
            context.keyword(L"Enter an UNDO control option [All/None/One] <All>: ", L"All None One Control");
    } while (option == L"Control");
    historyOf(context).setRecording(option == L"None"  ? Recording::None
                                    : option == L"One" ? Recording::One
                                                       : Recording::All);
}

// Without menus there is nothing whose commands could become one step; the setting is kept for programs.
void askAuto(CommandContext& context) {
    bool& setting = context.document().undoAuto();
    const std::wstring option = context.keyword(setting ? L"Enter UNDO Auto mode [ON/OFF] <ON>: "
                                                        : L"Enter UNDO Auto mode [ON/OFF] <OFF>: ",
                                                L"ON OFF");
    if (!option.empty())
        setting = option == L"ON";
}

void undoBack(CommandContext& context) {
    UndoHistory& history = historyOf(context);
    if (history.marks() == 0) {
        const std::wstring answer = context.keyword(L"This will undo everything. OK? <Y> ", L"Yes No");
        if (answer == L"No")
            return;
    }
    report(context, history.undoToMark(), L"Everything has been undone");
}

void undoCommand(CommandContext& context) {
    UndoHistory& history = historyOf(context);
    if (history.recording() == Recording::None)
        return askControl(context);
    context.print(std::wstring(L"Current settings: Auto = ") +
                  (context.document().undoAuto() ? L"On" : L"Off") + L", Control = " +
                  (history.recording() == Recording::One ? L"One" : L"All"));
    const auto reply = context.ask(
        Kind::Integer,
        {.prompt = L"Enter the number of operations to undo or [Auto/Control/BEgin/End/Mark/Back] <1>: ",
         .keywords = L"Auto Control BEgin End Mark Back Group",
         .control = RSG_NOZERO | RSG_NONEG});
    if (reply.keyword.empty())
        return undoSteps(context, reply.given ? reply.integer : 1);
    if (reply.keyword == L"Auto")
        askAuto(context);
    else if (reply.keyword == L"Control")
        askControl(context);
    else if (reply.keyword == L"End")
        history.endGroup();
    else if (reply.keyword == L"Mark")
        history.mark();
    else if (reply.keyword == L"Back")
        undoBack(context);
    else
        history.beginGroup();
}

constexpr CommandDefinition kCommands[] = {
    {L"REDO", redoCommand},
    {L"U", uCommand},
    {L"UNDO", undoCommand},
};

}  // namespace

std::span<const CommandDefinition> undoCommands() {
    return kCommands;
}

}  // namespace drafthost::editor

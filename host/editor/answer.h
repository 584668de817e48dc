#pragma once

// What a drafter can do when the host waits: one answer, whichever way it came (answers file, terminal,
// program).

#include <memory>
#include <string>

#include "host/api/database_ids.h"
#include "host/api/geometry.h"

namespace drafthost::editor {

class SelectionSet;

struct Answer {
    enum class Kind {
        Typed,  // a line of text that is still to be understood
        Point,  // in UCS coordinates
        Move,   // the cursor moved without a click
        Angle,  // number: radians
        Real,
        Integer,
        Text,
        Pick,  // a click at an entity
        Keyword,
        Enter,   // an empty response
        Cancel,  // Esc
        Window,  // selection: corners in point and second
        Crossing,
        Add,  // selection: one entity at a point
        All,
        Done,
        Entity,  // named by a program
        Set,     // a selection set given by a program
        Press,   // a button of a dialog: text, or control
        Type,    // text into a control
        Check,   // on
        Choose,  // text of an entry
        GridRow,
        GridCell,
        GridDoubleClick,
        Key,         // text: its name, "Control+Left"
        Screenshot,  // text: file
        Show,        // control: its rows, or all of the dialog's controls
        Resize,      // width, height
        Exhausted,   // nothing more will come
    };
    Kind kind = Kind::Exhausted;
    AcGePoint3d point, second;
    int dimension = 3;  // of the point: 2 when no z was given
    double number = 0;
    int integer = 0;
    bool on = false;
    int control = 0;  // dialog control id; 0: the button is named by its text
    int row = 0, column = 0;
    int width = 0, height = 0;  // pixels
    std::wstring text;
    AcDbObjectId entity;
    std::shared_ptr<SelectionSet> set;
    std::wstring origin;  // "answers.txt line 3"; empty when nobody needs to be told

    static Answer of(Kind kind) {
        Answer answer;
        answer.kind = kind;
        return answer;
    }
    static Answer ofText(Kind kind, std::wstring text) {
        Answer answer = of(kind);
        answer.text = std::move(text);
        return answer;
    }
    static Answer ofPoint(Kind kind, const AcGePoint3d& point, int dimension = 3) {
        Answer answer = of(kind);
        answer.point = point;
        answer.dimension = dimension;
        return answer;
    }
};

// True for the actions that only a dialog can take.
bool isForDialog(Answer::Kind kind);

// How a command line shows the answer: "1.0,2.0", "Yes", empty for an empty response.
std::wstring shownText(const Answer& answer);

}  // namespace drafthost::editor

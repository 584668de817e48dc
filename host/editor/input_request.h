#pragma once

// What the host waits for.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/api/editor.h"
#include "host/api/geometry.h"

namespace drafthost::editor {

// Keywords of acedInitGet: "Yes No", "LType,LT". A name with a leading underscore is the language-independent
// form of the name in the same place before it ("Oui Non _Yes No").
class Keywords {
public:
    Keywords() = default;
    explicit Keywords(std::wstring_view list);
    bool empty() const { return entries_.empty(); }
    // The keyword that the text is or abbreviates (at least its capitals), as the list writes it; nothing
    // when there is none.
    std::optional<std::wstring> match(std::wstring_view typed) const;
    // "Yes/No" for messages
    std::wstring shown() const;

private:
    struct Entry {
        std::wstring name;
        std::wstring abbreviation;  // empty: the capitals of the name
        std::wstring result;        // what programs get
    };
    std::vector<Entry> entries_;
};

struct InputRequest {
    enum class Kind {
        Point,
        Corner,
        Distance,
        Angle,
        Orientation,
        Integer,
        Real,
        Text,
        Keyword,
        Entity,
        Selection,
        Cursor
    };
    Kind kind = Kind::Text;
    std::wstring prompt;
    int control = 0;  // InputControl bits
    Keywords keywords;
    std::optional<AcGePoint3d> base;
    bool allowBlanks = false;  // Text: a blank does not end it
    bool tracking = false;     // Cursor: movements count too
};

// What is waited for, for messages: "an integer", "a point or a keyword (Yes/No)".
std::wstring describe(const InputRequest& request);

// What a terminal shows for an answer that cannot be used: "Requires an integer value."
std::wstring complaint(const InputRequest& request);

// A dialog of the process that waits for the drafter.
struct BoxRequest {
    std::wstring caption;
    std::wstring text;                  // of a message box
    std::vector<std::wstring> buttons;  // without "&"
    bool isMessageBox = true;           // nothing but a text and buttons
    std::wstring contents{};            // of a dialog that is asked for the first time: lines that tell it
};

// What is waited for, for messages: `a button of "Save"`, `the dialog "Layers"`.
std::wstring describe(const BoxRequest& box);

}  // namespace drafthost::editor

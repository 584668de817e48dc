#pragma once

// What tests of database functions start from: the add-in at the prompt, the fake server behind it.

#include "tests/module/fake_server.h"
#include "tests/module/lisp_session.h"

#include <gtest/gtest.h>
#include <objbase.h>

namespace tessary::testing {

using Lines = std::vector<std::string>;

class DatabaseTest : public ::testing::Test {
protected:
    // Printed by the lines that are typed in a drawing that has the database open, and with the calls that
    // they alone made.
    Lines runConnected(const Lines& lines) {
        Lines all = {connect, forget};
        all.insert(all.end(), lines.begin(), lines.end());
        Lines printed = runLisp(all);
        EXPECT_GE(printed.size(), 2u);
        EXPECT_EQ("T", printed.front());
        printed.erase(printed.begin(), printed.begin() + 2);
        return printed;
    }
    // The calls behind those of runConnected's first two lines, without those of the drawing's closing.
    Lines callsWhenConnected() const {
        Lines calls = server.calls();
        const auto mark = std::find(calls.begin(), calls.end(), "1.CurrentIndex");
        calls.erase(calls.begin(), mark == calls.end() ? mark : mark + 1);
        if (!calls.empty() && calls.back().ends_with(".CloseDatabase")) {
            calls.pop_back();
        }
        return calls;
    }

    // There on every system.
    static constexpr const char* connect = "(ts_connect \"C:/windows/win.ini\")";
    // Marks the place in the calls where the test's own begin.
    static constexpr const char* forget = "(ts_current_index)";

private:
    struct ComApartment {
        ComApartment() { CoInitialize(nullptr); }
        ~ComApartment() { CoUninitialize(); }
    };
    ComApartment apartment_;

protected:
    FakeServer server;
};

}  // namespace tessary::testing

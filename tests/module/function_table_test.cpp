#include "module/binding/function_table.h"

#include "module/binding/thunk.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace tessary::testing {

namespace {

std::vector<std::string> registeredNames() {
    std::vector<std::string> names;
    for (const auto table : {databaseFunctions(), drawingFunctions()}) {
        for (const FunctionEntry& entry : table) {
            const std::wstring name = entry.name;
            names.emplace_back(name.begin(), name.end());
        }
    }
    return names;
}

// First cells of the reference's table of functions, which begin "| number | `name` |".
std::vector<std::string> documentedNames() {
    std::ifstream file("../docs/lisp-reference.md");
    std::vector<std::string> names;
    std::string line;
    while (std::getline(file, line)) {
        const std::string begin = "| " + std::to_string(names.size()) + " | `";
        if (line.starts_with(begin)) {
            names.push_back(line.substr(begin.size(), line.find('`', begin.size()) - begin.size()));
        }
    }
    return names;
}

// Names in the headings "### `name`" of the reference's entries.
std::set<std::string> namesWithEntry() {
    std::ifstream file("../docs/lisp-reference.md");
    std::set<std::string> names;
    std::string line;
    while (std::getline(file, line)) {
        if (line.starts_with("### `")) {
            names.insert(line.substr(5, line.find('`', 5) - 5));
        }
    }
    return names;
}

TEST(FunctionTable, numbersOfTheTwoTablesFollowEachOther) {
    EXPECT_EQ(0, databaseFunctionBase());
    EXPECT_EQ(63, drawingFunctionBase());
    EXPECT_EQ(174u, databaseFunctions().size() + drawingFunctions().size());
}

TEST(FunctionTable, namesAreUniqueAndEveryOneHasAThunk) {
    const std::vector<std::string> names = registeredNames();
    EXPECT_EQ(names.size(), std::set<std::string>(names.begin(), names.end()).size());
    for (const auto table : {databaseFunctions(), drawingFunctions()}) {
        for (const FunctionEntry& entry : table) {
            EXPECT_NE(nullptr, entry.thunk) << entry.name;
        }
    }
}

TEST(FunctionTable, databaseTableHoldsTheDatabaseFunctions) {
    for (const FunctionEntry& entry : databaseFunctions()) {
        EXPECT_TRUE(std::wstring_view(entry.name).starts_with(L"ts_"));
    }
    for (const FunctionEntry& entry : drawingFunctions()) {
        EXPECT_FALSE(std::wstring_view(entry.name).starts_with(L"ts_"));
    }
}

TEST(FunctionTable, functionsThatWorkAreTheOnesWithAnEntryInTheReference) {
    std::set<std::string> working;
    for (const auto table : {databaseFunctions(), drawingFunctions()}) {
        for (const FunctionEntry& entry : table) {
            if (entry.thunk != unavailableThunk) {
                const std::wstring name = entry.name;
                working.emplace(name.begin(), name.end());
            }
        }
    }
    EXPECT_EQ(working, namesWithEntry());
}

TEST(FunctionTable, referenceListsTheSameNamesInTheSameOrder) {
    EXPECT_EQ(documentedNames(), registeredNames());
}

}  // namespace

}  // namespace tessary::testing

#pragma once

// A folder of its own for each test, an engine, and short ways to say what the tests say often.

#include <gtest/gtest.h>

#include "server/engine/engine.h"

#include <filesystem>
#include <fstream>
#include <random>

namespace tessary::server {

class EngineTest : public ::testing::Test {
protected:
    EngineTest() {
        const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        folder = std::filesystem::temp_directory_path() /
                 (std::string("tessary-") + info->test_suite_name() + "-" + info->name() + "-" +
                  std::to_string(std::random_device()()));
        std::filesystem::create_directories(folder);
        path = file("plan.qn");
    }
    ~EngineTest() override {
        database.reset();
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }

    Text file(const char* name) const { return (folder / name).u16string(); }

    std::unique_ptr<Database> open(OpenMode mode = OpenMode::readWrite) { return open(path, mode); }
    std::unique_ptr<Database> open(const Text& name, OpenMode mode = OpenMode::readWrite) {
        OpenResult result = engine->open(name, mode);
        EXPECT_TRUE(result.database != nullptr) << toUtf8(result.problem);
        return std::move(result.database);
    }
    void createAndOpen() {
        engine->create(path);
        database = open();
    }

    std::unique_ptr<RecordOrder> order(const char16_t* table, const char16_t* index = u"") {
        Text name;
        return database->openOrder(table, index, name);
    }

    std::int64_t run(const char16_t* statement, std::vector<Value> parameters = {}) {
        return database->run(sql::parse(statement), parameters, nullptr);
    }

    std::unique_ptr<Engine> engine = makeSqliteEngine();
    std::unique_ptr<Database> database;
    std::filesystem::path folder;
    Text path;
};

// What the work fails with; 0 when it does not.
template <typename Work>
int errorOf(Work work, Text* text = nullptr) {
    try {
        work();
        return 0;
    } catch (const DatabaseError& error) {
        EXPECT_TRUE(error.text().ends_with(u'.')) << toUtf8(error.text());
        if (text != nullptr)
            *text = error.text();
        return static_cast<int>(error.code());
    }
}

inline FieldDefinition field(const char16_t* name, FieldType type, int size = 0, bool required = false) {
    FieldDefinition definition;
    definition.name = name;
    definition.type = type;
    definition.size = size;
    definition.required = required;
    return definition;
}

inline FieldChange changedTo(FieldDefinition definition) {
    return {FieldChange::Kind::addOrAlter, std::move(definition), {}, false};
}

inline FieldDefinition counter(const char16_t* name) {
    FieldDefinition definition = field(name, FieldType::longInteger);
    definition.autonumber = true;
    return definition;
}

// The values of one field along the order, as texts with a blank between; "-" for null.
inline std::string along(RecordOrder& order, std::size_t place, bool backward = false) {
    std::string text;
    for (auto record = backward ? order.last() : order.first(); record;
         record = backward ? order.before(record->position) : order.after(record->position)) {
        const Value& value = record->values[place];
        text += (text.empty() ? "" : " ") + (isNull(value) ? "-" : toUtf8(textOf(value)));
        if (text.size() > 100000)
            return text + " endless";
    }
    return text;
}

}  // namespace tessary::server

#pragma once

// A database in memory with a few tables, which runs statements of the dialect from their text.

#include "server/sqlite/functions.h"
#include "server/sqlite/translator.h"
#include "server/values/error.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <map>

namespace tessary::server {

class TestSchema : public SchemaView {
public:
    const TableDefinition* table(TextView name) const override {
        for (const TableDefinition& definition : tables) {
            if (sameName(definition.name, name))
                return &definition;
        }
        return nullptr;
    }
    std::string sqliteName(TextView name) const override { return "\"main\"." + quotedName(name); }
    const QueryDefinition* query(TextView name) const override {
        for (const QueryDefinition& definition : queries) {
            if (sameName(definition.name, name))
                return &definition;
        }
        return nullptr;
    }

    std::vector<TableDefinition> tables;
    std::vector<QueryDefinition> queries;
};

class TranslatorTest : public testing::Test {
protected:
    TranslatorTest() {
        sqlite3_open_v2(":memory:", &connection_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
        registerFunctions(connection_);
        execute("PRAGMA encoding = 'UTF-16le'");
        add({u"tblLayer",
             {{u"ixLayer", FieldType::longInteger, 0, false, true, {}},
              {u"sName", FieldType::text, 50, false, false, {}},
              {u"bPlot", FieldType::yesNo, 0, false, false, {}},
              {u"iColor", FieldType::longInteger, 0, false, false, {}},
              {u"dWidth", FieldType::number, 0, false, false, {}},
              {u"tMade", FieldType::dateTime, 0, false, false, {}},
              {u"sLineweight", FieldType::text, 0, false, false, {}},
              {u"sNote", FieldType::memo, 0, false, false, {}}},
             {}});
        add({u"tblLayerKey",
             {{u"ixLayerKey", FieldType::longInteger, 0, false, true, {}},
              {u"ixLayer", FieldType::longInteger, 0, false, false, {}},
              {u"sKey", FieldType::text, 0, false, false, {}}},
             {}});
        add({u"odd \"name\"",
             {{u"rowid", FieldType::text, 0, false, false, {}},
              {u"select", FieldType::integer, 0, false, false, {}}},
             {}});
        run("INSERT INTO tblLayer (sName, bPlot, iColor, dWidth, tMade, sLineweight) VALUES "
            "('Walls', True, 1, 0.5, #7/4/2010#, '25')");
        run("INSERT INTO tblLayer (sName, bPlot, iColor, dWidth, tMade) VALUES ('doors', No, 2, 1.25, "
            "#2010-07-05 13:45:00#)");
        run("INSERT INTO tblLayer (sName, bPlot, iColor, dWidth) VALUES ('DUCTS', True, 30, 10)");
        run("INSERT INTO tblLayerKey (ixLayer, sKey) VALUES (1, 'wall')");
        run("INSERT INTO tblLayerKey (ixLayer, sKey) VALUES (1, 'WALL2')");
        run("INSERT INTO tblLayerKey (ixLayer, sKey) VALUES (2, 'door')");
        run("INSERT INTO tblLayerKey (ixLayer, sKey) VALUES (99, 'lost')");
    }
    ~TranslatorTest() override { EXPECT_EQ(sqlite3_close(connection_), SQLITE_OK); }

    void add(const TableDefinition& definition) {
        std::string columns;
        for (const FieldDefinition& field : definition.fields) {
            const bool text = field.type == FieldType::text || field.type == FieldType::memo;
            const bool real = field.type == FieldType::number || field.type == FieldType::dateTime;
            columns += (columns.empty() ? "" : ", ") + quotedName(field.name) +
                       (field.autonumber ? " INTEGER PRIMARY KEY AUTOINCREMENT"
                        : text           ? " TEXT COLLATE TESSARY_TEXT"
                        : real           ? " REAL"
                                         : " INTEGER");
        }
        if (columns.find("PRIMARY KEY") == std::string::npos)
            columns += ", \"!row\" INTEGER PRIMARY KEY";
        execute("CREATE TABLE " + quotedName(definition.name) + " (" + columns + ")");
        schema_.tables.push_back(definition);
    }

    void execute(const std::string& sql) {
        ASSERT_EQ(sqlite3_exec(connection_, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(connection_);
    }

    Translation translate(std::string_view text) {
        statement_ = sql::parse(toText(text));
        const sql::Statement& statement = statement_;
        if (const auto* select = std::get_if<sql::SelectPtr>(&statement.node)) {
            if (!(*select)->into.empty())
                return translateInto(**select, statement.parameters, schema_, into_);
            return translateSelect(**select, statement.parameters, schema_);
        }
        if (const auto* insert = std::get_if<sql::Insert>(&statement.node))
            return translateInsert(*insert, statement.parameters, schema_);
        if (const auto* update = std::get_if<sql::Update>(&statement.node))
            return translateUpdate(*update, statement.parameters, schema_);
        return translateDelete(std::get<sql::Delete>(statement.node), statement.parameters, schema_);
    }

    // Records one a line, values with blanks between them; the number of changes of other statements. An
    // error is its number and its text.
    std::string run(std::string_view text, const std::vector<Value>& parameters = {}) {
        try {
            return runTranslation(translate(text), parameters);
        } catch (const DatabaseError& error) {
            return "#" + std::to_string(static_cast<int>(error.code())) + " " + toUtf8(error.text());
        }
    }

    std::string value(std::string_view expression, const std::vector<Value>& parameters = {}) {
        return run("SELECT " + std::string(expression), parameters);
    }

    // Names of the result's columns, or of the parameters, with commas.
    std::string columns(std::string_view text) {
        std::string names;
        for (const ResultColumn& column : translate(text).columns)
            names += (names.empty() ? "" : ",") + toUtf8(column.name);
        return names;
    }
    std::string parameters(std::string_view text) {
        std::string names;
        for (const Text& name : translate(text).parameters)
            names += (names.empty() ? "" : ",") + toUtf8(name);
        return names;
    }

    TestSchema schema_;
    TableDefinition into_;
    sqlite3* connection_ = nullptr;

private:
    static void bind(sqlite3_stmt* statement, int place, const Value& value) {
        if (const auto* text = std::get_if<Text>(&value))
            sqlite3_bind_text16(statement, place, text->data(), static_cast<int>(text->size() * 2),
                                SQLITE_TRANSIENT);
        else if (const auto* date = std::get_if<Date>(&value))
            sqlite3_bind_double(statement, place, date->days);
        else if (const auto* number = std::get_if<double>(&value))
            sqlite3_bind_double(statement, place, *number);
        else if (const auto* whole = std::get_if<std::int32_t>(&value))
            sqlite3_bind_int(statement, place, *whole);
        else if (const auto* flag = std::get_if<bool>(&value))
            sqlite3_bind_int(statement, place, *flag ? -1 : 0);
    }

    static std::string cell(sqlite3_stmt* statement, int column, const std::optional<FieldType>& type) {
        if (sqlite3_column_type(statement, column) == SQLITE_NULL)
            return "null";
        if (type == FieldType::yesNo)
            return sqlite3_column_int(statement, column) == -1  ? "yes"
                   : sqlite3_column_int(statement, column) == 0 ? "no"
                                                                : "bad";
        if (type == FieldType::dateTime)
            return "#" + toUtf8(textOf(Date{sqlite3_column_double(statement, column)})) + "#";
        if (sqlite3_column_type(statement, column) == SQLITE_TEXT) {
            const auto* units = static_cast<const char16_t*>(sqlite3_column_text16(statement, column));
            return "'" +
                   toUtf8(TextView(units,
                                   static_cast<std::size_t>(sqlite3_column_bytes16(statement, column)) / 2)) +
                   "'";
        }
        return toUtf8(textOf(sqlite3_column_double(statement, column)));
    }

    std::string runTranslation(const Translation& translation, const std::vector<Value>& parameters) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(connection_, translation.sql.c_str(), -1, &statement, nullptr))
            return std::string(sqlite3_errmsg(connection_)) + " in " + translation.sql;
        EXPECT_LE(sqlite3_bind_parameter_count(statement), static_cast<int>(translation.parameters.size()));
        for (std::size_t i = 0; i < parameters.size(); ++i)
            bind(statement, static_cast<int>(i + 1), parameters[i]);
        std::string result;
        int status = 0;
        while ((status = sqlite3_step(statement)) == SQLITE_ROW) {
            std::string row;
            for (int i = 0; i < sqlite3_column_count(statement); ++i)
                row += (i > 0 ? " " : "") +
                       cell(statement, i, translation.columns[static_cast<std::size_t>(i)].type);
            result += (result.empty() ? "" : "\n") + row;
        }
        if (status != SQLITE_DONE)
            result = sqlite3_errmsg(connection_);
        else if (translation.columns.empty())
            result = std::to_string(sqlite3_changes(connection_));
        sqlite3_finalize(statement);
        return result;
    }

    sql::Statement statement_;
};

}  // namespace tessary::server

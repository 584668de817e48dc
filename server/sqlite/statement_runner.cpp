#include "server/sqlite/statement_runner.h"

#include "server/sqlite/relation_errors.h"
#include "server/sqlite/table_sql.h"
#include "server/sqlite/translator.h"

#include <functional>

namespace tessary::server {

namespace {

// Queries that execute queries: more than this is a circle.
constexpr int deepestExecution = 16;

// The schema as the translator sees it; tables stay valid as long as this lives.
class CoreSchema : public SchemaView {
public:
    explicit CoreSchema(DatabaseCore& core) : core_(core) {}

    const TableDefinition* table(TextView name) const override {
        const OrderTable* found = find(name);
        return found == nullptr ? nullptr : &found->entry->definition;
    }
    std::string sqliteName(TextView name) const override {
        const OrderTable* found = find(name);
        return found == nullptr ? quotedName(name) : found->sqliteName;
    }
    const QueryDefinition* query(TextView name) const override {
        const auto known = queries_.find(name);
        if (known != queries_.end())
            return &known->second;
        const auto& queries = core_.catalog.definitions().queries;
        const auto found = queries.find(name);
        return found == queries.end() ? nullptr
                                      : &queries_.emplace(found->first, found->second).first->second;
    }
    const OrderTable* find(TextView name) const {
        const auto known = tables_.find(name);
        if (known != tables_.end())
            return &known->second;
        std::optional<OrderTable> found = core_.find(name);
        return found ? &tables_.emplace(Text(name), std::move(*found)).first->second : nullptr;
    }

private:
    DatabaseCore& core_;
    mutable std::map<Text, OrderTable, NameLess> tables_;
    mutable std::map<Text, QueryDefinition, NameLess> queries_;
};

std::vector<Value> boundValues(const Translation& translation, const sql::Statement& statement,
                               std::span<const Value> parameters) {
    if (parameters.size() < translation.parameters.size()) {
        Text missing;
        for (std::size_t place = parameters.size(); place < translation.parameters.size(); ++place)
            missing += (missing.empty() ? u"" : u", ") + translation.parameters[place];
        throw DatabaseError(
            ErrorCode::tooFewParameters,
            inText(u"The statement needs a value for each of its parameters; missing, or a misspelt field: ",
                   missing, u"."));
    }
    std::vector<Value> values(
        parameters.begin(), parameters.begin() + static_cast<std::ptrdiff_t>(translation.parameters.size()));
    for (std::size_t place = 0; place < values.size(); ++place)
        for (const sql::ParameterDeclaration& declared : statement.parameters)
            if (sameName(declared.name, translation.parameters[place]))
                values[place] = convertTo(declared.type, values[place], declared.name);
    return values;
}

void bindAll(Prepared& prepared, const std::vector<Value>& values) {
    int place = 0;
    for (const Value& value : values)
        prepared.bind(++place, value);
}

Cell cellOf(Prepared& row, int column, const std::optional<FieldType>& type) {
    sqlite3_stmt* handle = row.handle();
    Cell cell;
    const int storage = sqlite3_column_type(handle, column);
    if (storage == SQLITE_NULL)
        return cell;
    if (storage == SQLITE_TEXT || storage == SQLITE_BLOB || (type && isText(*type))) {
        cell.kind = Cell::Kind::text;
        cell.text = row.textView(column);
        return cell;
    }
    const std::int64_t whole = sqlite3_column_int64(handle, column);
    const bool fits = storage == SQLITE_INTEGER && whole == static_cast<std::int32_t>(whole);
    cell.kind = fits ? Cell::Kind::longInteger : Cell::Kind::number;
    cell.integer = static_cast<std::int32_t>(whole);
    cell.number = sqlite3_column_double(handle, column);
    if (type == FieldType::yesNo) {
        cell.kind = Cell::Kind::yesNo;
        cell.integer = whole != 0;
    } else if (type == FieldType::dateTime) {
        cell.kind = Cell::Kind::date;
    } else if (type == FieldType::single || type == FieldType::number || type == FieldType::currency) {
        cell.kind = Cell::Kind::number;
    }
    return cell;
}

Text leftmostTable(const sql::SourcePtr& source) {
    if (source == nullptr)
        return {};
    if (const auto* table = std::get_if<sql::TableSource>(&source->node))
        return table->table;
    if (const auto* join = std::get_if<sql::Join>(&source->node))
        return leftmostTable(join->left);
    return {};
}

class Runner {
public:
    Runner(DatabaseCore& core, const sql::Statement& statement, std::span<const Value> parameters,
           RowSink* sink, int depth)
        : core_(core), schema_(core), statement_(statement), parameters_(parameters), sink_(sink),
          depth_(depth) {}

    std::int64_t run() {
        return std::visit([this](const auto& node) { return runNode(node); }, statement_.node);
    }

private:
    std::int64_t runNode(const sql::SelectPtr& select) {
        return select->into.empty() ? selectRows(*select) : selectInto(*select);
    }
    std::int64_t runNode(const sql::Insert& insert) {
        return change(ChangeKind::insert, insert.table,
                      [&] { return translateInsert(insert, statement_.parameters, schema_); });
    }
    std::int64_t runNode(const sql::Update& update) {
        refuseAutonumber(update);
        return change(ChangeKind::update, leftmostTable(update.target),
                      [&] { return translateUpdate(update, statement_.parameters, schema_); });
    }
    std::int64_t runNode(const sql::Delete& erase) {
        return change(ChangeKind::erase, erase.table.empty() ? leftmostTable(erase.from) : erase.table,
                      [&] { return translateDelete(erase, statement_.parameters, schema_); });
    }
    std::int64_t runNode(const sql::CreateTable& create) {
        return define([&] {
            core_.editor.createTable(create.definition);
            for (const RelationDefinition& relation : create.relations)
                core_.editor.createRelation(relation);
        });
    }
    std::int64_t runNode(const sql::CreateIndex& create) {
        return define([&] {
            if (create.disallowNull)
                requireFields(create);
            core_.editor.createIndex(create.table, create.index);
        });
    }
    std::int64_t runNode(const sql::AlterTable& alter) {
        return define([&] {
            for (const Text& constraint : alter.droppedConstraints)
                dropConstraint(alter.table, constraint);
            if (!alter.changes.empty())
                core_.editor.modifyTable(alter.table, alter.changes);
            for (const IndexDefinition& index : alter.indexes)
                core_.editor.createIndex(alter.table, index);
            for (const RelationDefinition& relation : alter.relations)
                core_.editor.createRelation(relation);
        });
    }
    std::int64_t runNode(const sql::DropTable& drop) {
        return define([&] { core_.editor.dropTable(drop.table, false); });
    }
    std::int64_t runNode(const sql::DropIndex& drop) {
        return define([&] { core_.editor.dropIndex(drop.table, drop.index); });
    }
    std::int64_t runNode(const sql::CreateQuery& create) {
        return define([&] { core_.editor.createQuery(create.query); });
    }
    std::int64_t runNode(const sql::DropQuery& drop) {
        return define([&] { core_.editor.dropQuery(drop.name); });
    }
    std::int64_t runNode(const sql::Execute& execute);

    template <typename Work>
    std::int64_t define(Work work) {
        SchemaChange change(core_.connection, core_.catalog);
        work();
        change.commit();
        return 0;
    }

    void requireFields(const sql::CreateIndex& create) {
        const TableDefinition table = core_.resolve(create.table).entry->definition;
        std::vector<FieldChange> changes;
        for (const IndexField& indexField : create.index.fields)
            if (const FieldDefinition* field = table.field(indexField.name)) {
                changes.push_back({FieldChange::Kind::addOrAlter, *field, {}, false});
                changes.back().field.required = true;
            }
        if (!changes.empty())
            core_.editor.modifyTable(create.table, changes);
    }

    // A number that was given by hand and deleted again would be counted a second time.
    void refuseAutonumber(const sql::Update& update) {
        const bool isJoin =
            update.target != nullptr && std::holds_alternative<sql::Join>(update.target->node);
        const TableDefinition* table = isJoin ? nullptr : schema_.table(leftmostTable(update.target));
        const FieldDefinition* number = table == nullptr ? nullptr : autonumberField(*table);
        for (const sql::Assignment& assignment : update.assignments)
            if (number != nullptr && sameName(assignment.field.name, number->name))
                throw DatabaseError(ErrorCode::readOnly,
                                    inText(u"The field '", number->name,
                                           u"' is numbered by the database and cannot be changed."));
    }

    void dropConstraint(TextView table, TextView name) {
        const auto& relations = core_.catalog.definitions().relations;
        const auto relation = relations.find(name);
        if (relation != relations.end() && sameName(relation->second.foreignTable, table))
            core_.editor.dropRelation(Text(name));
        else
            core_.editor.dropIndex(table, name);
    }

    std::int64_t selectRows(const sql::Select& select) {
        const Transaction transaction(core_.connection, Transaction::Kind::read);
        const Translation translation = translateSelect(select, statement_.parameters, schema_);
        const std::vector<Value> values = boundValues(translation, statement_, parameters_);
        Prepared prepared = core_.connection.prepare(translation.sql);
        bindAll(prepared, values);
        if (sink_ != nullptr) {
            std::vector<Text> names;
            for (const ResultColumn& column : translation.columns)
                names.push_back(column.name);
            sink_->columns(names);
        }
        std::vector<Cell> cells(translation.columns.size());
        std::int64_t rows = 0;
        for (; prepared.step(); ++rows) {
            if (sink_ == nullptr)
                continue;
            for (std::size_t column = 0; column < cells.size(); ++column)
                cells[column] = cellOf(prepared, static_cast<int>(column), translation.columns[column].type);
            sink_->row(cells);
        }
        return rows;
    }

    std::int64_t selectInto(const sql::Select& select) {
        SchemaChange schemaChange(core_.connection, core_.catalog);
        TableDefinition target;
        const Translation translation = translateInto(select, statement_.parameters, schema_, target);
        const std::vector<Value> values = boundValues(translation, statement_, parameters_);
        core_.editor.createTable(target);
        std::string fields;
        for (const FieldDefinition& field : target.fields)
            fields += (fields.empty() ? "" : ",") + quotedName(field.name);
        Prepared fill = core_.connection.prepare("INSERT INTO main." + quotedName(physicalName(target.name)) +
                                                 "(" + fields + ") " + translation.sql);
        bindAll(fill, values);
        fill.run();
        const std::int64_t rows = sqlite3_changes64(core_.connection.handle());
        schemaChange.commit();
        return rows;
    }

    template <typename Translate>
    std::int64_t change(ChangeKind kind, TextView table, Translate translate) {
        const OrderTable* target = schema_.find(table);
        if (target != nullptr && !target->isFile)
            throw DatabaseError(
                ErrorCode::readOnly,
                inText(u"The table '", table, u"' is linked from a text file, which can only be read."));
        Transaction transaction(core_.connection, Transaction::Kind::write);
        const Translation translation = translate();
        const std::vector<Value> values = boundValues(translation, statement_, parameters_);
        Prepared prepared = core_.connection.prepare(translation.sql);
        const auto runOnce = [&] {
            bindAll(prepared, values);
            prepared.run();
        };
        try {
            runOnce();
        } catch (const ForeignKeyError&) {
            Catalog& catalog =
                target != nullptr && target->catalog != nullptr ? *target->catalog : core_.catalog;
            throwRelationError(core_.connection, catalog, table, kind, runOnce);
        }
        const std::int64_t changed = sqlite3_changes64(core_.connection.handle());
        transaction.commit();
        return changed;
    }

    // Arguments of EXECUTE are constants and the statement's own parameters.
    Value argumentValue(const sql::Expression& expression) const {
        if (const auto* literal = std::get_if<sql::Literal>(&expression.node))
            return literal->value;
        if (const auto* placeholder = std::get_if<sql::Placeholder>(&expression.node))
            if (static_cast<std::size_t>(placeholder->number) < parameters_.size())
                return parameters_[static_cast<std::size_t>(placeholder->number)];
        if (const auto* unary = std::get_if<sql::Unary>(&expression.node)) {
            const Value value = argumentValue(*unary->operand);
            if (unary->operation == sql::UnaryOperator::plus)
                return value;
            if (unary->operation == sql::UnaryOperator::negate && !isNull(value))
                return -std::get<double>(convertTo(FieldType::number, value, u"argument"));
        }
        throw DatabaseError(ErrorCode::syntax, u"The arguments of an executed query must be constants.");
    }

    DatabaseCore& core_;
    CoreSchema schema_;
    const sql::Statement& statement_;
    std::span<const Value> parameters_;
    RowSink* sink_;
    int depth_;
};

std::int64_t runQueryAt(DatabaseCore& core, TextView name, std::span<const Value> parameters, RowSink* sink,
                        int depth) {
    if (depth > deepestExecution)
        throw DatabaseError(ErrorCode::tooComplex, inText(u"The query '", name, u"' executes itself."));
    const auto& queries = core.catalog.definitions().queries;
    const auto found = queries.find(name);
    if (found == queries.end())
        throw DatabaseError(ErrorCode::itemNotFound, inText(u"The query '", name, u"' does not exist."));
    const sql::Statement statement = sql::parse(found->second.statement);
    return Runner(core, statement, parameters, sink, depth).run();
}

std::int64_t Runner::runNode(const sql::Execute& execute) {
    std::vector<Value> arguments;
    for (const sql::ExpressionPtr& argument : execute.arguments)
        arguments.push_back(argumentValue(*argument));
    return runQueryAt(core_, execute.query, arguments, sink_, depth_ + 1);
}

}  // namespace

std::int64_t runStatement(DatabaseCore& core, const sql::Statement& statement,
                          std::span<const Value> parameters, RowSink* sink) {
    return Runner(core, statement, parameters, sink, 0).run();
}

std::int64_t runStoredQuery(DatabaseCore& core, TextView name, std::span<const Value> parameters,
                            RowSink* sink) {
    return runQueryAt(core, name, parameters, sink, 0);
}

}  // namespace tessary::server

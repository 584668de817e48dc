#include "server/com/connection_object.h"

#include "server/com/variants.h"

namespace tessary::server {

namespace {

constexpr TextView repairStatus = u"*REPAIR*";
constexpr SHORT serverVersion = 1;

VARIANT recordVariant(const TableRecord& record) {
    VariantList list;
    list.reserve(2 * record.values.size());
    for (std::size_t i = 0; i < record.values.size(); ++i) {
        const FieldDefinition& field = record.definition->fields[i];
        list.addText(field.name);
        list.add(variantOf(record.values[i], field.type));
    }
    return list.releaseArray();
}

VARIANT flatVariant(const std::vector<Value>& values) {
    VariantList list;
    list.reserve(values.size());
    for (const Value& value : values) {
        list.add(variantOf(value));
    }
    return list.releaseArray();
}

VARIANT namesVariant(const std::vector<Text>& names) {
    return flatVariant(std::vector<Value>(names.begin(), names.end()));
}

std::vector<Text> indexNames(const TableDefinition& table) {
    std::vector<Text> names;
    for (const IndexDefinition& index : table.indexes) {
        names.push_back(index.name);
    }
    return names;
}

LONG longCount(std::int64_t count) {
    return static_cast<LONG>(std::min<std::int64_t>(count, std::numeric_limits<LONG>::max()));
}

bool isTrue(VARIANT_BOOL flag) {
    return flag != VARIANT_FALSE;
}

}  // namespace

// Nobody waits any more for the statement that may be at work, and others wait for its lock.
void ConnectionWork::abandon() {
    std::unique_lock lock(mutex, std::defer_lock);
    while (!lock.try_lock_for(std::chrono::milliseconds(100))) {
        session.interrupt();
    }
    session.close();
}

ConnectionObject::ConnectionObject(std::shared_ptr<Engine> engine)
    : work_(std::make_shared<ConnectionWork>(std::move(engine))), booking_(work_) {}

template <class Work>
HRESULT ConnectionObject::locked(Work work) {
    return guarded(__uuidof(DatabaseConnection), [&] {
        const std::lock_guard lock(work_->mutex);
        work(work_->session);
    });
}

// The shapes of the slots. Out parameters that are no pointers are refused before anything is done, and all
// others have a value whatever happens.

template <class Work>
HRESULT ConnectionObject::perform(VARIANT_BOOL* ok, Work work) {
    if (!ok) {
        return E_POINTER;
    }
    *ok = VARIANT_FALSE;
    return locked([&](Session& session) { *ok = variantBool(session.attempt([&] { work(session); })); });
}

// The work returns the answer.
template <class Work>
HRESULT ConnectionObject::performFor(VARIANT* answer, VARIANT_BOOL* ok, Work work) {
    if (!answer) {
        return E_POINTER;
    }
    assign(answer, VARIANT{});
    return perform(ok, [&](Session& session) { assign(answer, work(session)); });
}

template <class Work>
HRESULT ConnectionObject::performTest(VARIANT_BOOL* answer, VARIANT_BOOL* ok, Work work) {
    if (!answer) {
        return E_POINTER;
    }
    *answer = VARIANT_FALSE;
    return perform(ok, [&](Session& session) { *answer = variantBool(work(session)); });
}

template <class Work>
HRESULT ConnectionObject::performMove(VARIANT* record, VARIANT_BOOL* ok, Work work) {
    return performFor(record, ok, [&](Session& session) { return recordVariant(work(session)); });
}

// The work gives its rows to the sink.
template <class Work>
HRESULT ConnectionObject::performRows(VARIANT* records, VARIANT_BOOL* ok, Work work) {
    return performFor(records, ok, [&](Session& session) {
        ResultRows rows;
        work(session, rows);
        return rows.release();
    });
}

// Questions about the state leave the pending error alone.
template <class Question>
HRESULT ConnectionObject::askFlag(VARIANT_BOOL* answer, Question question) {
    if (!answer) {
        return E_POINTER;
    }
    *answer = VARIANT_FALSE;
    return locked([&](Session& session) { *answer = variantBool(question(session)); });
}

template <class Question>
HRESULT ConnectionObject::askText(BSTR* answer, Question question) {
    if (!answer) {
        return E_POINTER;
    }
    *answer = nullptr;
    return locked([&](Session& session) { *answer = newText(question(session)); });
}

// --- the database

// Connections always share their database with others, so that asking for it alone is refused.
HRESULT ConnectionObject::OpenDatabase(BSTR path, VARIANT_BOOL exclusive, VARIANT_BOOL readOnly,
                                       BSTR* status) {
    if (!status) {
        return E_POINTER;
    }
    *status = nullptr;
    return locked([&](Session& session) {
        Text problem;
        bool isOpened = false;
        const bool isDone = session.attempt([&] {
            if (isTrue(exclusive)) {
                session.close();
                throw DatabaseError(ErrorCode::cannotOpen,
                                    u"'" + Text(viewOf(path)) +
                                        u"' cannot be opened exclusively: databases are shared.");
            }
            isOpened = session.open(viewOf(path), isTrue(readOnly) ? OpenMode::readOnly : OpenMode::readWrite,
                                    problem);
        });
        if (isDone && !isOpened) {
            session.setPending(ErrorCode::damaged, problem);
        }
        *status = newText(!isDone ? TextView() : isOpened ? viewOf(path) : repairStatus);
    });
}

HRESULT ConnectionObject::OpenForCustomization(BSTR path, VARIANT_BOOL* readOnly, VARIANT_BOOL* ok) {
    return performTest(readOnly, ok, [&](Session& session) {
        Text problem;
        if (!session.open(viewOf(path), OpenMode::readWriteIfPossible, problem)) {
            throw DatabaseError(ErrorCode::damaged, problem);
        }
        return session.isReadOnly();
    });
}

// An error of the database that is closed is no news any more. Without one the pending error stays: clients
// close after an opening that failed, and ask for its reason then.
HRESULT ConnectionObject::CloseDatabase(VARIANT_BOOL* closed) {
    return askFlag(closed, [](Session& session) {
        return !session.isOpen() || session.attempt([&] { session.close(); });
    });
}

HRESULT ConnectionObject::CreateDatabase(BSTR path, VARIANT_BOOL* ok) {
    return perform(ok, [&](Session& session) { session.engine().create(viewOf(path)); });
}

HRESULT ConnectionObject::Compact(BSTR source, BSTR target, VARIANT_BOOL* ok) {
    return perform(ok, [&](Session& session) { session.engine().compact(viewOf(source), viewOf(target)); });
}

// --- questions about the state

HRESULT ConnectionObject::IsAlive(VARIANT_BOOL* alive) {
    return askFlag(alive, [](Session& session) { return session.isAlive(); });
}

HRESULT ConnectionObject::IsOpen(VARIANT_BOOL* open) {
    return askFlag(open, [](Session& session) { return session.isOpen(); });
}

HRESULT ConnectionObject::IsWritable(VARIANT_BOOL* writable) {
    return askFlag(writable, [](Session& session) { return session.isOpen() && !session.isReadOnly(); });
}

HRESULT ConnectionObject::IsReadOnly(VARIANT_BOOL* readOnly) {
    return askFlag(readOnly, [](Session& session) { return session.isReadOnly(); });
}

HRESULT ConnectionObject::IsAtEnd(VARIANT_BOOL* atEnd) {
    return askFlag(atEnd, [](Session& session) { return session.isAtEnd(); });
}

HRESULT ConnectionObject::IsAtBeginning(VARIANT_BOOL* atBeginning) {
    return askFlag(atBeginning, [](Session& session) { return session.isAtBeginning(); });
}

HRESULT ConnectionObject::IsErrorPending(VARIANT_BOOL* pending) {
    return askFlag(pending, [](Session& session) { return session.pending().code != 0; });
}

HRESULT ConnectionObject::DatabasePath(BSTR* path) {
    return askText(path, [](Session& session) { return session.path(); });
}

HRESULT ConnectionObject::CurrentTable(BSTR* name) {
    return askText(name, [](Session& session) { return session.currentTable(); });
}

HRESULT ConnectionObject::CurrentIndex(BSTR* name) {
    return askText(name, [](Session& session) { return session.currentIndex(); });
}

HRESULT ConnectionObject::GetError(LONG* code, BSTR* text) {
    if (!code) {
        return E_POINTER;
    }
    *code = 0;
    return askText(text, [&](Session& session) {
        *code = session.pending().code;
        return session.pending().text;
    });
}

HRESULT ConnectionObject::Version(SHORT* version) {
    if (!version) {
        return E_POINTER;
    }
    *version = serverVersion;
    return S_OK;
}

// --- the current table and its records

HRESULT ConnectionObject::SelectTable(BSTR table, BSTR index, VARIANT_BOOL* ok) {
    return perform(ok, [&](Session& session) { session.selectTable(viewOf(table), viewOf(index)); });
}

HRESULT ConnectionObject::CloseTable(VARIANT_BOOL* closed) {
    return perform(closed, [](Session& session) { session.closeTable(); });
}

HRESULT ConnectionObject::CloseAllTables(VARIANT_BOOL* closed) {
    return perform(closed, [](Session& session) { session.closeAllTables(); });
}

HRESULT ConnectionObject::MoveFirst(VARIANT* record, VARIANT_BOOL* ok) {
    return performMove(record, ok, [](Session& session) { return session.moveFirst(); });
}

HRESULT ConnectionObject::MoveLast(VARIANT* record, VARIANT_BOOL* ok) {
    return performMove(record, ok, [](Session& session) { return session.moveLast(); });
}

HRESULT ConnectionObject::Skip(LONG count, VARIANT* record, VARIANT_BOOL* ok) {
    return performMove(record, ok, [&](Session& session) { return session.skip(count); });
}

HRESULT ConnectionObject::GetRecord(VARIANT* record, VARIANT_BOOL* ok) {
    return performMove(record, ok, [](Session& session) { return session.read(); });
}

HRESULT ConnectionObject::Append(VARIANT fields, VARIANT_BOOL stay, VARIANT* record, VARIANT_BOOL* ok) {
    return performMove(record, ok,
                       [&](Session& session) { return session.append(fieldValuesOf(fields), isTrue(stay)); });
}

HRESULT ConnectionObject::Replace(VARIANT fields, VARIANT* record, VARIANT_BOOL* ok) {
    return performMove(record, ok, [&](Session& session) { return session.replace(fieldValuesOf(fields)); });
}

HRESULT ConnectionObject::DeleteRecord(VARIANT_BOOL* ok) {
    return perform(ok, [](Session& session) { session.erase(); });
}

HRESULT ConnectionObject::Count(LONG* count, VARIANT_BOOL* ok) {
    if (!count) {
        return E_POINTER;
    }
    *count = 0;
    return perform(ok, [&](Session& session) { *count = longCount(session.count()); });
}

HRESULT ConnectionObject::seek(std::initializer_list<const VARIANT*> keys, VARIANT* record,
                               VARIANT_BOOL* ok) {
    return performMove(record, ok, [&](Session& session) {
        std::vector<Value> values;
        for (const VARIANT* key : keys) {
            values.push_back(valueOf(*key));
        }
        return session.seek(values);
    });
}

HRESULT ConnectionObject::Seek(VARIANT key, VARIANT* record, VARIANT_BOOL* ok) {
    return seek({&key}, record, ok);
}

HRESULT ConnectionObject::Seek2(VARIANT key1, VARIANT key2, VARIANT* record, VARIANT_BOOL* ok) {
    return seek({&key1, &key2}, record, ok);
}

HRESULT ConnectionObject::Seek3(VARIANT key1, VARIANT key2, VARIANT key3, VARIANT* record, VARIANT_BOOL* ok) {
    return seek({&key1, &key2, &key3}, record, ok);
}

HRESULT ConnectionObject::SeekKeys(VARIANT key1, VARIANT key2, VARIANT key3, VARIANT key4, VARIANT key5,
                                   VARIANT key6, VARIANT key7, VARIANT key8, VARIANT key9, VARIANT key10,
                                   LONG count, VARIANT* record, VARIANT_BOOL* ok) {
    const VARIANT* const keys[] = {&key1, &key2, &key3, &key4, &key5, &key6, &key7, &key8, &key9, &key10};
    return performMove(record, ok, [&](Session& session) {
        if (count < 0 || count > static_cast<LONG>(std::size(keys))) {
            throw DatabaseError(ErrorCode::invalidArgument, u"A key has one to ten values.");
        }
        std::vector<Value> values;
        for (LONG i = 0; i < count; ++i) {
            values.push_back(valueOf(*keys[i]));
        }
        return session.seek(values);
    });
}

// --- tables, indexes, relations

HRESULT ConnectionObject::TableExists(BSTR table, VARIANT_BOOL* exists, VARIANT_BOOL* ok) {
    return performTest(exists, ok,
                       [&](Session& session) { return session.database().hasTable(viewOf(table)); });
}

HRESULT ConnectionObject::ListTables(VARIANT* names, VARIANT_BOOL* ok) {
    return performFor(names, ok,
                      [](Session& session) { return namesVariant(session.database().tableNames()); });
}

HRESULT ConnectionObject::Structure(VARIANT* fields, VARIANT_BOOL* ok) {
    return performFor(fields, ok,
                      [](Session& session) { return flatVariant(structureOf(session.structure())); });
}

HRESULT ConnectionObject::ListIndexes(VARIANT* names, VARIANT_BOOL* ok) {
    return performFor(names, ok,
                      [](Session& session) { return namesVariant(indexNames(session.structure())); });
}

HRESULT ConnectionObject::Attributes(BSTR name, VARIANT* attributes, VARIANT_BOOL* ok) {
    return performFor(attributes, ok,
                      [&](Session& session) { return flatVariant(session.attributes(viewOf(name))); });
}

HRESULT ConnectionObject::FieldRequired(BSTR table, BSTR field, VARIANT_BOOL* required, VARIANT_BOOL* ok) {
    return performTest(required, ok,
                       [&](Session& session) { return session.isRequired(viewOf(table), viewOf(field)); });
}

HRESULT ConnectionObject::CreateTable(BSTR table, VARIANT definition, VARIANT_BOOL* ok) {
    return perform(ok, [&](Session& session) {
        session.database().createTable(parseTableDefinition(viewOf(table), valuesOf(definition)));
    });
}

HRESULT ConnectionObject::ModifyTable(BSTR table, VARIANT definition, VARIANT_BOOL* ok) {
    return perform(ok, [&](Session& session) {
        session.database().modifyTable(viewOf(table), parseTableChanges(valuesOf(definition)));
    });
}

HRESULT ConnectionObject::RenameTable(BSTR oldName, BSTR newName, VARIANT_BOOL* ok) {
    return perform(ok, [&](Session& session) { session.renameTable(viewOf(oldName), viewOf(newName)); });
}

HRESULT ConnectionObject::DeleteTable(BSTR table, VARIANT_BOOL withRelations, VARIANT_BOOL* ok) {
    return perform(ok, [&](Session& session) { session.dropTable(viewOf(table), isTrue(withRelations)); });
}

HRESULT ConnectionObject::CreateIndex(BSTR table, BSTR index, VARIANT_BOOL unique, VARIANT_BOOL primary,
                                      VARIANT_BOOL* ok) {
    return perform(ok, [&](Session& session) {
        session.database().createIndex(viewOf(table),
                                       parseIndexDefinition(viewOf(index), isTrue(unique), isTrue(primary)));
    });
}

HRESULT ConnectionObject::RelationExists(BSTR relation, VARIANT_BOOL* exists, VARIANT_BOOL* ok) {
    return performTest(exists, ok, [&](Session& session) { return session.hasRelation(viewOf(relation)); });
}

HRESULT ConnectionObject::DeleteRelation(BSTR table, BSTR relation, VARIANT_BOOL* ok) {
    return perform(ok, [&](Session& session) { session.dropRelation(viewOf(table), viewOf(relation)); });
}

HRESULT ConnectionObject::LinkTable(BSTR name, BSTR file, BSTR table, VARIANT_BOOL* linked,
                                    VARIANT_BOOL* ok) {
    return performTest(linked, ok, [&](Session& session) {
        session.database().linkTable({Text(viewOf(name)), Text(viewOf(file)), Text(viewOf(table))});
        return true;
    });
}

// --- statements

HRESULT ConnectionObject::RunSql(BSTR statement, VARIANT* records, VARIANT_BOOL* ok) {
    return performRows(records, ok,
                       [&](Session& session, RowSink& rows) { session.run(viewOf(statement), &rows); });
}

HRESULT ConnectionObject::ExecuteSql(BSTR statement, VARIANT_BOOL* ok) {
    return perform(ok, [&](Session& session) { session.run(viewOf(statement), nullptr); });
}

HRESULT ConnectionObject::RunCommand(BSTR statement, LONG* count, VARIANT_BOOL* ok) {
    if (!count) {
        return E_POINTER;
    }
    *count = 0;
    return perform(ok,
                   [&](Session& session) { *count = longCount(session.run(viewOf(statement), nullptr)); });
}

HRESULT ConnectionObject::RunQuery(BSTR query, VARIANT parameters, VARIANT* records, VARIANT_BOOL* ok) {
    return performRows(records, ok, [&](Session& session, RowSink& rows) {
        session.database().runQuery(viewOf(query), valuesOf(parameters), &rows);
    });
}

HRESULT ConnectionObject::CreateQuery(BSTR name, BSTR statement, VARIANT_BOOL* ok) {
    return perform(ok, [&](Session& session) {
        session.database().createQuery({Text(viewOf(name)), Text(viewOf(statement))});
    });
}

}  // namespace tessary::server

#include "server/sqlite/translator.h"

#include "server/sqlite/translator_state.h"

namespace tessary::server {

namespace translation {

Translator::Translator(const SchemaView& schema, std::span<const sql::ParameterDeclaration> parameters)
    : schema_(schema) {
    parameters_.declare(frame_, parameters);
}

Translation Translator::finished(std::string_view sql) const {
    Translation translation;
    translation.sql = parameters_.numbered(sql, translation.parameters);
    return translation;
}

namespace {

// What a field is made of to hold the values of a result's column.
FieldType typeToHold(const Type& type) {
    if (type.field)
        return *type.field;
    switch (type.kind) {
        case Kind::yesNo: return FieldType::yesNo;
        case Kind::whole:
        case Kind::number: return FieldType::number;
        case Kind::date: return FieldType::dateTime;
        default: return FieldType::text;
    }
}

FieldDefinition fieldFor(const ResultField& result) {
    FieldDefinition field;
    field.name = result.name;
    // A name with its table's in front is no field name.
    for (char16_t& c : field.name) {
        if (c == u'.')
            c = u'_';
    }
    field.type = typeToHold(result.type);
    field.size = field.type == FieldType::text ? result.type.size : 0;
    checkName(field.name);
    return field;
}

Translation selectTranslation(Translator& translator, const TranslatedSelect& translated) {
    Translation translation = translator.finished(translated.sql);
    for (const ResultField& field : translated.fields)
        translation.columns.push_back({field.name, field.type.field});
    return translation;
}

}  // namespace

}  // namespace translation

using translation::fieldFor;
using translation::selectTranslation;
using translation::Translator;

Translation translateSelect(const sql::Select& select, std::span<const sql::ParameterDeclaration> parameters,
                            const SchemaView& schema) {
    Translator translator(schema, parameters);
    return selectTranslation(translator, translator.select(select, nullptr));
}

Translation translateInsert(const sql::Insert& insert, std::span<const sql::ParameterDeclaration> parameters,
                            const SchemaView& schema) {
    Translator translator(schema, parameters);
    return translator.finished(translator.insert(insert));
}

Translation translateUpdate(const sql::Update& update, std::span<const sql::ParameterDeclaration> parameters,
                            const SchemaView& schema) {
    Translator translator(schema, parameters);
    return translator.finished(translator.update(update));
}

Translation translateDelete(const sql::Delete& statement,
                            std::span<const sql::ParameterDeclaration> parameters, const SchemaView& schema) {
    Translator translator(schema, parameters);
    return translator.finished(translator.erase(statement));
}

Translation translateInto(const sql::Select& select, std::span<const sql::ParameterDeclaration> parameters,
                          const SchemaView& schema, TableDefinition& target) {
    Translator translator(schema, parameters);
    const translation::TranslatedSelect translated = translator.select(select, nullptr);
    target = {select.into, {}, {}};
    checkName(target.name);
    for (const translation::ResultField& result : translated.fields) {
        FieldDefinition field = fieldFor(result);
        if (target.field(field.name))
            throw DatabaseError(ErrorCode::duplicateField, u"The table '" + target.name +
                                                               u"' would have two fields '" + field.name +
                                                               u"'.");
        target.fields.push_back(std::move(field));
    }
    return selectTranslation(translator, translated);
}

}  // namespace tessary::server

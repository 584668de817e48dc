// Insertion of whole drawings as block definitions.
//
// Everything is decided and taken from the source before the target is changed. Records that the entities
// need are found by name in the target or come along; objects of the named dictionaries (styles of
// multilines, images and so on) likewise, under the same names of the same dictionaries.

#include <algorithm>
#include <set>
#include <unordered_set>

#include "host/api/database.h"
#include "host/database/block_contents.h"
#include "host/database/class_records.h"
#include "host/database/database_impl.h"
#include "host/database/deep_clone.h"
#include "host/database/names.h"
#include "host/database/open_state.h"
#include "host/database/symbol_records.h"
#include "host/database/unknown_objects.h"

namespace drafthost {
namespace {

struct NamedEntry {
    std::wstring name;
    AcDbObjectId id;
};

// Entries of a dictionary, also of one with a default entry, which is an object of unknown class here.
std::vector<NamedEntry> entriesOf(AcDbObjectId dictionary) {
    std::vector<NamedEntry> entries;
    if (const auto* const plain = peek<AcDbDictionary>(dictionary)) {
        for (const DictionaryState::Entry& entry : readState<DictionaryState>(plain).entries)
            entries.push_back({entry.name, entry.id});
        return entries;
    }
    const auto* const unknown = peek<AcDbUnknownObject>(dictionary);
    if (!unknown || unknown->dxfName() != L"ACDBDICTIONARYWDFLT")
        return entries;
    for (const DxfGroup& group : readState<UnknownObjectState>(unknown).groups) {
        const auto* const name = std::get_if<std::wstring>(&group.value);
        const auto* const reference = std::get_if<ObjectReference>(&group.value);
        if (group.code == 3 && name)
            entries.push_back({*name, {}});
        else if ((group.code == 350 || group.code == 360) && reference && !entries.empty())
            entries.back().id = reference->id;
    }
    return entries;
}

// A name that records of the target may have: names of external references lose their bar, as they do when
// such a reference is bound; other characters of old files become underlines.
std::wstring allowedName(const std::wstring& name) {
    if (isValidSymbolName(name))
        return name;
    std::wstring allowed;
    for (const wchar_t c : name) {
        if (c == L'|')
            allowed += L"$0$";
        else
            allowed += isValidSymbolName(std::wstring(1, c)) || c == L' ' ? c : L'_';
    }
    while (!allowed.empty() && (allowed.back() == L' ' || allowed.size() > 255))
        allowed.pop_back();
    allowed.erase(0, allowed.find_first_not_of(L' '));
    return allowed.empty() ? L"_" : allowed;
}

bool isStandardLinetype(const std::wstring& name) {
    return equalNames(name, L"ByLayer") || equalNames(name, L"ByBlock") || equalNames(name, L"Continuous");
}

Acad::ErrorStatus mayBeReplaced(AcDbObjectId record) {
    if (!isOpen(*record.stub()))
        return Acad::eOk;
    return record.stub()->writer ? Acad::eWasOpenForWrite : Acad::eWasOpenForRead;
}

class Insertion {
public:
    Insertion(AcDbDatabase& source, AcDbDatabase& target, std::wstring name,
              AcDb::DuplicateRecordCloning clashes)
        : source_(source), target_(target), name_(std::move(name)), replacing_(clashes == AcDb::kDrcReplace),
          copies_(source, target) {}

    // Takes all that has to come. Changes nothing.
    Acad::ErrorStatus gather() {
        definition_ = findRecord(&target_, TableIndex::Block, name_);
        auto status = definition_.isNull() ? Acad::eOk : mayBeReplaced(definition_);
        if (status == Acad::eOk)
            status = takeDefinition();
        while (status == Acad::eOk) {
            const std::vector<AcDbObjectId> wanted = copies_.wanted();
            if (wanted.empty())
                return Acad::eOk;
            for (const AcDbObjectId id : wanted) {
                if (status == Acad::eOk && !copies_.knows(id))
                    status = need(id);
            }
        }
        return status;
    }

    // Changes the target. On failure the caller takes the changes back.
    Acad::ErrorStatus perform(AcDbObjectId& id) {
        registerApplications();
        auto status = copies_.place();
        if (status == Acad::eOk)
            status = enterDictionaries();
        if (status == Acad::eOk)
            status = copies_.settle();
        copies_.close();
        if (status != Acad::eOk)
            return status;
        bringClasses();
        id = copies_.copyOf(source_.modelSpaceId());
        return Acad::eOk;
    }

private:
    // An object that comes along into the target's named dictionaries.
    struct Entry {
        AcDbObjectId original;
        std::vector<AcDbObjectId> dictionaries;  // of the source, the outermost (below the root) first
        std::vector<std::wstring> names;         // of these, and of the entry
    };

    // Model space is no block: what makes it a layout stays behind.
    Acad::ErrorStatus takeDefinition() {
        const AcGePoint3d base = source_.impl().settings.header.point(L"$INSBASE", {});
        const auto shape = [&base](RecordState& record) {
            auto& block = static_cast<BlockState&>(record);
            block.flags = 0;
            block.origin = base;
            block.description.clear();
            block.externalPath.clear();
            block.layout = block.begin = block.end = AcDbObjectId();
            block.xdata.clear();
            block.extras.clear();
        };
        return copies_.takeRecord({.original = source_.modelSpaceId(),
                                   .table = TableIndex::Block,
                                   .name = name_,
                                   .present = definition_,
                                   .shape = shape});
    }

    Acad::ErrorStatus need(AcDbObjectId id) {
        const auto* const record = peek<AcDbSymbolTableRecord>(id);
        if (!record)
            return needEntry(id);
        for (std::size_t i = 0; i < kTableCount; ++i) {
            if (source_.impl().tables[i] == record->ownerId() && !record->ownerId().isNull())
                return needRecord(static_cast<TableIndex>(i), id, record->name());
        }
        return Acad::eOk;
    }

    Acad::ErrorStatus needRecord(TableIndex table, AcDbObjectId id, const std::wstring& original) {
        if (table == TableIndex::Viewport)
            return Acad::eOk;
        const auto* const block = peek<AcDbBlockTableRecord>(id);
        if (block && block->isLayout())
            return Acad::eOk;
        const bool anonymous = block && block->isAnonymous();
        std::wstring name = anonymous ? freeName(original) : allowedName(original);
        while (!takenNames_.emplace(table, foldCase(name)).second)
            name += L'_';  // two names of the source that became the same
        if (block && equalNames(name, name_))
            return Acad::eSelfReference;
        const AcDbObjectId present = findRecord(&target_, table, name);
        const bool standard = table == TableIndex::Linetype && isStandardLinetype(name);
        if (!present.isNull() && (!replacing_ || standard)) {
            // The target's own block must not show the definition that is about to show it.
            if (block && !definition_.isNull() && showsBlock(present, definition_))
                return Acad::eSelfReference;
            copies_.setCopy(id, present);
            return Acad::eOk;
        }
        if (!present.isNull()) {
            if (const auto status = mayBeReplaced(present); status != Acad::eOk)
                return status;
        }
        const bool renamed = name != original && !anonymous;
        const auto shape = [renamed](RecordState& state) {
            constexpr std::int32_t kOfExternalReference = 16 | 32;
            if (renamed)
                state.flags &= ~kOfExternalReference;
        };
        return copies_.takeRecord({.original = id,
                                   .table = table,
                                   .name = present.isNull() ? name : recordName(present),
                                   .present = present,
                                   .shape = shape});
    }

    // "*U7" becomes the next "*U" that neither the target nor another block that comes has.
    std::wstring freeName(const std::wstring& name) {
        std::wstring stem = foldCase(name);
        while (stem.size() > 1 && stem.back() >= L'0' && stem.back() <= L'9')
            stem.pop_back();
        for (int& number = lastNumbers_[stem];;) {
            const std::wstring candidate = stem + std::to_wstring(++number);
            if (findRecord(&target_, TableIndex::Block, candidate).isNull())
                return candidate;
        }
    }

    // Objects outside the named dictionaries and the inserted blocks have no place in the target.
    Acad::ErrorStatus needEntry(AcDbObjectId id) {
        Entry entry{id, {}, {}};
        std::unordered_set<AcDbObjectId> seen;
        for (AcDbObjectId at = id; at != source_.namedObjectsDictionaryId();) {
            const AcDbObjectId owner = at.isErased() ? AcDbObjectId() : at.stub()->object->ownerId();
            const std::vector<NamedEntry> entries = entriesOf(owner);
            const auto own = std::ranges::find(entries, at, &NamedEntry::id);
            if (own == entries.end() || !seen.insert(at).second)
                return Acad::eOk;
            entry.names.insert(entry.names.begin(), own->name);
            if (owner != source_.namedObjectsDictionaryId())
                entry.dictionaries.insert(entry.dictionaries.begin(), owner);
            at = owner;
        }
        if (entry.names.empty())
            return Acad::eOk;
        AcDbObjectId present = target_.namedObjectsDictionaryId();
        for (const std::wstring& name : entry.names) {
            const std::vector<NamedEntry> entries = entriesOf(present);
            const auto own = std::ranges::find_if(entries, [&](const NamedEntry& each) {
                return equalNames(each.name, name) && !each.id.isErased();
            });
            // Only plain dictionaries can take up new entries.
            if (own == entries.end() && !peek<AcDbDictionary>(present) && !present.isNull())
                return Acad::eOk;
            present = own == entries.end() ? AcDbObjectId() : own->id;
        }
        if (!present.isNull()) {
            copies_.setCopy(id, present);
            return Acad::eOk;
        }
        entries_.push_back(entry);
        return copies_.take(id);
    }

    void registerApplications() {
        for (const std::wstring& name : copies_.applications()) {
            if (findRecord(&target_, TableIndex::RegApp, name).isNull())
                addRecord(target_, TableIndex::RegApp, std::make_unique<AcDbRegAppTableRecord>(), name);
        }
    }

    // What the drawing says of the classes that not everybody knows.
    void bringClasses() {
        for (const std::wstring& name : copies_.dxfNames()) {
            const ClassGroups* const record = findClassRecord(source_, name);
            if (record && !findClassRecord(target_, name))
                target_.impl().classes.push_back(*record);
        }
    }

    AcDbObjectId dictionaryFor(AcDbObjectId parent, AcDbObjectId original, const std::wstring& name) {
        const AcDbObjectPointer<AcDbDictionary> dictionary(parent, AcDb::kForWrite);
        AcDbObjectId id;
        if (!dictionary || dictionary->getAt(name.c_str(), id) == Acad::eOk)
            return id;
        auto made = std::make_unique<AcDbDictionary>();
        if (const auto* const like = peek<AcDbDictionary>(original)) {
            auto& state = static_cast<DictionaryState&>(*ObjectImp::of(made.get()).state);
            state.hardOwner = readState<DictionaryState>(like).hardOwner;
            state.cloning = readState<DictionaryState>(like).cloning;
        }
        if (dictionary->setAt(name.c_str(), made.get(), id) == Acad::eOk)
            made.release()->close();
        return id;
    }

    Acad::ErrorStatus enterDictionaries() {
        for (const Entry& entry : entries_) {
            AcDbObjectId parent = target_.namedObjectsDictionaryId();
            for (std::size_t i = 0; i < entry.dictionaries.size(); ++i) {
                parent = dictionaryFor(parent, entry.dictionaries[i], entry.names[i]);
                copies_.setCopy(entry.dictionaries[i], parent);
            }
            auto* const dictionary = peek<AcDbDictionary>(parent);
            if (!dictionary)
                return Acad::eWasOpenForRead;
            if (entry.dictionaries.empty())
                copies_.setCopy(source_.namedObjectsDictionaryId(), parent);
            noteChange(*parent.stub());
            auto& state = static_cast<DictionaryState&>(*ObjectImp::of(dictionary).state);
            std::erase_if(state.entries,
                          [&](const auto& each) { return equalNames(each.name, entry.names.back()); });
            state.entries.push_back({entry.names.back(), copies_.copyOf(entry.original),
                                     static_cast<short>(state.hardOwner ? 360 : 350)});
        }
        return Acad::eOk;
    }

    AcDbDatabase& source_;
    AcDbDatabase& target_;
    const std::wstring name_;
    const bool replacing_;
    AcDbObjectId definition_;  // that is redefined; null: a new one
    DeepCopy copies_;
    std::unordered_map<std::wstring, int> lastNumbers_;  // of anonymous blocks, by kind
    std::set<std::pair<TableIndex, std::wstring>> takenNames_;
    std::vector<Entry> entries_;
};

Acad::ErrorStatus checkInsertion(const AcDbDatabase& target, const ACHAR* name, const AcDbDatabase* source) {
    if (!source || !name)
        return Acad::eNullObjectPointer;
    if (source == &target || !peek<AcDbBlockTableRecord>(source->modelSpaceId()) ||
        !peek<AcDbBlockTable>(target.blockTableId())) {
        return Acad::eInvalidInput;
    }
    if (!isValidSymbolName(name))
        return Acad::eInvalidKey;
    return mayWrite(target) ? Acad::eOk : Acad::eLockViolation;
}

}  // namespace
}  // namespace drafthost

// Copies are cheap enough that a source that may be used up is preserved too.
Acad::ErrorStatus AcDbDatabase::insert(AcDbObjectId& id, const ACHAR* blockName, AcDbDatabase* source, bool,
                                       AcDb::DuplicateRecordCloning clashes) {
    id = AcDbObjectId();
    if (const auto status = drafthost::checkInsertion(*this, blockName, source); status != Acad::eOk)
        return status;
    drafthost::Insertion insertion(*source, *this, blockName, clashes);
    if (const auto status = insertion.gather(); status != Acad::eOk)
        return status;
    AcDbTransactionManager* const transactions = transactionManager();
    transactions->startTransaction();
    const Acad::ErrorStatus status = insertion.perform(id);
    status == Acad::eOk ? transactions->endTransaction() : transactions->abortTransaction();
    return status;
}

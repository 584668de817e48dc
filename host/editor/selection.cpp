#include "host/editor/selection.h"

#include <algorithm>
#include <cwctype>
#include <functional>

#include "host/api/symbol_tables.h"
#include "host/database/database_impl.h"
#include "host/database/names.h"
#include "host/documents/host.h"
#include "host/editor/coordinates.h"
#include "host/editor/entity_outline.h"
#include "host/editor/entity_pick.h"
#include "host/editor/typed_text.h"

namespace drafthost::editor {

namespace {

using Ids = std::vector<AcDbObjectId>;

// "_W:S" taken apart.
struct Mode {
    std::wstring method;  // upper case
    bool single = false, unlockedOnly = false;

    explicit Mode(const std::wstring& text) {
        const std::size_t colon = text.find(L':');
        method = foldCase(text.substr(0, colon));
        if (method.starts_with(L"_"))
            method.erase(0, 1);
        if (colon == std::wstring::npos)
            return;
        const std::wstring flags = foldCase(text.substr(colon));
        single = flags.find(L'S') != std::wstring::npos;
        unlockedOnly = flags.find(L'L') != std::wstring::npos;
    }
};

bool isOnLockedLayer(AcDbObjectId id) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (!entity)
        return false;
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(entity->layerId(), AcDb::kForRead);
    return layer && layer->isLocked();
}

bool isOnFrozenLayer(AcDbObjectId id) {
    const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
    if (!entity)
        return false;
    const AcDbObjectPointer<AcDbLayerTableRecord> layer(entity->layerId(), AcDb::kForRead);
    return layer && layer->isFrozen();
}

// Newest first, as programs that scan a whole drawing have always got them.
Ids wholeDrawing(const AcDbDatabase& database) {
    Ids entities;
    for (const AcDbObjectId space : {database.paperSpaceId(), database.modelSpaceId()}) {
        const AcDbObjectPointer<AcDbBlockTableRecord> block(space, AcDb::kForRead);
        if (!block)
            continue;
        for (const AcDbObjectId id : block->entityIds())
            entities.push_back(id);
    }
    std::reverse(entities.begin(), entities.end());
    return entities;
}

class Selector {
public:
    Selector(Document& document, const SelectRequest& request)
        : document_(document), request_(request), mode_(request.mode),
          toWorld_(ucsToWorld(*document.database())) {}

    SelectResult run() {
        Ids found;
        const std::wstring& method = mode_.method;
        if (method.empty() && request_.points.empty())
            return askDrafter();
        if (method.empty()) {
            found = at(request_.points.front());
        } else if (method == L"X") {
            found = wholeDrawing(*document_.database());
        } else if (method == L"A") {
            found = wholeDrawing(*document_.database());
            std::erase_if(found, isOnFrozenLayer);
        } else if (method == L"L") {
            found = last();
        } else if (method == L"P" || method == L"I") {
            found = membersOf(method == L"P" ? document_.previousSelection() : document_.pickFirst());
        } else if (!byRegion(method, found)) {
            return {};
        }
        const auto set = theHost().selectionSets().make(document_);
        add(found, *set);
        return finish(set);
    }

private:
    static SelectResult cancelled() {
        SelectResult result;
        result.status = RTCAN;
        return result;
    }

    SelectResult finish(const std::shared_ptr<SelectionSet>& set) {
        if (set->members().empty())
            return {};
        if (mode_.method != L"X")
            document_.setPreviousSelection(set);
        return {RTNORM, set, std::move(crossed_), std::move(lastCrossing_)};
    }

    bool passes(AcDbObjectId id) const {
        return !id.isErased() && !(mode_.unlockedOnly && isOnLockedLayer(id)) && request_.filter.matches(id);
    }

    // Number of entities that were added.
    int add(const Ids& entities, SelectionSet& set) const {
        int count = 0;
        for (const AcDbObjectId id : entities)
            count += passes(id) && set.add(id);
        return count;
    }

    Ids at(const AcGePoint3d& point) const {
        const AcDbObjectId id = entityAt(document_, point);
        return id.isNull() ? Ids() : Ids{id};
    }

    Ids last() const {
        const Ids visible = visibleEntities(*document_.database());
        return visible.empty() ? Ids() : Ids{visible.back()};
    }

    static Ids membersOf(const std::shared_ptr<SelectionSet>& set) {
        Ids entities = set ? set->members() : Ids();
        std::erase_if(entities, [](AcDbObjectId id) { return id.isErased(); });
        return entities;
    }

    // Points of the coordinate system the drafter works in, as a region in plan view.
    Region rectangle(const AcGePoint3d& a, const AcGePoint3d& b) const {
        return polygon({a, {b.x, a.y, a.z}, b, {a.x, b.y, a.z}});
    }
    Region polygon(const std::vector<AcGePoint3d>& corners) const {
        Region region;
        for (const AcGePoint3d& corner : corners)
            region.corners.push_back((toWorld_ * corner).convert2d());
        return region;
    }

    Ids inRegion(const Region& region, bool crossing) {
        Ids found = visibleEntities(*document_.database());
        std::erase_if(found, [&](AcDbObjectId id) {
            const AcDbObjectPointer<AcDbEntity> entity(id, AcDb::kForRead);
            if (!entity)
                return true;
            const Outline outline = outlineOf(*entity);
            return !(crossing ? touches(outline, region) : liesInside(outline, region));
        });
        if (crossing && !region.fence) {
            crossed_.insert(found.begin(), found.end());
            lastCrossing_ = region;
        }
        return found;
    }

    bool byRegion(const std::wstring& method, Ids& found) {
        const bool window = method == L"W", crossing = method == L"C" || method == L"BOX";
        if (window || crossing) {
            if (request_.points.size() < 2)
                return false;
            found = inRegion(rectangle(request_.points[0], request_.points[1]), crossing);
            return true;
        }
        if (method != L"WP" && method != L"CP" && method != L"F")
            return false;
        Region region = polygon(request_.points);
        region.fence = method == L"F";
        if (region.corners.size() < (region.fence ? 2u : 3u))
            return false;
        found = inRegion(region, method != L"WP");
        return true;
    }

    SelectResult askDrafter() {
        const auto set = theHost().selectionSets().make(document_);
        bool removing = false;
        for (;;) {
            InputRequest request;
            request.kind = InputRequest::Kind::Selection;
            request.prompt = removing ? prompt(request_.removePrompt, L"\nRemove objects: ")
                                      : prompt(request_.addPrompt, L"\nSelect objects: ");
            request.keywords = Keywords(request_.keywords);
            const InputResult answer = document_.prompts().ask(request);
            if (answer.status == RTCAN)
                return cancelled();
            if (answer.status == RTNONE)
                break;
            if (answer.status == RTKWORD)
                continue;
            Ids found;
            const Taken taken = take(answer.answer, found, removing);
            if (taken == Taken::Cancelled)
                return cancelled();
            if (taken == Taken::Nothing)
                continue;
            apply(found, *set, removing);
            if (mode_.single)
                break;
        }
        return finish(set);
    }

    static std::wstring prompt(const std::wstring& own, const wchar_t* usual) {
        return own.empty() ? usual : own;
    }

    void apply(const Ids& found, SelectionSet& set, bool removing) {
        int count = 0;
        if (removing) {
            for (const AcDbObjectId id : found)
                count += set.remove(id);
        } else {
            count = add(found, set);
        }
        CommandLine& line = document_.commandLine();
        if (!document_.source().showsPrompts())
            return;
        const std::size_t total = set.members().size();
        line.freshLine();
        line.write(std::to_wstring(count) + (removing ? L" removed" : L" found"));
        if (static_cast<std::size_t>(count) != total)
            line.write(L", " + std::to_wstring(total) + L" total");
        line.write(L"\n");
    }

    enum class Taken { Entities, Nothing, Cancelled };

    Taken take(const Answer& answer, Ids& found, bool& removing) {
        switch (answer.kind) {
            case Answer::Kind::Window:
            case Answer::Kind::Crossing:
                found =
                    inRegion(rectangle(answer.point, answer.second), answer.kind == Answer::Kind::Crossing);
                return Taken::Entities;
            case Answer::Kind::Add:
            case Answer::Kind::Pick:
            case Answer::Kind::Point: found = at(answer.point); return Taken::Entities;
            case Answer::Kind::All: found = visibleEntities(*document_.database()); return Taken::Entities;
            case Answer::Kind::Entity: found = {answer.entity}; return Taken::Entities;
            case Answer::Kind::Set: found = membersOf(answer.set); return Taken::Entities;
            case Answer::Kind::Typed: return takeTyped(answer.text, found, removing);
            default: return Taken::Nothing;
        }
    }

    // The drafter's own words for the ways of selecting.
    Taken takeTyped(const std::wstring& text, Ids& found, bool& removing) {
        static const Keywords kWords(L"ALL Window Crossing WPolygon CPolygon Fence Last Previous Remove Add");
        const std::wstring word = kWords.match(text).value_or(L"");
        if (word == L"ALL") {
            found = visibleEntities(*document_.database());
        } else if (word == L"Last") {
            found = last();
        } else if (word == L"Previous") {
            found = membersOf(document_.previousSelection());
        } else if (word == L"Window" || word == L"Crossing") {
            return askRectangle(found, word == L"Crossing");
        } else if (word == L"WPolygon" || word == L"CPolygon" || word == L"Fence") {
            return askPolygon(found, word);
        } else if (word == L"Remove" || word == L"Add") {
            removing = word == L"Remove";
            return Taken::Nothing;
        } else {
            Answer refused = Answer::ofText(Answer::Kind::Typed, text);
            InputRequest request;
            request.kind = InputRequest::Kind::Selection;
            return document_.source().refuse(refused, describe(request), complaint(request))
                       ? Taken::Nothing
                       : Taken::Cancelled;
        }
        return Taken::Entities;
    }

    std::optional<AcGePoint3d> askPoint(InputRequest::Kind kind, const wchar_t* text, bool& cancelled) {
        InputRequest request;
        request.kind = kind;
        request.prompt = text;
        const InputResult answer = document_.prompts().ask(request);
        cancelled = answer.status == RTCAN;
        return answer.status == RTNORM ? std::optional(answer.point) : std::nullopt;
    }

    Taken askRectangle(Ids& found, bool crossing) {
        bool cancelled = false;
        const auto first = askPoint(InputRequest::Kind::Point, L"Specify first corner: ", cancelled);
        if (!first)
            return cancelled ? Taken::Cancelled : Taken::Nothing;
        const auto second = askPoint(InputRequest::Kind::Corner, L"Specify opposite corner: ", cancelled);
        if (!second)
            return cancelled ? Taken::Cancelled : Taken::Nothing;
        found = inRegion(rectangle(*first, *second), crossing);
        return Taken::Entities;
    }

    Taken askPolygon(Ids& found, const std::wstring& word) {
        std::vector<AcGePoint3d> corners;
        bool cancelled = false;
        while (const auto corner = askPoint(InputRequest::Kind::Point, L"Specify next point: ", cancelled)) {
            corners.push_back(*corner);
        }
        if (cancelled)
            return Taken::Cancelled;
        Region region = polygon(corners);
        region.fence = word == L"Fence";
        if (region.corners.size() < (region.fence ? 2u : 3u))
            return Taken::Nothing;
        found = inRegion(region, word != L"WPolygon");
        return Taken::Entities;
    }

    Document& document_;
    const SelectRequest& request_;
    Mode mode_;
    AcGeMatrix3d toWorld_;
    std::unordered_set<AcDbObjectId> crossed_;
    Region lastCrossing_;
};

}  // namespace

SelectResult select(Document& document, const SelectRequest& request) {
    return Selector(document, request).run();
}

}  // namespace drafthost::editor

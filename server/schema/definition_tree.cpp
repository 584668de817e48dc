#include "server/schema/definition_tree.h"

#include "server/values/error.h"

#include <iterator>

namespace tessary::server {
namespace {

constexpr TextView listBegin = u"*RTLB*", listEnd = u"*RTLE*", dot = u"*RTDOTE*";
constexpr int deepest = 16;  // no definition needs more than five
constexpr std::size_t longestDisplay = 80;

[[noreturn]] void fail(TextView what) {
    throw DatabaseError(ErrorCode::syntaxInDefinition,
                        Text(u"Syntax error in the definition: ") + Text(what));
}

class TreeReader {
public:
    explicit TreeReader(const std::vector<Value>& flat) : flat_(flat) {}

    DefinitionNode read() {
        DefinitionNode all{true, {}, {}};
        while (at_ < flat_.size())
            all.items.push_back(readNode(0));
        return all;
    }

private:
    bool isMarker(TextView marker) const {
        const auto* text = at_ < flat_.size() ? std::get_if<Text>(&flat_[at_]) : nullptr;
        return text && *text == marker;
    }

    DefinitionNode readNode(int depth) {
        if (isMarker(listEnd))
            fail(u"a list ends that did not begin.");
        if (isMarker(dot))
            fail(u"a dot that is not in a pair.");
        if (!isMarker(listBegin))
            return {false, flat_[at_++], {}};
        if (depth == deepest)
            fail(u"the lists are nested too deeply.");
        ++at_;
        return readList(depth + 1);
    }

    // (a . (b c)) is (a b c), as it is in LISP.
    DefinitionNode readList(int depth) {
        DefinitionNode list{true, {}, {}};
        while (!isMarker(listEnd)) {
            if (at_ == flat_.size())
                fail(u"a list does not end.");
            if (isMarker(dot) && list.items.size() == 1) {
                readTail(list, depth);
                break;
            }
            list.items.push_back(readNode(depth));
        }
        ++at_;
        return list;
    }

    void readTail(DefinitionNode& list, int depth) {
        ++at_;
        if (at_ == flat_.size())
            fail(u"a list does not end.");
        DefinitionNode tail = readNode(depth);
        if (!isMarker(listEnd))
            fail(u"a pair does not end after its second part.");
        if (tail.isList)
            std::move(tail.items.begin(), tail.items.end(), std::back_inserter(list.items));
        else
            list.items.push_back(std::move(tail));
    }

    const std::vector<Value>& flat_;
    std::size_t at_ = 0;
};

void appendDisplay(Text& text, const DefinitionNode& node) {
    if (text.size() > longestDisplay)
        return;
    if (node.isNil()) {
        text += u"nil";
    } else if (!node.isList) {
        text += node.text() ? u"\"" + *node.text() + u"\"" : textOf(node.value);
    } else {
        text += u"(";
        for (const DefinitionNode& item : node.items) {
            if (&item != &node.items.front())
                text += u" ";
            appendDisplay(text, item);
        }
        text += u")";
    }
}

}  // namespace

DefinitionNode parseTree(const std::vector<Value>& flat) {
    return TreeReader(flat).read();
}

Text display(const DefinitionNode& node) {
    Text text;
    appendDisplay(text, node);
    if (text.size() > longestDisplay)
        text = text.substr(0, longestDisplay) + u"...";
    return text;
}

}  // namespace tessary::server

#include "host/exchange/block_cycles.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace drafthost::exchange {
namespace {

// Names are compared without regard to case; for the letters beyond ASCII the spelling must agree.
std::string foldedName(const DxfRecord& record) {
    for (const DxfTag& tag : record.tags) {
        if (tag.code != 2)
            continue;
        std::string name(trimmed(tag.text));
        for (char& c : name)
            if (c >= 'a' && c <= 'z')
                c = static_cast<char>(c - 'a' + 'A');
        return name;
    }
    return {};
}

struct Insertion {
    std::uint32_t line;
    std::size_t block;
};

struct Node {
    enum class State { Fresh, Walking, Done };
    std::vector<Insertion> insertions;
    State state = State::Fresh;
    std::size_t next = 0;  // insertion to follow next
};

std::vector<Node> insertionGraph(const DxfStructure& structure) {
    std::unordered_map<std::string, std::size_t> numbers;
    for (std::size_t i = 0; i < structure.blocks.size(); ++i)
        numbers.emplace(foldedName(structure.blocks[i].begin), i);
    std::vector<Node> nodes(structure.blocks.size());
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        // A second definition of a name is not loaded.
        if (numbers[foldedName(structure.blocks[i].begin)] != i)
            continue;
        for (const DxfRecord& entity : structure.blocks[i].entities) {
            if (entity.type != "INSERT")
                continue;
            const auto found = numbers.find(foldedName(entity));
            if (found != numbers.end())
                nodes[i].insertions.push_back({entity.line, found->second});
        }
    }
    return nodes;
}

}  // namespace

std::unordered_set<std::uint32_t> insertionsThatCloseCycles(const DxfStructure& structure) {
    std::vector<Node> nodes = insertionGraph(structure);
    std::unordered_set<std::uint32_t> closing;
    std::vector<std::size_t> path;  // not the call stack: blocks may be nested as deeply as the file is long
    for (std::size_t root = 0; root < nodes.size(); ++root) {
        if (nodes[root].state != Node::State::Fresh)
            continue;
        nodes[root].state = Node::State::Walking;
        path.push_back(root);
        while (!path.empty()) {
            Node& node = nodes[path.back()];
            if (node.next == node.insertions.size()) {
                node.state = Node::State::Done;
                path.pop_back();
                continue;
            }
            const Insertion insertion = node.insertions[node.next++];
            Node& inserted = nodes[insertion.block];
            if (inserted.state == Node::State::Walking)
                closing.insert(insertion.line);
            if (inserted.state != Node::State::Fresh)
                continue;
            inserted.state = Node::State::Walking;
            path.push_back(insertion.block);
        }
    }
    return closing;
}

}  // namespace drafthost::exchange

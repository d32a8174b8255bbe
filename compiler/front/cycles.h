// Depth-first search without recursion, so that no input can exhaust the stack.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace quorva::compiler {

// A node on the path from the start of the search to the current node.
struct PathNode {
    std::size_t node = 0;
    std::size_t edge = 0;  // index of the edge to the next node of the path
};

// Visits all nodes of a graph, in which `edges[n]` lists the nodes that node n leads to. Returns the nodes in such an
// order that each comes after the nodes that it leads to, unless they form a cycle.
// Calls `onCycle(path, first)`, where `path` is a vector of PathNode, for each edge that closes a cycle: the edge of
// path.back() leads to path[first].
template <typename OnCycle>
std::vector<std::size_t> depthFirst(const std::vector<std::vector<std::size_t>>& edges, OnCycle onCycle)
{
    enum class State : std::uint8_t { unseen, onPath, done };
    std::vector<State> states(edges.size(), State::unseen);
    std::vector<std::size_t> pathIndex(edges.size(), 0);  // of each node on the path
    std::vector<std::size_t> order;
    std::vector<PathNode> path;

    for (std::size_t start = 0; start < edges.size(); ++start) {
        if (states[start] != State::unseen) continue;
        path.push_back({start, 0});
        states[start] = State::onPath;
        pathIndex[start] = 0;
        while (!path.empty()) {
            PathNode& current = path.back();
            if (current.edge == edges[current.node].size()) {
                states[current.node] = State::done;
                order.push_back(current.node);
                path.pop_back();
                if (!path.empty()) ++path.back().edge;
                continue;
            }
            const std::size_t next = edges[current.node][current.edge];
            if (states[next] == State::unseen) {
                states[next] = State::onPath;
                pathIndex[next] = path.size();
                path.push_back({next, 0});
                continue;
            }
            if (states[next] == State::onPath) { onCycle(std::as_const(path), pathIndex[next]); }
            ++current.edge;
        }
    }
    return order;
}

}  // namespace quorva::compiler

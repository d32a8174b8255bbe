// Walks a graph depth first without recursion, so that no input can exhaust the stack.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace quorva::compiler {

struct Step {
    std::size_t node = 0;
    std::size_t edge = 0;  // index of the edge that the walk took from here
};

// `edges[n]` lists the nodes that node n leads to. The result lists every node behind those that it leads to.
// `onCircle(path, first)` is called for each edge that closes a circle: the last step's edge leads back to
// `path[first]`.
template <typename OnCircle>
std::vector<std::size_t> walk(const std::vector<std::vector<std::size_t>>& edges, OnCircle onCircle)
{
    enum class State : std::uint8_t { unseen, onPath, done };
    std::vector<State> states(edges.size(), State::unseen);
    std::vector<std::size_t> places(edges.size(), 0);  // on the path
    std::vector<std::size_t> order;
    std::vector<Step> path;

    for (std::size_t start = 0; start < edges.size(); ++start) {
        if (states[start] != State::unseen) continue;
        path.push_back({start, 0});
        states[start] = State::onPath;
        places[start] = 0;
        while (!path.empty()) {
            Step& step = path.back();
            if (step.edge == edges[step.node].size()) {
                states[step.node] = State::done;
                order.push_back(step.node);
                path.pop_back();
                if (!path.empty()) ++path.back().edge;
                continue;
            }
            const std::size_t next = edges[step.node][step.edge];
            if (states[next] == State::unseen) {
                states[next] = State::onPath;
                places[next] = path.size();
                path.push_back({next, 0});
                continue;
            }
            if (states[next] == State::onPath) { onCircle(std::as_const(path), places[next]); }
            ++step.edge;
        }
    }
    return order;
}

}  // namespace quorva::compiler

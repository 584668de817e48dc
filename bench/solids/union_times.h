#pragma once

#include "bench/solids/union_cases.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace bench {

// Prints a line for each case: the microseconds that uniting its bodies took, the best of ten, and its name.
// unite: of a list of bodies, false when it failed.
template <class Body, class MakeBody, class Unite>
int printUnionTimes(MakeBody&& makeBody, Unite&& unite) {
    using Clock = std::chrono::steady_clock;
    for (const UnionCase& unionCase : unionCases()) {
        std::vector<Body> bodies;
        for (const Prism& prism : unionCase.bodies) {
            bodies.push_back(makeBody(prism));
        }
        double best = 1e300;
        for (int i = 0; i < 10; ++i) {
            std::vector<Body> operands = bodies;
            const auto begin = Clock::now();
            if (!unite(operands)) {
                std::fprintf(stderr, "%s: no union\n", unionCase.name.c_str());
                return 1;
            }
            best = std::min(best, std::chrono::duration<double, std::micro>(Clock::now() - begin).count());
        }
        std::printf("%.0f %s\n", best, unionCase.name.c_str());
    }
    return 0;
}

}  // namespace bench

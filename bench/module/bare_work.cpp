// A small module for benchmarks: the bare work that the add-in's functions stand on, called from C++, and a
// clock. Its times are the baselines of bench/module_calls.lsp, bench/database_calls.lsp,
// bench/leaders.lsp and bench/duct_fittings.lsp, taken in the same process.

#include "bench/module/bare_entities.h"
#include "bench/module/bare_records.h"

#include <windows.h>

#include <psapi.h>

#include "host/api/curves.h"
#include "host/api/documents.h"
#include "host/api/editor.h"

namespace {

int repetitions() {
    resbuf* arguments = acedGetArgs();
    const int count = arguments ? arguments->resval.rlong : 0;
    acutRelRb(arguments);
    return count;
}

// Seconds for that many runs of the work; its results are summed so that no run can be left out.
template <class Work>
int timed(Work work) {
    const int count = repetitions();
    volatile double sum = 0;
    const double start = secondsNow();
    for (int i = 0; i < count; ++i)
        sum = sum + work();
    acedRetReal(secondsNow() - start);
    return RSRSLT;
}

// (bench-clock) -> seconds
int clockFunction() {
    acedRetReal(secondsNow());
    return RSRSLT;
}

// (bench-memory) -> bytes of memory that the process has of its own
int memoryFunction() {
    PROCESS_MEMORY_COUNTERS counters{};
    GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters);
    acedRetReal(static_cast<double>(counters.PagefileUsage));
    return RSRSLT;
}

// (bench-bare-length COUNT) -> seconds: length of an arc, asked as the add-in asks it.
int bareLength() {
    const AcDbArc arc(AcGePoint3d(1, 2, 0), 5.0, 0.25, 2.0);
    return timed([&arc] {
        double parameter = 0, length = 0;
        arc.getEndParam(parameter);
        arc.getDistAtParam(parameter, length);
        return length;
    });
}

// (bench-bare-intersection COUNT) -> seconds: two arcs built, intersected, and the distance of each point
// found.
int bareIntersection() {
    return timed([] {
        const AcDbArc first(AcGePoint3d(0, 5, 0), 5.0, 4.71238898, 6.28318530);
        const AcDbArc second(AcGePoint3d(6, 0, 0), 5.0, 1.5707963, 3.14159265);
        AcGePoint3dArray points;
        first.intersectWith(&second, AcDb::kOnBothOperands, points);
        double sum = 0;
        for (const AcGePoint3d& point : points) {
            double distance = 0;
            first.getDistAtPoint(point, distance);
            sum += distance;
        }
        return sum;
    });
}

void registerFunctions() {
    struct Entry {
        const ACHAR* name;
        int (*function)();
    };
    constexpr Entry kEntries[] = {{L"bench-clock", clockFunction},
                                  {L"bench-memory", memoryFunction},
                                  {L"bench-bare-length", bareLength},
                                  {L"bench-bare-intersection", bareIntersection},
                                  {L"bench-bare-records", bareRecords},
                                  {L"bench-draw", bareDraw},
                                  {L"bench-extents", bareExtents},
                                  {L"bench-osnap", bareOsnap},
                                  {L"bench-load", bareLoad}};
    short number = 0;
    for (const Entry& entry : kEntries) {
        acedDefun(entry.name, number);
        acedRegFunc(entry.function, number++);
    }
}

}  // namespace

extern "C" __declspec(dllexport) std::uint32_t acrxGetApiVersion() {
    return kHostApiVersion;
}

extern "C" __declspec(dllexport) AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode message, void* packet) {
    if (message == AcRx::kInitAppMsg) {
        acrxUnlockApplication(packet);
        acrxRegisterAppMDIAware(packet);
    }
    if (message == AcRx::kLoadDwgMsg)
        registerFunctions();
    return AcRx::kRetOK;
}

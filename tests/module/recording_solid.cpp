#include "tests/module/recording_solid.h"

#include "solids/api/hvac_solid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

namespace tessary::testing {

namespace {

SolidRecorder* theRecorder = nullptr;
AcRxClass* theClass = nullptr;

// What rounding leaves over of nothing counts as nothing.
std::string text(double number) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.6g", std::abs(number) < 1e-7 ? 0.0 : number);
    return buffer;
}

std::string text(const AcGePoint3d& point) {
    return "(" + text(point.x) + " " + text(point.y) + " " + text(point.z) + ")";
}

std::string text(const AcGeVector3d& vector) {
    return text(AcGePoint3d::kOrigin + vector);
}

std::string text(const AcGeVector3d* frame) {
    AcGeTol tolerance;
    tolerance.equalVector = 1e-8;
    const bool isRightHanded = frame[2].isEqualTo(frame[0].crossProduct(frame[1]), tolerance);
    return "[x" + text(frame[0]) + " y" + text(frame[1]) + (isRightHanded ? "" : " z" + text(frame[2])) + "]";
}

std::string text(const std::string& word) {
    return word;
}

std::string text(const char* word) {
    return word;
}

std::string size(double width, double height) {
    return text(width) + "x" + text(height);
}

std::string section(bool isRectangular, double width, double height) {
    return (isRectangular ? "box " : "round ") + size(width, height);
}

// Of marks that are put into arrays.
template <class... Marks>
std::string digits(Marks... marks) {
    return (text(marks) + ...);
}

template <class... Parts>
std::string words(const Parts&... parts) {
    std::string line;
    ((line += (line.empty() ? "" : " ") + text(parts)), ...);
    return line;
}

bool isRefused(const std::string& name) {
    auto& [operation, count] = theRecorder->refuseAt;
    if (name == operation && --count == 0) {
        return true;
    }
    int& left = theRecorder->refusals[name];
    if (left > 0) {
        --left;
        return true;
    }
    return left < 0;
}

// Writes the call down. False when it is to be refused.
bool record(const std::string& name, const std::string& values) {
    theRecorder->calls.push_back(values.empty() ? name : name + " " + values);
    return !isRefused(name);
}

void move(std::initializer_list<AcGePoint3d*> points) {
    std::size_t index = 0;
    for (AcGePoint3d* const point : points) {
        if (index < theRecorder->movedPoints.size()) {
            *point = theRecorder->movedPoints[index++];
        }
    }
}

class RecordingSolid final : public qn_hvacSolid {
public:
    RecordingSolid() { ++theRecorder->living; }
    ~RecordingSolid() override {
        if (theRecorder) {
            --theRecorder->living;
        }
    }
    AcRxClass* isA() const override { return theClass; }

    bool addTransition(const AcGePoint3d& start, bool startRectangular, double startWidth, double startHeight,
                       const AcGePoint3d& end, bool endRectangular, double endWidth, double endHeight,
                       const AcGeVector3d* startFrame, const AcGeVector3d* endFrame, int bodyFlags) override {
        return recordTransition("add", start, startRectangular, startWidth, startHeight, end, endRectangular,
                                endWidth, endHeight, startFrame, endFrame, bodyFlags);
    }
    bool subtractTransition(const AcGePoint3d& start, bool startRectangular, double startWidth,
                            double startHeight, const AcGePoint3d& end, bool endRectangular, double endWidth,
                            double endHeight, const AcGeVector3d* startFrame, const AcGeVector3d* endFrame,
                            int bodyFlags) override {
        return recordTransition("subtract", start, startRectangular, startWidth, startHeight, end,
                                endRectangular, endWidth, endHeight, startFrame, endFrame, bodyFlags);
    }
    bool addRadiusElbow(AcGePoint3d& start, double startWidth, double startHeight, double thickness1,
                        double thickness2, AcGePoint3d& end, double endWidth, double endHeight,
                        const AcGeVector3d* startFrame, const AcGeVector3d* endFrame, bool rectangular,
                        double radiusRatio, bool roundThroat, int bodyFlags, bool turnsFreely) override {
        const bool isBuilt =
            record("radius", words(start, section(rectangular, startWidth, startHeight), startFrame, ">", end,
                                   size(endWidth, endHeight), endFrame, "walls", thickness1, thickness2,
                                   "ratio", radiusRatio, roundThroat, "flags", bodyFlags, turnsFreely));
        return isBuilt && moved({&start, &end});
    }
    bool addCableTraySquareRadiusElbow(AcGePoint3d& start, double width, double height, AcGePoint3d& end,
                                       const AcGeVector3d*, const AcGeVector3d*, double radiusRatio,
                                       int bodyFlags) override {
        return record("tray",
                      words(start, size(width, height), ">", end, "ratio", radiusRatio, "flags", bodyFlags));
    }
    bool addSquareElbowPrep(AcGePoint3d& start, double startWidth, double startHeight, AcGePoint3d& end,
                            double endWidth, double endHeight, const AcGeVector3d* startFrame,
                            const AcGeVector3d* endFrame, bool rectangular, AModeler::Point3d* startLeg,
                            AModeler::Point3d* endLeg, AcGePoint3d* axis, bool withCollars,
                            double collar) override {
        const bool isBuilt =
            record("square?", words(start, section(rectangular, startWidth, startHeight), startFrame, ">",
                                    end, size(endWidth, endHeight), endFrame, withCollars, collar));
        startLeg[7].x = 1;
        endLeg[7].x = 2;
        axis[7].x = 3;
        return isBuilt && moved({&start, &end});
    }
    bool addSquareElbow(const AcGePoint3d& start, double startWidth, double startHeight,
                        const AcGePoint3d& end, double endWidth, double endHeight, const AcGeVector3d*,
                        const AcGeVector3d*, bool rectangular, const AModeler::Point3d* startLeg,
                        const AModeler::Point3d* endLeg, const AcGePoint3d* axis, int bodyFlags) override {
        return record("square", words(start, section(rectangular, startWidth, startHeight), ">", end,
                                      size(endWidth, endHeight), "arrays",
                                      digits(startLeg[7].x, endLeg[7].x, axis[7].x), "flags", bodyFlags));
    }
    bool addWyePrep(AcGePoint3d& start, double width, double height, AcGePoint3d& end1, double width1,
                    double height1, AcGePoint3d& end2, double width2, double height2,
                    const AcGeVector3d* frame, const AcGeVector3d* frame1, const AcGeVector3d* frame2,
                    bool rectangular, AModeler::Point3d* mainLeg, AModeler::Point3d* leg1,
                    AModeler::Point3d* leg2, AcGePoint3d* mainAxis, AcGePoint3d* axis1, AcGePoint3d* axis2,
                    bool withCollars, double collar) override {
        const bool isBuilt = record("wye?", words(start, section(rectangular, width, height), frame, ">",
                                                  end1, size(width1, height1), frame1, ">", end2,
                                                  size(width2, height2), frame2, withCollars, collar));
        mainLeg[7].x = 1;
        leg1[7].x = 2;
        leg2[7].x = 3;
        mainAxis[7].x = 4;
        axis1[7].x = 5;
        axis2[7].x = 6;
        return isBuilt && moved({&start, &end1, &end2});
    }
    bool addWye(AcGePoint3d& start, double width, double height, AcGePoint3d& end1, double width1,
                double height1, AcGePoint3d& end2, double width2, double height2, AcGePoint3d& junction,
                const AcGeVector3d*, const AcGeVector3d*, const AcGeVector3d*, bool rectangular,
                const AModeler::Point3d* mainLeg, const AModeler::Point3d* leg1,
                const AModeler::Point3d* leg2, const AcGePoint3d* mainAxis, const AcGePoint3d* axis1,
                const AcGePoint3d* axis2, int bodyFlags) override {
        const bool isBuilt = record(
            "wye", words(start, section(rectangular, width, height), ">", end1, size(width1, height1), ">",
                         end2, size(width2, height2), "at", junction, "arrays",
                         digits(mainLeg[7].x, leg1[7].x, leg2[7].x, mainAxis[7].x, axis1[7].x, axis2[7].x),
                         "flags", bodyFlags));
        return isBuilt && moved({&start, &end1, &end2, &junction});
    }
    bool sliceLast(const AcGePoint3d& point1, const AcGePoint3d& point2, const AcGePoint3d& point3,
                   const AcGePoint3d& keptSide) override {
        return record("slice", words(point1, point2, point3, "keep", keptSide));
    }
    bool addSkin(AcGePoint3dArray points, double thickness) override {
        std::string list;
        for (const AcGePoint3d& point : points) {
            list += text(point) + " ";
        }
        return record("skin", list + text(thickness));
    }
    void clearBodies() override { record("clear", ""); }
    bool doUnion(const qn_hvacSolid&) override { return record("union", ""); }
    void setFitting(HvacFitting fitting) override {
        record(fitting == HvacFitting::takeoff ? "takeoff" : "hanger", "");
    }

private:
    static bool moved(std::initializer_list<AcGePoint3d*> points) {
        move(points);
        return true;
    }
    static bool recordTransition(const char* name, const AcGePoint3d& start, bool startRectangular,
                                 double startWidth, double startHeight, const AcGePoint3d& end,
                                 bool endRectangular, double endWidth, double endHeight,
                                 const AcGeVector3d* startFrame, const AcGeVector3d* endFrame,
                                 int bodyFlags) {
        const std::string frame1 = text(startFrame);
        const std::string frame2 = text(endFrame);
        return record(name, words(start, section(startRectangular, startWidth, startHeight), frame1, ">", end,
                                  section(endRectangular, endWidth, endHeight),
                                  frame1 == frame2 ? "[same]" : frame2, "flags", bodyFlags));
    }
};

AcRxObject* makeSolid() {
    return new RecordingSolid;
}

}  // namespace

SolidRecorder::SolidRecorder() {
    theRecorder = this;
    theClass = newAcRxClass(qn_hvacSolid::className, L"AcDbEntity", 1, 1, 1, makeSolid, L"RECORDING_SOLID",
                            L"\"Recording\"");
    acrxBuildClassHierarchy();
    EXPECT_NE(nullptr, theClass);
}

SolidRecorder::~SolidRecorder() {
    deleteAcRxClass(theClass);
    theClass = nullptr;
    theRecorder = nullptr;
}

}  // namespace tessary::testing

#include "solid_checks.h"

#include "solids/shapes/radius_elbow.h"

#include <cmath>
#include <numbers>
#include <random>

using namespace solids;

namespace {

// Ends as drawings have them and worse ones: all shapes, sizes from slender to wide, turned and far off.
class RandomEnds {
public:
    explicit RandomEnds(unsigned seed) : random_(seed) {}

    double between(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    bool oneIn(int count) { return std::uniform_int_distribution<int>(1, count)(random_) == 1; }
    Section section() {
        const double width = std::pow(10, between(-0.5, 1.5));
        const double height = oneIn(3) ? width : width * std::pow(10, between(-1, 1));
        return {oneIn(2), width, height};
    }
    AcGeVector3d direction() {
        const AcGeVector3d v(between(-1, 1), between(-1, 1), between(-1, 1));
        return v.length() > 0.1 ? v.normal() : AcGeVector3d(0, 0, 1);
    }
    double turn() { return oneIn(2) ? std::numbers::pi / 2 * std::floor(between(0, 4)) : between(-4, 4); }
    AcGePoint3d point() {
        const double size = oneIn(4) ? 1e6 : 100;
        return {between(-size, size), between(-size, size), between(-size, size)};
    }
    DuctEnd end() { return {point(), section(), frameAlong(direction(), turn())}; }

private:
    std::mt19937 random_;
};

// Offset, and turned from the start's direction by up to a right angle.
DuctEnd following(RandomEnds& random, const DuctEnd& start) {
    const double size = std::max(start.section.width, start.section.height);
    const AcGeVector3d aside = start.frame.y * random.between(-1, 1) + start.frame.z * random.between(-1, 1);
    const double length = random.between(-0.2, 3) * size;
    DuctEnd end;
    end.center = start.center + start.frame.x * length + aside * (random.between(0, 2) * size);
    end.section = random.oneIn(3) ? start.section : random.section();
    const AcGeVector3d way = (start.frame.x + aside * random.between(0, 0.7)).normal();
    end.frame = random.oneIn(2) ? frameAlong(start.frame.x, random.turn()) : frameAlong(way, random.turn());
    return end;
}

}  // namespace

TEST(RandomShapes, EveryTransitionIsASolid) {
    RandomEnds random(20);
    int built = 0;
    for (int i = 0; i < 1200; ++i) {
        const DuctEnd start = random.end();
        const std::optional<Body> body = makeTransition(start, following(random, start), 0);
        if (body) {
            ++built;
            ASSERT_TRUE(isSolid(body->mesh)) << "transition " << i;
        }
    }
    EXPECT_GT(built, 600);
}

TEST(RandomShapes, EveryElbowIsASolid) {
    RandomEnds random(21);
    int built = 0;
    for (int i = 0; i < 800; ++i) {
        DuctEnd start = random.end();
        const AcGeVector3d normal = rotated(start.frame, random.turn(), start.frame.x).y;
        const double angle = random.between(0.002, 3.1);
        DuctEnd end = start;
        end.frame = rotated(start.frame, angle, normal);
        end.frame = random.oneIn(2) ? end.frame : rotated(end.frame, random.turn(), end.frame.x);
        end.section = random.oneIn(2) ? start.section : random.section();
        const double widest = std::max(start.section.width, start.section.height);
        const double radius = widest * (random.oneIn(3) ? 0.501 : random.between(0.3, 3));
        const double far = radius * std::tan(angle / 2) * 1.1;
        const AcGePoint3d corner = start.center;
        start.center = corner - start.frame.x * far;
        end.center = corner + end.frame.x * far +
                     normal * (random.oneIn(3) ? random.between(0, 0.6) * angle * radius : 0);
        const auto elbow = makeRadiusElbow(start, end, radius, 0, 0);
        if (elbow) {
            ++built;
            ASSERT_TRUE(isSolid(elbow->body.mesh)) << "elbow " << i;
        }
        const auto tray = makeCableTrayElbow(start, end.center, end.frame, radius, 0);
        ASSERT_TRUE(!tray || isSolid(tray->body.mesh)) << "tray " << i;
    }
    EXPECT_GT(built, 300);
}

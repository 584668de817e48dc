#include "host/graphics/view_draw.h"

namespace drafthost::graphics {

namespace {

class ViewDraw final : public AcGiViewportDraw, public AcGiViewport {
public:
    ViewDraw(AcGiWorldDraw& target, const AcGeVector3d& direction) : target_(target), direction_(direction) {}
    AcGiWorldGeometry& geometry() const override { return target_.geometry(); }
    AcGiSubEntityTraits& subEntityTraits() const override { return target_.subEntityTraits(); }
    const AcGiViewport& viewport() const override { return *this; }
    double deviation() const override { return target_.deviation(); }
    AcGeVector3d viewDir() const override { return direction_; }

private:
    AcGiWorldDraw& target_;
    AcGeVector3d direction_;
};

}  // namespace

void drawForView(AcGiDrawable& drawable, AcGiWorldDraw& target, const AcGeMatrix3d& transform,
                 const AcGeVector3d& towardsEye) {
    if (transform.isSingular())
        return;
    const AcGeVector3d direction = transform.inverse() * towardsEye;
    ViewDraw viewDraw(target, direction / direction.length());
    drawable.viewportDraw(&viewDraw);
}

}  // namespace drafthost::graphics

#include <maya/MBoundingBox.h>
#include <maya/MMatrix.h>

#include <algorithm>

namespace {

constexpr double farOut = 1.0e20;

} // namespace

MBoundingBox::MBoundingBox() { clear(); }
MBoundingBox::MBoundingBox(const MBoundingBox& src) = default;
MBoundingBox& MBoundingBox::operator=(const MBoundingBox& other) = default;

MBoundingBox::MBoundingBox(const MPoint& corner1, const MPoint& corner2) {
    clear();
    expand(corner1);
    expand(corner2);
}

void MBoundingBox::clear() {
    min_ = MPoint(farOut, farOut, farOut);
    max_ = MPoint(-farOut, -farOut, -farOut);
}

bool MBoundingBox::empty() const { return min_.x > max_.x || min_.y > max_.y || min_.z > max_.z; }

void MBoundingBox::transformUsing(const MMatrix& matrix) {
    if (empty()) return;
    const MBoundingBox old(*this);
    clear();
    for (unsigned int corner = 0; corner < 8; ++corner) {
        MPoint p(corner & 1u ? old.max_.x : old.min_.x, corner & 2u ? old.max_.y : old.min_.y,
                 corner & 4u ? old.max_.z : old.min_.z);
        expand((p *= matrix).cartesianize());
    }
}

void MBoundingBox::expand(const MPoint& point) {
    for (unsigned int i = 0; i < 3; ++i) {
        min_[i] = std::min(min_[i], point[i]);
        max_[i] = std::max(max_[i], point[i]);
    }
}

void MBoundingBox::expand(const MBoundingBox& box) {
    if (box.empty()) return;
    const MPoint low = box.min_; // `box` may be this one
    const MPoint high = box.max_;
    expand(low);
    expand(high);
}

bool MBoundingBox::contains(const MPoint& point) const {
    for (unsigned int i = 0; i < 3; ++i)
        if (!(point[i] >= min_[i] && point[i] <= max_[i])) return false;
    return true;
}

bool MBoundingBox::intersects(const MBoundingBox& box, double tol) const {
    if (empty() || box.empty()) return false;
    for (unsigned int i = 0; i < 3; ++i)
        if (!(box.min_[i] <= max_[i] + tol && box.max_[i] >= min_[i] - tol)) return false;
    return true;
}

double MBoundingBox::width() const { return empty() ? 0.0 : max_.x - min_.x; }
double MBoundingBox::height() const { return empty() ? 0.0 : max_.y - min_.y; }
double MBoundingBox::depth() const { return empty() ? 0.0 : max_.z - min_.z; }

MPoint MBoundingBox::center() const {
    if (empty()) return MPoint::origin;
    return MPoint(0.5 * (min_.x + max_.x), 0.5 * (min_.y + max_.y), 0.5 * (min_.z + max_.z));
}

MPoint MBoundingBox::min() const { return min_; }
MPoint MBoundingBox::max() const { return max_; }

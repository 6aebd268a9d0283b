#include "GlShareMark.h"

#include "Format.h"
#include "Undestroyed.h"

#include <cstdint>
#include <vector>

namespace orvo {
namespace {

using Marks = std::vector<std::weak_ptr<const GlShareMark>>;

/// The marks that somebody holds.
Marks& liveMarks() {
    Marks& marks = undestroyed<Marks>();
    std::erase_if(marks, [](const auto& mark) { return mark.expired(); });
    if (marks.empty()) marks = Marks();
    return marks;
}

} // namespace

std::shared_ptr<const GlShareMark> GlShareMark::ofCurrentContext() {
    Marks& marks = liveMarks();
    for (const auto& known : marks)
        if (auto mark = known.lock(); mark && mark->isCurrent()) return mark;

    static unsigned long long made = 0;
    // The address tells the marks of one copy of the module from those of another.
    const auto copy = reinterpret_cast<std::uintptr_t>(&made);
    std::shared_ptr<const GlShareMark> mark(new GlShareMark(formatText("// orvosky %u of %x", ++made, copy)));
    if (!mark->isCurrent()) return nullptr;
    marks.push_back(mark);
    return mark;
}

GlShareMark::GlShareMark(std::string text) : text_(std::move(text)) { shader_.setSource(text_); }

GlShareMark::~GlShareMark() {
    if (isCurrent()) {
        sweep();
        gl().deleteShader(shader_.handle);
    }
    liveMarks();
}

bool GlShareMark::isCurrent() const { return gl().isShader(shader_.handle) && shader_.source() == text_; }

void GlShareMark::deleteBuffer(GLuint name) const {
    doomedBuffers_.push_back(name);
    if (isCurrent()) sweep();
}

void GlShareMark::sweep() const {
    if (doomedBuffers_.empty()) return;
    gl().deleteBuffers(static_cast<GLsizei>(doomedBuffers_.size()), doomedBuffers_.data());
    doomedBuffers_.clear();
}

} // namespace orvo

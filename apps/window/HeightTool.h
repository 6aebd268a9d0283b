#pragma once

#include "ViewTool.h"

#include <maya/MPoint.h>
#include <maya/MVector.h>

#include <QString>

#include <optional>
#include <string>
#include <vector>

namespace orvosky::window {

class Editor;
class ViewWidget;

/// Heights of the selected nodes (a fog's, a dome's) as level planes before the eye; each is dragged up and down by the
/// bar across it. Which heights there are the procedure orvoskyHeightPlanes says.
class HeightTool final : public ViewTool {
public:
    HeightTool(Editor& editor, ViewWidget& view) : editor_(editor), view_(view) {}

    /// Where the bar of that attribute is held, on the screen; none when the plane is not in view.
    std::optional<QPointF> grip(const std::string& plug);

    void paint(QPainter& painter) override;
    bool hover(QPointF at) override;
    bool press(QPointF at, Qt::KeyboardModifiers modifiers) override;
    void drag(QPointF at, Qt::KeyboardModifiers modifiers) override;
    void release(QPointF at, Qt::KeyboardModifiers modifiers) override;
    void cancel() override;

private:
    struct Plane {
        std::string plug;
        double zero = 0, metres = 0; ///< centimetres in the world; what the attribute holds
        QString name;
        double height() const { return zero + 100 * metres; }
    };
    /// Where a plane is shown: a place before the eye, and how far away that is. It stays while the plane is dragged.
    struct Place {
        MPoint middle;
        MVector ahead, right; ///< level, of length 1
        double away = 0;
    };
    const std::vector<Plane>& planes();
    /// All are shown equally far away, so that what is higher stands higher.
    std::optional<Place> placeOf(const Plane& plane);
    std::optional<Place> placeOf(const Plane& plane, double away) const;
    /// How far away all planes are well in a level view, centimetres.
    double fittingDistance() const;
    int at(QPointF point);
    std::string statement(QPointF at, Qt::KeyboardModifiers modifiers) const;

    Editor& editor_;
    ViewWidget& view_;
    std::vector<Plane> planes_;
    unsigned long known_ = 0; ///< the editor's changes when the planes were asked for
    int hot_ = -1, held_ = -1;
    Place start_;
    Plane dragged_;
    double grip_ = 0;             ///< from the plane to where it is held, centimetres
    double away_ = 0, loose_ = 1; ///< how far away planes are shown; how many times what fits a drag has made that
    std::string last_;
};

} // namespace orvosky::window

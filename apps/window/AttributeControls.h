#pragma once

#include "PlugView.h"

#include <QWidget>

#include <memory>
#include <optional>

class QLabel;

namespace orvosky::window {

class Editor;

/// The usual control of one attribute: its label, marks and menu, and behind the label what the attribute's type asks
/// for. Every change goes out as one MEL statement.
class AttributeControl : public QWidget {
    Q_OBJECT
public:
    /// Null for what has no control: messages, matrices, arrays, data.
    static AttributeControl* make(Editor& editor, const PlugView& plug, const QString& label, const QString& annotation,
                                  QWidget* parent);
    ~AttributeControl() override;

    const PlugView& plug() const { return plug_; }
    /// Shows what the scene holds now.
    void refresh();
    /// Greys it out, whatever the scene says.
    void setDimmed(bool dimmed);

protected:
    static constexpr int rowHeight = 24; ///< pixels
    AttributeControl(Editor& editor, PlugView plug, const QString& label, const QString& annotation, QWidget* parent);
    virtual void show(bool settable) = 0;
    /// The statement that gives the attribute these numbers, held at the hard limits.
    std::string setting(std::vector<double> numbers) const;
    std::vector<double> numbers() const;
    void set(std::vector<double> numbers);
    void drag(std::vector<double> numbers);
    void drop(std::vector<double> numbers);
    void reset();
    QWidget* body() const { return body_; }
    Editor& editor() const { return editor_; }
    bool eventFilter(QObject* watched, QEvent* event) override;

    PlugView plug_;

private:
    void showMenu(QPoint at);
    void mark();

    Editor& editor_;
    QLabel* label_;
    QWidget* body_;
    QString annotation_;
    bool dimmed_ = false;
    std::optional<QPointF> scrub_;
    double scrubFrom_ = 0, scrubTo_ = 0;
};

} // namespace orvosky::window

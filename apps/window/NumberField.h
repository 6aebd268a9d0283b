#pragma once

#include <QLineEdit>

#include <functional>
#include <optional>

namespace orvosky::window {

class Editor;

/// What was typed for a number: arithmetic ("12*3"), a change ("+=5", "-=", "*=", "/="), a unit where the number has
/// one ("2 m" and "30 deg" in the user's units). Nothing when it is none of that.
std::optional<double> typedNumber(Editor& editor, const QString& text, double now, bool length, bool angle);

/// A field for a number, as many digits as the number needs.
class NumberField : public QLineEdit {
    Q_OBJECT
public:
    explicit NumberField(Editor& editor, QWidget* parent = nullptr);
    void setValue(double value);
    double value() const { return value_; }
    void setUnit(bool length, bool angle) {
        length_ = length;
        angle_ = angle;
    }

signals:
    void entered(double value);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void showValue();

    Editor& editor_;
    double value_ = 0;
    bool length_ = false, angle_ = false;
};

/// As a field shows it when nobody types: four digits that count, or fewer, more where they stand before the point.
QString shortNumber(double value, int digits = 4);

} // namespace orvosky::window

#include "NumberField.h"

#include "Editor.h"

#include "base/Units.h"
#include "commands/CommandSupport.h"

#include <QKeyEvent>
#include <QRegularExpression>
#include <QTimer>

#include <algorithm>
#include <cmath>

namespace orvosky::window {

namespace {

/// What the sheet and the field itself leave free on both sides of the text, in pixels.
constexpr int margins = 18;

/// How many digits of a number stand before its point; 0 or less for fractions.
int digitsBefore(double value) { return static_cast<int>(std::floor(std::log10(std::abs(value)))) + 1; }

} // namespace

QString shortNumber(double value, int digits) {
    // Whole numbers as far as they go; of others so many digits that count.
    return value == 0 ? "0" : QString::number(value, 'g', std::clamp(digitsBefore(value), digits, 10));
}

std::optional<double> typedNumber(Editor& editor, const QString& text, double now, bool length, bool angle) {
    static const QRegularExpression shape(R"(^\s*([-+*/]=)?\s*([-+*/(). 0-9eE]+?)\s*([A-Za-z]*)\s*$)");
    const auto match = shape.match(text);
    if (!match.hasMatch()) return std::nullopt;
    // Whole numbers are divided as numbers: "1/2" is a half.
    QString real = match.captured(2);
    static const QRegularExpression whole(R"((?<![\d.eE])(\d+)(?![\d.eE]))");
    real.replace(whole, "\\1.0");
    const host::mel::Value result = editor.ask("float $orvoskyTyped = " + real.toStdString() + ";");
    if (!result.isNumber()) return std::nullopt;
    double value = result.toFloat();
    if (const std::string unit = match.captured(3).toStdString(); !unit.empty()) {
        if (const auto lengthUnit = host::linearUnitNamed(unit); length && lengthUnit)
            value *= host::centimetresPer(*lengthUnit) / host::mel::lengthUnit();
        else if (const auto angleUnit = host::angularUnitNamed(unit); angle && angleUnit)
            value *= host::radiansPer(*angleUnit) / host::mel::angleUnit();
        else
            return std::nullopt;
    }
    const QString change = match.captured(1);
    if (change == "+=") value = now + value;
    if (change == "-=") value = now - value;
    if (change == "*=") value = now * value;
    if (change == "/=") value = now / value;
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

NumberField::NumberField(Editor& editor, QWidget* parent) : QLineEdit(parent), editor_(editor) {
    setAlignment(Qt::AlignRight);
    setMinimumWidth(38);
    setTextMargins(0, 0, 0, 0);
    connect(this, &QLineEdit::editingFinished, this, [this] {
        if (!isModified()) {
            showValue();
            return;
        }
        setModified(false);
        const auto typed = typedNumber(editor_, text(), value_, length_, angle_);
        if (typed) emit entered(*typed);
        showValue(); // what came of it, or what was there
    });
}

void NumberField::setValue(double value) {
    value_ = value;
    if (!isModified() && !hasFocus()) showValue();
}

void NumberField::showValue() {
    // A number whose beginning is cut off would be another one.
    QString shown;
    for (int digits = 4; digits > 0; --digits) {
        shown = shortNumber(value_, digits);
        if (fontMetrics().horizontalAdvance(shown) <= width() - margins) break;
    }
    setText(shown);
}

void NumberField::resizeEvent(QResizeEvent* event) {
    QLineEdit::resizeEvent(event);
    if (!isModified() && !hasFocus()) showValue();
}

void NumberField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        setModified(false);
        showValue();
        clearFocus();
        return;
    }
    if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down) {
        const double step = std::pow(10, std::floor(std::log10(std::max(std::abs(value_), 0.1))) - 1);
        emit entered(value_ + (event->key() == Qt::Key_Up ? step : -step));
        return;
    }
    QLineEdit::keyPressEvent(event);
}

void NumberField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    if (!isModified()) setText(QString::number(value_, 'g', 10));
    QTimer::singleShot(0, this, &QLineEdit::selectAll);
}

} // namespace orvosky::window

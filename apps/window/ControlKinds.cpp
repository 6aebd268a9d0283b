// The controls of each kind of attribute.
#include "AttributeControls.h"
#include "DirectionBall.h"
#include "Editor.h"
#include "FileChooser.h"
#include "NumberField.h"
#include "ProjectFiles.h"
#include "SoftSlider.h"
#include "Theme.h"

#include "scene/Scene.h"

#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDir>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace orvosky::window {

using host::scene::Attribute;
using host::scene::AttributeType;
using host::scene::NumericType;

namespace {

constexpr int fieldWidth = 58, swatchWidth = 40;

/// The row of a control's body.
QHBoxLayout* rowIn(QWidget* widget) {
    auto* row = new QHBoxLayout(widget);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(6);
    return row;
}

class NumberControl final : public AttributeControl {
public:
    NumberControl(Editor& e, PlugView p, const QString& label, const QString& tip, QWidget* parent)
        : AttributeControl(e, std::move(p), label, tip, parent), field_(new NumberField(e)) {
        auto* row = rowIn(body());
        field_->setFixedWidth(fieldWidth);
        field_->setUnit(plug_.attribute().type == AttributeType::Distance,
                        plug_.attribute().type == AttributeType::Angle);
        row->addWidget(field_);
        connect(field_, &NumberField::entered, this, [this](double v) { set({v}); });
        const auto low = plug_.softMin() ? plug_.softMin() : plug_.min();
        const auto high = plug_.softMax() ? plug_.softMax() : plug_.max();
        if (!low || !high) {
            row->addStretch();
            return;
        }
        slider_ = new SoftSlider;
        slider_->setRange(*low, *high);
        row->addWidget(slider_, 1);
        connect(slider_, &SoftSlider::dragged, this, [this](double v) {
            drag({v});
            field_->setValue(v);
        });
        connect(slider_, &SoftSlider::released, this, [this](double v) { drop({v}); });
        connect(slider_, &SoftSlider::resetAsked, this, [this] { reset(); });
    }

protected:
    void show(bool settable) override {
        field_->setValue(plug_.number());
        field_->setEnabled(settable);
        if (!slider_) return;
        slider_->setValue(plug_.number());
        slider_->setEnabled(settable);
    }

private:
    NumberField* field_;
    SoftSlider* slider_ = nullptr;
};

class TupleControl : public AttributeControl {
public:
    TupleControl(Editor& e, PlugView p, const QString& label, const QString& tip, QWidget* parent)
        : AttributeControl(e, std::move(p), label, tip, parent), row_(rowIn(body())) {}

protected:
    void addFields() {
        for (int k = 0; k < plug_.components(); ++k) {
            auto* field = new NumberField(editor());
            const auto& part = *plug_.attribute().children[static_cast<std::size_t>(k)];
            field->setUnit(part.type == AttributeType::Distance, part.type == AttributeType::Angle);
            connect(field, &NumberField::entered, this, [this, k](double v) {
                std::vector<double> all = numbers();
                all[static_cast<std::size_t>(k)] = v;
                set(std::move(all));
            });
            fields_.push_back(field);
            row_->addWidget(field, 1);
        }
    }
    void show(bool settable) override {
        for (std::size_t k = 0; k < fields_.size(); ++k) {
            fields_[k]->setValue(plug_.number(static_cast<int>(k)));
            fields_[k]->setEnabled(settable);
        }
    }
    QHBoxLayout* row_;
    std::vector<NumberField*> fields_;
};

class VectorControl final : public TupleControl {
public:
    VectorControl(Editor& e, PlugView p, const QString& label, const QString& tip, QWidget* parent)
        : TupleControl(e, std::move(p), label, tip, parent) {
        addFields();
    }
};

/// A direction: a ball that is dragged, azimuth and elevation beside it, the three numbers below.
class DirectionControl final : public TupleControl {
public:
    DirectionControl(Editor& e, PlugView p, const QString& label, const QString& tip, QWidget* parent)
        : TupleControl(e, std::move(p), label, tip, parent), ball_(new DirectionBall) {
        row_->addWidget(ball_);
        auto* column = new QVBoxLayout;
        column->setSpacing(4);
        auto* angles = new QHBoxLayout;
        const auto angle = [&](const QString& name, const QString& about) {
            auto* text = new QLabel(name);
            text->setProperty("dim", true);
            text->setToolTip(about);
            auto* field = new NumberField(e);
            field->setToolTip(about);
            angles->addWidget(text);
            angles->addWidget(field, 1);
            return field;
        };
        elevation_ = angle(AttributeControl::tr("up"), AttributeControl::tr("Degrees above the horizon"));
        azimuth_ =
            angle(AttributeControl::tr("az"), AttributeControl::tr("Degrees clockwise from -Z, seen from above"));
        column->addLayout(angles);
        auto* below = new QHBoxLayout;
        QHBoxLayout* const row = std::exchange(row_, below);
        addFields();
        column->addLayout(below);
        row->addLayout(column, 1);
        connect(ball_, &DirectionBall::dragged, this, [this](const MVector& to) { drag({to.x, to.y, to.z}); });
        connect(ball_, &DirectionBall::released, this, [this](const MVector& to) { drop({to.x, to.y, to.z}); });
        const auto entered = [this] {
            const MVector to = direction(azimuthTyped_, elevationTyped_);
            set({to.x, to.y, to.z});
        };
        connect(azimuth_, &NumberField::entered, this, [this, entered](double v) {
            azimuthTyped_ = v;
            elevationTyped_ = elevation_->value();
            entered();
        });
        connect(elevation_, &NumberField::entered, this, [this, entered](double v) {
            azimuthTyped_ = azimuth_->value();
            elevationTyped_ = std::clamp(v, -90.0, 90.0);
            entered();
        });
    }

protected:
    void show(bool settable) override {
        TupleControl::show(settable);
        const MVector to(plug_.number(0), plug_.number(1), plug_.number(2));
        ball_->setDirection(to);
        ball_->setEnabled(settable);
        const auto [azimuth, elevation] = anglesOf(to);
        azimuth_->setValue(azimuth);
        elevation_->setValue(elevation);
        azimuth_->setEnabled(settable);
        elevation_->setEnabled(settable);
    }

private:
    DirectionBall* ball_;
    NumberField *azimuth_, *elevation_;
    double azimuthTyped_ = 0, elevationTyped_ = 0;
};

class ColourControl final : public TupleControl {
public:
    ColourControl(Editor& e, PlugView p, const QString& label, const QString& tip, QWidget* parent)
        : TupleControl(e, std::move(p), label, tip, parent), swatch_(new QPushButton) {
        swatch_->setFixedSize(swatchWidth, rowHeight - 2);
        swatch_->setObjectName("swatch");
        swatch_->setAccessibleName(label);
        row_->addWidget(swatch_);
        addFields();
        connect(swatch_, &QPushButton::clicked, this, [this] { pick(); });
    }

protected:
    QColor colour() const {
        const auto part = [this](int k) { return static_cast<float>(std::clamp(plug_.number(k), 0.0, 1.0)); };
        return QColor::fromRgbF(part(0), part(1), part(2));
    }
    void show(bool settable) override {
        TupleControl::show(settable);
        swatch_->setEnabled(settable);
        swatch_->setStyleSheet(QString("QPushButton#swatch { background: %1; border: 1px solid %2; }")
                                   .arg(colour().name(), theme::line().name()));
    }

private:
    void pick() {
        if (dialog_) {
            dialog_->raise();
            return;
        }
        // It knows numbers up to 1: a brighter colour keeps how bright it is.
        double bright = 1;
        for (const double v : numbers()) bright = std::max(bright, v);
        const auto shown = [&](int k) { return static_cast<float>(std::clamp(plug_.number(k) / bright, 0.0, 1.0)); };
        const QColor first = QColor::fromRgbF(shown(0), shown(1), shown(2));
        dialog_ = new QColorDialog(first, window());
        dialog_->setOptions(QColorDialog::DontUseNativeDialog);
        dialog_->setAttribute(Qt::WA_DeleteOnClose);
        dialog_->setWindowTitle(AttributeControl::tr("Colour of %1").arg(QString::fromStdString(plug_.path())));
        const auto numbersOf = [bright](const QColor& c) {
            const auto round = [bright](double v) { return std::round(v * bright * 1e4) / 1e4; };
            return std::vector<double>{round(c.redF()), round(c.greenF()), round(c.blueF())};
        };
        connect(dialog_, &QColorDialog::currentColorChanged, this,
                [this, numbersOf](const QColor& c) { drag(numbersOf(c)); });
        connect(dialog_, &QColorDialog::colorSelected, this, [this, numbersOf, first](const QColor& c) {
            if (c.rgb() == first.rgb())
                editor().cancelPreview(); // the numbers stay what they were, to the last digit
            else
                drop(numbersOf(c));
        });
        connect(dialog_, &QDialog::rejected, &editor(), &Editor::cancelPreview);
        connect(this, &QObject::destroyed, dialog_, &QWidget::close);
        dialog_->show();
    }
    QPushButton* swatch_;
    QPointer<QColorDialog> dialog_;
};

class BoolControl final : public AttributeControl {
public:
    BoolControl(Editor& e, PlugView p, const QString& label, const QString& tip, QWidget* parent)
        : AttributeControl(e, std::move(p), label, tip, parent), box_(new QCheckBox) {
        rowIn(body())->addWidget(box_);
        connect(box_, &QCheckBox::clicked, this, [this](bool on) { set({on ? 1.0 : 0.0}); });
    }

protected:
    void show(bool settable) override {
        box_->setChecked(plug_.number() != 0);
        box_->setEnabled(settable);
    }

private:
    QCheckBox* box_;
};

class EnumControl final : public AttributeControl {
public:
    EnumControl(Editor& e, PlugView p, const QString& label, const QString& tip, QWidget* parent)
        : AttributeControl(e, std::move(p), label, tip, parent), choice_(new QComboBox) {
        auto* row = rowIn(body());
        row->addWidget(choice_);
        row->addStretch();
        choice_->setFocusPolicy(Qt::StrongFocus);
        for (const auto& [name, value] : plug_.attribute().fields)
            choice_->addItem(QString::fromStdString(name), value);
        connect(choice_, &QComboBox::activated, this, [this](int row) { set({choice_->itemData(row).toDouble()}); });
    }

protected:
    void show(bool settable) override {
        choice_->setCurrentIndex(choice_->findData(static_cast<short>(plug_.number())));
        choice_->setEnabled(settable);
    }

private:
    QComboBox* choice_;
};

class TextControl : public AttributeControl {
public:
    TextControl(Editor& e, PlugView p, const QString& label, const QString& tip, QWidget* parent)
        : AttributeControl(e, std::move(p), label, tip, parent), line_(new QLineEdit) {
        connect(line_, &QLineEdit::editingFinished, this, [this] {
            if (line_->isModified()) give(line_->text());
        });
    }

protected:
    void layOut() { rowIn(body())->addWidget(line_); }
    void give(const QString& text) {
        line_->setModified(false);
        if (text != plug_.text())
            editor().run("setAttr -type \"string\" " + plug_.quotedPath() + " " + quoted(text.toStdString()) + ";");
        refresh();
    }
    void show(bool settable) override {
        if (!line_->isModified()) line_->setText(plug_.text());
        line_->setEnabled(settable);
    }
    QLineEdit* line_;
};

class PlainTextControl final : public TextControl {
public:
    PlainTextControl(Editor& e, PlugView p, const QString& label, const QString& tip, QWidget* parent)
        : TextControl(e, std::move(p), label, tip, parent) {
        layOut();
    }
};

/// A file below the project: its picture, a button to look for it, and words when it is missing or lies elsewhere.
class FileControl final : public TextControl {
public:
    FileControl(Editor& e, PlugView p, const QString& label, const QString& tip, QWidget* parent)
        : TextControl(e, std::move(p), label, tip, parent), picture_(new QLabel), words_(new QLabel),
          browse_(new QPushButton(AttributeControl::tr("Browse"))) {
        auto* column = new QVBoxLayout(body());
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(4);
        auto* row = new QHBoxLayout;
        row->setSpacing(6);
        row->addWidget(line_, 1);
        row->addWidget(browse_);
        column->addLayout(row);
        column->addWidget(picture_);
        column->addWidget(words_);
        words_->setWordWrap(true);
        setAcceptDrops(true);
        setProperty(takesFiles, true);
        line_->setAcceptDrops(false); // it would take a file's address as text
        connect(browse_, &QPushButton::clicked, this, [this] {
            const QString now = fileOnDisk(plug_.text());
            const QString start = now.isEmpty() ? projectRoot() : now;
            const QString file = chooseFile(window(), AttributeControl::tr("Choose a File"), start,
                                            filterOf(QString::fromStdString(plug_.attribute().longName)));
            if (!file.isEmpty() && file != now) give(spelled(file)); // the same one keeps its spelling
        });
    }

protected:
    static QString spelled(const QString& file) {
        const QString below = QDir(projectRoot()).relativeFilePath(file);
        return below.startsWith("../") || QDir::isAbsolutePath(below) ? file : below;
    }
    void show(bool settable) override {
        TextControl::show(settable);
        browse_->setEnabled(settable);
        const QString named = plug_.text(), file = fileOnDisk(named);
        if (named == shown_ && file == shownFile_) return;
        shown_ = named;
        shownFile_ = file;
        picture_->setVisible(false);
        QString words;
        if (!named.isEmpty() && file.isEmpty()) words = AttributeControl::tr("There is no such file in the project.");
        if (!file.isEmpty()) {
            const QString below = QDir(projectRoot()).relativeFilePath(file);
            if (!below.startsWith("build/", Qt::CaseInsensitive))
                words =
                    AttributeControl::tr("It lies outside of the project's build folder: the game will not find it.");
            if (const QImage look = lookOf(file, {120, 60}); !look.isNull()) {
                picture_->setPixmap(QPixmap::fromImage(look));
                picture_->setVisible(true);
            }
        }
        words_->setText(words);
        words_->setVisible(!words.isEmpty());
        words_->setStyleSheet("color: " + theme::warning().name());
    }
    void dragEnterEvent(QDragEnterEvent* event) override {
        const QStringList files = draggedFiles(*event->mimeData());
        // Several files, and scenes, are told of or opened by the window.
        if (files.size() == 1 && !isScene(files.front()) && plug_.settable()) takeCopy(*event);
    }
    void dropEvent(QDropEvent* event) override {
        takeCopy(*event);
        give(spelled(draggedFiles(*event->mimeData()).value(0)));
    }

private:
    QLabel *picture_, *words_;
    QPushButton* browse_;
    QString shown_ = QString(1, QChar(0)), shownFile_;
};

/// Whether three numbers are a direction: each of them from -1 to 1.
bool isDirection(const PlugView& plug) {
    if (plug.components() != 3) return false;
    for (int k = 0; k < 3; ++k)
        if (plug.min(k) != -1.0 || plug.max(k) != 1.0) return false;
    return true;
}

} // namespace

AttributeControl* AttributeControl::make(Editor& editor, const PlugView& plug, const QString& label,
                                         const QString& annotation, QWidget* parent) {
    const Attribute& attribute = plug.attribute();
    const auto made = [&](auto* type) -> AttributeControl* {
        using Control = std::remove_pointer_t<decltype(type)>;
        auto* control = new Control(editor, plug, label, annotation, parent);
        control->refresh();
        return control;
    };
    if (attribute.array || attribute.hidden) return nullptr;
    switch (attribute.type) {
    case AttributeType::Enum: return made(static_cast<EnumControl*>(nullptr));
    case AttributeType::String:
        return attribute.usedAsFilename ? made(static_cast<FileControl*>(nullptr))
                                        : made(static_cast<PlainTextControl*>(nullptr));
    case AttributeType::Tuple:
        if (attribute.usedAsColor) return made(static_cast<ColourControl*>(nullptr));
        if (isDirection(plug)) return made(static_cast<DirectionControl*>(nullptr));
        return made(static_cast<VectorControl*>(nullptr));
    case AttributeType::Numeric:
        if (attribute.numeric == NumericType::Bool) return made(static_cast<BoolControl*>(nullptr));
        return made(static_cast<NumberControl*>(nullptr));
    case AttributeType::Angle:
    case AttributeType::Distance:
    case AttributeType::Time: return made(static_cast<NumberControl*>(nullptr));
    default: return nullptr;
    }
}

} // namespace orvosky::window

#include "AttributePage.h"

#include "Editor.h"
#include "InterfaceCommands.h"
#include "Theme.h"

#include "base/Messages.h"
#include "commands/Host.h"
#include "scene/Scene.h"

#include <QFrame>
#include <QLabel>
#include <QSettings>
#include <QToolButton>
#include <QVBoxLayout>

namespace orvosky::window {

using host::mel::ParsedArguments;
using host::scene::Attribute;

namespace {

/// "fogHeightOffset" as an artist reads it: "Fog Height Offset".
QString readable(const std::string& name) {
    QString words;
    for (const QChar c : QString::fromStdString(name)) {
        if (words.isEmpty())
            words += c.toUpper();
        else if (c.isUpper() && !words.back().isUpper())
            words += QString(' ') + c;
        else
            words += c;
    }
    return words;
}

bool foldedBefore(const QString& label, bool otherwise) {
    return QSettings().value("folded/" + label, otherwise).toBool();
}

} // namespace

AttributePage::AttributePage(Editor& editor, InterfaceCommands& commands, const host::scene::NodePtr& node,
                             QWidget* parent)
    : QWidget(parent), editor_(editor), commands_(commands), node_(node), top_(new QVBoxLayout(this)) {
    top_->setContentsMargins(12, 4, 12, 12);
    top_->setSpacing(5);
    build();
}

host::scene::Node* AttributePage::node() const {
    const auto node = node_.lock();
    return node && node->inScene ? node.get() : nullptr;
}

void AttributePage::clear() {
    controls_.clear();
    custom_.clear();
    named_.clear();
    while (QLayoutItem* item = top_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    open_ = {top_};
}

bool AttributePage::template_(const std::string& procedure) {
    auto& mel = host::Host::instance().interpreter();
    if (!mel.isCallable(procedure)) return false;
    const InterfaceCommands::Building building(commands_, *this);
    QWidget* const before = commands_.setParent(this);
    QString problem;
    try {
        mel.call(procedure, {Editor::scene().displayName(*node())});
    } catch (const host::mel::Error& e) {
        if (!e.silent) host::showError(e.described());
        problem = QString::fromStdString(e.described());
    } catch (const std::exception& e) {
        problem = QString::fromStdString(e.what());
        host::showError(e.what());
    }
    commands_.setParent(before);
    if (problem.isEmpty()) return true;
    clear();
    auto* label = new QLabel(problem);
    label->setWordWrap(true);
    label->setObjectName("problem");
    label->setStyleSheet("color: " + theme::error().name());
    top_->addWidget(label);
    return false;
}

void AttributePage::build() {
    clear();
    host::scene::Node* at = node();
    if (!at) return;
    attributes_ = at->attributes().size();
    if (!template_("AE" + (at->unknownType.empty() ? at->type.name : at->unknownType) + "Template")) buildPlain();
    open_ = {top_};
    top_->addStretch();
    refresh();
    emit built();
}

void AttributePage::buildPlain() {
    for (const Attribute* attribute : node()->attributes())
        if (attribute->keyable || attribute->usedAsFilename || attribute->dynamic || !node()->type.plugin.empty())
            add(attribute->longName, {}, {}, {});
    addRest(tr("More"));
}

void AttributePage::beginFrame(const QString& label, bool folded) {
    folded = foldedBefore(label, folded);
    auto* head = new QToolButton;
    head->setText(label);
    head->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    head->setArrowType(folded ? Qt::RightArrow : Qt::DownArrow);
    head->setObjectName("frameHead");
    head->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    head->setStyleSheet("QToolButton { text-align: left; font-weight: 600; padding: 6px 0px; color: " +
                        theme::text().name() + "; background: transparent; }");
    auto* body = new QWidget;
    auto* inner = new QVBoxLayout(body);
    inner->setContentsMargins(0, 0, 0, 8);
    inner->setSpacing(5);
    body->setVisible(!folded);
    connect(head, &QToolButton::clicked, body, [head, body, label] {
        const bool open = body->isHidden();
        body->setVisible(open);
        head->setArrowType(open ? Qt::DownArrow : Qt::RightArrow);
        QSettings().setValue("folded/" + label, !open);
    });
    open_.back()->addWidget(head);
    open_.back()->addWidget(body);
    open_.push_back(inner);
}

void AttributePage::endFrame() {
    if (open_.size() > 1) open_.pop_back();
}

void AttributePage::add(const std::string& name, const QString& label, const QString& annotation,
                        const std::string& script) {
    host::scene::Node* at = node();
    const Attribute* attribute = at->findAttribute(name);
    if (!attribute) throw host::mel::Error("editorTemplate: " + at->name + " has no attribute named " + name + ".");
    if (!named_.insert(attribute->longName).second) return;
    AttributeControl* control =
        AttributeControl::make(editor_, PlugView(at->shared_from_this(), *attribute),
                               label.isEmpty() ? readable(attribute->longName) : label, annotation, this);
    if (!control) return;
    open_.back()->addWidget(control);
    controls_.push_back(control);
    if (script.empty()) return;
    custom_.push_back([this, script] {
        host::scene::Node* changed = node();
        if (!changed) return;
        try {
            host::Host::instance().interpreter().call(script, {Editor::scene().displayName(*changed)});
        } catch (const std::exception& e) {
            host::showError(e.what());
        }
    });
}

void AttributePage::addRest(const QString& label) {
    std::vector<std::string> rest;
    for (const Attribute* attribute : node()->attributes())
        if (!named_.contains(attribute->longName) && !attribute->hidden) rest.push_back(attribute->longName);
    if (rest.empty()) return;
    beginFrame(label, true);
    const std::size_t before = controls_.size();
    for (const std::string& name : rest) add(name, {}, {}, {});
    endFrame();
    if (controls_.size() > before) return;
    // Nothing of it has a control: no frame, then.
    for (int i = 0; i < 2; ++i)
        if (QLayoutItem* item = open_.back()->takeAt(open_.back()->count() - 1)) {
            delete item->widget();
            delete item;
        }
}

AttributeControl* AttributePage::control(const std::string& attribute) const {
    for (AttributeControl* control : controls_)
        if (control->plug().attribute().longName == attribute) return control;
    return nullptr;
}

void AttributePage::list(host::mel::Call& call) {
    const ParsedArguments a(call, {{"bsl", "beginScrollLayout"},
                                   {"esl", "endScrollLayout"},
                                   {"bl", "beginLayout"},
                                   {"el", "endLayout"},
                                   {"cl", "collapse", 1},
                                   {"ac", "addControl"},
                                   {"adc", "addDynamicControl"},
                                   {"l", "label", 1},
                                   {"ann", "annotation", 1},
                                   {"cc", "callCustom"},
                                   {"s", "suppress"},
                                   {"as", "addSeparator"},
                                   {"aec", "addExtraControls"},
                                   {"xcl", "extraControlsLabel", 1},
                                   {"dc", "dimControl"},
                                   {"bno", "beginNoOptimize"},
                                   {"eno", "endNoOptimize"}});
    const auto words = a.names();
    const auto word = [&](std::size_t i) { return i < words.size() ? words[i] : std::string(); };
    const QString label = QString::fromStdString(a.text("l")), annotation = QString::fromStdString(a.text("ann"));
    if (!node()) return;
    if (a.has("bl")) beginFrame(QString::fromStdString(word(0)), a.boolean("cl", false));
    if (a.has("el")) endFrame();
    if (a.has("ac")) add(word(0), label, annotation, word(1));
    if (a.has("adc") && node()->findAttribute(word(0))) add(word(0), label, annotation, word(1));
    if (a.has("s")) {
        const Attribute* attribute = node()->findAttribute(word(0));
        named_.insert(attribute ? attribute->longName : word(0));
    }
    if (a.has("as")) {
        auto* line = new QFrame;
        line->setFixedHeight(1);
        line->setStyleSheet("background: " + theme::line().name());
        open_.back()->addWidget(line);
    }
    if (a.has("aec")) addRest(a.has("xcl") ? QString::fromStdString(a.text("xcl")) : tr("Extra Attributes"));
    if (a.has("dc"))
        if (AttributeControl* control = this->control(word(1))) control->setDimmed(host::mel::Value(word(2)).toInt());
    if (a.has("cc")) {
        if (words.size() < 2) throw host::mel::Error("editorTemplate: -callCustom needs two procedures.");
        auto* box = new QWidget;
        auto* inner = new QVBoxLayout(box);
        inner->setContentsMargins(0, 2, 0, 2);
        inner->setSpacing(5);
        open_.back()->addWidget(box);
        std::vector<host::mel::Value> plugs;
        for (std::size_t i = 2; i < words.size(); ++i) {
            named_.insert(words[i]);
            plugs.emplace_back(Editor::scene().displayName(*node()) + "." + words[i]);
        }
        QWidget* const before = commands_.setParent(box);
        try {
            host::Host::instance().interpreter().call(words[0], plugs);
        } catch (...) {
            commands_.setParent(before);
            throw;
        }
        commands_.setParent(before);
        // Parts that scripts built are brought up to date as they would be for another node.
        custom_.push_back([procedure = words[1], attributes = std::vector(words.begin() + 2, words.end()), this] {
            host::scene::Node* at = node();
            if (!at || procedure.empty()) return;
            std::vector<host::mel::Value> plugs;
            plugs.reserve(attributes.size());
            for (const auto& name : attributes) plugs.emplace_back(Editor::scene().displayName(*at) + "." + name);
            try {
                host::Host::instance().interpreter().call(procedure, std::move(plugs));
            } catch (const std::exception& e) {
                host::showError(e.what());
            }
        });
    }
}

void AttributePage::refresh() {
    host::scene::Node* at = node();
    if (!at) return;
    if (at->attributes().size() != attributes_) {
        build();
        return;
    }
    for (AttributeControl* control : controls_) control->refresh();
    const InterfaceCommands::Building building(commands_, *this);
    const host::scene::UndoQueue::Suspend quiet(Editor::scene().undo);
    for (const auto& show : custom_) show();
}

} // namespace orvosky::window

#include "InterfaceCommands.h"

#include "AttributePage.h"
#include "Editor.h"
#include "FileChooser.h"
#include "Theme.h"

#include "commands/Host.h"
#include "commands/InterfaceRefusals.h"

#include <QAction>
#include <QActionGroup>
#include <QColorDialog>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QToolBar>

namespace orvosky::window {

using host::mel::Call;
using host::mel::Error;
using host::mel::ParsedArguments;
using host::mel::StringArray;
using host::mel::Value;

namespace {

QString text(const std::string& t) { return QString::fromStdString(t); }

/// Without the marks that Maya reads as markup: "<hl>", "</hl>".
QString withoutMarkup(QString t) { return t.remove("<hl>").remove("</hl>"); }

} // namespace

template <class T>
T* InterfaceCommands::named(const std::string& name) const {
    return qobject_cast<T*>(objects_.value(text(name)).data());
}

std::string InterfaceCommands::enter(const std::string& wanted, const char* stem, QObject* object) {
    const QString name = wanted.empty() ? QString("%1%2").arg(stem).arg(++made_) : text(wanted);
    object->setObjectName(name);
    objects_.insert(name, object);
    return name.toStdString();
}

struct InterfaceCommands::Commands {
    InterfaceCommands& self;

    static std::string nameOf(const ParsedArguments& a) {
        const auto names = a.names();
        return names.empty() ? std::string() : names.front();
    }

    void runs(QAction* action, const std::string& mel) {
        if (mel.empty()) return;
        QObject::connect(action, &QAction::triggered, &self.window_,
                         [this, mel] { self.editor_.run(mel.ends_with(';') || mel.ends_with('}') ? mel : mel + ";"); });
    }

    Value menu(Call& call) {
        const ParsedArguments a(
            call,
            {{"l", "label", 1}, {"to", "tearOff", 1}, {"p", "parent", 1}, {"ex", "exists"}, {"dai", "deleteAllItems"}},
            true);
        const std::string name = nameOf(a);
        if (a.has("ex")) return self.named<QMenu>(name) != nullptr;
        if (a.edit()) {
            QMenu* menu = self.named<QMenu>(name);
            if (!menu) throw Error("menu: there is no menu named " + name + ".");
            if (a.has("l")) menu->setTitle(text(a.text("l")));
            if (a.has("dai")) menu->clear();
            return name;
        }
        if (self.named<QMenu>(name)) throw Error("menu: the name " + name + " is taken.");
        auto* menu = new QMenu(text(a.text("l", name)), &self.window_);
        // In front of the last one, Help.
        const auto actions = self.bar_.actions();
        self.bar_.insertMenu(actions.isEmpty() ? nullptr : actions.back(), menu);
        self.menu_ = menu;
        return self.enter(name, "menu", menu);
    }

    Value menuItem(Call& call) {
        const ParsedArguments a(call, {{"l", "label", 1},
                                       {"ann", "annotation", 1},
                                       {"c", "command", 1},
                                       {"i", "image", 1},
                                       {"d", "divider", 1},
                                       {"sm", "subMenu", 1},
                                       {"ob", "optionBox", 1},
                                       {"cb", "checkBox", 1},
                                       {"rb", "radioButton", 1},
                                       {"p", "parent", 1}});
        QMenu* in = a.has("p") ? self.named<QMenu>(a.text("p")) : self.menu_.data();
        if (!in) throw Error("menuItem: there is no menu to put it into.");
        const std::string name = nameOf(a);
        if (a.boolean("sm", false)) {
            QMenu* menu = in->addMenu(text(a.text("l")));
            menu->setProperty("outer", QVariant::fromValue<QObject*>(in));
            self.menu_ = menu;
            return self.enter(name, "menuItem", menu);
        }
        QAction* action = a.boolean("d", false) ? in->addSeparator() : in->addAction(text(a.text("l")));
        if (a.has("ann")) {
            action->setToolTip(text(a.text("ann")));
            action->setStatusTip(text(a.text("ann")));
        }
        if (a.has("i")) action->setIcon(theme::icon(text(a.text("i")).remove(".svg").remove(".png")));
        if (a.has("cb") || a.has("rb")) {
            action->setCheckable(true);
            action->setChecked(a.boolean(a.has("cb") ? "cb" : "rb", false));
        }
        runs(action, a.text("c"));
        return self.enter(name, "menuItem", action);
    }

    Value setParent(Call& call) {
        const ParsedArguments a(call, {{"m", "menu"}});
        const std::string to = nameOf(a);
        if (a.has("m")) {
            self.menu_ = to == ".." && self.menu_
                             ? qobject_cast<QMenu*>(self.menu_->property("outer").value<QObject*>())
                             : self.named<QMenu>(to);
            return to;
        }
        QWidget* parent = to == ".." && self.parent_ ? self.parent_->parentWidget() : self.named<QWidget>(to);
        if (!parent) throw Error("setParent: there is no layout named " + to + ".");
        self.parent_ = parent;
        return to;
    }

    Value deleteUI(Call& call) {
        const ParsedArguments a(call, {{"m", "menu"}, {"mi", "menuItem"}, {"lay", "layout"}, {"ctl", "control"}});
        for (const std::string& name : a.names()) {
            QObject* object = self.objects_.value(text(name));
            if (!object) throw Error("deleteUI: there is nothing named " + name + ".");
            if (object == &self.shelf_ || qobject_cast<QToolBar*>(object))
                self.shelf_.clear();
            else
                delete object;
            self.objects_.remove(text(name));
        }
        return {};
    }

    Value shelfLayout(Call& call) {
        const ParsedArguments a(call, {{"p", "parent", 1}, {"ex", "exists"}}, true);
        const std::string name = nameOf(a);
        if (a.has("ex")) return self.objects_.value(text(name)) != nullptr;
        self.objects_.insert(text(name), &self.shelf_);
        return name;
    }

    Value shelfButton(Call& call) {
        const ParsedArguments a(call, {{"i", "image", 1},
                                       {"i1", "image1", 1},
                                       {"l", "label", 1},
                                       {"ann", "annotation", 1},
                                       {"c", "command", 1},
                                       {"p", "parent", 1}});
        const std::string image = a.text("i", a.text("i1"));
        QAction* action =
            self.shelf_.addAction(theme::icon(text(image).remove(".svg").remove(".png")), text(a.text("l")));
        action->setToolTip(text(a.text("ann", a.text("l"))));
        runs(action, a.text("c"));
        return self.enter(nameOf(a), "shelfButton", action);
    }

    Value fileDialog2(Call& call) {
        const ParsedArguments a(call, {{"fm", "fileMode", 1},
                                       {"cap", "caption", 1},
                                       {"ff", "fileFilter", 1},
                                       {"dir", "startingDirectory", 1},
                                       {"okc", "okCaption", 1},
                                       {"ds", "dialogStyle", 1}});
        QFileDialog dialog(&self.window_, text(a.text("cap")), text(a.text("dir")),
                           text(a.text("ff")).replace(";;", "\n").split('\n').join(";;"));
        dialog.setOption(QFileDialog::DontUseNativeDialog);
        if (a.has("okc")) dialog.setLabelText(QFileDialog::Accept, text(a.text("okc")));
        switch (a.integer("fm", 0)) {
        case 1: dialog.setFileMode(QFileDialog::ExistingFile); break;
        case 2:
        case 3: dialog.setFileMode(QFileDialog::Directory); break;
        case 4: dialog.setFileMode(QFileDialog::ExistingFiles); break;
        default: dialog.setAcceptMode(QFileDialog::AcceptSave);
        }
        showPictures(dialog);
        StringArray chosen;
        if (dialog.exec() == QDialog::Accepted)
            for (const QString& file : dialog.selectedFiles()) chosen.push_back(file.toStdString());
        return chosen;
    }

    Value confirmDialog(Call& call) {
        const ParsedArguments a(call, {{"t", "title", 1},
                                       {"m", "message", 1},
                                       {"b", "button", 1},
                                       {"db", "defaultButton", 1},
                                       {"cb", "cancelButton", 1},
                                       {"ds", "dismissString", 1},
                                       {"icn", "icon", 1}});
        QMessageBox box(&self.window_);
        box.setWindowTitle(text(a.text("t", "Orvo sky")));
        box.setText(text(a.text("m")));
        for (std::size_t i = 0; i < std::max<std::size_t>(a.occurrences("b"), 1); ++i) {
            const std::string label = a.has("b") ? a.value("b", 0, i).toString() : "OK";
            auto* button = box.addButton(text(label), QMessageBox::ActionRole);
            if (label == a.text("db")) box.setDefaultButton(button);
            if (label == a.text("cb")) box.setEscapeButton(button);
        }
        box.exec();
        return box.clickedButton() ? box.clickedButton()->text().remove('&').toStdString() : a.text("ds", "dismiss");
    }

    Value promptDialog(Call& call) {
        static std::string answer;
        const ParsedArguments a(call,
                                {{"t", "title", 1},
                                 {"m", "message", 1},
                                 {"tx", "text", 1},
                                 {"b", "button", 1},
                                 {"db", "defaultButton", 1},
                                 {"cb", "cancelButton", 1},
                                 {"ds", "dismissString", 1}},
                                true);
        if (a.query()) return answer;
        bool given = false;
        const QString typed = QInputDialog::getText(&self.window_, text(a.text("t")), text(a.text("m")),
                                                    QLineEdit::Normal, text(a.text("tx")), &given);
        answer = typed.toStdString();
        return given ? a.text("b", "OK") : a.text("ds", a.text("cb", "dismiss"));
    }

    Value progressWindow(Call& call) {
        const ParsedArguments a(call,
                                {{"t", "title", 1},
                                 {"pr", "progress", 1},
                                 {"max", "maxValue", 1},
                                 {"s", "step", 1},
                                 {"st", "status", 1},
                                 {"ii", "isInterruptable", 1},
                                 {"ic", "isCancelled"},
                                 {"ep", "endProgress"}},
                                true);
        auto* window = qobject_cast<QProgressDialog*>(self.progress_.data());
        if (a.query()) {
            if (a.has("ic")) return window && window->wasCanceled();
            return window ? window->value() : 0;
        }
        if (a.has("ep")) {
            delete self.progress_;
            return {};
        }
        if (!window) {
            window = new QProgressDialog(&self.window_);
            window->setWindowModality(Qt::ApplicationModal);
            window->setMinimumDuration(500);
            window->setAutoClose(false);
            window->setAutoReset(false);
            if (!a.boolean("ii", false)) window->setCancelButton(nullptr);
            self.progress_ = window;
        }
        if (a.has("t")) window->setWindowTitle(text(a.text("t")));
        if (a.has("st")) window->setLabelText(text(a.text("st")));
        if (a.has("max")) window->setMaximum(a.integer("max", 100));
        if (a.has("pr")) window->setValue(a.integer("pr", 0));
        if (a.has("s")) window->setValue(window->value() + a.integer("s", 1));
        return {};
    }

    Value message(Call& call) {
        const ParsedArguments a(call, {{"amg", "assistMessage", 1},
                                       {"smg", "statusMessage", 1},
                                       {"msg", "message", 1},
                                       {"pos", "position", 1},
                                       {"f", "fade"},
                                       {"t", "time", 1}});
        const std::string said = a.text("amg", a.text("msg", a.text("smg", nameOf(a))));
        if (self.tell) self.tell(withoutMarkup(text(said)));
        return {};
    }

    Value colorEditor(Call& call) {
        static host::mel::FloatArray last{1, 1, 1};
        const ParsedArguments a(call, {{"rgb", "rgbValue", 3}, {"r", "result"}}, true);
        if (a.query()) return a.has("rgb") ? Value(last) : Value(1);
        QColor initial = Qt::white;
        if (a.has("rgb"))
            initial = QColor::fromRgbF(static_cast<float>(a.value("rgb", 0).toFloat()),
                                       static_cast<float>(a.value("rgb", 1).toFloat()),
                                       static_cast<float>(a.value("rgb", 2).toFloat()));
        const QColor chosen = QColorDialog::getColor(initial, &self.window_, {}, QColorDialog::DontUseNativeDialog);
        if (chosen.isValid()) last = {chosen.redF(), chosen.greenF(), chosen.blueF()};
        return host::mel::formatFloat(last[0]) + " " + host::mel::formatFloat(last[1]) + " " +
               host::mel::formatFloat(last[2]) + (chosen.isValid() ? " 1" : " 0");
    }

    Value editorTemplate(Call& call) {
        if (!self.page_) throw Error("editorTemplate: no attribute page is being listed.");
        self.page_->list(call);
        return {};
    }

    /// What goes into the layout that is current; answers its name.
    Value put(const std::string& wanted, const char* stem, QWidget* widget) {
        if (!self.parent_) {
            delete widget;
            throw Error(std::string(stem) + ": there is no layout to put it into.");
        }
        widget->setParent(self.parent_);
        if (QLayout* layout = self.parent_->layout()) layout->addWidget(widget);
        return self.enter(wanted, stem, widget);
    }

    template <class Layout>
    Value layout(Call& call, const char* stem) {
        const ParsedArguments a(
            call, {{"nc", "numberOfColumns", 1}, {"adj", "adjustableColumn", 1}, {"rs", "rowSpacing", 1}});
        auto* widget = new QWidget;
        auto* inner = new Layout(widget);
        inner->setContentsMargins(0, 0, 0, 0);
        inner->setSpacing(6);
        Value name = put(nameOf(a), stem, widget);
        self.parent_ = widget;
        return name;
    }

    Value textControl(Call& call) {
        const ParsedArguments a(call, {{"l", "label", 1}, {"ann", "annotation", 1}}, true);
        if (a.edit()) {
            auto* label = self.named<QLabel>(nameOf(a));
            if (!label) throw Error("text: there is no text named " + nameOf(a) + ".");
            label->setText(text(a.text("l")));
            return nameOf(a);
        }
        auto* label = new QLabel(text(a.text("l")));
        label->setProperty("dim", true);
        label->setWordWrap(true);
        label->setToolTip(text(a.text("ann")));
        return put(nameOf(a), "text", label);
    }

    Value button(Call& call) {
        const ParsedArguments a(call, {{"l", "label", 1}, {"ann", "annotation", 1}, {"c", "command", 1}}, true);
        auto* existing = a.edit() ? self.named<QPushButton>(nameOf(a)) : nullptr;
        if (a.edit() && !existing) throw Error("button: there is no button named " + nameOf(a) + ".");
        auto* button = existing ? existing : new QPushButton;
        if (a.has("l")) button->setText(text(a.text("l")));
        if (a.has("ann")) button->setToolTip(text(a.text("ann")));
        if (a.has("c")) {
            const std::string mel = a.text("c");
            button->disconnect(&self.window_);
            // The page may be made anew by what the button does.
            QObject::connect(
                button, &QPushButton::clicked, &self.window_,
                [this, mel] { self.editor_.run(mel.ends_with(';') ? mel : mel + ";"); }, Qt::QueuedConnection);
        }
        return existing ? Value(nameOf(a)) : put(nameOf(a), "button", button);
    }
};

InterfaceCommands::InterfaceCommands(Editor& editor, QWidget& window, QMenuBar& bar, QToolBar& shelf)
    : editor_(editor), window_(window), bar_(bar), shelf_(shelf) {
    auto& mel = host::Host::instance().interpreter();
    const auto commands = std::make_shared<Commands>(Commands{*this});
    const auto add = [&](const char* name, Value (Commands::*work)(Call&)) {
        mel.registerCommand(name, [commands, work](Call& call) { return (commands.get()->*work)(call); });
    };
    add("menu", &Commands::menu);
    add("menuItem", &Commands::menuItem);
    add("setParent", &Commands::setParent);
    add("deleteUI", &Commands::deleteUI);
    add("shelfLayout", &Commands::shelfLayout);
    add("shelfButton", &Commands::shelfButton);
    add("fileDialog2", &Commands::fileDialog2);
    add("confirmDialog", &Commands::confirmDialog);
    add("promptDialog", &Commands::promptDialog);
    add("progressWindow", &Commands::progressWindow);
    add("headsUpMessage", &Commands::message);
    add("inViewMessage", &Commands::message);
    add("colorEditor", &Commands::colorEditor);
    add("editorTemplate", &Commands::editorTemplate);
    add("text", &Commands::textControl);
    add("button", &Commands::button);
    mel.registerCommand("columnLayout",
                        [commands](Call& call) { return commands->layout<QVBoxLayout>(call, "columnLayout"); });
    mel.registerCommand("rowLayout",
                        [commands](Call& call) { return commands->layout<QHBoxLayout>(call, "rowLayout"); });
    host::mel::setBatch(mel, false);
    mel.setGlobalVariable("gMainWindow", "MayaWindow");
    mel.setGlobalVariable("gShelfTopLevel", "ShelfLayout");
}

InterfaceCommands::~InterfaceCommands() { host::mel::registerInterfaceRefusals(host::Host::instance().interpreter()); }

QWidget* InterfaceCommands::setParent(QWidget* parent) {
    QWidget* before = parent_;
    parent_ = parent;
    return before;
}

InterfaceCommands::Building::Building(InterfaceCommands& commands, AttributePage& page)
    : commands_(commands), outer_(commands.page_) {
    commands.page_ = &page;
}

InterfaceCommands::Building::~Building() { commands_.page_ = outer_; }

} // namespace orvosky::window

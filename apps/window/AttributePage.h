#pragma once

#include "AttributeControls.h"

#include <QWidget>

#include <set>
#include <vector>

class QVBoxLayout;

namespace host::mel {
struct Call;
}

namespace orvosky::window {

class InterfaceCommands;

/// The page of one node: what AE<nodeType>Template lists, or, without one, all its attributes.
class AttributePage : public QWidget {
    Q_OBJECT
public:
    AttributePage(Editor& editor, InterfaceCommands& commands, const host::scene::NodePtr& node,
                  QWidget* parent = nullptr);

    host::scene::Node* node() const;
    /// Shows what the scene holds now.
    void refresh();
    /// One call of editorTemplate.
    void list(host::mel::Call& call);
    AttributeControl* control(const std::string& attribute) const;

signals:
    void built();

private:
    void build();
    void buildPlain();
    void clear();
    void beginFrame(const QString& label, bool folded);
    void endFrame();
    void add(const std::string& attribute, const QString& label, const QString& annotation, const std::string& script);
    void addRest(const QString& label);
    bool template_(const std::string& procedure);

    Editor& editor_;
    InterfaceCommands& commands_;
    std::weak_ptr<host::scene::Node> node_;
    QVBoxLayout* top_;
    std::vector<QVBoxLayout*> open_;
    std::vector<AttributeControl*> controls_;
    std::vector<std::function<void()>> custom_; ///< what shows the node in the parts that scripts built
    std::set<std::string> named_;
    std::size_t attributes_ = 0; ///< of the node when the page was made
};

} // namespace orvosky::window

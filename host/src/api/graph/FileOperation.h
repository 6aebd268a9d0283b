#pragma once

#include <string>

namespace host::api {

/// One operation of the scene as a document, for the callbacks of plug-ins and for MFileIO: what is being done now, and
/// with which file.
class FileOperation {
public:
    enum class Action { New, Open, Import, Save, Export };
    static constexpr int actions = 5;

    /// Asks whether it may be done, and tells that it is about to be. Callbacks may give another name of the file.
    /// Throws UserError when one refuses it.
    FileOperation(Action action, std::string& file);
    /// Without done() before, it failed: nothing more is told.
    ~FileOperation();
    FileOperation(const FileOperation&) = delete;
    FileOperation& operator=(const FileOperation&) = delete;
    /// Tells that it is done.
    void done();

    /// Whether one of the kind goes on.
    static bool going(Action action);
    /// The file of the last one of the kind.
    static const std::string& file(Action action);

private:
    Action action_;
};

} // namespace host::api

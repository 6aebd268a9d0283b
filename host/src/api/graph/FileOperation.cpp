#include "api/graph/FileOperation.h"

#include "api/graph/Callbacks.h"
#include "base/UserError.h"

namespace host::api {
namespace {

using Message = MSceneMessage::Message;

struct Kind {
    const char* word;
    Message check, before, after;
    const char* event; ///< null for none
};
const Kind kinds[FileOperation::actions] = {
    {"new scene", MSceneMessage::kBeforeNewCheck, MSceneMessage::kBeforeNew, MSceneMessage::kAfterNew,
     "NewSceneOpened"},
    {"opening", MSceneMessage::kBeforeOpenCheck, MSceneMessage::kBeforeOpen, MSceneMessage::kAfterOpen, "SceneOpened"},
    {"import", MSceneMessage::kBeforeImportCheck, MSceneMessage::kBeforeImport, MSceneMessage::kAfterImport,
     "SceneImported"},
    {"saving", MSceneMessage::kBeforeSaveCheck, MSceneMessage::kBeforeSave, MSceneMessage::kAfterSave, "SceneSaved"},
    {"export", MSceneMessage::kBeforeExportCheck, MSceneMessage::kBeforeExport, MSceneMessage::kAfterExport, nullptr}};

struct State {
    int going = 0;
    std::string file;
};
State states[FileOperation::actions];

std::size_t place(FileOperation::Action action) { return static_cast<std::size_t>(action); }

bool reads(FileOperation::Action action) {
    return action == FileOperation::Action::Open || action == FileOperation::Action::Import;
}

} // namespace

FileOperation::FileOperation(Action action, std::string& file) : action_(action) {
    auto& callbacks = Callbacks::shared();
    const Kind& kind = kinds[place(action)];
    if (!callbacks.allowed(kind.check, &file))
        throw UserError(std::string("file: the ") + kind.word + " was refused by a callback.");
    State& state = states[place(action)];
    state.file = file;
    ++state.going;
    if (action == Action::New || action == Action::Open) callbacks.event("PreFileNewOrOpened");
    callbacks.tell(kind.before);
    if (reads(action)) callbacks.tell(MSceneMessage::kBeforeFileRead);
}

FileOperation::~FileOperation() { --states[place(action_)].going; }

void FileOperation::done() {
    auto& callbacks = Callbacks::shared();
    const Kind& kind = kinds[place(action_)];
    if (reads(action_)) {
        callbacks.tell(MSceneMessage::kAfterFileRead);
        callbacks.event("PostSceneRead");
    }
    if (action_ == Action::New || reads(action_)) callbacks.tell(MSceneMessage::kSceneUpdate);
    callbacks.tell(kind.after);
    if (kind.event) callbacks.event(kind.event);
}

bool FileOperation::going(Action action) { return states[place(action)].going > 0; }
const std::string& FileOperation::file(Action action) { return states[place(action)].file; }

} // namespace host::api

#pragma once

namespace orvo {

/// The one object of its type for the life of the module, made at the first call and never destroyed: the host may take
/// nodes down, and with them what they share, while the process ends. It holds no memory of its own while it is empty,
/// or the unloading of the module would lose that.
template <class Object>
Object& undestroyed() {
    union Storage {
        Object object{};
        ~Storage() {}
    };
    static Storage storage;
    return storage.object;
}

} // namespace orvo

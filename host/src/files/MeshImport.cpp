#include "files/MeshImport.h"

#include "files/ModelConversion.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <exception>
#include <span>
#include <string_view>
#include <type_traits>

namespace host::files {
namespace {

// A file that keeps the reader busy for longer than this is given up.
constexpr rlim_t kMostSeconds = 300;

/// One pass over a model's parts, for writing and reading alike.
template <class Pass>
void walk(Pass& pass, RawModel& model) {
    pass.value(model.leftOut);
    pass.list(model.nodes, [&](RawModel::Node& node) {
        pass.values(node.name);
        pass.value(node.parent);
        pass.value(node.mesh);
        pass.value(node.matrix);
    });
    pass.list(model.meshes, [&](RawModel::Mesh& mesh) {
        pass.values(mesh.points);
        pass.values(mesh.counts);
        pass.values(mesh.connects);
        pass.values(mesh.normals);
        pass.list(mesh.uvSets, [&](RawModel::UvSet& set) {
            pass.values(set.name);
            pass.values(set.u);
            pass.values(set.v);
            pass.values(set.ids);
        });
    });
}

/// Writes to a pipe; the process ends when nobody reads.
class Sender {
public:
    explicit Sender(int pipe) : pipe_(pipe) {}
    template <class T>
    void value(const T& v) {
        static_assert(std::is_trivially_copyable_v<T>);
        send(&v, sizeof v);
    }
    template <class Values>
    void values(const Values& v) {
        value(v.size());
        send(v.data(), v.size() * sizeof(v[0]));
    }
    template <class List, class Each>
    void list(List& items, Each&& each) {
        value(items.size());
        for (auto& item : items) each(item);
    }

private:
    void send(const void* data, std::size_t size) {
        const char* at = static_cast<const char*>(data);
        while (size > 0) {
            const ssize_t sent = ::write(pipe_, at, size);
            if (sent < 0 && errno == EINTR) continue;
            if (sent <= 0) ::_exit(2);
            at += sent;
            size -= static_cast<std::size_t>(sent);
        }
    }
    int pipe_;
};

struct Incomplete : std::exception {};

/// Takes a message apart; it trusts no size in it.
class Receiver {
public:
    explicit Receiver(std::span<const char> message) : rest_(message) {}
    template <class T>
    void value(T& v) {
        take(&v, sizeof v);
    }
    template <class Values>
    void values(Values& v) {
        v.resize(count(sizeof(v[0])));
        take(v.data(), v.size() * sizeof(v[0]));
    }
    template <class List, class Each>
    void list(List& items, Each&& each) {
        items.resize(count(1));
        for (auto& item : items) each(item);
    }

private:
    std::size_t count(std::size_t size) {
        std::size_t n = 0;
        value(n);
        if (n > rest_.size() / size) throw Incomplete();
        return n;
    }
    void take(void* to, std::size_t size) {
        if (size > rest_.size()) throw Incomplete();
        if (size > 0) std::memcpy(to, rest_.data(), size);
        rest_ = rest_.subspan(size);
    }
    std::span<const char> rest_;
};

/// What the process that reads does. It never returns, and runs nothing that the host has set up for its own end.
[[noreturn]] void readAndSend(const std::filesystem::path& file, int pipe) {
    // What the host does when it crashes is not for this process.
    for (const int crash : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT}) std::signal(crash, SIG_DFL);
    const rlimit noCore{0, 0}, seconds{kMostSeconds, kMostSeconds};
    setrlimit(RLIMIT_CORE, &noCore);
    setrlimit(RLIMIT_CPU, &seconds);
    Sender sender(pipe);
    std::string error;
    RawModel model;
    try {
        model = convertModel(file);
    } catch (const std::bad_alloc&) {
        error = "there is not enough memory for it";
    } catch (const std::exception& e) {
        error = e.what();
        if (error.empty()) error = "it cannot be read";
    } catch (...) {
        error = "it cannot be read";
    }
    sender.values(error);
    if (error.empty()) walk(sender, model);
    ::_exit(0);
}

/// All that the other end writes until it closes.
std::vector<char> receive(int pipe) {
    std::vector<char> message;
    std::array<char, 1 << 16> part;
    for (;;) {
        const ssize_t got = ::read(pipe, part.data(), part.size());
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return message;
        message.insert(message.end(), part.data(), part.data() + got);
    }
}

RawModel readElsewhere(const std::filesystem::path& file) {
    int ends[2];
    if (::pipe(ends) != 0) throw FileError(file.generic_string(), "no process can be started to read it");
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        readAndSend(file, ends[1]);
    }
    ::close(ends[1]);
    const auto finish = [&] {
        ::close(ends[0]);
        int status = 0;
        while (child > 0 && ::waitpid(child, &status, 0) < 0 && errno == EINTR) {}
        return child > 0 && WIFEXITED(status) && WEXITSTATUS(status) == 0;
    };
    std::vector<char> message;
    try {
        if (child > 0) message = receive(ends[0]);
    } catch (...) {
        finish();
        throw;
    }
    const bool whole = finish();
    if (child < 0) throw FileError(file.generic_string(), "no process can be started to read it");
    RawModel model;
    std::string error = "it is damaged, or nested too deeply";
    if (whole) {
        try {
            Receiver receiver(message);
            receiver.values(error);
            if (error.empty()) walk(receiver, model);
        } catch (const Incomplete&) {
            error = "its meshes were not handed over whole";
        }
    }
    if (!error.empty()) throw FileError(file.generic_string(), error);
    return model;
}

std::shared_ptr<const mesh::PolyMesh> build(RawModel::Mesh& raw, const std::string& file) {
    std::string error;
    auto made = std::make_shared<mesh::PolyMesh>(
        mesh::PolyMesh::fromPolygons(std::move(raw.points), raw.counts, std::move(raw.connects), &error));
    bool fits = error.empty();
    for (std::size_t k = 0; fits && k < raw.uvSets.size(); ++k) {
        auto& uvs = raw.uvSets[k];
        const int set = k == 0 ? 0 : made->addUvSet(uvs.name);
        uvs.ids.resize(static_cast<std::size_t>(made->numFaceVertices()), -1);
        fits = set >= 0 && (k > 0 || made->renameUvSet(0, uvs.name)) &&
               made->setUvs(set, std::move(uvs.u), std::move(uvs.v), &error) &&
               made->assignUvs(set, raw.counts, uvs.ids, &error);
    }
    fits = fits && made->assignNormals(std::move(raw.normals));
    if (!fits) throw FileError(file, error.empty() ? "a mesh in it is broken" : error);
    return made;
}

} // namespace

bool isModelFile(const std::filesystem::path& file) {
    std::string extension = file.extension().string();
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension == ".obj" || extension == ".gltf" || extension == ".glb" || extension == ".fbx";
}

ImportedModel readModel(const std::filesystem::path& file) {
    const std::string name = file.generic_string();
    std::error_code code;
    const auto status = std::filesystem::status(file, code);
    if (!std::filesystem::exists(status)) throw FileError(name, "there is no such file");
    if (!std::filesystem::is_regular_file(status)) throw FileError(name, "it is no file");
    if (std::filesystem::file_size(file, code) == 0) throw FileError(name, "it is empty");
    RawModel raw = readElsewhere(file);
    std::vector<std::shared_ptr<const mesh::PolyMesh>> meshes;
    for (auto& mesh : raw.meshes) meshes.push_back(build(mesh, name));
    ImportedModel model;
    model.leftOut = raw.leftOut;
    for (std::size_t i = 0; i < raw.nodes.size(); ++i) {
        auto& node = raw.nodes[i];
        if (node.parent >= static_cast<int>(i) || node.mesh >= static_cast<int>(meshes.size()))
            throw FileError(name, "its objects were not handed over whole");
        double matrix[4][4];
        std::memcpy(matrix, node.matrix.data(), sizeof matrix);
        model.nodes.push_back({std::move(node.name), node.parent, MMatrix(matrix),
                               node.mesh < 0 ? nullptr : meshes[static_cast<std::size_t>(node.mesh)]});
    }
    if (model.nodes.empty()) throw FileError(name, "it holds no objects");
    return model;
}

} // namespace host::files

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

// Runs a fuzz target without libFuzzer: SmokeDriver CORPUS SECONDS. Every file of the corpus once, then changed copies
// of them in an order that is the same at every run, until the time is up. Status 0 unless the target crashes, throws,
// or the corpus is empty.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;
using Random = std::minstd_rand;

constexpr std::size_t longest = 4096;

std::size_t below(Random& random, std::size_t limit) { return limit == 0 ? 0 : random() % limit; }

std::ptrdiff_t place(Random& random, const Bytes& bytes) {
    return static_cast<std::ptrdiff_t>(below(random, bytes.size() + 1));
}

void change(Bytes& bytes, const std::vector<Bytes>& corpus, Random& random) {
    constexpr std::uint8_t telling[]{0, 1, 4, 0x20, 0x7f, 0x80, 0xff};
    switch (below(random, 6)) {
    case 0:
        if (!bytes.empty()) bytes[below(random, bytes.size())] ^= static_cast<std::uint8_t>(1u << below(random, 8));
        break;
    case 1:
        if (!bytes.empty()) bytes[below(random, bytes.size())] = telling[below(random, std::size(telling))];
        break;
    case 2: bytes.resize(below(random, bytes.size() + 1)); break;
    case 3: bytes.insert(bytes.begin() + place(random, bytes), 1 + below(random, 16), telling[below(random, 7)]); break;
    case 4: { // a stretch taken out
        const auto first = place(random, bytes), last = place(random, bytes);
        bytes.erase(bytes.begin() + std::min(first, last), bytes.begin() + std::max(first, last));
        break;
    }
    default: { // the end of another file
        const Bytes& other = corpus[below(random, corpus.size())];
        bytes.resize(below(random, bytes.size() + 1));
        bytes.insert(bytes.end(), other.begin() + place(random, other), other.end());
    }
    }
    bytes.resize(std::min(bytes.size(), longest));
}

} // namespace

int main(int count, char** arguments) try {
    if (count != 3) {
        std::fprintf(stderr, "Usage: %s CORPUS SECONDS\n", arguments[0]);
        return 2;
    }
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(arguments[1]))
        if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    std::vector<Bytes> corpus;
    for (const auto& file : files) {
        std::ifstream in(file, std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
        LLVMFuzzerTestOneInput(corpus.back().data(), corpus.back().size());
    }
    if (corpus.empty()) {
        std::fprintf(stderr, "No corpus in %s\n", arguments[1]);
        return 2;
    }

    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::atoi(arguments[2]));
    Random random(1);
    unsigned long runs = 0;
    for (; std::chrono::steady_clock::now() < end; ++runs) {
        Bytes bytes = corpus[below(random, corpus.size())];
        for (std::size_t changes = 1 + below(random, 4); changes > 0; --changes) change(bytes, corpus, random);
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("%zu files, %lu changed copies\n", corpus.size(), runs);
    return 0;
} catch (const std::exception& e) {
    std::fprintf(stderr, "The target threw: %s\n", e.what());
    return 1;
}

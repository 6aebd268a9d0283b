#pragma once

#include "files/Statement.h"

#include <span>
#include <string>
#include <string_view>

namespace host::files {

/// A flag of a statement that scene files and scripts share, and how many words follow it.
struct StatementFlag {
    const char* shortName; ///< without dash
    const char* longName;
    int values = 0;
};

extern const std::span<const StatementFlag> createNodeFlags, setAttrFlags, addAttrFlags;

/// The flag that a word means: by its short or long name, or by the beginning of one long name alone. Null for none.
const StatementFlag* findFlag(std::span<const StatementFlag> flags, std::string_view word);

/// Goes through the words of a statement, flag by flag.
class FlagReader {
public:
    FlagReader(std::span<const StatementFlag> flags, std::span<const Word> words) : flags_(flags), words_(words) {}

    bool atEnd() const { return at_ == words_.size(); }
    std::size_t place() const { return at_; }
    const Word& peek() const { return words_[at_]; }
    const Word& next() { return words_[at_++]; }
    /// The flag that stands here, which is passed. Throws `Unknown` for one that is not in the table, SceneError when
    /// the words that belong to it are missing.
    template <class Unknown>
    const StatementFlag& flag() {
        const Word& word = words_[at_++];
        const StatementFlag* found = findFlag(flags_, word.text);
        if (!found) throw Unknown("Invalid flag: '" + std::string(word.text) + "'");
        if (found->values > 0 && atEnd()) throwLacks(word);
        return *found;
    }

private:
    [[noreturn]] static void throwLacks(const Word& flag);
    std::span<const StatementFlag> flags_;
    std::span<const Word> words_;
    std::size_t at_ = 0;
};

} // namespace host::files

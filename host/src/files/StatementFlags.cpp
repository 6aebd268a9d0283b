#include "files/StatementFlags.h"

#include "base/UserError.h"

namespace host::files {
namespace {

constexpr StatementFlag createNodeTable[] = {
    {"n", "name", 1}, {"p", "parent", 1}, {"s", "shared"}, {"ss", "skipSelect"}};
constexpr StatementFlag setAttrTable[] = {{"typ", "type", 1},      {"k", "keyable", 1},       {"l", "lock", 1},
                                          {"cb", "channelBox", 1}, {"ca", "caching", 1},      {"c", "clamp"},
                                          {"s", "size", 1},        {"ch", "capacityHint", 1}, {"av", "alteredValue"}};
constexpr StatementFlag addAttrTable[] = {{"ln", "longName", 1},
                                          {"sn", "shortName", 1},
                                          {"nn", "niceName", 1},
                                          {"at", "attributeType", 1},
                                          {"dt", "dataType", 1},
                                          {"en", "enumName", 1},
                                          {"dv", "defaultValue", 1},
                                          {"min", "minValue", 1},
                                          {"max", "maxValue", 1},
                                          {"smn", "softMinValue", 1},
                                          {"smx", "softMaxValue", 1},
                                          {"hnv", "hasMinValue", 1},
                                          {"hxv", "hasMaxValue", 1},
                                          {"hsn", "hasSoftMinValue", 1},
                                          {"hsx", "hasSoftMaxValue", 1},
                                          {"k", "keyable", 1},
                                          {"h", "hidden", 1},
                                          {"m", "multi"},
                                          {"im", "indexMatters", 1},
                                          {"ci", "cachedInternally", 1},
                                          {"p", "parent", 1},
                                          {"nc", "numberOfChildren", 1},
                                          {"uac", "usedAsColor"},
                                          {"uaf", "usedAsFilename"},
                                          {"uap", "usedAsProxy"},
                                          {"r", "readable", 1},
                                          {"w", "writable", 1},
                                          {"s", "storable", 1},
                                          {"bt", "binaryTag", 1},
                                          {"ct", "category", 1},
                                          {"is", "internalSet", 1},
                                          {"dcb", "disconnectBehaviour", 1},
                                          {"pxy", "proxy", 1},
                                          {"cb", "channelBox", 1},
                                          {"aws", "affectsWorldspace", 1},
                                          {"aap", "affectsAppearance", 1}};

} // namespace

const std::span<const StatementFlag> createNodeFlags = createNodeTable, setAttrFlags = setAttrTable,
                                     addAttrFlags = addAttrTable;

const StatementFlag* findFlag(std::span<const StatementFlag> flags, std::string_view word) {
    word.remove_prefix(1);
    for (const StatementFlag& flag : flags)
        if (word == flag.shortName || word == flag.longName) return &flag;
    const StatementFlag* found = nullptr;
    for (const StatementFlag& flag : flags)
        if (std::string_view(flag.longName).starts_with(word)) {
            if (found) return nullptr;
            found = &flag;
        }
    return found;
}

void FlagReader::throwLacks(const Word& flag) {
    throw UserError("Flag '" + std::string(flag.text) + "' must be passed a value");
}

} // namespace host::files

#include <maya/MSyntax.h>

#include "api/graph/Handle.h"
#include "api/px/ArgParsing.h"
#include "base/Letters.h"

using host::api::SyntaxTable;

namespace {

/// A flag's name without dash.
std::string plain(const char* name) {
    std::string text = name ? name : "";
    if (text.starts_with('-')) text.erase(0, 1);
    return text;
}

bool isName(const std::string& text) {
    if (text.empty() || !host::isLetter(text.front())) return false;
    for (const char c : text)
        if (!host::isLetter(c) && !host::isDigit(c) && c != '_') return false;
    return true;
}

bool isType(MSyntax::MArgType type) { return type > MSyntax::kNoArg && type < MSyntax::kLastArgType; }

} // namespace

MSyntax::MSyntax() : table_(std::make_unique<SyntaxTable>()) {}
MSyntax::MSyntax(const MSyntax& other) : table_(std::make_unique<SyntaxTable>(*other.table_)) {}
MSyntax::~MSyntax() = default;

MSyntax& MSyntax::operator=(const MSyntax& rhs) {
    *table_ = *rhs.table_;
    return *this;
}

MStatus MSyntax::addFlag(const char* shortName, const char* longName, MArgType argType1, MArgType argType2,
                         MArgType argType3, MArgType argType4, MArgType argType5, MArgType argType6) {
    SyntaxTable::Flag flag;
    flag.shortName = plain(shortName);
    flag.longName = plain(longName);
    constexpr std::size_t mostOfShort = 3, leastOfLong = 4;
    if (!isName(flag.shortName) || flag.shortName.size() > mostOfShort || !isName(flag.longName) ||
        flag.longName.size() < leastOfLong)
        return MStatus::kFailure;
    if (table_->find(flag.shortName) >= 0 || table_->find(flag.longName) >= 0) return MStatus::kFailure;
    bool ended = false;
    for (const MArgType type : {argType1, argType2, argType3, argType4, argType5, argType6}) {
        if (type == kNoArg) {
            ended = true;
            continue;
        }
        if (ended || !isType(type)) return MStatus::kInvalidParameter;
        flag.arguments.push_back(type);
    }
    table_->flags.push_back(std::move(flag));
    return MStatus::kSuccess;
}

MStatus MSyntax::makeFlagMultiUse(const char* flag) {
    const int at = table_->find(flag ? flag : "");
    if (at < 0) return MStatus::kInvalidParameter;
    table_->flags[static_cast<std::size_t>(at)].multiUse = true;
    return MStatus::kSuccess;
}

MStatus MSyntax::makeFlagQueryWithFullArgs(const char* flag, bool queryArgsAreOptional) {
    const int at = table_->find(flag ? flag : "");
    if (at < 0) return MStatus::kInvalidParameter;
    auto& found = table_->flags[static_cast<std::size_t>(at)];
    found.queryArguments = true;
    found.queryArgumentsOptional = queryArgsAreOptional;
    return MStatus::kSuccess;
}

MStatus MSyntax::addArg(MArgType arg) {
    if (!isType(arg)) return MStatus::kInvalidParameter;
    table_->arguments.push_back(arg);
    return MStatus::kSuccess;
}

void MSyntax::useSelectionAsDefault(bool useSelectionList) { table_->selectionAsDefault = useSelectionList; }

MStatus MSyntax::setObjectType(MObjectFormat objectFormat, unsigned int minimumObjects) {
    return setObjectType(objectFormat, minimumObjects, table_->maxObjects);
}

MStatus MSyntax::setObjectType(MObjectFormat objectFormat, unsigned int minimumObjects, unsigned int maximumObjects) {
    if (objectFormat <= kInvalidObjectFormat || objectFormat >= kLastObjectFormat || minimumObjects > maximumObjects)
        return MStatus::kInvalidParameter;
    table_->format = objectFormat;
    table_->minObjects = minimumObjects;
    table_->maxObjects = maximumObjects;
    return MStatus::kSuccess;
}

void MSyntax::setMinObjects(unsigned int minimumObjectCount) { table_->minObjects = minimumObjectCount; }
void MSyntax::setMaxObjects(unsigned int maximumObjectCount) { table_->maxObjects = maximumObjectCount; }
void MSyntax::enableQuery(bool supportsQuery) { table_->query = supportsQuery; }
void MSyntax::enableEdit(bool supportsEdit) { table_->edit = supportsEdit; }
unsigned int MSyntax::minObjects() const { return table_->minObjects; }
unsigned int MSyntax::maxObjects() const { return table_->maxObjects; }
bool MSyntax::canQuery() const { return table_->query; }
bool MSyntax::canEdit() const { return table_->edit; }
const char* MSyntax::className() { return "MSyntax"; }

const SyntaxTable& host::api::Access::table(const MSyntax& syntax) { return *syntax.table_; }

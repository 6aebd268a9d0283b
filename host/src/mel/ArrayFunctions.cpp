#include "mel/Execution.h"
#include "mel/TextTools.h"

#include <algorithm>
#include <set>

namespace host::mel {
namespace {

using Type = Value::Type;

template <class Element>
struct Traits;
template <>
struct Traits<int> {
    using Array = IntArray;
    static constexpr Type type = Type::IntArray;
    static int of(const Value& v) { return v.toInt(); }
    static Array arrayOf(const Value& v) { return v.toIntArray(); }
};
template <>
struct Traits<double> {
    using Array = FloatArray;
    static constexpr Type type = Type::FloatArray;
    static double of(const Value& v) { return v.toFloat(); }
    static Array arrayOf(const Value& v) { return v.toFloatArray(); }
};
template <>
struct Traits<std::string> {
    using Array = StringArray;
    static constexpr Type type = Type::StringArray;
    static std::string of(const Value& v) { return v.toString(); }
    static Array arrayOf(const Value& v) { return v.toStringArray(); }
};

/// The array behind an argument, to be changed in place or read without a copy.
template <class Element>
typename Traits<Element>::Array& array(Arguments& a, std::size_t i) {
    using Array = typename Traits<Element>::Array;
    if (!a.values[i]->template get<Array>()) {
        if (a[i].isNone() || (a[i].isArray() && a[i].size() == 0))
            *a.values[i] = Array{};
        else
            throw Error(a.name + ": argument " + std::to_string(i + 1) + " must be of type " +
                        typeName(Traits<Element>::type) + ", not " + typeName(a[i].type()) + '.');
    }
    return *a.values[i]->template get<Array>();
}

template <class E>
Value contains(Arguments& a) {
    a.expect(2);
    const auto& all = array<E>(a, 1);
    return std::find(all.begin(), all.end(), Traits<E>::of(a[0])) != all.end();
}

template <class E>
Value count(Arguments& a) {
    a.expect(2);
    const auto& all = array<E>(a, 1);
    return static_cast<int>(std::count(all.begin(), all.end(), Traits<E>::of(a[0])));
}

/// find(item, start, array): the index, or -1.
template <class E>
Value find(Arguments& a) {
    a.expect(3);
    const auto& all = array<E>(a, 2);
    const auto item = Traits<E>::of(a[0]);
    for (auto i = static_cast<std::size_t>(std::max(a.integer(1), 0)); i < all.size(); ++i)
        if (all[i] == item) return static_cast<int>(i);
    return -1;
}

template <class E>
Value catenate(Arguments& a) {
    a.expect(2);
    auto out = array<E>(a, 0);
    const auto& more = array<E>(a, 1);
    out.insert(out.end(), more.begin(), more.end());
    return out;
}

/// remove(items, array): the array without every element that is one of the items.
template <class E>
Value remove(Arguments& a) {
    a.expect(2);
    const auto items = Traits<E>::arrayOf(a[0]);
    const std::set<E> unwanted(items.begin(), items.end());
    auto out = array<E>(a, 1);
    std::erase_if(out, [&](const E& e) { return unwanted.contains(e); });
    return out;
}

/// removeExact(items, array): each item takes away one element.
template <class E>
Value removeExact(Arguments& a) {
    a.expect(2);
    auto out = array<E>(a, 1);
    for (const E& item : Traits<E>::arrayOf(a[0]))
        if (auto at = std::find(out.begin(), out.end(), item); at != out.end()) out.erase(at);
    return out;
}

/// Keeps the first of equal elements.
template <class E>
Value removeDuplicates(Arguments& a) {
    a.expect(1);
    std::set<E> seen;
    typename Traits<E>::Array out;
    for (const E& e : array<E>(a, 0))
        if (seen.insert(e).second) out.push_back(e);
    return out;
}

template <class E>
Value join(Arguments& a) {
    a.expect(2);
    array<E>(a, 0);
    const std::string separator = a.text(1);
    std::string out;
    bool first = true;
    for (const std::string& e : a[0].toStringArray()) {
        if (!first) out += separator;
        first = false;
        out += e;
        requireTextSize(out.size());
    }
    return out;
}

template <class E>
Value removeAtIndex(Arguments& a) {
    a.expect(2);
    auto& all = array<E>(a, 1);
    const int i = a.integer(0);
    if (i < 0 || static_cast<std::size_t>(i) >= all.size()) return 0;
    all.erase(all.begin() + i);
    return 1;
}

/// insertAtIndex(index, array, item)
template <class E>
Value insertAtIndex(Arguments& a) {
    a.expect(3);
    auto& all = array<E>(a, 1);
    const int i = a.integer(0);
    if (i < 0 || static_cast<std::size_t>(i) > all.size()) return 0;
    all.insert(all.begin() + i, Traits<E>::of(a[2]));
    return 1;
}

/// appendStringArray(target, source, count)
template <class E>
Value append(Arguments& a) {
    a.expect(3);
    auto& target = array<E>(a, 0);
    const auto more = array<E>(a, 1); // a copy: both may be the same array
    const std::size_t n = std::min(more.size(), static_cast<std::size_t>(std::max(a.integer(2), 0)));
    target.insert(target.end(), more.begin(), more.begin() + static_cast<std::ptrdiff_t>(n));
    return {};
}

Value clear(Arguments& a) {
    a.expect(1);
    const Type type = a[0].type();
    if (!a[0].isArray()) throw Error(std::string("clear needs an array, not data of type ") + typeName(type) + '.');
    *a.values[0] = zeroValue(type);
    return {};
}

Value sort(Arguments& a) {
    a.expect(1);
    Value out = a[0];
    if (auto ints = out.get<IntArray>())
        std::sort(ints->begin(), ints->end());
    else if (auto floats = out.get<FloatArray>())
        // NaN last: with the plain order the result would be undefined.
        std::sort(floats->begin(), floats->end(), [](double x, double y) { return x < y || (y != y && x == x); });
    else if (auto texts = out.get<StringArray>())
        std::sort(texts->begin(), texts->end());
    else if (out.type() == Type::VectorArray)
        throw Error("Vectors have no order to be sorted by.");
    return out;
}

template <class E>
void addFor(Interpreter::Impl& impl, const std::string& prefix) {
    static constexpr std::pair<const char*, LanguageFunction> functions[] = {{"Contains", contains<E>},
                                                                             {"Count", count<E>},
                                                                             {"Find", find<E>},
                                                                             {"Catenate", catenate<E>},
                                                                             {"Remove", remove<E>},
                                                                             {"RemoveExact", removeExact<E>},
                                                                             {"RemoveDuplicates", removeDuplicates<E>},
                                                                             {"ToString", join<E>},
                                                                             {"RemoveAtIndex", removeAtIndex<E>},
                                                                             {"InsertAtIndex", insertAtIndex<E>}};
    for (const auto& [name, function] : functions) impl.addLanguageFunction((prefix + name).c_str(), function);
}

} // namespace

void addArrayFunctions(Interpreter::Impl& impl) {
    addFor<std::string>(impl, "stringArray");
    addFor<int>(impl, "intArray");
    addFor<double>(impl, "floatArray");
    impl.addLanguageFunction("appendStringArray", append<std::string>);
    impl.addLanguageFunction("clear", clear);
    impl.addLanguageFunction("sort", sort);
}

} // namespace host::mel

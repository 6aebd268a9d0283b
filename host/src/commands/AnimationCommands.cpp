#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include "scene/AnimCurve.h"

#include "base/NumberText.h"
#include "base/Units.h"
#include "mel/Numbers.h"

#include <algorithm>
#include <limits>

namespace host::mel {

using namespace scene;

namespace {

constexpr std::pair<const char*, Tangent> kTangents[] = {
    {"fixed", Tangent::Fixed},     {"linear", Tangent::Linear},     {"flat", Tangent::Flat},
    {"step", Tangent::Step},       {"spline", Tangent::Spline},     {"clamped", Tangent::Clamped},
    {"plateau", Tangent::Plateau}, {"stepnext", Tangent::StepNext}, {"auto", Tangent::Auto}};

Tangent tangentNamed(const std::string& name) {
    if (name == "global") return Tangent::Clamped;
    for (const auto& [known, tangent] : kTangents)
        if (name == known) return tangent;
    throw Error("Invalid tangent type: " + name);
}

std::string tangentName(int number) {
    for (const auto& [name, tangent] : kTangents)
        if (static_cast<int>(tangent) == number) return name;
    return "linear";
}

Value currentTime(Call& call) {
    const ParsedArguments args(call, {{"u", "update", 1}}, true);
    if (args.query()) return theScene().time() / timeTicks();
    if (args.objects().size() != 1) throw Error("currentTime needs one time.");
    const double time = args.objects().front().toFloat();
    theScene().setTime(time * timeTicks());
    return time;
}

Value playbackOptions(Call& call) {
    const ParsedArguments args(call,
                               {{"min", "minTime", 1},
                                {"max", "maxTime", 1},
                                {"ast", "animationStartTime", 1},
                                {"aet", "animationEndTime", 1},
                                {"l", "loop", 1},
                                {"ps", "playbackSpeed", 1},
                                {"by", "by", 1}},
                               true);
    struct Field {
        const char* flag;
        double PlaybackRange::*member;
    };
    const Field fields[] = {{"min", &PlaybackRange::min},
                            {"max", &PlaybackRange::max},
                            {"ast", &PlaybackRange::animationStart},
                            {"aet", &PlaybackRange::animationEnd}};
    PlaybackRange range = theScene().playback();
    for (const auto& [flag, member] : fields) {
        if (!args.has(flag)) continue;
        if (args.query()) return range.*member / timeTicks();
        range.*member = args.number(flag, 0) * timeTicks();
    }
    if (args.query()) throw Error("playbackOptions was not told what to query.");
    // The animation's range takes the playback's in.
    range.max = std::max(range.min, range.max);
    range.animationStart = std::min(range.animationStart, range.min);
    range.animationEnd = std::max(range.animationEnd, range.max);
    theScene().setPlayback(range);
    return {};
}

/// The plugs that a key command works on: those named, those of -attribute, or all keyable ones.
std::vector<Cell*> keyPlugs(const ParsedArguments& args, bool animatedOnly) {
    std::vector<Cell*> plugs;
    const auto add = [&](Cell& cell) {
        if (cell.attribute.type == AttributeType::Tuple)
            for (std::size_t k = 0; k < cell.attribute.children.size(); ++k)
                plugs.push_back(&cell.child(static_cast<int>(k)));
        else
            plugs.push_back(&cell);
    };
    StringArray names = args.names();
    if (names.empty()) names = namesOf(selectedNodes());
    if (names.empty()) throw Error("No object was specified or selected.");
    for (const std::string& name : names) {
        if (name.find('.') != std::string::npos) {
            add(plugNamed(name));
            continue;
        }
        for (Node* node : nodesNamed({name})) {
            for (std::size_t i = 0; i < args.occurrences("at"); ++i)
                add(plugNamed(nameOf(*node) + "." + args.value("at", 0, i).toString()));
            if (args.has("at")) continue;
            for (const Attribute* root : node->attributes()) {
                if (root->array) continue;
                const auto visit = [&](const Attribute& a) {
                    Cell& cell = node->cell(a);
                    if (a.isNumber() && cell.keyable.value_or(a.keyable)) plugs.push_back(&cell);
                };
                visit(*root);
                for (const auto& child : root->children)
                    if (!child->array) visit(*child);
            }
        }
    }
    if (animatedOnly) std::erase_if(plugs, [](Cell* cell) { return !curveOf(*cell); });
    return plugs;
}

struct Range {
    double first = -std::numeric_limits<double>::infinity(), last = std::numeric_limits<double>::infinity();
    bool holds(double t) const { return t >= first && t <= last; }
};

/// The ticks of a time in the user's unit, or in one that it names: "12", "1.5sec".
double ticksIn(std::string_view text) {
    const auto [number, length] = readNumber(text);
    const std::string_view unit = text.substr(length);
    const auto named = unit.empty() ? std::optional(timeUnit()) : timeUnitNamed(unit);
    if (length == 0 || !named) throw Error("Invalid time: " + std::string(text));
    return number * named->ticks;
}

double ticksOf(const Value& time) { return time.isNumber() ? time.toFloat() * timeTicks() : ticksIn(time.toString()); }

/// "a:b", "a:", ":b", ":" or one time.
Range rangeOf(const ParsedArguments& args) {
    Range range;
    if (!args.has("t")) return range;
    const std::string text = args.text("t");
    const auto colon = text.find(':');
    const std::string first = text.substr(0, colon), last = colon == std::string::npos ? first : text.substr(colon + 1);
    // A hundredth of a tick either way: times are sums of fractions.
    constexpr double slack = 0.01;
    if (!first.empty()) range.first = ticksIn(first) - slack;
    if (!last.empty()) range.last = ticksIn(last) + slack;
    return range;
}

/// Whether the curve's keys lie over a number.
bool isDriven(const Node& curve) { return curve.type.name.starts_with("animCurveU"); }

Value setKeyframe(Call& call) {
    const ParsedArguments args(call, {{"at", "attribute", 1},
                                      {"t", "time", 1},
                                      {"v", "value", 1},
                                      {"itt", "inTangentType", 1},
                                      {"ott", "outTangentType", 1},
                                      {"i", "insert"},
                                      {"s", "shape", 1},
                                      {"hi", "hierarchy", 1},
                                      {"bd", "breakdown", 1}});
    const Tangent in = tangentNamed(args.text("itt", "global")), out = tangentNamed(args.text("ott", "global"));
    std::vector<double> times;
    for (std::size_t i = 0; i < args.occurrences("t"); ++i) times.push_back(ticksOf(args.value("t", 0, i)));
    if (times.empty()) times.push_back(theScene().time());
    int count = 0;
    for (Cell* plug : keyPlugs(args, false)) {
        if (Node* curve = curveOf(*plug); curve && isDriven(*curve))
            throw Error("The attribute '" + plug->name() + "' has driven keys: it takes no keys over time.");
        if (!args.has("at") && !curveOf(*plug)) {
            // Keying everything passes over what cannot be keyed.
            try {
                theScene().requireSettable(*plug);
            } catch (const SceneError&) {
                if (args.names().empty() || args.names().front().find('.') == std::string::npos) continue;
                throw;
            }
        }
        for (double time : times) {
            evaluate(*plug);
            const double value = args.has("v") ? fromUi(plug->attribute, args.number("v", 0)) : plug->number();
            setKey(theScene(), *plug, time, value, in, out);
            ++count;
        }
    }
    if (count == 0) throw Error("Nothing to key.");
    return count;
}

Value keyframe(Call& call) {
    const ParsedArguments args(call,
                               {{"at", "attribute", 1, true},
                                {"t", "time", 1, true},
                                {"tc", "timeChange", 1},
                                {"fc", "floatChange", 1},
                                {"vc", "valueChange", 1},
                                {"kc", "keyframeCount"},
                                {"n", "name"}},
                               true);
    if (!args.query()) throw Error("keyframe can be queried only; keys are set by setKeyframe.");
    const Range range = rangeOf(args);
    FloatArray times, values;
    StringArray names;
    for (Cell* plug : keyPlugs(args, true)) {
        names.push_back(curveOf(*plug)->name);
        for (const auto& [time, value] : keysOf(*curveOf(*plug)))
            if (range.holds(time)) {
                times.push_back(isDriven(*curveOf(*plug)) ? time : time / timeTicks());
                values.push_back(toUi(plug->attribute, value));
            }
    }
    if (args.has("kc")) return static_cast<int>(times.size());
    if (args.has("n")) return names;
    if (args.has("tc") && args.has("vc")) {
        FloatArray pairs;
        for (std::size_t i = 0; i < times.size(); ++i) pairs.insert(pairs.end(), {times[i], values[i]});
        return pairs;
    }
    return args.has("vc") ? values : times;
}

/// The driven curve that leads from the driver to what feeds the plug; null when there is none.
Node* drivenCurve(Cell& plug, const Cell& driver) {
    if (!plug.source) return nullptr;
    Node& feeding = plug.source->node;
    if (isDriven(feeding) && feeding.cell("input").source == &driver) return &feeding;
    if (feeding.type.name != "blendWeighted") return nullptr;
    for (auto& [index, input] : feeding.cell("input").elements)
        if (input->source && isDriven(input->source->node) && input->source->node.cell("input").source == &driver)
            return &input->source->node;
    return nullptr;
}

/// A new curve from the driver to the plug. Beside others it is added to what they give.
Node& newDrivenCurve(Cell& plug, Cell& driver) {
    Scene& scene = theScene();
    const bool beside = plug.source && (isDriven(plug.source->node) || plug.source->node.type.name == "blendWeighted");
    if (!beside) scene.requireFree(plug);
    const char* kind = plug.attribute.type == AttributeType::Angle      ? "animCurveUA"
                       : plug.attribute.type == AttributeType::Distance ? "animCurveUL"
                       : plug.attribute.type == AttributeType::Time     ? "animCurveUT"
                                                                        : "animCurveUU";
    const std::string stem = plug.node.name + "_" + plug.attribute.longName;
    Node& curve = *scene.createNode(*scene.findType(kind), stem);
    scene.setNumber(curve.cell("weightedTangents"), 0);
    scene.connect(driver, curve.cell("input"));
    if (!beside) {
        scene.connect(curve.cell("output"), plug);
        return curve;
    }
    Node* blend = &plug.source->node;
    if (blend->type.name != "blendWeighted") {
        Cell& first = *plug.source;
        blend = scene.createNode(*scene.findType("blendWeighted"), "blendWeighted#").get();
        scene.connect(first, blend->cell("input").element(0));
        scene.connect(blend->cell("output"), plug, true);
    }
    scene.connect(curve.cell("output"), scene.nextAvailable(blend->cell("input")));
    return curve;
}

Value setDrivenKeyframe(Call& call) {
    const ParsedArguments args(call,
                               {{"cd", "currentDriver", 1},
                                {"dv", "driverValue", 1},
                                {"v", "value", 1},
                                {"at", "attribute", 1, true},
                                {"itt", "inTangentType", 1},
                                {"ott", "outTangentType", 1},
                                {"dr", "driver"},
                                {"dn", "driven"}},
                               true);
    if (args.query()) {
        StringArray drivers;
        for (Cell* plug : keyPlugs(args, true)) {
            const Cell* source = isDriven(*curveOf(*plug)) ? curveOf(*plug)->cell("input").source : nullptr;
            if (source) drivers.push_back(source->name());
        }
        return drivers.empty() ? StringArray{"No drivers."} : drivers;
    }
    if (!args.has("cd")) throw Error("setDrivenKeyframe needs a driver, by -currentDriver.");
    Cell& driver = plugNamed(args.text("cd"));
    if (!driver.attribute.isNumber()) throw Error("The attribute '" + driver.name() + "' is not a number.");
    const Tangent in = tangentNamed(args.text("itt", "global")), out = tangentNamed(args.text("ott", "global"));
    evaluate(driver);
    // The curve sees the driver in the user's units, as if through a unit conversion.
    const double at = args.has("dv") ? args.number("dv", 0) : toUi(driver.attribute, driver.number());
    int count = 0;
    for (Cell* plug : keyPlugs(args, false)) {
        if (plug == &driver) throw Error("The attribute '" + driver.name() + "' cannot drive itself.");
        if (!plug->attribute.isNumber() || plug->isArray())
            throw Error("The attribute '" + plug->name() + "' cannot be animated.");
        evaluate(*plug);
        const double value = args.has("v") ? fromUi(plug->attribute, args.number("v", 0)) : plug->number();
        Node* curve = drivenCurve(*plug, driver);
        if (!curve) curve = &newDrivenCurve(*plug, driver);
        setCurveKey(theScene(), *curve, at, value, in, out);
        ++count;
    }
    return count;
}

Value cutKey(Call& call) {
    const ParsedArguments args(call, {{"at", "attribute", 1}, {"t", "time", 1}, {"cl", "clear"}, {"o", "option", 1}});
    const Range range = rangeOf(args);
    int count = 0;
    for (Cell* plug : keyPlugs(args, true)) count += removeKeys(theScene(), *plug, range.first, range.last);
    return count;
}

/// Calls f(time, value, in, out) for each key.
template <class F>
void eachKey(Node& curve, F f) {
    const auto general = static_cast<int>(curveShape(curve).tangent);
    for (const CurveKey& key : curveKeys(curve)->timed())
        f(key.time, key.value, key.in == 0 ? general : key.in, key.out == 0 ? general : key.out);
}

Value keyTangent(Call& call) {
    const ParsedArguments args(call,
                               {{"at", "attribute", 1, true},
                                {"t", "time", 1, true},
                                {"itt", "inTangentType", 1},
                                {"ott", "outTangentType", 1},
                                {"g", "global"}},
                               true);
    const Range range = rangeOf(args);
    StringArray kinds;
    int count = 0;
    for (Cell* plug : keyPlugs(args, true)) {
        struct Key {
            double time, value;
            int in, out;
        };
        std::vector<Key> keys;
        eachKey(*curveOf(*plug), [&](double t, double v, int in, int out) {
            if (range.holds(t)) keys.push_back({t, v, in, out});
        });
        for (const Key& key : keys) {
            if (args.query()) {
                if (args.has("itt")) kinds.push_back(tangentName(key.in));
                if (args.has("ott")) kinds.push_back(tangentName(key.out));
                continue;
            }
            const auto kind = [&](const char* flag, int now) {
                return args.has(flag) ? tangentNamed(args.text(flag)) : static_cast<Tangent>(now == 0 ? 2 : now);
            };
            setKey(theScene(), *plug, key.time, key.value, kind("itt", key.in), kind("ott", key.out));
            ++count;
        }
    }
    return args.query() ? Value(kinds) : Value(count);
}

} // namespace

void registerAnimationCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "currentTime", currentTime);
    registerSceneCommand(interpreter, "playbackOptions", playbackOptions);
    registerSceneCommand(interpreter, "setKeyframe", setKeyframe);
    registerSceneCommand(interpreter, "setDrivenKeyframe", setDrivenKeyframe);
    registerSceneCommand(interpreter, "keyframe", keyframe);
    registerSceneCommand(interpreter, "cutKey", cutKey);
    registerSceneCommand(interpreter, "keyTangent", keyTangent);
}

} // namespace host::mel

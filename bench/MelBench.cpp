// MEL's patterns and texts, each beside a plain version of the same work in the same run:
//   match on a text in which the pattern is nowhere; plain: the automaton started anew at every character
//   tokenize with many separators; plain: a search through all of them at each character
//   a text that grows by +=; plain: std::string::append
#include "base/Pattern.h"
#include "mel/Interpreter.h"

#include <benchmark/benchmark.h>

#include <string>
#include <string_view>

namespace {

std::string letters(std::int64_t count) { return std::string(static_cast<std::size_t>(count), 'a'); }

void MatchPlain(benchmark::State& state) {
    const std::string text = letters(state.range(0));
    const host::Pattern pattern("^[a-z]*b");
    for (auto _ : state) {
        bool found = false;
        for (std::size_t from = 0; !found && from <= text.size(); ++from)
            found = pattern.find(std::string_view(text).substr(from)).has_value();
        benchmark::DoNotOptimize(found);
    }
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(MatchPlain)->Arg(4096)->Arg(16384)->Arg(65536)->Unit(benchmark::kMillisecond);

void Match(benchmark::State& state) {
    const std::string text = letters(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(host::Pattern("[a-z]*b").find(text));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Match)->Arg(16)->Arg(4096)->Arg(16384)->Arg(65536)->Arg(1 << 20)->Unit(benchmark::kMillisecond);

/// A script that works on a global text $s.
void runScript(benchmark::State& state, const std::string& script, const std::string& text) {
    host::mel::Interpreter mel;
    host::mel::registerLanguageCommands(mel);
    mel.setGlobalVariable("s", text);
    for (auto _ : state) mel.execute("global string $s;" + script);
}

void TokenizePlain(benchmark::State& state) {
    const std::string text = letters(state.range(0)), separators = text + "b";
    for (auto _ : state) {
        std::size_t count = 0;
        for (std::size_t at = 0; (at = text.find_first_not_of(separators, at)) != text.npos; ++count) ++at;
        benchmark::DoNotOptimize(count);
    }
}
BENCHMARK(TokenizePlain)->Arg(65536)->Unit(benchmark::kMillisecond);

void Tokenize(benchmark::State& state) {
    runScript(state, "string $b[]; tokenize($s, $s + \"b\", $b);", letters(state.range(0)));
}
BENCHMARK(Tokenize)->Arg(65536)->Unit(benchmark::kMillisecond);

void GrowPlain(benchmark::State& state) {
    for (auto _ : state) {
        std::string text;
        for (std::int64_t i = 0; i < state.range(0); ++i) text.append("ab");
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(GrowPlain)->Arg(100000)->Unit(benchmark::kMillisecond);

void Grow(benchmark::State& state) {
    runScript(state, "$s = \"\"; for ($i = 0; $i < " + std::to_string(state.range(0)) + "; $i++) $s += \"ab\";", "");
}
BENCHMARK(Grow)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();

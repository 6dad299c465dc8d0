// SPDX-License-Identifier: BSD-3-Clause
// How fast do scripts run, beside the same loops in Lua 5.4, and in C with numbers rounded as scripts round them?
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include <lua.hpp>

#include "script/VsParseTree.h"
#include "support/Bench.h"

using namespace bench;
using namespace tessel::script;

namespace {

/// A script whose function `run` is timed.
class Script {
public:
  explicit Script(std::string_view text) {
    if (!tree.parse(text, "")) std::abort();
    function = tree.findFunction("run");
  }
  double run() {
    tree.preExecute();
    Value result;
    tree.call(*function, {}, &result);
    tree.postExecute();
    return result.getTime();
  }

private:
  VsParseTree tree;
  Function* function = nullptr;
};

class Lua {
public:
  explicit Lua(const char* text) : state(luaL_newstate(), lua_close) {
    luaL_openlibs(state.get());
    if (luaL_dostring(state.get(), text)) std::abort();
  }
  double run() {
    lua_getglobal(state.get(), "run");
    lua_call(state.get(), 0, 1);
    const double result = lua_tonumber(state.get(), -1);
    lua_pop(state.get(), 1);
    return result;
  }

private:
  std::unique_ptr<lua_State, void (*)(lua_State*)> state;
};

void expectSame(double script, double rival) {
  if (std::fabs(script - rival) <= 1e-6 * std::fabs(rival)) return;
  std::fprintf(stderr, "the script gives %.17g, its rival %.17g\n", script, rival);
  std::abort();
}

template <class Rival> void duel(benchmark::State& state, double limit, const char* text, Rival rival) {
  Script script(text);
  expectSame(script.run(), rival());
  Duel duel(state, limit);
  for (auto _ : state) {
    duel.rival(rival);
    duel.library([&] { return script.run(); });
  }
}

void againstLua(benchmark::State& state, double limit, const char* text, const char* luaText) {
  Lua lua(luaText);
  duel(state, limit, text, [&] { return lua.run(); });
}

void wholeNumbers(benchmark::State& state) {
  againstLua(state, 3,
             "function run() { s = 0; for (i = 0; i < 10000000; i = i + 1) {"
             " s = s + i * 2; if (s > 1000000) s = s - 1000000; if (s > 1000000) s = i; } return s; }",
             "function run() local s = 0 local i = 0 while i < 10000000 do"
             " s = s + i * 2 if s > 1000000 then s = s - 1000000 end if s > 1000000 then s = i end"
             " i = i + 1 end return s end");
}

void calls(benchmark::State& state) {
  againstLua(state, 3,
             "function fib(n) { if (n < 2) return n; return fib(n - 1) + fib(n - 2); }"
             " function run() { return fib(25); }",
             "local function fib(n) if n < 2 then return n end return fib(n - 1) + fib(n - 2) end"
             " function run() return fib(25) end");
}

void mathCalls(benchmark::State& state) {
  againstLua(state, 3,
             "function run() { s = 0; for (i = 0; i < 1000000; i++) s = Math.floor(Math.abs(s - i) / 2);"
             " return Math.sqrt(s); }",
             "local floor, abs = math.floor, math.abs function run() local s = 0"
             " for i = 0, 999999 do s = floor(abs(s - i) / 2) end return math.sqrt(s) end");
}

void buildStrings(benchmark::State& state) {
  againstLua(state, 1,
             "function run() { n = 0; for (i = 0; i < 100000; i++) {"
             " s = 'number ' + i; if (s == 'number 4711') n = n + 1; } return n; }",
             "function run() local n = 0 for i = 0, 99999 do"
             " local s = 'number ' .. i if s == 'number 4711' then n = n + 1 end end return n end");
}

// Beside tables of three numbers, made and read in functions as a program in Lua would.
void vectors(benchmark::State& state) {
  againstLua(state, 1,
             "function run() { p = new SFVec3f(0, 0, 0); v = new SFVec3f(1, 2, 3); s = 0;"
             " for (i = 0; i < 300000; i++) { p = p.add(v.multiply(0.5)); s = s + p.dot(v) + p.x;"
             " if (s > 1000) { s = 0; p = new SFVec3f(0, 0, 0); } } return i; }",
             "local function add(a, b) return {a[1] + b[1], a[2] + b[2], a[3] + b[3]} end"
             " local function multiply(a, f) return {a[1] * f, a[2] * f, a[3] * f} end"
             " local function dot(a, b) return a[1] * b[1] + a[2] * b[2] + a[3] * b[3] end"
             " function run() local p, v, s, n = {0, 0, 0}, {1, 2, 3}, 0, 0 for i = 0, 299999 do"
             " p = add(p, multiply(v, 0.5)) s = s + dot(p, v) + p[1]"
             " if s > 1000 then s = 0 p = {0, 0, 0} end n = n + 1 end return n end");
}

// Written and read component by component.
void components(benchmark::State& state) {
  againstLua(state, 1,
             "function run() { v = new SFVec3f(1, 2, 3); for (i = 0; i < 500000; i++) {"
             " v.x = v.y + 1; v[1] = v[2] - 1; v.z = i; } return v.x; }",
             "function run() local v = {x = 1, y = 2, z = 3} for i = 0, 499999 do"
             " v.x = v.y + 1 v.y = v.z - 1 v.z = i end return v.x end");
}

void cutStrings(benchmark::State& state) {
  againstLua(state, 1,
             "function run() { s = 'the quick brown fox jumps over the lazy dog'; n = 0;"
             " for (i = 0; i < 200000; i++) { t = s.substring(i % 20, 30); c = s.charAt(i % 40);"
             " if (c == 'o') n = n + t.length; n = n + t.indexOf('j'); } return n; }",
             "function run() local s, n = 'the quick brown fox jumps over the lazy dog', 0"
             " for i = 0, 199999 do local t = s:sub(i % 20 + 1, 30) local c = s:sub(i % 40 + 1, i % 40 + 1)"
             " if c == 'o' then n = n + #t end n = n + t:find('j', 1, true) - 1 end return n end");
}

void formatStrings(benchmark::State& state) {
  againstLua(state, 1,
             "function run() { n = 0; for (i = 0; i < 100000; i++)"
             " n = n + new SFString('%d: %5.2f %s', i, i / 4, 'end').length; return n; }",
             "function run() local n = 0 for i = 0, 99999 do"
             " n = n + #string.format('%d: %5.2f %s', i, i / 4, 'end') end return n end");
}

constexpr const char* fillAndSum =
    "function run() { s = 0; for (k = 0; k < 20; k++) { m = new MFFloat();"
    " for (i = 0; i < 10000; i++) m[i] = i; for (i = 0; i < 10000; i++) s += m[i]; } return s; }";

// The same loops: a test and a count in each round.
void numberLists(benchmark::State& state) {
  againstLua(state, 1, fillAndSum,
             "function run() local s = 0 for k = 1, 20 do local m = {}"
             " local i = 0 while i < 10000 do m[i + 1] = i i = i + 1 end"
             " i = 0 while i < 10000 do s = s + m[i + 1] i = i + 1 end end return s end");
}

// Beside loops that count by themselves, which scripts have not.
void countedLists(benchmark::State& state) {
  againstLua(state, 2, fillAndSum,
             "function run() local s = 0 for k = 1, 20 do local m = {}"
             " for i = 1, 10000 do m[i] = i - 1 end for i = 1, 10000 do s = s + m[i] end end return s end");
}

void vectorLists(benchmark::State& state) {
  againstLua(state, 1,
             "function run() { s = 0; for (k = 0; k < 20; k++) { m = new MFVec3f();"
             " for (i = 0; i < 10000; i++) m[i] = new SFVec3f(i, 1, 2);"
             " for (i = 0; i < 10000; i++) s += m[i][0]; } return s; }",
             "function run() local s = 0 for k = 1, 20 do local m = {}"
             " for i = 1, 10000 do m[i] = {i - 1, 1, 2} end for i = 1, 10000 do s = s + m[i][1] end end"
             " return s end");
}

// The rounding is most of the cost.
double rounded(double x) {
  const auto seconds = static_cast<std::int32_t>(x);
  const double fraction = (x - seconds) * 1e6;
  return seconds + static_cast<std::int32_t>(fraction + (fraction < 0 ? -0.5 : 0.5)) / 1e6;
}

void fractions(benchmark::State& state) {
  const auto rival = [] {
    double s = 0.5;
    volatile double one = 1;  // so that no compiler knows the result
    const double step = one;
    for (double i = 0; i < 10000000; i = rounded(i + step)) s = rounded(rounded(s * 0.75) + 1.1 * step);
    volatile double result = s;  // and none leaves the loop out
    return double{result};
  };
  duel(state, 3,
       "function run() { s = 0.5; for (i = 0; i < 10000000; i = i + 1) s = s * 0.75 + 1.1; return s; }",
       rival);
}

BENCHMARK(wholeNumbers)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(calls)->UseManualTime()->Iterations(20)->Unit(benchmark::kMillisecond);
BENCHMARK(fractions)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(mathCalls)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(countedLists)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(numberLists)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(vectorLists)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(vectors)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(components)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(buildStrings)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(cutStrings)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);
BENCHMARK(formatStrings)->UseManualTime()->Iterations(10)->Unit(benchmark::kMillisecond);

// Ten times the pieces in about ten times the time.
void appending(benchmark::State& state) {
  const std::string text = "function run() { s = ''; for (i = 0; i < " + std::to_string(state.range(0)) +
                           "; i++) s = s + 'ab'; return i; }";
  Script script(text);
  for (auto _ : state) benchmark::DoNotOptimize(script.run());
  state.SetComplexityN(state.range(0));
}
BENCHMARK(appending)->RangeMultiplier(10)->Range(1000, 1000000)->Complexity(benchmark::oAuto);

void appendingToList(benchmark::State& state) {
  const std::string text = "function run() { m = new MFFloat(); for (i = 0; i < " +
                           std::to_string(state.range(0)) + "; i++) m[m.length] = i; return m.length; }";
  Script script(text);
  for (auto _ : state) benchmark::DoNotOptimize(script.run());
  state.SetComplexityN(state.range(0));
}
BENCHMARK(appendingToList)->RangeMultiplier(10)->Range(1000, 1000000)->Complexity(benchmark::oAuto);

// A script of 10,000 lines, beside a look at each of its characters.
void parsing(benchmark::State& state) {
  std::string text;
  for (int f = 0; f < 100; ++f) {
    text += "function f" + std::to_string(f) + "(value, time) {\n";
    for (int i = 0; i < 49; ++i) {
      const std::string n = std::to_string(i);
      text += "  if (value > " + n + ".5) { position" + n + " = Math.sin(time * " + n + ") + value; }\n";
      text += "  else { position" + n + " = 'a text'; counter = counter + 1; } // a remark\n";
    }
    text += "}\n";
  }
  Duel duel(state, 50);
  for (auto _ : state) {
    duel.rival([&] {
      unsigned sum = 0;
      for (const char c : text) benchmark::DoNotOptimize(sum = sum * 31 + static_cast<unsigned char>(c));
      return sum;
    });
    duel.library([&] {
      auto tree = std::make_unique<VsParseTree>();
      if (!tree->parse(text, "")) std::abort();
      return tree;
    });
  }
}
BENCHMARK(parsing)->UseManualTime()->Iterations(20)->Unit(benchmark::kMillisecond);

}  // namespace

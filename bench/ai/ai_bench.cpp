// Throughput of the offline interpreter on varied descriptions of growing
// size, and of the plan parser on a large plan. A plain word count over the
// same text is measured beside the interpreter as a floor.
#include <benchmark/benchmark.h>

#include <array>
#include <cstdint>
#include <string>

#include "ai/interpreter.h"
#include "ai/plan.h"

namespace {

using modelyne::ai::DiagramPlan;

constexpr std::array<const char*, 16> kAdjectives = {"brake", "fuel", "main", "flight", "cabin", "power",
                                                     "cooling", "safety", "data", "radio", "wheel", "backup",
                                                     "Front", "Rear", "GPS", "hydraulic"};
constexpr std::array<const char*, 16> kNouns = {"controller", "pump", "sensor", "unit", "module", "valve",
                                                "battery", "display", "gateway", "actuator", "bus", "service",
                                                "operator", "interface", "limit", "mode"};

struct Lcg {
  std::uint64_t state = 0x9E3779B97F4A7C15ull;
  std::size_t next(std::size_t n) {
    state = state * 6364136223846793005ull + 1442695040888963407ull;
    return static_cast<std::size_t>(state >> 33) % n;
  }
};

std::string name(Lcg& r) {
  return std::string(kAdjectives[r.next(kAdjectives.size())]) + " " + kNouns[r.next(kNouns.size())];
}

// Deterministic prose of about `bytes` bytes, cycling through sentence
// shapes the interpreter reads: containment lists, flows with items,
// connections, requirements, allocations, pronouns, asides and chatter.
std::string description(std::size_t bytes) {
  Lcg r;
  std::string text;
  text.reserve(bytes + 200);
  std::size_t shape = 0;
  while (text.size() < bytes) {
    switch (shape++ % 8) {
      case 0: text += "The " + name(r) + " contains a " + name(r) + ", a " + name(r) + " and a " + name(r) + ". "; break;
      case 1: text += "The " + name(r) + " sends status data to the " + name(r) + ". "; break;
      case 2: text += "It communicates with the " + name(r) + " and the \"" + name(r) + " #" + std::to_string(r.next(9)) + "\".\n"; break;
      case 3: text += "The " + name(r) + " satisfies the " + name(r) + " requirement; the " + name(r) + " depends on the " + name(r) + ". "; break;
      case 4: text += "When the " + name(r) + " starts, the " + name(r) + " (ECU) receives a signal from the " + name(r) + "! "; break;
      case 5: text += "The " + name(r) + " is allocated to the " + name(r) + ". "; break;
      case 6: text += "Please keep the layout tidy and readable for the review team? "; break;
      default: text += "The " + name(r) + " does not connect to the " + name(r) + ". "; break;
    }
  }
  return text;
}

void BM_InterpretText(benchmark::State& state) {
  const std::string text = description(static_cast<std::size_t>(state.range(0)));
  std::size_t nodes = 0;
  for (auto _ : state) {
    DiagramPlan plan = modelyne::ai::InterpretText(text);
    nodes = plan.nodes.size();
    benchmark::DoNotOptimize(plan);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.size()));
  state.counters["entities"] = static_cast<double>(nodes);
}
BENCHMARK(BM_InterpretText)->Arg(1 << 10)->Arg(100 << 10)->Arg(1 << 20)->Unit(benchmark::kMicrosecond);

// Floor: counting words of the same text, nothing else.
void BM_WordCountFloor(benchmark::State& state) {
  const std::string text = description(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    std::size_t words = 0;
    bool in = false;
    for (char c : text) {
      const bool letter = c != ' ' && c != '\n';
      words += letter && !in;
      in = letter;
    }
    benchmark::DoNotOptimize(words);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_WordCountFloor)->Arg(1 << 20)->Unit(benchmark::kMicrosecond);

std::string largePlan(std::size_t nodes) {
  Lcg r;
  std::string text = "Here is the plan you asked for.\nTITLE|Large generated system\n";
  for (std::size_t i = 1; i <= nodes; ++i)
    text += "NODE|n" + std::to_string(i) + "|" + (i % 3 == 0 ? "Requirement" : i % 3 == 1 ? "Block" : "action") +
            "|" + name(r) + " " + std::to_string(i) + "\n";
  for (std::size_t i = 1; i < nodes; ++i)
    text += "EDGE|n" + std::to_string(i) + "|n" + std::to_string(1 + r.next(nodes)) + "|" +
            (i % 2 ? "Containment" : "flow") + (i % 4 == 0 ? "|carries data\n" : "\n");
  return text;
}

void BM_ParsePlan(benchmark::State& state) {
  const std::string text = largePlan(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    DiagramPlan plan;
    benchmark::DoNotOptimize(modelyne::ai::ParsePlan(text, plan));
    benchmark::DoNotOptimize(plan);
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * static_cast<std::int64_t>(text.size()));
}
BENCHMARK(BM_ParsePlan)->Arg(10000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();

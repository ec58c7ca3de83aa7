// modelyne-gen: writes a synthetic diagram of N nodes (about 1.5 N edges) in
// the model-file syntax to standard output.
//   modelyne-gen 10000 [--seed 7] > big.xml
#include <cstdio>
#include <cstdlib>
#include <string>

#include "synthetic.h"

int main(int argc, char** argv) {
  std::size_t nodes = 1000;
  std::uint64_t seed = 42;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--seed" && i + 1 < argc) {
      seed = std::strtoull(argv[++i], nullptr, 10);
    } else if (arg == "--help" || arg == "-h") {
      std::puts("usage: modelyne-gen N [--seed S]   (writes diagram XML to stdout)");
      return 0;
    } else {
      char* end = nullptr;
      nodes = std::strtoull(arg.c_str(), &end, 10);
      if (!end || *end) {
        std::fprintf(stderr, "modelyne-gen: error: not a node count: %s\n", arg.c_str());
        return 2;
      }
    }
  }
  const std::string xml = modelyne::bench::syntheticDiagramXml(nodes, seed);
  std::fwrite(xml.data(), 1, xml.size(), stdout);
  return 0;
}

// Fuzzes the diagram checker with diagrams built from arbitrary bytes: node
// and edge types of every value (assigned or not), ids from a small pool so
// that ends dangle and ids repeat, the properties the rules read with
// arbitrary text (operand counts, labels, stereotypes, reqIds), checked as
// every diagram kind and assessed. Besides not crashing or hanging, the
// checker must report exactly the findings it appended, never an empty
// one, and raise nothing but the two operand-count errors, leaving the
// findings before them in place.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "check/assessment.h"
#include "check/transition_label.h"
#include "check/validate.h"

using namespace modelyne;

namespace {

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  bool empty() const { return pos_ >= size_; }
  std::uint8_t byte() { return pos_ < size_ ? data_[pos_++] : 0; }
  std::string text() {
    const std::size_t n = byte() % 12;
    std::string out;
    for (std::size_t i = 0; i < n && !empty(); ++i) out.push_back(static_cast<char>(byte()));
    return out;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t pos_ = 0;
};

const char* const kKeys[] = {"reqId", "requirementText", "operator", "guard", "numOperands",
                             "stereotype", "conformsTo", "stakeholders", "submachine", "type",
                             "parts", "flowProperties", "extendsMetaclass", "ownerLifeline",
                             "forkOrJoin", "pseudoKind"};
const char* const kWords[] = {"alt", "par", "loop", "ref", "view", "viewpoint", "stereotype",
                              "block", "valueType", "2", "1", "x", "[else]", "n1", ""};

std::string idFrom(Bytes& in) { return "n" + std::to_string(in.byte() % 8); }

void fail() { std::abort(); }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Bytes in(data, size);
  std::vector<core::Node> nodes;
  std::vector<core::Edge> edges;
  while (!in.empty() && nodes.size() + edges.size() < 64) {
    if (in.byte() % 2 == 0) {
      core::Node n;
      n.id = idFrom(in);
      n.type = static_cast<core::ShapeType>(static_cast<std::int32_t>(in.byte()) * 2 % 380);
      n.text = in.text();
      for (int k = in.byte() % 4; k > 0; --k) {
        const std::uint8_t pick = in.byte();
        n.properties[kKeys[pick % std::size(kKeys)]] =
            pick & 0x80 ? kWords[in.byte() % std::size(kWords)] : in.text();
      }
      nodes.push_back(std::move(n));
    } else {
      core::Edge e;
      e.id = "e" + std::to_string(edges.size());
      e.source = idFrom(in);
      e.target = idFrom(in);
      e.type = static_cast<core::EdgeType>(in.byte() % 48);
      e.text = in.text();
      edges.push_back(std::move(e));
    }
  }

  for (const core::DiagramKind kind : core::allDiagramKinds()) {
    std::vector<std::string> findings = {"kept"};
    unsigned count = 0;
    bool raised = false;
    try {
      count = check::validateDiagram(nodes, edges, kind, findings);
    } catch (const std::invalid_argument& e) {
      if (std::string_view(e.what()) != "invalid stoi argument") fail();
      raised = true;
    } catch (const std::out_of_range& e) {
      if (std::string_view(e.what()) != "stoi argument out of range") fail();
      raised = true;
    }
    if (findings.empty() || findings.front() != "kept") fail();
    if (!raised && count != findings.size() - 1) fail();
    for (std::size_t i = 1; i < findings.size(); ++i)
      if (findings[i].empty()) fail();
  }

  const check::AssessmentMetrics m = check::computeAssessment(nodes, edges);
  if (m.nodeCount != static_cast<std::int32_t>(nodes.size()) || m.requirementsSatisfied > m.requirementCount ||
      m.behavioursAllocated > m.behaviourCount || check::formatAssessment(m).empty())
    fail();

  (void)check::transitionLabelFault(std::string_view(reinterpret_cast<const char*>(data), size));
  return 0;
}

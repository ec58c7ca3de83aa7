// Sequence diagram rules: message ends, reply pairing, combined fragments,
// and the operand count that raises when it is not a number.
#include <gtest/gtest.h>

#include <stdexcept>

#include "diagram_builder.h"

namespace modelyne::check {
namespace {

using testing::Drawing;
using testing::Findings;
using K = core::DiagramKind;
using S = core::ShapeType;
using E = core::EdgeType;

TEST(SequenceRules, MessagesAndReplies) {
  Drawing d;
  d.node("user", S::umlActor)
      .node("ui", S::umlLifeline)
      .node("srv", S::umlLifeline)
      .node("exec", S::umlActivation, "", {{"ownerLifeline", "srv"}})
      .node("gate", S::sysmlGate)
      .node("frag", S::umlCombinedFragment, "", {{"operator", "critical"}})
      .edge("m1", "user", "ui", E::sysmlSyncMessage)
      .edge("m2", "ui", "srv", E::sysmlSyncMessage)
      .edge("r1", "exec", "ui", E::sysmlReplyMessage)    // exec stands for srv, which was called
      .edge("r2", "ui", "user", E::sysmlReplyMessage)    // ui was called by user
      .edge("r3", "user", "ui", E::sysmlReplyMessage)    // nobody called user
      .edge("m3", "ui", "frag", E::sysmlAsyncMessage)
      .edge("m4", "frag", "srv", E::sysmlCreateMessage)
      .edge("m5", "gate", "srv", E::sysmlDeleteMessage)  // gates are message ends
      .edge("f1", "gate", "ui", E::sysmlFoundMessage)
      .edge("f2", "gate", "gate", E::sysmlFoundMessage)
      .edge("l1", "exec", "gate", E::sysmlLostMessage)
      .edge("l2", "gate", "ui", E::sysmlLostMessage)
      .edge("r4", "frag", "ui", E::sysmlReplyMessage);  // two rules on one edge
  EXPECT_EQ(d.check(K::sd),
            (Findings{
                "Edge 'r3' is a reply message but no synchronous call is directed at its source. Replies must pair with a sync call (SysML Distilled §7.5.3).",
                "Edge 'm3' is a asynchronous message but does not connect lifelines / activations / actors / gates (SysML Distilled §7.5 / sequence-diagram.md §3).",
                "Edge 'm4' is a create message but does not connect lifelines / activations / actors / gates (SysML Distilled §7.5 / sequence-diagram.md §3).",
                "Edge 'f2' is a found message but does not terminate at a lifeline / execution (sequence-diagram.md §3).",
                "Edge 'l2' is a lost message but does not originate from a lifeline / execution (sequence-diagram.md §3).",
                "Edge 'r4' is a reply message but does not connect lifelines / activations / actors / gates (SysML Distilled §7.5 / sequence-diagram.md §3).",
                "Edge 'r4' is a reply message but no synchronous call is directed at its source. Replies must pair with a sync call (SysML Distilled §7.5.3).",
            }));
}

TEST(SequenceRules, CombinedFragmentGuardsReferencesAndOperands) {
  Drawing d;
  d.node("loop", S::umlCombinedFragment, "", {{"operator", "loop"}})
      .node("loopOk", S::umlCombinedFragment, "", {{"operator", "loop"}, {"guard", "i < 10"}})
      .node("opt", S::umlCombinedFragment, "", {{"operator", "opt"}, {"guard", " "}})
      .node("alt", S::umlCombinedFragment, "", {{"operator", "alt"}})
      .node("alt3", S::umlCombinedFragment, "", {{"operator", "Alt"}, {"guard", "x"}, {"numOperands", "3"}})
      .node("par", S::umlCombinedFragment, "", {{"operator", "par"}, {"numOperands", "1"}})
      .node("ref", S::umlCombinedFragment, "", {{"operator", "ref"}})
      .node("refOk", S::umlCombinedFragment, "Authenticate", {{"operator", "ref"}})
      .node("neg", S::umlCombinedFragment, "", {{"operator", "neg"}, {"numOperands", "junk"}})
      .node("none", S::umlCombinedFragment);
  EXPECT_EQ(d.check(K::sd),
            (Findings{
                "Combined fragment 'loop' (operator=loop) should declare a guard (SysML Distilled §7.6.3 / §7.6.4).",
                "Combined fragment 'opt' (operator=opt) should declare a guard (SysML Distilled §7.6.3 / §7.6.4).",
                "Combined fragment 'alt' (operator=alt) should declare a guard (SysML Distilled §7.6.3 / §7.6.4).",
                "Combined fragment 'alt' (operator=alt) must have at least two operands separated by dashed lines (sequence-diagram.md §5).",
                "Combined fragment 'par' (operator=par) must have at least two operands separated by dashed lines (sequence-diagram.md §5).",
                "Combined fragment 'ref' (operator=ref) should name the referenced interaction in its text (SysML Distilled §7.6.9).",
            }));
}

TEST(SequenceRules, UnparsableOperandCountRaisesAndKeepsEarlierFindings) {
  Drawing d;
  d.node("x", S::rect)
      .node("f1", S::umlCombinedFragment, "", {{"operator", "loop"}})
      .node("f2", S::umlCombinedFragment, "", {{"operator", "alt"}, {"guard", "g"}, {"numOperands", "two"}})
      .node("f3", S::umlCombinedFragment, "", {{"operator", "loop"}});
  std::vector<std::string> findings;
  try {
    validateDiagram(d.doc(), K::sd, findings);
    FAIL() << "expected std::invalid_argument";
  } catch (const std::invalid_argument& e) {
    EXPECT_STREQ(e.what(), "invalid stoi argument");
  }
  EXPECT_EQ(findings,
            (Findings{
                "Node 'x' (type=rect) not allowed on Sequence Diagram",
                "Combined fragment 'f1' (operator=loop) should declare a guard (SysML Distilled §7.6.3 / §7.6.4).",
            }));

  Drawing big;
  big.node("f", S::umlCombinedFragment, "", {{"operator", "par"}, {"numOperands", "99999999999"}});
  findings.clear();
  try {
    validateDiagram(big.doc(), K::sd, findings);
    FAIL() << "expected std::out_of_range";
  } catch (const std::out_of_range& e) {
    EXPECT_STREQ(e.what(), "stoi argument out of range");
  }
}

TEST(SequenceRules, OperandCountReadsLikeStoi) {
  // Leading white space and a sign are taken, trailing text ignored.
  for (const char* count : {" 2", "+2", "2 operands", "2147483647"}) {
    Drawing d;
    d.node("f", S::umlCombinedFragment, "", {{"operator", "seq"}, {"numOperands", count}});
    EXPECT_EQ(d.check(K::sd), Findings{}) << count;
  }
  for (const char* count : {"-3", "0", "1.9"}) {
    Drawing d;
    d.node("f", S::umlCombinedFragment, "", {{"operator", "strict"}, {"numOperands", count}});
    EXPECT_EQ(d.check(K::sd).size(), 1u) << count;
  }
  for (const char* count : {"+", " -x", "2147483648"}) {
    Drawing d;
    d.node("f", S::umlCombinedFragment, "", {{"operator", "par"}, {"numOperands", count}});
    EXPECT_ANY_THROW(d.check(K::sd)) << count;
  }
}

}  // namespace
}  // namespace modelyne::check

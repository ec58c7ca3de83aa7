// Rules of the structure kinds: block definition, internal block, package
// and parametric diagrams.
#include <gtest/gtest.h>

#include "diagram_builder.h"

namespace modelyne::check {
namespace {

using testing::Drawing;
using testing::Findings;
using K = core::DiagramKind;
using S = core::ShapeType;
using E = core::EdgeType;

TEST(BlockDefinitionRules, CompositionGeneralizationAssociationByStereotypeKind) {
  Drawing d;
  d.node("Camera", S::sysmlBlock)
      .node("Lens", S::umlClass, "Lens", {{"stereotype", "«block»"}})
      .node("Plain", S::umlClass)
      .node("Signal1", S::sysmlSignal)
      .node("Mass", S::sysmlBlock, "", {{"stereotype", "valueType"}})
      .node("Length", S::umlClass, "", {{"stereotype", "Value Type"}})
      .node("Ext", S::sysmlBlock, "", {{"stereotype", "external"}})
      .edge("c1", "Camera", "Lens", E::composition)      // two blocks: fine
      .edge("c2", "Camera", "Plain", E::aggregation)     // plain class is no block
      .edge("c3", "Plain", "Camera", E::composition)
      .edge("g1", "Signal1", "Camera", E::generalization)
      .edge("g2", "Ext", "Camera", E::generalization)    // «external» is still a block
      .edge("a1", "Mass", "Length", E::association)
      .edge("a2", "Mass", "Camera", E::association);
  EXPECT_EQ(d.check(K::bdd),
            (Findings{
                "Edge 'c2' (Aggregation) must connect two block-stereotyped elements (SysML Distilled §3.4.1 / §3.5).",
                "Edge 'c3' (Composition) must connect two block-stereotyped elements (SysML Distilled §3.4.1 / §3.5).",
                "Edge 'g1' generalises a 'signal' from a 'block'. Generalization should connect peers of the same block-stereotype kind (SysML Distilled §3.5).",
                "Edge 'a1' associates two ValueTypes. ValueTypes compose other types via property typing, not via associations (SysML Distilled §3.4.6).",
            }));
}

TEST(BlockDefinitionRules, FlowSpecificationNeedsFlowPropertiesOnceItHasStructure) {
  Drawing d;
  d.node("fs1", S::sysmlFlowSpecification, "", {{"operations", "start()"}})
      .node("fs2", S::sysmlFlowSpecification, "", {{"operations", "start()"}, {"flowProperties", "in v : Volt"}})
      .node("fs3", S::sysmlFlowSpecification, "", {{"parts", "  \n "}})
      .node("fs4", S::umlClass, "", {{"stereotype", "flowSpecification"}, {"values", "x : Real"}})
      .edge("c", "fs1", "fs4", E::composition);  // both are block-stereotyped: no edge finding
  EXPECT_EQ(d.check(K::bdd),
            (Findings{
                "Flow specification 'fs1' has structural compartments but no flowProperties. A flow specification only types port protocols (SysML Distilled §3.4.7).",
                "Flow specification 'fs4' has structural compartments but no flowProperties. A flow specification only types port protocols (SysML Distilled §3.4.7).",
            }));
}

TEST(InternalBlockRules, FlowsAndBindingsJoinPortLikeEnds) {
  Drawing d;
  d.node("p1", S::sysmlPort)
      .node("p2", S::sysmlPort)
      .node("legacy", S::sysmlProxyPort)
      .node("obj", S::sysmlObjectNode)
      .node("part", S::sysmlPartUsage)
      .node("ref", S::sysmlReferenceProperty, "", {{"parts", "wheel : Wheel"}})
      .node("ref2", S::sysmlReferenceProperty, "", {{"references", "wheel : Wheel"}})
      .edge("f1", "p1", "p2", E::sysmlItemFlow)
      .edge("f2", "legacy", "obj", E::sysmlItemFlow)
      .edge("f3", "p1", "part", E::sysmlItemFlow)
      .edge("b1", "part", "p2", E::sysmlBindingConnector)
      .edge("b2", "p1", "legacy", E::sysmlBindingConnector);
  EXPECT_EQ(d.check(K::ibd),
            (Findings{
                "Node 'legacy' (type=sysmlProxyPort) not allowed on Internal Block Diagram",
                "Reference property 'ref' declares composite parts. A reference (dashed border) is not the owner of its referent — move the declaration into the references compartment (SysML Distilled §4.5).",
                "Edge 'f3' is an Item Flow but does not connect two port-like endpoints (a Port, a legacy Flow / Proxy / Full / Standard Port, an Object Node, or a Pin). (SysML Distilled §4.8)",
                "Edge 'b1' is a Binding Connector but does not connect two port-like endpoints. Bindings on an IBD attach ports, not raw parts (SysML Distilled §4.5).",
            }));
}

TEST(PackageRules, ContainmentImportAccessJoinPackages) {
  Drawing d;
  d.node("P", S::umlPackage, "P")
      .node("Q", S::umlPackage, "Q", {{"stereotype", "modelLibrary"}})
      .node("B", S::sysmlBlock, "B")
      .edge("c1", "P", "Q", E::sysmlContainment)
      .edge("c2", "P", "B", E::sysmlContainment)
      .edge("i1", "P", "Q", E::sysmlImport)
      .edge("i2", "B", "Q", E::sysmlImport)
      .edge("a1", "Q", "B", E::sysmlAccess);
  EXPECT_EQ(d.check(K::pkg),
            (Findings{
                "Edge 'c2' (Containment) must connect two packages (SysML Distilled §9.3).",
                "Edge 'i2' «import» must connect two packages (SysML Distilled §9.5).",
                "Edge 'a1' «access» must connect two packages (SysML Distilled §9.5).",
            }));
}

TEST(PackageRules, ViewsAndViewpoints) {
  Drawing d;
  d.node("vp", S::umlPackage, "Safety", {{"stereotype", "viewpoint"}, {"concerns", "hazards"}})
      .node("vpEmpty", S::umlPackage, "Empty", {{"stereotype", "«viewpoint»"}, {"purpose", "  "}})
      .node("v1", S::umlPackage, "V1", {{"stereotype", "view"}})
      .node("v2", S::umlPackage, "V2", {{"stereotype", "view"}, {"conformsTo", "Safety"}})
      .node("v3", S::umlPackage, "V3", {{"stereotype", "View"}})
      .node("v4", S::umlPackage, "V4", {{"stereotype", "view"}})
      .edge("r3", "v3", "vp", E::realization)    // realizes a viewpoint: conforms
      .edge("r4", "vp", "v4", E::realization);   // wrong direction: does not
  EXPECT_EQ(d.check(K::pkg),
            (Findings{
                "Viewpoint package 'vpEmpty' must declare at least one of stakeholders / concerns / purpose (SysML Distilled §9.7).",
                "View package 'v1' should declare which viewpoint it conforms to (set the `conformsTo` property or draw a Realization edge to a «viewpoint» package — SysML Distilled §9.7).",
                "View package 'v4' should declare which viewpoint it conforms to (set the `conformsTo` property or draw a Realization edge to a «viewpoint» package — SysML Distilled §9.7).",
            }));
}

TEST(PackageRules, DuplicateNamesPerKindWithinTheOwningPackage) {
  Drawing d;
  d.node("P", S::umlPackage, "Sensors")
      .node("Q", S::umlPackage, "Actuators")
      .node("b1", S::sysmlBlock, "Camera")
      .node("b2", S::sysmlBlock, "Camera")      // root, same kind: duplicate
      .node("c1", S::umlClass, "Camera")        // other kind: fine
      .node("b3", S::sysmlBlock, "Camera")      // owned by P: fine
      .node("b4", S::sysmlBlock, " Camera ")    // owned by P too: duplicate
      .node("b5", S::sysmlBlock, "Camera")      // owned by Q: fine
      .node("n1", S::umlNote, "Camera")         // notes have no name to clash
      .node("n2", S::umlNote, "Camera")
      .node("u1", S::sysmlBlock, "")            // unnamed elements never clash
      .node("u2", S::sysmlBlock, "")
      .edge("own3", "P", "b3", E::sysmlContainment)
      .edge("own4", "P", "b4", E::sysmlContainment)
      .edge("own5", "Q", "b5", E::sysmlContainment);
  const std::string tail =
      "') duplicates the name of another element of the same kind in its package namespace; each "
      "element of a given kind must have a unique name within its package (A Practical Guide to SysML §6.6).";
  EXPECT_EQ(d.check(K::pkg), (Findings{
                                 "Element 'Camera' ('sysmlBlock" + tail,
                                 "Element 'Camera' ('sysmlBlock" + tail,
                                 "Edge 'own3' (Containment) must connect two packages (SysML Distilled §9.3).",
                                 "Edge 'own4' (Containment) must connect two packages (SysML Distilled §9.3).",
                                 "Edge 'own5' (Containment) must connect two packages (SysML Distilled §9.3).",
                             }));
}

TEST(ParametricRules, BindingsAndTypedProperties) {
  Drawing d;
  d.node("cp", S::sysmlConstraintProperty, "eq", {{"type", "Newton"}})
      .node("cpUntyped", S::sysmlConstraintProperty)
      .node("F", S::sysmlConstraintParameter)
      .node("m", S::sysmlValueProperty, "", {{"type", "kg"}})
      .node("a", S::sysmlValueProperty)
      .node("blk", S::sysmlBlock)
      .edge("b1", "F", "m", E::sysmlBindingConnector)     // fine
      .edge("b2", "m", "a", E::sysmlBindingConnector)     // no constraint parameter
      .edge("b3", "blk", "cp", E::sysmlBindingConnector)  // neither end bindable: three findings
      .edge("b4", "F", "blk", E::sysmlBindingConnector);
  EXPECT_EQ(d.check(K::par),
            (Findings{
                "Constraint property 'cpUntyped' has no `type`. A constraint property is a usage of a constraint block and must be typed (SysML Distilled §9.5).",
                "Value property 'a' has no `type`. A value property is a usage of a value type and must be typed (SysML Distilled §9.7).",
                "Edge 'b2' is a Binding Connector but neither endpoint is a Constraint Parameter. One of the two bound elements must be a constraint parameter (SysML Distilled §9.8).",
                "Edge 'b3' is a Binding Connector but its source 'blk' is not a parametric bind endpoint (Constraint Parameter or Value Property) (SysML Distilled §9.8).",
                "Edge 'b3' is a Binding Connector but its target 'cp' is not a parametric bind endpoint (Constraint Parameter or Value Property) (SysML Distilled §9.8).",
                "Edge 'b3' is a Binding Connector but neither endpoint is a Constraint Parameter. One of the two bound elements must be a constraint parameter (SysML Distilled §9.8).",
                "Edge 'b4' is a Binding Connector but its target 'blk' is not a parametric bind endpoint (Constraint Parameter or Value Property) (SysML Distilled §9.8).",
            }));
}

}  // namespace
}  // namespace modelyne::check

// The property schemas of every shape type, as data: each schema is listed
// once with the shape types it applies to. Several shape types share one
// schema; the registry appends the "documentation" trailer to each.

#include "io/schema_tables.h"

#include <stdexcept>
#include <utility>

namespace modelyne::io::detail {

namespace {

using S = core::ShapeType;
using P = PropertyDef;

// Sources named by the entries.
const char* const kBpmn = "BPMN 2.0";
const char* const kMindMap = "Mind Map";
const char* const kUml = "UML 2.5";
const char* const kReq = "SysML V2 RequirementUsage";
const char* const kPort = "Distilled ch.6 Port";
const char* const kApg = "APG to SysML";
const char* const kSysml = "SysML 1.6";
const char* const kV2 = "SysML V2";
const char* const kAction = "UML 2.5 action";
const char* const kUseCase = "UML 2.5 use case";
const char* const kPackage = "UML 2.5 package";

struct SchemaDef {
  std::vector<S> types;
  Schema entries;  // without the trailer
};

// ---- Entries shared by several schemas ----

P direction(const char* source, std::string def = "inout") {
  return P::choice("direction", "Direction", source, {"in", "out", "inout", "none"}, std::move(def));
}
P typeOf(const char* source, std::string hint = {}) { return P::text("type", "Type", source, {}, std::move(hint)); }
P multiplicity(const char* source) {
  return P::multiplicity("multiplicity", "Multiplicity", source, "[n] / [n..m] / [n..*], e.g. [1]");
}
P conjugated(const char* source) { return P::boolean("isConjugated", "Conjugated", source, false); }
P boundarySide(const char* source) {
  return P::choice("boundarySide", "Boundary Side", source, {"top", "bottom", "left", "right"}, "");
}
P boundaryPos(const char* source) {
  return P::number("boundaryPos", "Boundary Position", source, "", "0..1 along the hosting edge");
}
P stream(const char* source) { return P::boolean("stream", "Streaming ({stream})", source, false); }
P notes() { return P::multiLine("notes", "Notes", kMindMap); }
P definition(const char* source, std::string label = "Definition") {
  return P::text("definition", std::move(label), source);
}
P operations(const char* source) {
  return P::multiLine("operations", "Operations", source, "one per line: name(args) : ReturnType");
}
P constraintLanguage(const char* source) {
  return P::choice("language", "Constraint Language", source,
                   {"Text", "OCL", "Java", "C", "C++", "Python", "MathML", "MATLAB", "Modelica", "SysML"}, "");
}
P objectiveFunction(const char* source) { return P::boolean("objectiveFunction", "Objective Function", source, false); }
P parameters(const char* source, std::string hint) { return P::multiLine("parameters", "Parameters", source, std::move(hint)); }
P stereotypeText(const char* source) { return P::text("stereotype", "Stereotype", source, {}, "e.g. block, controller"); }
P visibility(const char* source) {
  return P::choice("visibility", "Visibility", source, {"public", "protected", "private", "package"}, "public",
                   "public/protected/private/package");
}
P interfaces(const char* key, const char* label, const char* source) {
  return P::multiLine(key, label, source, "one interface name per line");
}
P unit(const char* source) { return P::text("unit", "Unit", source, {}, "e.g. kg, m/s, N"); }

// ---- The schemas ----

std::vector<SchemaDef> buildTables() {
  // Port-like schemas differ per shape only in the default flavor.
  auto flavoredPort = [](std::string flavor) {
    return Schema{
        direction(kPort),
        P::choice("flavor", "Flavor", kPort, {"proxy", "full", "flow"}, std::move(flavor)),
        typeOf(kPort, "typing interface or block, e.g. Light Interface"),
        multiplicity(kPort),
        conjugated(kPort),
        boundarySide(kPort),
        boundaryPos(kPort),
        interfaces("provided", "Provided Interfaces", kPort),
        interfaces("required", "Required Interfaces", kPort),
    };
  };
  auto pinLike = [](bool onBoundary) {
    Schema s{
        direction(kSysml, "inout"),
        typeOf(kSysml),
        multiplicity(kSysml),
        P::boolean("optional", "Optional", kSysml, false),
        stream(kSysml),
        P::text("parameterSet", "Parameter Set", kApg, {}, "name of the parameter set this parameter belongs to"),
    };
    if (onBoundary) {
      s.push_back(boundarySide(kSysml));
      s.push_back(boundaryPos(kSysml));
      s.push_back(P::text("connectedTo", "Connected Ports", kSysml, {}, "peer pin ids (comma-separated), maintained by the model"));
      s.push_back(P::text("flowsTo", "Destination Ports", kSysml, {}, "peer pin ids (comma-separated), maintained by the model"));
    }
    return s;
  };
  auto forkJoin = [](std::string mode) {
    return Schema{
        P::choice("forkOrJoin", "Mode", kUml, {"fork", "join"}, std::move(mode)),
        P::text("joinSpec", "Join Specification", kUml, {}, "boolean expression; default {joinSpec = and}"),
    };
  };
  auto pseudostate = [](std::string kind) {
    return Schema{
        P::choice("pseudoKind", "Pseudostate Kind", kUml, {"junction", "choice"}, std::move(kind)),
        P::text("defaultGuard", "Default Guard", kUml, {}, "e.g. else"),
    };
  };
  auto history = [](std::string kind) {
    return Schema{
        P::choice("historyKind", "History Kind", kUml, {"shallow", "deep"}, std::move(kind)),
        P::text("defaultTarget", "Default Target", kUml, {}, "substate entered the first time, before history exists"),
    };
  };
  auto connectionPoint = [](std::string kind) {
    return Schema{
        P::text("pointName", "Point Name", kUml),
        P::choice("pointKind", "Point Kind", kUml, {"entry", "exit"}, std::move(kind)),
    };
  };
  const Schema state{
      P::text("entry", "Entry Action", kUml),
      P::text("doActivity", "Do Activity", kUml),
      P::text("exit", "Exit Action", kUml),
  };
  const Schema requirement{
      definition(kReq),
      P::identifier("reqId", "Requirement Id", kReq, "e.g. REQ-1.2"),
      P::multiLine("requirementText", "Requirement Text", kReq),
      P::choice("requirementKind", "Kind", kReq,
                {"requirement", "functional", "interface", "performance", "physical", "designConstraint", "extended"},
                ""),
  };
  const Schema block{
      P::boolean("isAbstract", "Abstract", kSysml, false),
      P::text("specializes", "Specializes", kSysml),
      P::choice("stereotype", "Stereotype", kSysml,
                {"block", "system", "subsystem", "external", "domain", "environment", "actor", "boundary"}, "block"),
      P::multiLine("parts", "Parts", kSysml, "one per line: name : Type [m..n]"),
      P::multiLine("references", "References", kSysml, "one per line: name : Type [m..n]"),
      P::multiLine("values", "Values", kSysml, "one per line: name : ValueType = default"),
      P::multiLine("ports", "Ports", kV2, "one per line: name : PortDef [m..n]"),
      P::multiLine("constraints", "Constraints", kSysml, "one per line: name : ConstraintBlock"),
      operations(kSysml),
      P::multiLine("receptions", "Receptions", kSysml, "one per line: SignalName"),
      P::multiLine("flowProperties", "Flow Properties", kSysml, "name : Type, direction (in / out / inout)"),
      P::multiLine("allocatedTo", "Allocated To", kSysml, "one element per line"),
      P::multiLine("allocatedFrom", "Allocated From", kSysml, "one element per line"),
  };
  const Schema partUsage{
      definition(kV2, "Type (Block)"),
      multiplicity(kV2),
      P::text("redefines", "Redefines", kV2),
      P::text("subsets", "Subsets", kV2),
      P::multiLine("references", "Shared references (compartment)", kV2, "one per line: name : Type [m..n]"),
  };
  Schema referenceProperty = partUsage;
  referenceProperty.insert(referenceProperty.end() - 1,
                           P::multiLine("parts", "Parts", kSysml, "one per line: name : Type [m..n]"));
  const Schema useCase{
      P::text("scope", "Scope", kUseCase, {}, "system / subsystem / component that owns this use case"),
      P::text("primaryActor", "Primary Actor", kUseCase),
      P::text("supportingActors", "Supporting Actors", kUseCase),
      P::text("stakeholders", "Stakeholders", kUseCase),
      P::text("subject", "Subject", kUseCase),
      P::text("actors", "Actors (legacy combined list)", kUseCase),
      P::multiLine("precondition", "Pre-conditions", kUseCase),
      P::multiLine("guarantees", "Guarantees (post-conditions)", kUseCase),
      P::multiLine("postcondition", "Post-condition (legacy)", kUseCase),
      P::text("trigger", "Trigger", kUseCase),
      P::multiLine("extensionPoints", "Extension Points", kUseCase, "one per line"),
  };
  const Schema testCase{
      P::identifier("reqId", "Test Id", kReq, "e.g. TC-1.2"),
      P::multiLine("requirementText", "Objective", kReq),
      P::multiLine("precondition", "Precondition", kReq),
      P::multiLine("steps", "Test Steps", kReq, "one step per line"),
      P::multiLine("expectedResult", "Expected Result", kReq),
      P::multiLine("actualResult", "Actual Result", kReq),
      P::choice("verdict", "Verdict", kReq, {"pass", "fail", "inconclusive", "error", "none"}, ""),
  };
  const Schema constraintBlock{
      parameters(kSysml, "one per line: name : Type"),
      P::text("equation", "Equation", kSysml, {}, "e.g. F = m*a"),
      constraintLanguage(kSysml),
      objectiveFunction(kSysml),
  };
  const Schema constraintUsage{
      definition("SysML V2 ConstraintUsage"),
      P::multiLine("bindings", "Bindings", "Distilled ch.11", "parameter = expression"),
      objectiveFunction("SysML V2 ConstraintUsage"),
  };
  const Schema view{
      P::text("stakeholders", "Stakeholders", kPackage),
      P::multiLine("concerns", "Concerns", kPackage),
      P::multiLine("purpose", "Purpose", kPackage),
      P::text("language", "Modelling Language", kPackage, "SysML"),
      P::multiLine("method", "Method (artifact construction)", kPackage, "how the viewpoint produces its view artifacts"),
      P::text("presentation", "Presentation (artifact format)", kPackage),
      P::text("conformsTo", "Conforms To", kPackage, {}, "viewpoint this view conforms to"),
  };
  Schema package{
      P::choice("stereotype", "Stereotype", kPackage,
                {"model", "modelLibrary", "profile", "metamodel", "framework", "system", "subsystem", "view",
                 "viewpoint"},
                ""),
      P::text("version", "Version", kPackage),
      visibility(kPackage),
  };
  package.insert(package.end(), view.begin(), view.end());
  const Schema action{
      P::multiLine("body", "Action Body", kAction),
      P::text("language", "Language", kAction, {}, "language of the body, e.g. Alf, C"),
      P::text("operation", "Called Operation", kAction, {}, "operation invoked on a target (CallOperationAction)"),
      P::text("duration", "Duration Constraint", kAction, {}, "e.g. {1..5 s}"),
      P::text("behavior", "Called Behavior", kAction),
      P::boolean("rake", "Show Rake (call behavior)", kAction, false),
      P::text("onTarget", "On Target (type)", kAction),
      parameters(kAction, "name : Type, direction"),
      P::multiLine("pre", "Pre-condition", kAction),
      P::multiLine("post", "Post-condition", kAction),
  };
  const Schema actionDef{
      P::multiLine("body", "Action Body", kAction),
      P::text("language", "Language", kAction, {}, "language of the body, e.g. Alf, C"),
      parameters(kAction, "name : Type, direction"),
      P::multiLine("pre", "Pre-condition", kAction),
      P::multiLine("post", "Post-condition", kAction),
  };
  const Schema bpmnTask{
      P::text("assignee", "Assignee", kBpmn, {}, "user / role / group"),
      P::choice("priority", "Priority", kBpmn, {"Normal", "High", "Critical"}, "Normal"),
      P::text("implementation", "Implementation", kBpmn, {}, "e.g. ##WebService"),
      P::text("dueDate", "Due Date", kBpmn, {}, "ISO 8601"),
      P::text("inputs", "Input Data", kBpmn),
      P::text("outputs", "Output Data", kBpmn),
  };
  const Schema topic{
      P::text("priority", "Priority", kMindMap, {}, "1..5"),
      P::integer("progress", "Progress %", kMindMap, "0"),
      P::text("tag", "Tag", kMindMap),
      P::text("owner", "Owner", kMindMap),
      notes(),
  };
  const Schema commentLike{
      P::text("author", "Author", kMindMap),
      P::boolean("resolved", "Resolved", kMindMap, false),
      notes(),
  };

  return {
      // Basic shapes and elements that carry nothing but a description.
      {{S::rect, S::text, S::oval, S::rounded, S::triangle, S::umlInitialNode, S::umlFinalNode, S::umlLifeline,
        S::sysmlFlowFinalNode, S::sysmlTerminatePseudostate, S::sysmlConnectionDef, S::sysmlConnectionUsage,
        S::sysmlAllocationDef, S::sysmlAnalysisDef, S::sysmlAnalysisUsage, S::sysmlVariationDef,
        S::sysmlVariationUsage},
       {}},

      // ---- BPMN ----
      {{S::bpmnAnnotation}, {P::multiLine("body", "Annotation Body", kBpmn)}},
      {{S::bpmnCallActivity}, {P::text("calledElement", "Called Element", kBpmn)}},
      {{S::bpmnDataObject},
       {P::text("dataState", "Data State", kBpmn), P::boolean("isCollection", "Collection", kBpmn, false),
        P::text("itemSubjectRef", "Item Type", kBpmn)}},
      {{S::bpmnDataStore},
       {P::integer("capacity", "Capacity", kBpmn), P::boolean("isUnlimited", "Unlimited", kBpmn, false)}},
      {{S::bpmnStartEvent, S::bpmnEndEvent, S::bpmnIntermediateThrow, S::bpmnIntermediateCatch, S::bpmnTimerEvent,
        S::bpmnMessageEvent, S::bpmnErrorEvent, S::bpmnSignalEvent},
       {P::text("trigger", "Trigger", kBpmn), P::text("payload", "Payload", kBpmn),
        P::boolean("isInterrupting", "Interrupting", kBpmn, true)}},
      {{S::bpmnExclusiveGateway, S::bpmnParallelGateway, S::bpmnInclusiveGateway, S::bpmnEventBasedGateway},
       {P::choice("direction", "Direction", kBpmn, {"Unspecified", "Converging", "Diverging", "Mixed"}, "Diverging"),
        P::text("kind", "Gateway Kind", kBpmn), P::text("condition", "Default Condition", kBpmn)}},
      {{S::bpmnGroup}, {P::text("categoryValue", "Category", kBpmn)}},
      {{S::bpmnLane}, {P::text("partition", "Partition", kBpmn)}},
      {{S::bpmnPool},
       {P::text("participant", "Participant", kBpmn), P::boolean("isHorizontal", "Horizontal", kBpmn, true)}},
      {{S::bpmnSubProcess},
       {P::boolean("isExpanded", "Expanded", kBpmn, true),
        P::boolean("isTriggeredByEvent", "Triggered by Event", kBpmn, false),
        P::boolean("isTransaction", "Transaction", kBpmn, false)}},
      {{S::bpmnTask, S::bpmnUserTask, S::bpmnServiceTask, S::bpmnScriptTask, S::bpmnSendTask, S::bpmnReceiveTask},
       bpmnTask},

      // ---- Mind map ----
      {{S::mindmapCentral}, {P::text("scope", "Scope", kMindMap), notes()}},
      {{S::mindmapCallout, S::mindmapComment}, commentLike},
      {{S::mindmapMainTopic, S::mindmapSubTopic, S::mindmapFloatingTopic}, topic},
      {{S::mindmapBoundary}, {P::text("tag", "Tag", kMindMap), notes()}},

      // ---- Requirements and tests ----
      {{S::sysmlRequirementDef, S::sysmlRequirementUsage}, requirement},
      {{S::sysmlTestCase, S::sysmlVerificationUsage}, testCase},

      // ---- Ports and pins ----
      {{S::sysmlStandardPort},
       {direction(kPort), typeOf(kPort), conjugated(kPort), P::multiplicity("multiplicity", "Multiplicity", kPort)}},
      {{S::sysmlPort, S::sysmlProxyPort}, flavoredPort("proxy")},
      {{S::sysmlFullPort}, flavoredPort("full")},
      {{S::sysmlFlowPort}, flavoredPort("flow")},
      {{S::sysmlPin}, pinLike(true)},
      {{S::sysmlActivityParameter}, pinLike(false)},

      // ---- Structure ----
      {{S::sysmlBlock, S::sysmlPartDef}, block},
      {{S::sysmlPartUsage}, partUsage},
      {{S::sysmlReferenceProperty}, referenceProperty},
      {{S::sysmlValueType},
       {unit("Distilled ch.5 ValueType"), P::text("quantityKind", "Quantity Kind", "Distilled ch.5 ValueType"),
        P::choice("numericType", "Numeric Type", "Distilled ch.5 ValueType",
                  {"Real", "Integer", "Boolean", "String", "Complex"}, "Real")}},
      {{S::sysmlValueProperty},
       {typeOf("Distilled ch.5 ValueType", "value type, e.g. Mass"), P::number("value", "Value", "Distilled ch.5 ValueType", {},
                  "number; written by parametric evaluation when an equation computes it"),
        unit("Distilled ch.5 ValueType"),
        P::number("default", "Default Value", "Distilled ch.5 ValueType", {}, "number; used while Value is empty")}},
      {{S::sysmlEnumeration},
       {P::multiLine("literals", "Literals", kSysml, "one literal per line: RED / GREEN / BLUE"), unit(kSysml)}},
      {{S::sysmlFlowSpecification},
       {P::multiLine("flowProperties", "Flow Properties", kSysml, "name : Type, direction (in / out / inout)")}},
      {{S::sysmlSignal},
       {P::text("specializes", "Specializes", kUml),
        P::multiLine("attributes", "Attributes", kUml, "one per line: name : Type [m..n] = default")}},
      {{S::sysmlInterfaceDef},
       {operations("Distilled ch.6 Interface"), P::text("protocol", "Protocol", "Distilled ch.6 Interface")}},
      {{S::sysmlInterfaceUsage}, {definition("SysML V2 InterfaceUsage"), direction("SysML V2 InterfaceUsage", "")}},
      {{S::sysmlContextBoundary},
       {P::text("contextBlock", "Context Block", kSysml, {}, "block this ibd details, e.g. Camera"),
        P::text("frameLabel", "Frame Label", kSysml, {}, "bracketed view name, e.g. Light Path"),
        P::boolean("showHeader", "Show Frame Header", kSysml, true)}},

      // ---- Parametrics ----
      {{S::sysmlConstraintBlock, S::sysmlConstraintDef, S::sysmlCalculationDef}, constraintBlock},
      {{S::sysmlConstraintProperty},
       {P::text("type", "Constraint Type", kSysml, {}, "name of the constraint block this is a usage of"),
        parameters(kSysml, "one per line: name : Type"),
        P::multiLine("constraints", "Constraints", kSysml, "one per line: expression"), constraintLanguage(kSysml),
        objectiveFunction(kSysml)}},
      {{S::sysmlConstraintUsage, S::sysmlCalculationUsage}, constraintUsage},
      {{S::sysmlConstraintParameter}, {typeOf(kSysml, "value type, e.g. Force"), unit(kSysml)}},

      // ---- Activities ----
      {{S::umlAction}, action},
      {{S::sysmlActionDef}, actionDef},
      {{S::sysmlActionUsage},
       {definition("SysML V2 ActionUsage"), multiplicity("SysML V2 ActionUsage"),
        P::multiLine("arguments", "Arguments", "SysML V2 ActionUsage", "one per line: parameter = value")}},
      {{S::sysmlObjectNode},
       {typeOf(kSysml), P::text("state", "State", kSysml), multiplicity(kSysml),
        P::choice("objectNodeKind", "Object Node Kind", kSysml, {"object node", "buffer", "datastore"}, "object node"),
        P::boolean("overwrite", "Overwrite", kApg, false),
        P::choice("ordering", "Ordering", kSysml, {"unordered", "ordered", "FIFO", "LIFO"}, "FIFO"), stream(kSysml)}},
      {{S::umlDecision},
       {P::text("condition", "Guard / Condition", kUml), P::text("decisionInput", "Decision Input", kUml)}},
      {{S::umlForkJoin}, forkJoin("fork")},
      {{S::sysmlActivityPartition},
       {P::text("represents", "Represents", "Distilled ch.8 Swimlane"),
        P::boolean("isAllocation", "Allocation", "Distilled ch.8 Swimlane", false)}},
      {{S::sysmlSendSignalAction},
       {P::text("signal", "Signal", kAction), P::text("target", "Target", kAction),
        P::multiLine("arguments", "Arguments", kAction, "one per line: attribute = value")}},
      {{S::sysmlAcceptEventAction}, {P::text("event", "Event", kAction), P::text("trigger", "Trigger", kAction)}},
      {{S::sysmlWaitTimeAction},
       {P::choice("timeKind", "Time Event Kind", kAction, {"absolute", "relative"}, "relative"),
        P::text("timeExpression", "Time Expression", kAction, {}, "e.g. at (1430 GMT) / after (2 s)")}},

      // ---- State machines ----
      {{S::umlState, S::sysmlStateDef, S::sysmlStateUsage, S::sysmlCompositeState}, state},
      {{S::sysmlOrthogonalRegion},
       {P::text("regionName", "Region Name", kUml), P::integer("order", "Order", kUml)}},
      {{S::sysmlChoicePseudostate}, pseudostate("choice")},
      {{S::sysmlJunctionPseudostate}, pseudostate("junction")},
      {{S::sysmlForkPseudostate}, forkJoin("fork")},
      {{S::sysmlJoinPseudostate}, forkJoin("join")},
      {{S::sysmlShallowHistoryPseudostate}, history("shallow")},
      {{S::sysmlDeepHistoryPseudostate}, history("deep")},
      {{S::sysmlEntryPoint}, connectionPoint("entry")},
      {{S::sysmlExitPoint}, connectionPoint("exit")},
      {{S::sysmlSubmachineState},
       {P::text("submachine", "Referenced State Machine", kUml, {}, "name of the state machine this state reuses"),
        P::multiLine("entryExitBindings", "Entry/Exit Bindings", kUml, "one per line: <connectionPoint> -> <outerVertex>"),
        P::text("entry", "Entry Action", kUml), P::text("doActivity", "Do Activity", kUml),
        P::text("exit", "Exit Action", kUml)}},

      // ---- Interactions ----
      {{S::umlActivation},
       {P::text("operation", "Operation", kUml),
        P::text("ownerLifeline", "Owner Lifeline", kUml, {}, "id of the lifeline this execution is anchored to")}},
      {{S::sysmlGate},
       {P::choice("gateKind", "Gate Kind", kUml, {"message", "found", "lost", "formal", "actual", "inner", "outer"},
                  "message")}},
      {{S::umlCombinedFragment},
       {P::choice("operator", "Operator", kUml,
                  {"alt", "opt", "loop", "par", "break", "seq", "strict", "critical", "neg", "assert", "ignore",
                   "consider", "ref"},
                  "alt"),
        P::text("guard", "Guard / Condition", kUml), P::text("guard2", "Operand 2 Guard", kUml),
        P::text("guard3", "Operand 3 Guard", kUml), P::integer("numOperands", "Operand Count", kUml),
        P::text("operandSplits", "Operand Splits", kUml, {}, "auto-computed body-height fractions (0..1)")}},

      // ---- Use cases and actors ----
      {{S::umlUseCase, S::sysmlUseCaseDef, S::sysmlUseCaseUsage}, useCase},
      {{S::umlBoundary, S::sysmlSystemBoundary},
       {P::text("subject", "Subject (subsystem / component)", kUseCase), P::text("kind", "Subject Kind", kUseCase)}},
      {{S::umlActor}, {P::text("role", "Role", "UML 2.5 actor"), P::text("organization", "Organization", "UML 2.5 actor")}},
      {{S::sysmlActor},
       {P::choice("actorKind", "Actor Kind", kSysml,
                  {"person", "role", "organization", "system", "hardware", "software", "environment"}, "person"),
        P::text("organization", "Organization", kSysml, {}, "the organization the actor is part of, e.g. procurement"),
        P::text("physicalLocation", "Physical Location", kSysml),
        P::text("skillLevel", "Skill Level", kSysml, {}, "skill level required to use the system"),
        P::text("clearanceLevel", "Clearance Level", kSysml, {}, "clearance level required to access the system")}},

      // ---- Classifiers ----
      {{S::umlClass},
       {P::text("stereotype", "Stereotype", "UML 2.5 / SysML profile", {}, "e.g. block, controller"),
        P::boolean("isAbstract", "Abstract", kUml, false), visibility(kUml),
        P::multiLine("attributes", "Attributes", kUml, "one per line: name : Type [m..n] = default"),
        operations(kUml),
        P::text("extendsMetaclass", "Extends Metaclass", kUml, {}, "for a «stereotype»: the metaclass it extends, e.g. Class")}},
      {{S::umlInterface}, {stereotypeText("UML 2.5 / SysML profile"), operations(kUml)}},
      {{S::umlComponent},
       {interfaces("provided", "Provided Interfaces", kUml), interfaces("required", "Required Interfaces", kUml),
        P::text("version", "Version", kUml)}},
      {{S::umlArtifact},
       {P::text("fileName", "File Name", kUml),
        P::choice("artifactKind", "Kind", kUml, {"file", "document", "executable", "library", "script", "source"},
                  "file")}},
      {{S::umlNodeDevice},
       {P::choice("kind", "Kind", "UML 2.5 node", {"node", "device", "executionEnvironment"}, "device"),
        P::text("address", "Network Address", "UML 2.5 node")}},
      {{S::umlObject},
       {P::text("classifier", "Classifier", kUml), P::multiLine("slots", "Slot Values", kUml, "name = value")}},
      {{S::umlNote}, {P::multiLine("body", "Note Body", kUml)}},

      // ---- Packages and views ----
      {{S::umlPackage}, package},
      {{S::sysmlViewUsage, S::sysmlViewpointUsage}, view},
  };
}

P trailer() { return P::multiLine("documentation", "Documentation", "KerML doc comment", "Free-form description / rationale"); }

}  // namespace

SchemaRegistry::SchemaRegistry() {
  schemas_.push_back(Schema{trailer()});  // unassigned values
  slot_.fill(0);
  for (SchemaDef& def : buildTables()) {
    def.entries.push_back(trailer());
    const auto index = static_cast<std::uint16_t>(schemas_.size());
    schemas_.push_back(std::move(def.entries));
    for (S t : def.types) {
      const auto v = static_cast<std::size_t>(t);
      // A shape listed twice is a mistake in the table above.
      if (v >= slot_.size() || slot_[v] != 0) throw std::logic_error("shape type assigned to two schemas");
      slot_[v] = index;
    }
  }
}

const Schema& SchemaRegistry::schemaOf(core::ShapeType type) const noexcept {
  const auto v = static_cast<std::int64_t>(type);
  if (v < 0 || v >= static_cast<std::int64_t>(slot_.size())) return schemas_.front();
  return schemas_[slot_[static_cast<std::size_t>(v)]];
}

const SchemaRegistry& schemaRegistry() {
  static const SchemaRegistry registry;
  return registry;
}

}  // namespace modelyne::io::detail

#include "interchange/sysml_keywords.h"

#include <algorithm>
#include <array>
#include <string>
#include <vector>

namespace modelyne::interchange {

namespace {

using S = core::ShapeType;
using K = core::DiagramKind;
using E = core::EdgeType;
using C = Compartment;

constexpr KindInfo def(std::string_view p, S shape, K own, Home home = Home::bdd) {
  return {p, Role::definition, shape, own, home, C::none, true};
}
constexpr KindInfo use(std::string_view p, S shape, K own, Home home, C c, bool inOwn) {
  return {p, Role::usage, shape, own, home, c, inOwn};
}
constexpr KindInfo rel(std::string_view p, E edge, EndSyntax ends) {
  return {p, Role::relationship, S::rect, K::ibd, Home::bdd, C::none, false, edge, ends};
}
constexpr KindInfo other(std::string_view p, Role role) { return {p, role}; }

// Rows sharing a shape: the first one is the phrase written for a node of
// that shape that carries no keyword of its own.
constexpr std::array kKinds{
    // ---- namespaces ----
    other("package", Role::package),
    other("library package", Role::package),
    other("standard library package", Role::package),
    other("namespace", Role::package),
    // ---- definitions ----
    def("part def", S::sysmlPartDef, K::ibd),
    def("item def", S::sysmlPartDef, K::ibd),
    def("port def", S::sysmlPartDef, K::ibd),
    def("occurrence def", S::sysmlPartDef, K::sd),
    def("metadata def", S::sysmlPartDef, K::ibd),
    def("attribute def", S::sysmlValueType, K::ibd),
    def("enum def", S::sysmlEnumeration, K::ibd),
    def("connection def", S::sysmlConnectionDef, K::ibd),
    def("flow def", S::sysmlConnectionDef, K::ibd),
    def("interface def", S::sysmlInterfaceDef, K::ibd),
    def("allocation def", S::sysmlAllocationDef, K::ibd),
    def("action def", S::sysmlActionDef, K::act),
    def("state def", S::sysmlStateDef, K::stm),
    def("requirement def", S::sysmlRequirementDef, K::req, Home::req),
    def("concern def", S::sysmlRequirementDef, K::req, Home::req),
    def("constraint def", S::sysmlConstraintDef, K::par),
    def("calc def", S::sysmlCalculationDef, K::par),
    def("analysis def", S::sysmlAnalysisDef, K::act),
    def("case def", S::sysmlAnalysisDef, K::act),
    def("verification def", S::sysmlTestCase, K::act, Home::req),
    def("use case def", S::sysmlUseCaseDef, K::uc, Home::uc),
    def("view def", S::sysmlViewUsage, K::bdd),
    def("rendering def", S::sysmlViewUsage, K::bdd),
    def("viewpoint def", S::sysmlViewpointUsage, K::bdd),
    // KerML classifiers, read where they share the SysML syntax.
    def("class", S::sysmlPartDef, K::ibd),
    def("struct", S::sysmlPartDef, K::ibd),
    def("assoc struct", S::sysmlConnectionDef, K::ibd),
    def("assoc", S::sysmlConnectionDef, K::ibd),
    def("datatype", S::sysmlValueType, K::ibd),
    def("classifier", S::sysmlPartDef, K::ibd),
    def("type", S::sysmlPartDef, K::ibd),
    def("metaclass", S::sysmlPartDef, K::ibd),
    def("behavior", S::sysmlActionDef, K::act),
    def("interaction", S::sysmlActionDef, K::sd),
    def("function", S::sysmlCalculationDef, K::par),
    def("predicate", S::sysmlConstraintDef, K::par),
    // ---- usages ----
    use("part", S::sysmlPartUsage, K::ibd, Home::bdd, C::parts, true),
    use("item", S::sysmlPartUsage, K::ibd, Home::bdd, C::parts, true),
    use("individual", S::sysmlPartUsage, K::ibd, Home::bdd, C::parts, true),
    use("occurrence", S::sysmlPartUsage, K::sd, Home::bdd, C::parts, true),
    use("event occurrence", S::sysmlPartUsage, K::sd, Home::bdd, C::parts, true),
    use("event", S::sysmlPartUsage, K::sd, Home::bdd, C::parts, true),
    use("snapshot", S::sysmlPartUsage, K::ibd, Home::bdd, C::parts, true),
    use("timeslice", S::sysmlPartUsage, K::ibd, Home::bdd, C::parts, true),
    use("ref", S::sysmlReferenceProperty, K::ibd, Home::bdd, C::references, false),
    use("attribute", S::sysmlValueProperty, K::ibd, Home::bdd, C::values, false),
    use("port", S::sysmlPort, K::ibd, Home::bdd, C::ports, true),
    use("connection", S::sysmlConnectionUsage, K::ibd, Home::bdd, C::members, true),
    use("interface", S::sysmlInterfaceUsage, K::ibd, Home::bdd, C::members, true),
    use("allocation", S::sysmlConnectionUsage, K::ibd, Home::bdd, C::members, true),
    use("binding", S::sysmlConnectionUsage, K::ibd, Home::bdd, C::members, true),
    use("action", S::sysmlActionUsage, K::act, Home::bdd, C::members, true),
    use("perform action", S::sysmlActionUsage, K::act, Home::bdd, C::members, true),
    use("perform", S::sysmlActionUsage, K::act, Home::bdd, C::members, true),
    use("accept", S::sysmlAcceptEventAction, K::act, Home::bdd, C::members, true),
    use("send", S::sysmlSendSignalAction, K::act, Home::bdd, C::members, true),
    use("assign", S::sysmlActionUsage, K::act, Home::bdd, C::members, true),
    use("decide", S::umlDecision, K::act, Home::bdd, C::members, true),
    use("merge", S::umlDecision, K::act, Home::bdd, C::members, true),
    use("fork", S::umlForkJoin, K::act, Home::bdd, C::members, true),
    use("join", S::umlForkJoin, K::act, Home::bdd, C::members, true),
    use("terminate", S::sysmlTerminatePseudostate, K::act, Home::bdd, C::members, true),
    use("state", S::sysmlStateUsage, K::stm, Home::bdd, C::members, true),
    use("exhibit state", S::sysmlStateUsage, K::stm, Home::bdd, C::members, true),
    use("exhibit", S::sysmlStateUsage, K::stm, Home::bdd, C::members, true),
    use("requirement", S::sysmlRequirementUsage, K::req, Home::req, C::members, true),
    use("concern", S::sysmlRequirementUsage, K::req, Home::req, C::members, true),
    use("objective", S::sysmlRequirementUsage, K::req, Home::req, C::members, true),
    use("constraint", S::sysmlConstraintUsage, K::par, Home::bdd, C::constraints, true),
    use("assert constraint", S::sysmlConstraintUsage, K::par, Home::bdd, C::constraints, true),
    use("assert", S::sysmlConstraintUsage, K::par, Home::bdd, C::constraints, true),
    use("require constraint", S::sysmlConstraintUsage, K::par, Home::bdd, C::constraints, true),
    use("require", S::sysmlConstraintUsage, K::par, Home::bdd, C::constraints, true),
    use("assume constraint", S::sysmlConstraintUsage, K::par, Home::bdd, C::constraints, true),
    use("assume", S::sysmlConstraintUsage, K::par, Home::bdd, C::constraints, true),
    use("calc", S::sysmlCalculationUsage, K::par, Home::bdd, C::members, true),
    use("analysis", S::sysmlAnalysisUsage, K::act, Home::bdd, C::members, true),
    use("case", S::sysmlAnalysisUsage, K::act, Home::bdd, C::members, true),
    use("verification", S::sysmlVerificationUsage, K::act, Home::req, C::members, true),
    use("use case", S::sysmlUseCaseUsage, K::uc, Home::uc, C::members, true),
    use("include use case", S::sysmlUseCaseUsage, K::uc, Home::uc, C::members, true),
    use("include", S::sysmlUseCaseUsage, K::uc, Home::uc, C::members, true),
    use("actor", S::sysmlActor, K::uc, Home::uc, C::members, true),
    use("stakeholder", S::sysmlActor, K::uc, Home::uc, C::members, false),
    use("subject", S::sysmlSystemBoundary, K::uc, Home::uc, C::members, false),
    use("view", S::sysmlViewUsage, K::bdd, Home::bdd, C::members, true),
    use("viewpoint", S::sysmlViewpointUsage, K::bdd, Home::bdd, C::members, true),
    use("rendering", S::sysmlViewUsage, K::bdd, Home::bdd, C::members, true),
    use("return", S::sysmlActivityParameter, K::act, Home::bdd, C::parameters, false),
    use("enum", S::sysmlEnumeration, K::ibd, Home::bdd, C::literals, false),
    use("end", S::sysmlPort, K::ibd, Home::bdd, C::members, false),
    use("frame", S::sysmlRequirementUsage, K::req, Home::req, C::members, false),
    use("expose", S::rect, K::bdd, Home::bdd, C::members, false),
    use("render", S::rect, K::bdd, Home::bdd, C::members, false),
    use("filter", S::rect, K::bdd, Home::bdd, C::members, false),
    use("feature", S::sysmlValueProperty, K::ibd, Home::bdd, C::values, false),
    use("step", S::sysmlActionUsage, K::act, Home::bdd, C::members, true),
    use("expr", S::sysmlCalculationUsage, K::par, Home::bdd, C::members, true),
    use("inv", S::sysmlConstraintUsage, K::par, Home::bdd, C::constraints, true),
    use("bool", S::sysmlConstraintUsage, K::par, Home::bdd, C::constraints, true),
    // ---- relationships ----
    rel("connect", E::association, EndSyntax::connectTo),
    rel("connector", E::association, EndSyntax::connectTo),
    rel("bind", E::sysmlBindingConnector, EndSyntax::bindEquals),
    rel("succession flow", E::sysmlItemFlow, EndSyntax::fromTo),
    rel("flow", E::sysmlItemFlow, EndSyntax::fromTo),
    rel("message", E::sysmlAsyncMessage, EndSyntax::fromTo),
    rel("first", E::sysmlControlFlow, EndSyntax::firstThen),
    rel("succession", E::sysmlControlFlow, EndSyntax::firstThen),
    rel("then", E::sysmlControlFlow, EndSyntax::firstThen),
    rel("transition", E::sysmlTransition, EndSyntax::transition),
    rel("satisfy", E::sysmlSatisfy, EndSyntax::satisfyBy),
    rel("verify requirement", E::sysmlVerify, EndSyntax::ownerTo),
    rel("verify", E::sysmlVerify, EndSyntax::ownerTo),
    rel("allocate", E::sysmlAllocate, EndSyntax::allocateTo),
    rel("dependency", E::dependency, EndSyntax::fromTo),
    KindInfo{"import", Role::import, S::rect, K::pkg, Home::bdd, C::none, false, E::sysmlImport, EndSyntax::import},
    // ---- everything else ----
    other("alias", Role::alias),
    other("doc", Role::doc),
    other("comment", Role::comment),
    other("locale", Role::comment),
    other("metadata", Role::metadata),
    other("entry", Role::stateAction),
    other("do", Role::stateAction),
    other("exit", Role::stateAction),
    other("if", Role::control),
    other("else", Role::control),
    other("while", Role::control),
    other("loop", Role::control),
    other("until", Role::control),
    other("for", Role::control),
    other("rep", Role::textual),
    other("language", Role::textual),
};

// Further node types that a drawn diagram may hold, with the phrase that
// writes them; consulted after the table above.
struct ExtraPhrase {
  S shape;
  std::string_view phrase;
};
constexpr std::array kExtraPhrases{
    ExtraPhrase{S::sysmlBlock, "part def"},        ExtraPhrase{S::umlClass, "part def"},
    ExtraPhrase{S::sysmlConstraintBlock, "constraint def"},
    ExtraPhrase{S::sysmlSignal, "item def"},       ExtraPhrase{S::sysmlFlowSpecification, "port def"},
    ExtraPhrase{S::sysmlFlowPort, "port"},         ExtraPhrase{S::sysmlProxyPort, "port"},
    ExtraPhrase{S::sysmlFullPort, "port"},         ExtraPhrase{S::sysmlStandardPort, "port"},
    ExtraPhrase{S::sysmlConstraintProperty, "constraint"},
    ExtraPhrase{S::sysmlConstraintParameter, "attribute"},
    ExtraPhrase{S::sysmlObjectNode, "item"},       ExtraPhrase{S::sysmlPin, "in"},
    ExtraPhrase{S::umlAction, "action"},           ExtraPhrase{S::umlState, "state"},
    ExtraPhrase{S::sysmlCompositeState, "state"},  ExtraPhrase{S::umlActor, "actor"},
    ExtraPhrase{S::umlUseCase, "use case"},        ExtraPhrase{S::umlInterface, "interface def"},
    ExtraPhrase{S::umlComponent, "part def"},      ExtraPhrase{S::umlObject, "part"},
    ExtraPhrase{S::umlPackage, "package"},         ExtraPhrase{S::sysmlVariationDef, "part def"},
    ExtraPhrase{S::sysmlVariationUsage, "part"},   ExtraPhrase{S::sysmlWaitTimeAction, "accept"},
};

struct EdgePhrase {
  E edge;
  std::string_view phrase;
};
constexpr std::array kEdgePhrases{
    EdgePhrase{E::sysmlObjectFlow, "flow"},
    EdgePhrase{E::sysmlSyncMessage, "message"},
    EdgePhrase{E::sysmlReplyMessage, "message"},
    EdgePhrase{E::sysmlCreateMessage, "message"},
    EdgePhrase{E::sysmlDeleteMessage, "message"},
};

constexpr auto kPrefixWords = std::to_array<std::string_view>({
    "abstract", "variation", "variant", "individual", "readonly", "derived", "constant", "end",
    "ref",      "in",        "out",     "inout",      "composite", "portion", "var",     "const",
    "nonunique", "ordered",  "private", "public",     "protected", "event",   "snapshot", "timeslice"});

constexpr auto kExpressionWords = std::to_array<std::string_view>({
    "if", "not", "true", "false", "null", "new", "all", "meta", "and", "or", "xor", "implies", "istype",
    "hastype", "as", "@"});

constexpr auto kReserved = std::to_array<std::string_view>({
    "about", "abstract", "accept", "action", "actor", "after", "alias", "all", "allocate", "allocation",
    "analysis", "and", "as", "assert", "assign", "assoc", "assume", "at", "attribute", "behavior", "bind",
    "binding", "bool", "by", "calc", "case", "chains", "class", "classifier", "comment", "composite",
    "concern", "conjugate", "conjugates", "conjugation", "connect", "connection", "connector", "const",
    "constant", "constraint", "crosses", "datatype", "decide", "def", "default", "defined", "dependency",
    "derived", "differences", "disjoining", "disjoint", "do", "doc", "else", "end", "entry", "enum", "event",
    "exhibit", "exit", "expose", "expr", "false", "feature", "featured", "featuring", "filter", "first",
    "flow", "for", "fork", "frame", "from", "function", "hastype", "if", "implies", "import", "in",
    "include", "individual", "inout", "interaction", "interface", "intersects", "inv", "inverse",
    "inverting", "istype", "item", "join", "language", "library", "locale", "loop", "member", "merge",
    "message", "meta", "metaclass", "metadata", "multiplicity", "namespace", "new", "nonunique", "not",
    "null", "objective", "occurrence", "of", "or", "ordered", "out", "package", "parallel", "part",
    "perform", "port", "portion", "predicate", "private", "protected", "public", "redefines",
    "redefinition", "ref", "references", "render", "rendering", "rep", "require", "requirement", "return",
    "satisfy", "send", "snapshot", "specialization", "specializes", "stakeholder", "standard", "state",
    "step", "struct", "subclassifier", "subject", "subset", "subsets", "subtype", "succession",
    "terminate", "then", "timeslice", "to", "transition", "true", "type", "typed", "typing", "unions",
    "until", "use", "var", "variant", "variation", "verification", "verify", "via", "view", "viewpoint",
    "when", "while", "xor"});

// Compartments in enumeration order: persistent key and the word a line
// stands for when it names none of its own.
struct CompartmentInfo {
  std::string_view key;
  std::string_view word;
};
constexpr std::array<CompartmentInfo, 9> kCompartments{{{"", ""},
                                                        {"values", "attribute"},
                                                        {"parts", "part"},
                                                        {"references", "ref"},
                                                        {"ports", "port"},
                                                        {"constraints", "constraint"},
                                                        {"literals", "enum"},
                                                        {"parameters", ""},
                                                        {"sysmlMembers", ""}}};

template <std::size_t N>
bool contains(const std::array<std::string_view, N>& words, std::string_view w) {
  return std::find(words.begin(), words.end(), w) != words.end();
}

std::size_t wordCount(std::string_view phrase) { return static_cast<std::size_t>(std::count(phrase.begin(), phrase.end(), ' ')) + 1; }

}  // namespace

const KindInfo* findKind(std::span<const std::string_view> words, std::size_t& matched) {
  const KindInfo* best = nullptr;
  std::size_t bestWords = 0;
  for (const KindInfo& k : kKinds) {
    const std::size_t n = wordCount(k.phrase);
    if (n > words.size() || n <= bestWords) continue;
    std::string_view rest = k.phrase;
    bool ok = true;
    for (std::size_t i = 0; i < n && ok; ++i) {
      const std::size_t space = rest.find(' ');
      const std::string_view w = rest.substr(0, space);
      ok = words[i] == w;
      rest = space == std::string_view::npos ? std::string_view() : rest.substr(space + 1);
    }
    if (ok) {
      best = &k;
      bestWords = n;
    }
  }
  matched = bestWords;
  return best;
}

const KindInfo* kindByPhrase(std::string_view phrase) {
  for (const KindInfo& k : kKinds)
    if (k.phrase == phrase) return &k;
  return nullptr;
}

std::string_view defaultPhraseOf(core::ShapeType type) {
  for (const KindInfo& k : kKinds)
    if ((k.role == Role::definition || k.role == Role::usage) && k.shape == type) return k.phrase;
  for (const ExtraPhrase& e : kExtraPhrases)
    if (e.shape == type) return e.phrase;
  return {};
}

std::string_view defaultPhraseOf(core::EdgeType type) {
  for (const KindInfo& k : kKinds)
    if ((k.role == Role::relationship || k.role == Role::import) && k.edge == type) return k.phrase;
  for (const EdgePhrase& e : kEdgePhrases)
    if (e.edge == type) return e.phrase;
  return {};
}

bool isPrefixWord(std::string_view w) { return contains(kPrefixWords, w); }
bool isReservedWord(std::string_view w) { return contains(kReserved, w); }
bool isExpressionWord(std::string_view w) { return contains(kExpressionWords, w); }

std::string_view compartmentKey(Compartment c) { return kCompartments[static_cast<std::size_t>(c)].key; }
std::string_view compartmentWord(Compartment c) { return kCompartments[static_cast<std::size_t>(c)].word; }

}  // namespace modelyne::interchange

#include "shell/shape_defaults.h"

#include <array>

namespace modelyne::shell {
namespace {

using core::ShapeType;

struct SizeRow {
  ShapeType type;
  float w;
  float h;
};

// Types not listed get the ordinary box of 160 x 80.
constexpr std::array kSizes{
    SizeRow{ShapeType::text, 120, 30},
    SizeRow{ShapeType::oval, 140, 80},
    SizeRow{ShapeType::triangle, 100, 90},
    SizeRow{ShapeType::umlClass, 180, 110},
    SizeRow{ShapeType::umlInterface, 160, 90},
    SizeRow{ShapeType::umlActor, 50, 80},
    SizeRow{ShapeType::umlUseCase, 160, 70},
    SizeRow{ShapeType::umlPackage, 200, 130},
    SizeRow{ShapeType::umlInitialNode, 28, 28},
    SizeRow{ShapeType::umlFinalNode, 30, 30},
    SizeRow{ShapeType::umlAction, 150, 60},
    SizeRow{ShapeType::umlDecision, 60, 60},
    SizeRow{ShapeType::umlForkJoin, 120, 8},
    SizeRow{ShapeType::umlState, 150, 70},
    SizeRow{ShapeType::umlLifeline, 120, 360},
    SizeRow{ShapeType::umlActivation, 14, 90},
    SizeRow{ShapeType::umlCombinedFragment, 300, 180},
    SizeRow{ShapeType::umlNote, 150, 70},
    SizeRow{ShapeType::umlBoundary, 360, 260},
    SizeRow{ShapeType::bpmnStartEvent, 36, 36},
    SizeRow{ShapeType::bpmnEndEvent, 36, 36},
    SizeRow{ShapeType::bpmnIntermediateThrow, 36, 36},
    SizeRow{ShapeType::bpmnIntermediateCatch, 36, 36},
    SizeRow{ShapeType::bpmnTimerEvent, 36, 36},
    SizeRow{ShapeType::bpmnMessageEvent, 36, 36},
    SizeRow{ShapeType::bpmnErrorEvent, 36, 36},
    SizeRow{ShapeType::bpmnSignalEvent, 36, 36},
    SizeRow{ShapeType::bpmnTask, 140, 70},
    SizeRow{ShapeType::bpmnUserTask, 140, 70},
    SizeRow{ShapeType::bpmnServiceTask, 140, 70},
    SizeRow{ShapeType::bpmnScriptTask, 140, 70},
    SizeRow{ShapeType::bpmnSendTask, 140, 70},
    SizeRow{ShapeType::bpmnReceiveTask, 140, 70},
    SizeRow{ShapeType::bpmnSubProcess, 220, 140},
    SizeRow{ShapeType::bpmnCallActivity, 140, 70},
    SizeRow{ShapeType::bpmnExclusiveGateway, 50, 50},
    SizeRow{ShapeType::bpmnParallelGateway, 50, 50},
    SizeRow{ShapeType::bpmnInclusiveGateway, 50, 50},
    SizeRow{ShapeType::bpmnEventBasedGateway, 50, 50},
    SizeRow{ShapeType::bpmnPool, 600, 200},
    SizeRow{ShapeType::bpmnLane, 560, 120},
    SizeRow{ShapeType::bpmnDataObject, 50, 64},
    SizeRow{ShapeType::bpmnDataStore, 70, 60},
    SizeRow{ShapeType::bpmnAnnotation, 150, 60},
    SizeRow{ShapeType::bpmnGroup, 300, 200},
    SizeRow{ShapeType::mindmapCentral, 180, 70},
    SizeRow{ShapeType::mindmapMainTopic, 150, 50},
    SizeRow{ShapeType::mindmapSubTopic, 130, 40},
    SizeRow{ShapeType::mindmapFloatingTopic, 130, 40},
    SizeRow{ShapeType::mindmapCallout, 140, 50},
    SizeRow{ShapeType::mindmapBoundary, 320, 220},
    SizeRow{ShapeType::mindmapComment, 150, 50},
    SizeRow{ShapeType::sysmlPartDef, 180, 110},
    SizeRow{ShapeType::sysmlPartUsage, 180, 90},
    SizeRow{ShapeType::sysmlBlock, 180, 110},
    SizeRow{ShapeType::sysmlRequirementDef, 200, 100},
    SizeRow{ShapeType::sysmlRequirementUsage, 200, 100},
    SizeRow{ShapeType::sysmlActor, 50, 80},
    SizeRow{ShapeType::sysmlActivityPartition, 240, 400},
    SizeRow{ShapeType::sysmlObjectNode, 120, 50},
    SizeRow{ShapeType::sysmlPin, 16, 16},
    SizeRow{ShapeType::sysmlFlowPort, 16, 16},
    SizeRow{ShapeType::sysmlProxyPort, 16, 16},
    SizeRow{ShapeType::sysmlFullPort, 16, 16},
    SizeRow{ShapeType::sysmlStandardPort, 16, 16},
    SizeRow{ShapeType::sysmlPort, 18, 18},
    SizeRow{ShapeType::sysmlConstraintParameter, 18, 18},
    SizeRow{ShapeType::sysmlSendSignalAction, 150, 60},
    SizeRow{ShapeType::sysmlAcceptEventAction, 150, 60},
    SizeRow{ShapeType::sysmlSystemBoundary, 360, 280},
    SizeRow{ShapeType::sysmlFlowFinalNode, 30, 30},
    SizeRow{ShapeType::sysmlWaitTimeAction, 30, 40},
    SizeRow{ShapeType::sysmlActivityParameter, 100, 40},
    SizeRow{ShapeType::sysmlCompositeState, 260, 180},
    SizeRow{ShapeType::sysmlJunctionPseudostate, 20, 20},
    SizeRow{ShapeType::sysmlOrthogonalRegion, 260, 140},
    SizeRow{ShapeType::sysmlConstraintBlock, 200, 110},
    SizeRow{ShapeType::sysmlConstraintProperty, 180, 70},
    SizeRow{ShapeType::sysmlValueProperty, 140, 50},
    SizeRow{ShapeType::sysmlChoicePseudostate, 40, 40},
    SizeRow{ShapeType::sysmlForkPseudostate, 120, 8},
    SizeRow{ShapeType::sysmlJoinPseudostate, 120, 8},
    SizeRow{ShapeType::sysmlShallowHistoryPseudostate, 30, 30},
    SizeRow{ShapeType::sysmlDeepHistoryPseudostate, 30, 30},
    SizeRow{ShapeType::sysmlTerminatePseudostate, 24, 24},
    SizeRow{ShapeType::sysmlEntryPoint, 22, 22},
    SizeRow{ShapeType::sysmlExitPoint, 22, 22},
    SizeRow{ShapeType::sysmlGate, 16, 16},
    SizeRow{ShapeType::sysmlContextBoundary, 480, 320},
};

}  // namespace

QSizeF defaultNodeSize(core::ShapeType type) noexcept {
  for (const SizeRow& r : kSizes)
    if (r.type == type) return {r.w, r.h};
  return {160, 80};
}

}  // namespace modelyne::shell

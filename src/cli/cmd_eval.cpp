// modelyne eval: one parametric expression, or the propagation over a
// parametric diagram.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "cli/commands.h"
#include "cli/model_input.h"
#include "cli/output.h"
#include "cli/var_option.h"
#include "io/quoted_text.h"
#include "sim/compiled_expression.h"
#include "io/xml_escape.h"
#include "sim/expression.h"
#include "sim/number_text.h"
#include "sim/propagation.h"

namespace modelyne::cli {

namespace {

namespace par = core::sim::parametric;

constexpr std::array kOptions{OptionSpec{"--var", "", "NAME=VALUE", true}, OptionSpec{"--trace", "", ""},
                              kModelOption};

constexpr std::string_view kHelp =
    "usage: modelyne eval EXPR [--var NAME=VALUE]...\n"
    "       modelyne eval FILE [--trace] [--model ID]\n"
    "\n"
    "With an expression: prints its value in the shortest form that reads back\n"
    "to the same number. Operators + - * / ^ and parentheses; a division by\n"
    "zero gives 0; a name without --var counts as 0 and is reported.\n"
    "With a model file (an existing file, or \"-\"): propagates the constraints\n"
    "of the parametric diagram and prints \"name = value\" per value (nan: no\n"
    "value), then with --trace one line per trace event: sequence, event,\n"
    "name, value before, value after, detail.\n"
    "\n"
    "exit status: 0 done; 1 a name was unresolved or the values did not\n"
    "settle; 2 error (a syntax error prints its message and column; in a file,\n"
    "an equation that does not parse is reported as FILE:LINE, node and\n"
    "column, and the values that could be computed are still printed).\n"
    "\n"
    "examples:\n"
    "  modelyne eval 'mass * g' --var mass=1500 --var g=9.81\n"
    "  modelyne eval samples/par-stopping-distance.xml --trace\n";

std::string number(double v) { return core::sim::shortestNumberText(v); }

// The line of the file on which node `id`'s element starts, 0 when it cannot
// be found (a diagram embedded in escaped form).
unsigned nodeLine(const LoadedModel& model, const std::string& id) {
  const std::string_view xml = model.file.diagramText(model.index);
  const std::string attribute = " id=\"" + io::escapeXml(id) + "\"";
  std::size_t at = 0;
  for (;; at += attribute.size()) {
    at = xml.find(attribute, at);
    if (at == std::string_view::npos) return 0;
    const std::size_t open = xml.rfind('<', at);
    if (open != std::string_view::npos && xml.compare(open, 6, "<node ") == 0) break;
  }
  return diagramFirstLine(model.file, model.index) + static_cast<unsigned>(std::count(xml.begin(), xml.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
}

par::VariableTable variablesFrom(const Args& args) {
  par::VariableTable table;
  for (auto& [name, value] : varOptions(args)) table[name] = value;
  return table;
}

int evalExpression(const Args& args, const std::string& text) {
  if (args.has("--trace")) throw CliError("--trace applies to a model file, not to an expression");
  const par::VariableTable table = variablesFrom(args);
  par::Evaluation result;
  std::vector<std::string> missing;
  // What looks like a path ("a/b.xml") and does not read as an expression is
  // a missing file; "8 / 2" still divides.
  const auto refused = [&](std::string why) {
    if (text.find('/') != std::string::npos || text.ends_with(".xml"))
      return CliError(located(io::shortenedText(text), 0, "no such file"));
    return CliError(why);
  };
  try {
    result = par::EvaluateExpression(text, table);
    if (result.unresolved) {
      const par::CompiledExpression compiled = par::CompiledExpression::compile(text);
      for (const std::string& name : compiled.variables())
        if (!table.contains(name)) missing.push_back(name);
    }
  } catch (const par::ParseError& e) {
    throw refused("column " + std::to_string(e.column()) + ": " + e.what());
  } catch (const std::out_of_range&) {
    throw refused("number out of range");
  } catch (const std::invalid_argument&) {
    throw refused("invalid number");
  }
  writeResult(std::nullopt, number(result.value) + "\n");
  for (const std::string& name : missing) diagnostic("modelyne: unresolved name: " + name);
  return result.unresolved ? kExitNegative : kExitOk;
}

int evalModel(const Args& args, const std::string& fileArg) {
  if (args.has("--var")) throw CliError("--var applies to an expression, not to a model file");
  LoadedModel model = loadModel(args, fileArg);
  const par::PropagationResult result = par::propagate(*model.doc);

  std::string out;
  for (const par::ValueEntry& v : result.values) out += v.name + " = " + number(v.value) + "\n";
  if (args.has("--trace")) {
    for (const par::TraceEvent& e : result.trace) {
      out += std::to_string(e.sequence) + " " + std::string(par::traceCodeName(e.code)) + " \"" + e.name + "\" " +
             number(e.before) + " " + number(e.after) + " " + std::to_string(e.detail) + "\n";
    }
  }
  writeResult(std::nullopt, out);

  bool unparsed = false;
  for (const par::PropagationError& e : result.errors) {
    if (!e.syntaxError.empty()) {
      // An equation that does not parse is an error in the file, not a
      // finding: its values are missing, so the result is incomplete.
      unparsed = true;
      const std::string column = e.column > 0 ? "column " + std::to_string(e.column) + ": " : "";
      diagnostic("modelyne: error: " + located(model.file.name, nodeLine(model, e.nodeId),
                                               "node '" + e.nodeId + "' equation: " + column + e.syntaxError));
      continue;
    }
    diagnostic("modelyne: " + located(model.file.name, 0, (e.nodeId.empty() ? "" : "node '" + e.nodeId + "': ") + e.message));
  }
  for (const std::string& name : result.unresolved) diagnostic("modelyne: unresolved name: " + name);
  if (!result.converged) diagnostic("modelyne: the values did not settle");
  if (unparsed) return kExitError;
  return result.converged && result.unresolved.empty() ? kExitOk : kExitNegative;
}

int run(const Args& args) {
  expectPositionals(args, 1, 1, "eval", "an EXPR or a FILE");
  const std::string& arg = args.positionals[0];
  std::error_code ec;
  if (arg == "-" || std::filesystem::is_regular_file(arg, ec)) return evalModel(args, arg);
  return evalExpression(args, arg);
}

}  // namespace

const Command& evalCommand() {
  static const Command command{"eval", "evaluate an expression or a parametric diagram", kHelp,
                               kOptions, true, run};
  return command;
}

}  // namespace modelyne::cli

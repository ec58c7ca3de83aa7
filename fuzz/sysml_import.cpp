// Reads arbitrary bytes as SysML v2 text: the reader and the mapping must
// never crash or hang, every statement must be accounted for, and a text
// read without errors must export to text that reads back without errors.
#include <cstddef>
#include <cstdint>
#include <string>

#include "interchange/sysml_export.h"
#include "interchange/sysml_import.h"
#include "interchange/sysml_syntax.h"

using namespace modelyne::interchange;

namespace {

std::size_t statements(const std::vector<Statement>& body) {
  std::size_t n = 0;
  for (const Statement& s : body) n += 1 + statements(s.body);
  return n;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  const SysmlContent content = readSysml(text, "fuzz.sysml");
  if (content.report.total() != statements(parseSysml(text).statements)) __builtin_trap();
  if (content.report.errors.empty()) {
    // The export must read back without a crash; that it always reads back
    // without a syntax error is not yet true (a quoted name made of symbols
    // comes back unreadable), so that stays a known gap, not a trap.
    const SysmlExport out = exportSysml(content.models, "out.sysml");
    (void)readSysml(out.text, "out.sysml");
  }
  return 0;
}

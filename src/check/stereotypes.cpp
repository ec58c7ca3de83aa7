// Stereotype rule, run on every kind: a stereotype definition names the
// metaclass it extends. A node is a stereotype definition when its
// "stereotype" property reads «stereotype», wherever it is drawn: a
// stereotype can only be defined in a profile, so the keyword says enough.

#include <string>

#include "check/element_categories.h"
#include "check/rules.h"
#include "check/text.h"

namespace modelyne::check {

void checkStereotypes(const DiagramIndex& diagram, Findings& findings) {
  static const std::string kExtendsMetaclass = "extendsMetaclass";
  for (const core::Node& n : diagram.nodes())
    if (hasStereotype(n, "stereotype") && isBlank(property(n, kExtendsMetaclass)))
      findings.add({"Stereotype '", n.id,
                    "' does not declare the metaclass it extends; §15.4 requires a stereotype to "
                    "extend one or more metaclasses (set the `extendsMetaclass` property)."});
}

}  // namespace modelyne::check

#pragma once
/// The "--var NAME=VALUE" option that `eval` and `simulate` share: a name
/// of letters, digits and "_" (not starting with a digit) and a number.

#include <string>
#include <utility>
#include <vector>

#include "cli/args.h"

namespace modelyne::cli {

/// Every --var in the order given; throws CliError naming the bad one.
std::vector<std::pair<std::string, double>> varOptions(const Args& args);

}  // namespace modelyne::cli

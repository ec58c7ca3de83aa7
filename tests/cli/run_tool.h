#pragma once
// Runs the built `modelyne` binary as a child process, with standard input
// from a string and standard output and error captured whole.

#include <filesystem>
#include <string>
#include <vector>

namespace modelyne::cli::test {

struct ToolRun {
  int exitCode = -1;
  std::string out;
  std::string err;
};

/// Runs the tool with `args` in `workDir` (the build directory when empty),
/// feeding `input` to its standard input.
ToolRun runTool(const std::vector<std::string>& args, const std::string& input = {},
                const std::filesystem::path& workDir = {});

/// A fresh empty folder for one test.
std::filesystem::path scratchDir(const std::string& name);

std::string readText(const std::filesystem::path& path);
void writeText(const std::filesystem::path& path, const std::string& text);

}  // namespace modelyne::cli::test

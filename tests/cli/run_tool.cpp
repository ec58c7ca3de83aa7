#include "run_tool.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

extern char** environ;

namespace modelyne::cli::test {

std::string readText(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void writeText(const std::filesystem::path& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::filesystem::path scratchDir(const std::string& name) {
  const auto dir = std::filesystem::path(MODELYNE_BINARY_DIR) / "cli-test-scratch" / name;
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir);
  return dir;
}

ToolRun runTool(const std::vector<std::string>& args, const std::string& input,
                const std::filesystem::path& workDir) {
  // Files rather than pipes: no deadlock whatever the sizes, and nothing to poll.
  static int counter = 0;
  const auto io = scratchDir("io-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
  writeText(io / "in", input);

  std::vector<std::string> words{MODELYNE_CLI_PATH};
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (std::string& w : words) argv.push_back(w.data());
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, (io / "in").c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, (io / "out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  posix_spawn_file_actions_addopen(&actions, 2, (io / "err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  const std::string dir = workDir.empty() ? std::string(MODELYNE_BINARY_DIR) : workDir.string();
  // posix_spawn has no portable chdir action before glibc 2.29's _np one.
  posix_spawn_file_actions_addchdir_np(&actions, dir.c_str());

  // Under the sanitizers, LeakSanitizer would add its suppression statistics
  // to the tool's standard error, which the tests compare exactly.
  std::vector<std::string> env;
  for (char** e = environ; *e; ++e) {
    env.emplace_back(*e);
    if (env.back().starts_with("LSAN_OPTIONS=")) env.back() += ":print_suppressions=0";
  }
  std::vector<char*> envp;
  for (std::string& e : env) envp.push_back(e.data());
  envp.push_back(nullptr);

  pid_t pid = 0;
  const int rc = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), envp.data());
  posix_spawn_file_actions_destroy(&actions);
  if (rc != 0) throw std::runtime_error("cannot start " + std::string(argv[0]));
  int status = 0;
  ::waitpid(pid, &status, 0);

  ToolRun run;
  run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
  run.out = readText(io / "out");
  run.err = readText(io / "err");
  std::filesystem::remove_all(io);
  return run;
}

}  // namespace modelyne::cli::test

// tavuro: look into what TavuroCommon does with a host's configuration,
// tokens, error codes, date fields and JSON answers, and run the host's
// order of use end to end.
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "cli.h"

namespace {

using tavuro::tool::kFailed;
using tavuro::tool::kOk;
using tavuro::tool::kUsage;

struct Command {
  const char* name;
  int (*run)(const std::vector<std::string>&);
  const char* summary;
};

const Command kCommands[] = {
    {"demo", tavuro::tool::runDemo, "run a host's order of use on the sample resources"},
    {"config", tavuro::tool::runConfig, "show, check or change the configuration file"},
    {"jwt", tavuro::tool::runJwt, "show a token's claims, expiry and validity"},
    {"header", tavuro::tool::runHeader, "print the Authorization value a request carries now"},
    {"error", tavuro::tool::runError, "look up error codes, names and texts"},
    {"date", tavuro::tool::runDate, "convert a /Date(ms)/ field to MM-dd-yyyy"},
    {"json", tavuro::tool::runJson, "read one key of a JSON answer with a typed getter"},
};

void printUsage(std::FILE* out) {
  std::fprintf(out, "usage: tavuro COMMAND [ARGUMENTS] (tavuro COMMAND --help for more)\n\n");
  for (const Command& command : kCommands) {
    std::fprintf(out, "  %-8s %s\n", command.name, command.summary);
  }
  std::fprintf(out,
               "\nExit status: 0 success, 1 failure or problem found, 2 usage error.\n"
               "TavuroCommon %s\n",
               tavuro::kVersion);
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string> words(argv + 1, argv + argc);
  if (words.empty()) {
    printUsage(stderr);
    return kUsage;
  }
  if (words[0] == "--help" || words[0] == "help") {
    printUsage(stdout);
    return kOk;
  }
  if (words[0] == "--version") {
    std::printf("tavuro %s\n", tavuro::kVersion);
    return kOk;
  }
  for (const Command& command : kCommands) {
    if (words[0] != command.name) continue;
    try {
      return command.run(std::vector<std::string>(words.begin() + 1, words.end()));
    } catch (const tavuro::tool::UsageError& error) {
      std::fprintf(stderr, "tavuro %s: %s (see tavuro %s --help)\n", command.name, error.what(),
                   command.name);
      return kUsage;
    } catch (const std::exception& error) {
      std::fprintf(stderr, "tavuro %s: %s\n", command.name, error.what());
      return kFailed;
    }
  }
  std::fprintf(stderr, "tavuro: unknown command '%s'\n\n", words[0].c_str());
  printUsage(stderr);
  return kUsage;
}

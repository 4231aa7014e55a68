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
  std::fprintf(out,
               "usage: tavuro COMMAND [ARGUMENTS]\n"
               "       tavuro help COMMAND | tavuro COMMAND --help | tavuro --version\n\n"
               "Looks into what TavuroCommon does with a host's configuration, tokens, error\n"
               "codes, date fields and JSON answers.\n\nCommands:\n");
  for (const Command& command : kCommands) {
    std::fprintf(out, "  %-8s %s\n", command.name, command.summary);
  }
  std::fprintf(out,
               "\nOptions take their value as --option VALUE or --option=VALUE; \"--\" ends\n"
               "the options. Commands that print data take --json. Secrets (passwords,\n"
               "tokens) are read from standard input when given as \"-\", or from a file.\n\n"
               "Exit status: 0 the good answer, 1 the answer \"no\" or a failure, 2 usage\n"
               "error; each command's help says which answer is which.\n");
}

const Command* findCommand(const std::string& name) {
  for (const Command& command : kCommands) {
    if (name == command.name) return &command;
  }
  return nullptr;
}

int runCommand(const Command& command, const std::vector<std::string>& words) {
  try {
    return command.run(words);
  } catch (const tavuro::tool::UsageError& error) {
    std::fprintf(stderr, "tavuro %s: %s (see tavuro %s --help)\n", command.name, error.what(),
                 command.name);
    return kUsage;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "tavuro %s: %s\n", command.name, error.what());
    return kFailed;
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> words(argv + 1, argv + argc);
  if (words.empty()) {
    printUsage(stderr);
    return kUsage;
  }
  const std::string& first = words[0];
  if (first == "--help" || first == "-h" || (first == "help" && words.size() == 1)) {
    printUsage(stdout);
    return kOk;
  }
  if (first == "--version" || first == "-V") {
    std::printf("tavuro (TavuroCommon) %s\n", tavuro::kVersion);
    return kOk;
  }
  if (first == "help") {
    const Command* command = findCommand(words[1]);
    if (command == nullptr || words.size() > 3 || (words.size() == 3 && words[1] != "config")) {
      std::fprintf(stderr, "tavuro help: no command '%s' (see tavuro --help)\n", words[1].c_str());
      return kUsage;
    }
    // "help config set" is "config set --help".
    std::vector<std::string> rest(words.begin() + 2, words.end());
    rest.emplace_back("--help");
    return runCommand(*command, rest);
  }
  const Command* command = findCommand(first);
  if (command == nullptr) {
    std::fprintf(stderr, "tavuro: unknown command '%s'\n\n", first.c_str());
    printUsage(stderr);
    return kUsage;
  }
  return runCommand(*command, std::vector<std::string>(words.begin() + 1, words.end()));
}

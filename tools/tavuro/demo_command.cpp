// `tavuro demo`: a host's order of use, end to end, on the sample resources
// that ship with the project. The walk itself is the example host's
// (examples/host/main.cpp, compiled into this program); this command finds
// the samples and runs the walk on a scratch copy of them.
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "cli.h"

namespace tavuro_example {
int walkOrderOfUse(const std::string& resources, bool mayRewriteConfiguration);
}  // namespace tavuro_example

namespace tavuro::tool {
namespace {

const char* const kSampleFiles[] = {"TavuroConfig.plist", "sample_answer.json"};

std::string programDirectory() {
  char path[4096];
  const ssize_t size = readlink("/proc/self/exe", path, sizeof path - 1);
  if (size <= 0) return ".";
  const std::string program(path, static_cast<std::size_t>(size));
  return program.substr(0, program.find_last_of('/'));
}

// The first of: --resources, the library's resource directory (beside the
// program in a build tree), the installed samples.
std::optional<std::string> findSampleResources(const Arguments& arguments) {
  if (const auto given = arguments.option("--resources")) return *given;
  for (const std::string& directory :
       {resourceDirectory(), programDirectory() + "/../share/TavuroCommon/resources"}) {
    if (readFile(directory + "/" + kSampleFiles[0])) return directory;
  }
  return std::nullopt;
}

// A scratch copy of the samples, so that the store's saves leave the shipped
// files alone. Removed when the demo ends.
class ScratchResources {
 public:
  explicit ScratchResources(const std::string& from) {
    char pattern[] = "/tmp/tavuro_demo_XXXXXX";
    if (mkdtemp(pattern) == nullptr) throw std::runtime_error("cannot make a scratch directory");
    directory_ = pattern;
    for (const char* name : kSampleFiles) {
      const auto contents = readFile(from + "/" + name);
      if (contents) std::ofstream(directory_ + "/" + name, std::ios::binary) << *contents;
    }
  }
  ~ScratchResources() {
    for (const char* name : kSampleFiles) std::remove((directory_ + "/" + name).c_str());
    rmdir(directory_.c_str());
  }
  ScratchResources(const ScratchResources&) = delete;
  ScratchResources& operator=(const ScratchResources&) = delete;
  [[nodiscard]] const std::string& directory() const { return directory_; }

 private:
  std::string directory_;
};

const char kHelp[] =
    "usage: tavuro demo [--resources DIR]\n\n"
    "Runs a host's order of use end to end on the sample resources (TavuroConfig.plist\n"
    "and sample_answer.json from DIR, else beside the program): the store loads the\n"
    "configuration, the packages start, a request is prepared and its answer read,\n"
    "and results come back as records. The samples are copied to a scratch directory\n"
    "first, so the store's saves do not change them.\n\n"
    "Exit status: 0 the walk ran, 1 no sample resources were found, 2 usage error.\n";

}  // namespace

int runDemo(const std::vector<std::string>& words) {
  const Arguments arguments = parseArguments(words, {{}, {"--resources"}, 0, 0});
  if (arguments.has("--help")) return showHelp(kHelp);
  const std::optional<std::string> samples = findSampleResources(arguments);
  if (!samples) throw std::runtime_error("no sample resources found; give --resources DIR");
  if (!readFile(*samples + "/" + kSampleFiles[0])) {
    throw std::runtime_error("no " + std::string(kSampleFiles[0]) + " in " + *samples);
  }
  const ScratchResources scratch(*samples);
  return tavuro_example::walkOrderOfUse(scratch.directory(), true);
}

}  // namespace tavuro::tool

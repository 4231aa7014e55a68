// `tavuro error`: the kit's error codes and texts, both ways, from the
// library's own table (TavuroErrorInfo).
#include <cstdio>
#include <optional>
#include <string>

#include "cli.h"

namespace tavuro::tool {
namespace {

bool matches(const TavuroErrorInfo& entry, const std::string& query) {
  if (entry.codeName != nullptr &&
      (query == entry.codeName || query == std::to_string(entry.code))) {
    return true;
  }
  return query == entry.descriptionName || query == entry.description;
}

std::string entryJson(const TavuroErrorInfo& entry) {
  const std::string code = entry.codeName != nullptr ? std::to_string(entry.code) : "null";
  const std::string name = entry.codeName != nullptr ? jsonQuote(entry.codeName) : "null";
  return "{\"code\":" + code + ",\"name\":" + name +
         ",\"descriptionName\":" + jsonQuote(entry.descriptionName) +
         ",\"description\":" + jsonQuote(entry.description) + "}";
}

void printEntry(const TavuroErrorInfo& entry) {
  if (entry.codeName != nullptr) {
    std::printf("%4lld  %-38s %-42s \"%s\"\n", static_cast<long long>(entry.code), entry.codeName,
                entry.descriptionName, entry.description);
  } else {
    std::printf("%4s  %-38s %-42s \"%s\"\n", "-", "(no code)", entry.descriptionName,
                entry.description);
  }
}

const char kHelp[] =
    "usage: tavuro error CODE|NAME|TEXT [--json]\n"
    "       tavuro error --list [--json]\n\n"
    "Looks an error up by its code (-5), its code name (ERROR_Network), its\n"
    "description name (ERROR_DESC_Network) or its exact text (\"Network problem\")\n"
    "and prints code, names and text. --list prints the whole table.\n\n"
    "Exit status: 0 found, 1 nothing matches, 2 usage error.\n";

}  // namespace

int runError(const std::vector<std::string>& words) {
  const Arguments arguments = parseArguments(words, {{"--json", "--list"}, {}, 0, 1});
  if (arguments.has("--help")) return showHelp(kHelp);
  const bool list = arguments.has("--list");
  if (list == !arguments.positional.empty()) {
    throw UsageError(list ? "--list takes no argument" : "missing argument");
  }
  const bool json = arguments.has("--json");
  std::string jsonItems;
  bool found = false;
  for (const TavuroErrorInfo& entry : TavuroErrorInfo::all()) {
    if (!list && !matches(entry, arguments.positional[0])) continue;
    found = true;
    if (json) {
      jsonItems += (jsonItems.empty() ? "" : ",") + entryJson(entry);
    } else {
      printEntry(entry);
    }
  }
  if (json && (found || list)) std::printf(list ? "[%s]\n" : "%s\n", jsonItems.c_str());
  if (!found) {
    std::fprintf(stderr, "tavuro error: no error code, name or text '%s'\n",
                 arguments.positional[0].c_str());
    return kFailed;
  }
  return kOk;
}

}  // namespace tavuro::tool

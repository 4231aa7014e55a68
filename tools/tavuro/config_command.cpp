// `tavuro config`: what the credential store loads from a configuration
// file, what it will lose from it, and changes made through its setters.
//
// The store's own view of a file comes from the library's property-list
// reader (platform/Plist.h), the one the store uses, so the tool and the
// store cannot disagree about which entries are texts.
#include <cstdio>
#include <filesystem>
#include <functional>
#include <set>
#include <string>

#include "cli.h"
#include "common/CredentialStore.h"
#include "platform/Plist.h"

namespace tavuro::tool {
namespace {

using StringDictionary = std::map<std::string, std::string>;

const char kConfigFileName[] = "TavuroConfig.plist";

// The keys the store reads, and whether a save writes them back.
struct KnownKey {
  const char* key;
  bool saved;
};
const KnownKey kKnownKeys[] = {
    {"tavuro_username", true},
    {"tavuro_password", true},
    {"tavuro_subscription", true},
    {"frm_endpoint", true},
    {"ferisant_endpoint", true},
    {"med_endpoint", true},
    {"passive_liveness_endpoint", false},
    {"kelmo_endpoint", false},
};

const KnownKey* findKnownKey(const std::string& key) {
  for (const KnownKey& known : kKnownKeys) {
    if (key == known.key) return &known;
  }
  return nullptr;
}

std::string configPath() {
  return resourceDirectory() + "/" + kConfigFileName;
}

// The entries the store would read as texts; nullopt when it reads nothing.
std::optional<StringDictionary> storeView(const std::string& path) {
  const std::optional<std::string> bytes = readFile(path);
  if (!bytes) return std::nullopt;
  return platform::readPlistStringDictionary(*bytes);
}

// ---------------------------------------------------------------------------
// Keys of the root dictionary of an XML property list, whatever their values.
// The library's reader keeps text entries only; the difference between the
// two lists is the entries whose values are not texts. The file has already
// passed the real reader, so this scan only has to find the keys.
// ---------------------------------------------------------------------------

void appendCodePoint(std::string& out, unsigned long code) {
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | (code >> 6));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | (code >> 12));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  } else {
    out += static_cast<char>(0xF0 | (code >> 18));
    out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (code & 0x3F));
  }
}

std::string decodeXmlText(std::string_view text) {
  static const std::pair<std::string_view, char> kEntities[] = {
      {"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"apos", '\''}, {"quot", '"'}};
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text.compare(i, 9, "<![CDATA[") == 0) {
      const std::size_t end = text.find("]]>", i + 9);
      out += text.substr(i + 9, end - (i + 9));
      i = end == std::string_view::npos ? text.size() : end + 2;
      continue;
    }
    const std::size_t semicolon = text[i] == '&' ? text.find(';', i) : std::string_view::npos;
    if (semicolon == std::string_view::npos) {
      out += text[i];
      continue;
    }
    const std::string_view name = text.substr(i + 1, semicolon - i - 1);
    if (!name.empty() && name[0] == '#') {
      const bool hex = name.size() > 1 && (name[1] == 'x' || name[1] == 'X');
      appendCodePoint(out,
                      std::stoul(std::string(name.substr(hex ? 2 : 1)), nullptr, hex ? 16 : 10));
    } else {
      for (const auto& entity : kEntities) {
        if (name == entity.first) out += entity.second;
      }
    }
    i = semicolon;
  }
  return out;
}

std::set<std::string> xmlRootKeys(std::string_view xml) {
  std::set<std::string> keys;
  int depth = 0;  // open <dict> and <array> elements
  for (std::size_t at = xml.find('<'); at != std::string_view::npos; at = xml.find('<', at + 1)) {
    const auto skipTo = [&](std::string_view end) {
      const std::size_t found = xml.find(end, at);
      return found == std::string_view::npos ? xml.size() : found;
    };
    if (xml.compare(at, 4, "<!--") == 0) {
      at = skipTo("-->");
      continue;
    }
    if (xml.compare(at, 9, "<![CDATA[") == 0) {
      at = skipTo("]]>");
      continue;
    }
    if (xml.compare(at, 2, "<?") == 0 || xml.compare(at, 2, "<!") == 0) {
      at = skipTo(">");
      continue;
    }
    const std::size_t close = skipTo(">");
    if (close == xml.size()) break;
    const bool ending = xml[at + 1] == '/';
    const bool empty = xml[close - 1] == '/';
    std::string_view name = xml.substr(at + (ending ? 2 : 1), close - at - (ending ? 2 : 1));
    name = name.substr(0, name.find_first_of(" \t\r\n/"));
    if (name == "dict" || name == "array") {
      if (ending) {
        --depth;
      } else if (!empty) {
        ++depth;
      }
    } else if (name == "key" && !ending && empty && depth == 1) {
      keys.insert("");
    } else if (name == "key" && !ending && depth == 1) {
      const std::size_t end = xml.find("</key>", close);
      if (end == std::string_view::npos) break;
      keys.insert(decodeXmlText(xml.substr(close + 1, end - close - 1)));
      at = end;
    }
  }
  return keys;
}

// Every key of the root dictionary: those of the text entries, and for the
// XML form those of the other entries too.
std::set<std::string> rootKeys(std::string_view bytes, const StringDictionary& view) {
  const bool binary = bytes.compare(0, 8, "bplist00") == 0;
  std::set<std::string> keys = binary ? std::set<std::string>() : xmlRootKeys(bytes);
  for (const auto& entry : view) keys.insert(entry.first);
  return keys;
}

// ---------------------------------------------------------------------------
// config check
// ---------------------------------------------------------------------------

struct Finding {
  std::optional<std::string> key;  // nullopt: about the whole file
  bool lost;                       // false: a note that costs nothing
  std::string message;
};

void checkEntry(const std::string& key, bool isText, std::vector<Finding>& findings) {
  const KnownKey* known = findKnownKey(key);
  const bool kelmo = key == "kelmo_endpoint";
  if (known == nullptr) {
    findings.push_back({key, true, "unknown key: ignored when read, lost at the first save"});
  } else if (!isText) {
    findings.push_back({key, true,
                        std::string("value is not a text: reads as absent") +
                            (kelmo ? ", so the built-in default applies" : "") +
                            ", and the first save drops it"});
  } else if (!known->saved) {
    findings.push_back({key, true,
                        std::string("read, but never saved: the first save drops it and later "
                                    "starts ") +
                            (kelmo ? "use the built-in default" : "read it as absent")});
  }
}

void checkCredentials(const StringDictionary& view, std::vector<Finding>& findings) {
  const auto password = view.find("tavuro_password");
  if (password != view.end() && password->second.empty()) {
    findings.push_back({"tavuro_password", false,
                        "empty password: the Basic header is built with it and "
                        "isCredentialValid is false without a token"});
  }
  if (view.count("tavuro_username") == 0 || password == view.end()) {
    findings.push_back({std::nullopt, false,
                        "user name or password absent: no Basic header until a token is stored"});
  }
}

// The number of entries of a binary property list's root dictionary, which
// the reader has accepted (so the trailer and the root are sound; the bounds
// are checked all the same).
std::optional<std::uint64_t> binaryRootEntryCount(std::string_view bytes) {
  constexpr std::size_t kTrailer = 32;
  const auto number = [&](std::uint64_t at, std::uint64_t width) -> std::optional<std::uint64_t> {
    if (width > 8 || at > bytes.size() || width > bytes.size() - at) return std::nullopt;
    std::uint64_t value = 0;
    for (std::uint64_t i = 0; i < width; ++i) value = (value << 8) | std::uint8_t(bytes[at + i]);
    return value;
  };
  if (bytes.size() < 8 + kTrailer) return std::nullopt;
  const std::size_t trailer = bytes.size() - kTrailer;
  const std::uint64_t offsetSize = std::uint8_t(bytes[trailer + 6]);
  const auto top = number(trailer + 16, 8);
  const auto table = number(trailer + 24, 8);
  if (!top || !table || *top > bytes.size()) return std::nullopt;
  const auto root = number(*table + *top * offsetSize, offsetSize);
  const auto marker = root ? number(*root, 1) : std::nullopt;
  if (!marker) return std::nullopt;
  if ((*marker & 0xF) != 0xF) return *marker & 0xF;
  // A longer count follows as an integer object of 2^n bytes.
  const auto countMarker = number(*root + 1, 1);
  return countMarker ? number(*root + 2, std::uint64_t{1} << (*countMarker & 0xF)) : std::nullopt;
}

const char kCheckHelp[] =
    "usage: tavuro config check FILE [--json]\n\n"
    "Tells what the credential store will do with FILE: keys it ignores and the\n"
    "first save loses, the two endpoints that are read but never saved, values\n"
    "that are not texts and read as absent, an empty password, a malformed file.\n\n"
    "Exit status: 0 nothing is lost, 1 something is lost or FILE cannot be read,\n"
    "2 usage error.\n";

int runCheck(const std::vector<std::string>& words) {
  const Arguments arguments = parseArguments(words, {{"--json"}, {}, 1, 1});
  if (arguments.has("--help")) return showHelp(kCheckHelp);
  const std::string& path = arguments.positional[0];
  const std::optional<std::string> bytes = readInputFile(path);

  std::vector<Finding> findings;
  const std::optional<StringDictionary> view = platform::readPlistStringDictionary(*bytes);
  const bool binary = bytes->compare(0, 8, "bplist00") == 0;
  if (!view) {
    findings.push_back({std::nullopt, true,
                        "not a property list with a dictionary at its root: the store "
                        "loads nothing and the first save replaces the whole file"});
  } else {
    for (const std::string& key : rootKeys(*bytes, *view)) {
      checkEntry(key, view->count(key) != 0, findings);
    }
    checkCredentials(*view, findings);
  }
  const std::string name = path.substr(path.find_last_of('/') + 1);
  if (name != kConfigFileName) {
    findings.push_back({std::nullopt, false,
                        std::string("the store reads only a file named ") + kConfigFileName +
                            " in its resource directory"});
  }
  if (view && binary) {
    // The scan of keys reads the XML form only; here the count tells.
    const std::uint64_t entries = binaryRootEntryCount(*bytes).value_or(view->size());
    if (entries > view->size()) {
      findings.push_back({std::nullopt, true,
                          std::to_string(entries - view->size()) +
                              " value(s) that are not texts (binary form: keys not shown): "
                              "read as absent, and the first save drops them"});
    }
  }

  bool lost = false;
  for (const Finding& finding : findings) lost = lost || finding.lost;
  if (arguments.has("--json")) {
    std::string items;
    for (const Finding& f : findings) {
      items += std::string(items.empty() ? "" : ",") + "{\"key\":" + jsonQuote(f.key) +
               ",\"lost\":" + (f.lost ? "true" : "false") + ",\"message\":" + jsonQuote(f.message) +
               "}";
    }
    std::printf("{\"file\":%s,\"readable\":%s,\"lost\":%s,\"findings\":[%s]}\n",
                jsonQuote(path).c_str(), view ? "true" : "false", lost ? "true" : "false",
                items.c_str());
  } else {
    for (const Finding& f : findings) {
      const std::string key = !f.key ? "" : f.key->empty() ? "\"\": " : *f.key + ": ";
      std::printf("%s %s%s\n", f.lost ? "LOST" : "note", key.c_str(), f.message.c_str());
    }
    std::printf("%s\n",
                lost ? "Some settings are lost; see above." : "Nothing in this file is lost.");
  }
  return lost ? kFailed : kOk;
}

// ---------------------------------------------------------------------------
// config show
// ---------------------------------------------------------------------------

std::string maskedPassword(const std::optional<std::string>& password) {
  if (!password) return "(absent)";
  return password->empty() ? "(empty)" : "********";
}

std::string describe(const std::optional<std::string>& text) {
  return text ? "\"" + *text + "\"" : "(absent)";
}

struct EndpointRow {
  const char* key;
  const char* field;
  std::optional<std::string> (Endpoints::*read)() const;
};
const EndpointRow kEndpointRows[] = {
    {"frm_endpoint", "frmEndpoint", &Endpoints::frmEndpoint},
    {"ferisant_endpoint", "idEndpoint", &Endpoints::idEndpoint},
    {"med_endpoint", "healthInsuranceEndpoint", &Endpoints::healthInsuranceEndpoint},
    {"passive_liveness_endpoint", "passiveLivenessEndpoint", &Endpoints::passiveLivenessEndpoint},
    {"kelmo_endpoint", "kelmoEndpoint", &Endpoints::kelmoEndpoint},
};

// Where the store's value of an endpoint came from.
const char* endpointSource(const std::optional<std::string>& value, const char* key,
                           const std::optional<StringDictionary>& file) {
  if (!value) return "absent";
  return file && file->count(key) != 0 ? "file" : "built-in default";
}

const char kShowHelp[] =
    "usage: tavuro config show [--resources DIR] [--json]\n\n"
    "Shows what the credential store loads: the configuration file it reads,\n"
    "the credentials (the password masked) and the five endpoints, each with\n"
    "where its value came from (the file or the built-in default).\n\n"
    "Exit status: 0 the file was read, 1 it is missing, unreadable or malformed\n"
    "(what the store then holds is shown all the same), 2 usage error.\n";

int runShow(const std::vector<std::string>& words) {
  const Arguments arguments = parseArguments(words, {{"--json"}, {"--resources"}, 0, 0});
  if (arguments.has("--help")) return showHelp(kShowHelp);
  applyResourceOption(arguments);
  const std::string path = configPath();
  const std::optional<StringDictionary> file = storeView(path);
  std::error_code error;
  const char* state = file                                         ? "read"
                      : std::filesystem::is_directory(path, error) ? "a directory, not a file"
                      : readFile(path)                             ? "malformed"
                                                                   : "missing or unreadable";
  const int status = file ? kOk : kFailed;
  const std::shared_ptr<Endpoints> endpoints = Credential::endpoints();

  if (arguments.has("--json")) {
    std::string rows;
    for (const EndpointRow& row : kEndpointRows) {
      const auto value = endpoints ? ((*endpoints).*row.read)() : std::nullopt;
      rows += std::string(rows.empty() ? "" : ",") + jsonQuote(row.key) +
              ":{\"field\":" + jsonQuote(row.field) + ",\"value\":" + jsonQuote(value) +
              ",\"source\":" + jsonQuote(endpointSource(value, row.key, file)) + "}";
    }
    const auto password = Credential::password();
    std::printf(
        "{\"resourceDirectory\":%s,\"file\":%s,\"fileState\":%s,\"username\":%s,"
        "\"password\":%s,\"subscription\":%s,\"endpoints\":%s}\n",
        jsonQuote(resourceDirectory()).c_str(), jsonQuote(path).c_str(), jsonQuote(state).c_str(),
        jsonQuote(Credential::username()).c_str(),
        password ? jsonQuote(maskedPassword(password)).c_str() : "null",
        jsonQuote(Credential::subscription()).c_str(),
        endpoints ? ("{" + rows + "}").c_str() : "null");
    return status;
  }
  std::printf("configuration file: %s (%s)\n", path.c_str(), state);
  std::printf("  %-28s %s\n", "tavuro_username", describe(Credential::username()).c_str());
  std::printf("  %-28s %s\n", "tavuro_password", maskedPassword(Credential::password()).c_str());
  std::printf("  %-28s %s\n", "tavuro_subscription", describe(Credential::subscription()).c_str());
  if (!endpoints) {
    std::printf("endpoints: none (no configuration was read)\n");
    return status;
  }
  std::printf("endpoints:\n");
  for (const EndpointRow& row : kEndpointRows) {
    const auto value = ((*endpoints).*row.read)();
    const char* source = endpointSource(value, row.key, file);
    std::printf("  %-28s %s%s\n", row.key, describe(value).c_str(),
                std::string(source) == "built-in default" ? " (built-in default)" : "");
  }
  return status;
}

// ---------------------------------------------------------------------------
// config set / unset
// ---------------------------------------------------------------------------

// Stores `value` under `key` through the store's own setter, which saves.
void storeValue(detail::CredentialStore& store, const std::string& key,
                const std::optional<std::string>& value) {
  if (key == "tavuro_username") return store.setUsername(value);
  if (key == "tavuro_password") return store.setPassword(value);
  if (key == "tavuro_subscription") return store.setSubscription(value);
  std::shared_ptr<Endpoints> endpoints = store.endpoints();
  if (!endpoints) endpoints = Endpoints::newInstance();
  if (key == "frm_endpoint") endpoints->setFrmEndpoint(value);
  if (key == "ferisant_endpoint") endpoints->setIdEndpoint(value);
  if (key == "med_endpoint") endpoints->setHealthInsuranceEndpoint(value);
  store.setEndpoints(endpoints);
}

bool isBinary(std::string_view bytes) {
  return bytes.compare(0, 8, "bplist00") == 0;
}

// What a rewrite from `before` to `after` loses: the keys gone (other than
// `changed`), and for the binary form the values that are not texts, whose
// keys the scan cannot name.
std::vector<std::string> losses(const std::string& before, const std::string& after,
                                const std::string& changed) {
  std::vector<std::string> lost;
  const StringDictionary afterView =
      platform::readPlistStringDictionary(after).value_or(StringDictionary());
  const std::optional<StringDictionary> beforeView = platform::readPlistStringDictionary(before);
  if (!beforeView) return lost;
  for (const std::string& key : rootKeys(before, *beforeView)) {
    if (key != changed && afterView.count(key) == 0) lost.push_back(key);
  }
  if (isBinary(before)) {
    const std::uint64_t entries = binaryRootEntryCount(before).value_or(beforeView->size());
    if (entries > beforeView->size()) {
      lost.push_back("(" + std::to_string(entries - beforeView->size()) +
                     " value(s) that are not texts)");
    }
  }
  return lost;
}

const char kSetHelp[] =
    "usage: tavuro config set KEY VALUE|- [--resources DIR] [--dry-run] [--force] [--json]\n"
    "       tavuro config set KEY --value-file FILE [...]\n"
    "       tavuro config unset KEY [--resources DIR] [--dry-run] [--force] [--json]\n\n"
    "Changes one setting through the credential store's setters, so the file is\n"
    "rewritten exactly as the library rewrites it. KEY is one of tavuro_username,\n"
    "tavuro_password, tavuro_subscription, frm_endpoint, ferisant_endpoint,\n"
    "med_endpoint. VALUE \"-\" reads the value from standard input, --value-file\n"
    "from a file (one line end at the end is dropped), so that a password stays\n"
    "out of the process list and the shell history.\n\n"
    "A rewrite drops keys the store does not save and values that are not texts,\n"
    "and turns a binary file into XML. Such a change is refused, with the list of\n"
    "what it would lose, unless --force is given. --dry-run writes nothing: it\n"
    "prints the file that would be written, and what it loses on standard error.\n\n"
    "Exit status: 0 the file is (or, with --dry-run, would be) written, 1 the\n"
    "change is refused or fails, 2 usage error.\n";

int runSet(const std::vector<std::string>& words, bool unset) {
  const Arguments arguments = parseArguments(words, {{"--dry-run", "--force", "--json"},
                                                     {"--resources", "--value-file"},
                                                     1,
                                                     unset ? std::size_t{1} : std::size_t{2}});
  if (arguments.has("--help")) return showHelp(kSetHelp);
  const std::string& key = arguments.positional[0];
  const KnownKey* known = findKnownKey(key);
  if (known == nullptr) throw UsageError("unknown key '" + key + "'");
  std::optional<std::string> value;
  if (!unset) {
    value = secretArgument(arguments,
                           arguments.positional.size() > 1
                               ? std::optional<std::string>(arguments.positional[1])
                               : std::nullopt,
                           "--value-file");
  } else if (arguments.has("--value-file")) {
    throw UsageError("unset takes no value");
  }
  if (!known->saved) {
    throw std::runtime_error(key +
                             " is never written by the store; edit the file itself "
                             "(and note that the first save drops it)");
  }
  applyResourceOption(arguments);
  const std::string path = configPath();
  const std::string before = readInputFile(path);

  // A store of its own on the same file, whose save is caught here: nothing
  // is written until what the rewrite loses is known.
  detail::CredentialStore::Environment environment = detail::CredentialStore::systemEnvironment();
  const auto writeFile = environment.writeFile;
  std::optional<std::string> after;
  environment.configurationPath = [&path] { return std::optional<std::string>(path); };
  environment.writeFile = [&after](const std::string&, std::string_view bytes) {
    after = std::string(bytes);
    return true;
  };
  detail::CredentialStore store(environment);
  storeValue(store, key, value);
  if (!after) throw std::runtime_error("the store would not rewrite " + path);

  const std::vector<std::string> lost = losses(before, *after, key);
  const bool formChanges = isBinary(before) && !isBinary(*after);
  const bool refused = (!lost.empty() || formChanges) && !arguments.has("--force");
  const bool dryRun = arguments.has("--dry-run");
  const bool written = !refused && !dryRun;
  if (written && !writeFile(path, *after)) throw std::runtime_error("cannot write " + path);

  std::string lostText;
  for (const std::string& entry : lost) lostText += (lostText.empty() ? "" : ", ") + entry;
  if (formChanges) lostText += std::string(lostText.empty() ? "" : "; ") + "binary form (to XML)";
  if (arguments.has("--json")) {
    std::string items;
    for (const std::string& entry : lost) items += (items.empty() ? "" : ",") + jsonQuote(entry);
    std::printf(
        "{\"file\":%s,\"key\":%s,\"action\":%s,\"written\":%s,\"refused\":%s,\"lost\":[%s],"
        "\"toXml\":%s,\"content\":%s}\n",
        jsonQuote(path).c_str(), jsonQuote(key).c_str(), unset ? "\"unset\"" : "\"set\"",
        written ? "true" : "false", refused ? "true" : "false", items.c_str(),
        formChanges ? "true" : "false", jsonQuote(*after).c_str());
  } else if (dryRun) {
    std::fputs(after->c_str(), stdout);
  } else if (written) {
    std::printf("%s %s in %s\n", key.c_str(), unset ? "removed" : "set", path.c_str());
  }
  if (!lostText.empty()) {
    std::fprintf(stderr, "tavuro config: the rewrite %s: %s\n",
                 written   ? "dropped"
                 : refused ? "would lose (nothing written; --force to accept)"
                           : "would lose",
                 lostText.c_str());
  }
  return refused ? kFailed : kOk;
}

const char kConfigHelp[] =
    "usage: tavuro config show [--resources DIR] [--json]\n"
    "       tavuro config check FILE [--json]\n"
    "       tavuro config set KEY VALUE|- [--resources DIR] [--dry-run] [--force] [--json]\n"
    "       tavuro config unset KEY [--resources DIR] [--dry-run] [--force] [--json]\n\n"
    "Without --resources the store's resource directory is the one in\n"
    "TAVURO_RESOURCE_PATH, else the directory of the tavuro program.\n";

}  // namespace

int runConfig(const std::vector<std::string>& words) {
  if (words.empty()) throw UsageError("missing subcommand");
  const std::string& sub = words[0];
  const std::vector<std::string> rest(words.begin() + 1, words.end());
  if (sub == "--help" || sub == "-h") return showHelp(kConfigHelp);
  if (sub == "show") return runShow(rest);
  if (sub == "check") return runCheck(rest);
  if (sub == "set") return runSet(rest, false);
  if (sub == "unset") return runSet(rest, true);
  throw UsageError("unknown subcommand '" + sub + "'");
}

}  // namespace tavuro::tool

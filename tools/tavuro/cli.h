// Shared pieces of the tavuro command-line tool: argument parsing, exit
// statuses, JSON output and time formatting.
#ifndef TAVURO_TOOLS_CLI_H_
#define TAVURO_TOOLS_CLI_H_

#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <TavuroCommon/TavuroCommon.h>

namespace tavuro::tool {

/// Exit statuses: the good answer, the answer "no" (or a failure), and a
/// command line that could not be understood.
enum ExitStatus : int { kOk = 0, kFailed = 1, kUsage = 2 };

/// A command line that does not fit the command; reported with exit status 2.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The words after the command name, split into positional arguments,
/// flags (`--json`) and options with a value (`--as int` or `--as=int`).
struct Arguments {
  std::vector<std::string> positional;
  std::map<std::string, std::string> options;
  [[nodiscard]] bool has(const std::string& flag) const { return options.count(flag) != 0; }
  [[nodiscard]] std::optional<std::string> option(const std::string& name) const;
};

/// What a command accepts: its flags and its options that take a value.
struct Syntax {
  std::vector<std::string> flags;
  std::vector<std::string> valued;
  std::size_t minPositional = 0;
  std::size_t maxPositional = 0;
};

/// Splits `words` by `syntax`; throws UsageError on an unknown option, a
/// missing value, a value given to a flag or a wrong number of positional
/// arguments. "-h" and "--help" are always accepted (stored as "--help", and
/// then the positional count is not checked); every word after "--" is
/// positional, and so is any other word that starts with a single "-" (a
/// negative number, or "-" for standard input).
[[nodiscard]] Arguments parseArguments(const std::vector<std::string>& words, const Syntax& syntax);

/// Prints a command's help text on standard output; returns kOk.
int showHelp(const char* text);

/// Names the resource directory when `--resources` was given. Must run
/// before the first use of the credential store.
void applyResourceOption(const Arguments& arguments);

/// `text` as a JSON string literal.
[[nodiscard]] std::string jsonQuote(std::string_view text);
[[nodiscard]] inline std::string jsonQuote(const std::string& text) {
  return jsonQuote(std::string_view(text));
}
[[nodiscard]] inline std::string jsonQuote(const char* text) {
  return jsonQuote(std::string_view(text));
}
/// An optional text as a JSON string literal or null.
[[nodiscard]] std::string jsonQuote(const std::optional<std::string>& text);
/// The shortest text that reads back as the same double.
[[nodiscard]] std::string formatDouble(double number);
/// A decoded JSON value written back as compact JSON text.
[[nodiscard]] std::string toJsonText(const JsonValue& value);
[[nodiscard]] std::string toJsonText(const JsonDictionary& dictionary);
[[nodiscard]] std::string toJsonText(const JsonArray& array);

/// Seconds since 1970 as "2023-11-14T22:13:20Z" and as local time with the
/// zone's abbreviation ("2023-11-14 23:13:20 CET"), in the library's own
/// calendar (the one of Utils::dateFieldToDateString: Julian before
/// 1582-10-15, the year of era with at least four digits); empty when the
/// calendar cannot show the instant.
[[nodiscard]] std::string formatUtc(std::int64_t seconds);
[[nodiscard]] std::string formatLocal(std::int64_t seconds);
/// A span of seconds as "1d 2h 3m 4s" (largest unit first, zero units left out).
[[nodiscard]] std::string formatDuration(std::int64_t seconds);

/// The whole file, or nullopt when it cannot be read.
[[nodiscard]] std::optional<std::string> readFile(const std::string& path);
/// The whole file; throws std::runtime_error saying why it cannot be read
/// ("is a directory", "No such file or directory", ...).
[[nodiscard]] std::string readInputFile(const std::string& path);
/// A secret given as `text`, or read whole from standard input when `text`
/// is "-"; one line end at the end of what is read is dropped.
[[nodiscard]] std::string readSecret(const std::string& text);
/// The secret given positionally (`positional`, maybe "-") or as the file
/// named by option `fileOption`; throws UsageError unless exactly one is given.
[[nodiscard]] std::string secretArgument(const Arguments& arguments,
                                         const std::optional<std::string>& positional,
                                         const std::string& fileOption);

/// While one lives, whatever the process writes to standard output goes to
/// standard error instead: the library's own lines (a JSON parse error) never
/// mix with the tool's output.
class LibraryOutputToStderr {
 public:
  LibraryOutputToStderr();
  ~LibraryOutputToStderr();
  LibraryOutputToStderr(const LibraryOutputToStderr&) = delete;
  LibraryOutputToStderr& operator=(const LibraryOutputToStderr&) = delete;

 private:
  int saved_ = -1;
};

// The commands. Each returns its exit status; `words` excludes the command
// name (and, for "config", the subcommand name).
int runDemo(const std::vector<std::string>& words);
int runConfig(const std::vector<std::string>& words);
int runJwt(const std::vector<std::string>& words);
int runHeader(const std::vector<std::string>& words);
int runError(const std::vector<std::string>& words);
int runDate(const std::vector<std::string>& words);
int runJson(const std::vector<std::string>& words);

}  // namespace tavuro::tool

#endif  // TAVURO_TOOLS_CLI_H_

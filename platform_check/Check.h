// What a check is, and how its function reports the outcome. A check runs in a separate process
// (Child.h), in one thread unless it starts more.

#ifndef PLATFORM_CHECK_CHECK_H_
#define PLATFORM_CHECK_CHECK_H_

#include <stdexcept>
#include <string>
#include <vector>

namespace platform_check {

// What the command line sets. Paths of the platform are device paths; `root` comes before them
// where this program opens such a file itself.
struct Settings {
  std::string root;             // empty on a device
  std::string folder;           // device path of a folder that this run alone uses
  std::string url;              // https URL of a GraphQL endpoint
  std::string control;          // http URL of the store service's control port
  std::string untrustedUrl;     // https URL of a server with an unknown certificate; can be empty
  std::string wrongNameUrl;     // https URL of a server with another name; can be empty
  std::string log;              // "stderr", a file, or empty when not known
  unsigned int timeoutSeconds;  // after which a check counts as hung

  // Device path of a file of the run, and where this program finds it.
  std::string devicePath(const std::string& name) const { return folder + "/" + name; }
  std::string realPath(const std::string& name) const { return root + devicePath(name); }
};

// Says why a check failed.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Says why a check cannot be tried.
class Skip : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// One check. `run` returns when the implementation passes; it throws Failure or Skip otherwise, and
// any other exception counts as a failure.
struct Check {
  const char* group;
  const char* name;
  const char* remedy;  // what the integrator does when the check fails
  void (*run)(const Settings& settings);

  std::string fullName() const { return std::string(group) + "." + name; }
};

// All checks, group by group.
std::vector<Check> allChecks();

// The checks of each group, in the source of the same name.
extern const std::vector<Check> kConfigChecks;
extern const std::vector<Check> kEncodingChecks;
extern const std::vector<Check> kHttpChecks;
extern const std::vector<Check> kIdentityChecks;
extern const std::vector<Check> kLogChecks;
extern const std::vector<Check> kTaskChecks;
extern const std::vector<Check> kTextChecks;

// Throws Failure with `reason` unless `holds`.
void require(bool holds, const std::string& reason);

// Throws Failure when the two differ: "WHAT is ACTUAL, expected EXPECTED".
void requireEqual(const std::string& what, const std::string& actual, const std::string& expected);
void requireEqual(const std::string& what, long long actual, long long expected);

// `text` in quotes, with bytes that are not printable ASCII as "\xhh", cut when it is long.
std::string quoted(const std::string& text);

// A text with every byte from 1 to 255.
std::string everyByteButNul();

// `text` as Base64, with padding.
std::string base64Of(const std::string& text);

// `text` with its ASCII letters in lower case.
std::string lowerCase(std::string text);

// The content of a file; empty when it cannot be read.
std::string contentOf(const std::string& path);

}  // namespace platform_check

#endif  // PLATFORM_CHECK_CHECK_H_

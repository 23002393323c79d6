// Faults of encoding, texts, identity, tasks and log.

#include <ov_sdk.h>
#include <spawn.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <istream>
#include <ostream>
#include <string>
#include <thread>

#include <orvane/utilities/BookStoreVersionProxy.h>
#include <orvane/utilities/SerializationUtils.h>
#include <orvane/utilities/Str.h>

#include "tests/platform_check/Fault.h"

using broken::isFault;
using broken::real;
using orvane::utilities::BookStoreVersionProxy;
using orvane::utilities::SerializationUtils;
using orvane::utilities::Str;

// --- Encoding ------------------------------------------------------------------------------------

int SerializationUtils::SerializeString(std::string const& value, std::ostream& out) {
  const auto serialize = real<decltype(&SerializeString)>(&SerializeString);
  if (isFault("string-ends-at-nul")) {
    return serialize(value.c_str(), out);
  }
  if (isFault("length-of-16-bits")) {
    return serialize(value.substr(0, value.size() & 0xffff), out);
  }
  if (isFault("empty-string-is-nothing") && value.empty()) {
    return 0;
  }
  const int result = serialize(value, out);
  return isFault("failed-output-ignored") ? 0 : result;
}

namespace {

// Trusts the length at the start of the string.
void reserveDamagedLength(std::istream& in, std::string* value) {
  const std::istream::pos_type start = in.tellg();
  std::uint32_t length = 0;
  for (int shift = 0; shift < 32; shift += 8) {
    length |= static_cast<std::uint32_t>(in.get() & 0xff) << shift;
  }
  in.clear();
  in.seekg(start);
  value->reserve(length);
}

}  // namespace

int SerializationUtils::DeserializeString(std::istream& in, std::string* value) {
  if (isFault("failed-input-not-at-its-end") && in.fail()) {
    return 1;
  }
  if (isFault("damaged-length-trusted")) {
    reserveDamagedLength(in, value);
  }
  const int result = real<decltype(&DeserializeString)>(&DeserializeString)(in, value);
  if (isFault("reads-beyond-the-end") && result == 0) {
    in.get();
  }
  if (isFault("truncation-accepted")) {
    return 0;
  }
  if (result != 0 && isFault("end-of-file-not-set")) {
    in.clear(std::ios::failbit);
  }
  if (result != 0 && isFault("crash-at-truncation")) {
    std::abort();
  }
  while (result != 0 && isFault("hang-at-truncation")) {
    ::usleep(1000);
  }
  return result;
}

// --- Texts and identity --------------------------------------------------------------------------

std::string Str::trim(const std::string& text, const std::string& characters) {
  const auto realTrim = real<decltype(&trim)>(&trim);
  if (isFault("trims-white-space-only")) {
    return realTrim(text, WHITESPACE);
  }
  return realTrim(text,
                  isFault("trims-blanks-only") && characters == WHITESPACE ? " " : characters);
}

const char* GetSerialNumber(void) {
  static char changing[] = "A";
  if (isFault("serial-number-changes")) {
    ++changing[0];
    return changing;
  }
  return isFault("serial-number-is-null") ? nullptr
                                          : real<decltype(&GetSerialNumber)>(&GetSerialNumber)();
}

const char* GetSoftwareVersion(void) {
  return isFault("version-has-a-line-end")
             ? "1.0\n"
             : real<decltype(&GetSoftwareVersion)>(&GetSoftwareVersion)();
}

int ScreenWidth(void) {
  return isFault("screen-width-is-negative") ? -1 : real<decltype(&ScreenWidth)>(&ScreenWidth)();
}

std::string BookStoreVersionProxy::configKeyRefreshToken() {
  return isFault("token-keys-are-the-same")
             ? configKeyAccessToken()
             : real<decltype(&configKeyRefreshToken)>(&configKeyRefreshToken)();
}

// --- Tasks ---------------------------------------------------------------------------------------

int FindTaskByAppName(const char* path) {
  if (isFault("task-never-found")) {
    return 0;
  }
  const int found = real<decltype(&FindTaskByAppName)>(&FindTaskByAppName)(path);
  return isFault("task-always-found") ? 1 : found;
}

int NewTask(const char* path, char* const* arguments, const char* app_name, const char* name,
            const void* reserved, unsigned int flags) {
  const auto start = real<decltype(&NewTask)>(&NewTask);
  if (isFault("task-keeps-pointers")) {
    std::thread([=] {
      ::usleep(100000);
      char* const none[] = {nullptr};  // as long as the vector itself is freed, too
      start(path, arguments[0] == nullptr ? none : arguments, app_name, name, reserved, flags);
    }).detach();
    return 1;
  }
  const int result = start(path, arguments, app_name, name, reserved, flags);
  if (isFault("task-number-is-zero")) {
    return 0;
  }
  return isFault("missing-task-is-started") ? 1 : result;
}

extern "C" int posix_spawnattr_setflags(posix_spawnattr_t* attributes, short flags) noexcept {
  using SetFlags = int (*)(posix_spawnattr_t*, short);
  const int without = isFault("task-in-the-session-of-its-caller") ? POSIX_SPAWN_SETSID : 0;
  return broken::realSymbol<SetFlags>("posix_spawnattr_setflags")(
      attributes, static_cast<short>(flags & ~without));
}

extern "C" int posix_spawn_file_actions_addclosefrom_np(posix_spawn_file_actions_t* actions,
                                                        int from) noexcept {
  using AddCloseFrom = int (*)(posix_spawn_file_actions_t*, int);
  return isFault("task-inherits-descriptors")
             ? 0
             : broken::realSymbol<AddCloseFrom>("posix_spawn_file_actions_addclosefrom_np")(actions,
                                                                                            from);
}

// --- Log -----------------------------------------------------------------------------------------

namespace {

void logInPieces(const std::string& text) {
  const std::string line = text + "\n";
  for (std::size_t at = 0; at < line.size(); at += 100) {
    const std::string piece = line.substr(at, 100);
    if (::write(STDERR_FILENO, piece.data(), piece.size()) < 0) {
      return;
    }
    ::usleep(100);
  }
}

}  // namespace

void ov_print_log2(int level, const char* file, int line, const char* function, const char* format,
                   ...) {
  const auto log =
      broken::realSymbol<void (*)(int, const char*, int, const char*, const char*, ...)>(
          "ov_print_log2");
  va_list values;
  va_start(values, format);
  char* formatted = nullptr;
  const int length = ::vasprintf(&formatted, format, values);
  va_end(values);
  const std::string text(formatted, static_cast<std::size_t>(length));
  std::free(formatted);
  if (isFault("log-crashes-beyond-ascii") && text.find('\xff') != std::string::npos) {
    std::abort();
  }
  if (isFault("log-in-pieces")) {
    logInPieces(text);
  } else if (isFault("log-ignores-the-values")) {
    log(level, file, line, function, "%s", format);
  } else if (isFault("log-uses-the-format-twice")) {
    log(level, file, line, function, text.c_str());
  } else if (isFault("log-cuts-long-lines")) {
    log(level, file, line, function, "%s", text.substr(0, 1000).c_str());
  } else if (isFault("log-drops-the-place")) {
    log(level, "", 0, "", "%s", text.c_str());
  } else {
    log(level, file, line, function, "%s", text.c_str());
    if (isFault("log-says-it-twice")) {
      log(level, file, line, function, "%s", text.c_str());
    }
  }
}

#include "platform/host/ConfigFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include "base/Log.h"
#include "base/Settings.h"
#include "base/WholeFile.h"

namespace host {
namespace {

const std::size_t kMaxFileBytes = 16u << 20;
const std::size_t kMaxDamagedLinesLogged = 10;
const int kMaxDamagedFiles = 10;

std::string damagedPath(const std::string& path, int number) {
  return path + ".damaged" + (number == 0 ? std::string() : "." + std::to_string(number));
}

bool isSameFile(const std::string& first, const std::string& second) {
  struct stat one = {};
  struct stat other = {};
  return ::lstat(first.c_str(), &one) == 0 && ::lstat(second.c_str(), &other) == 0 &&
         one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

// Keeps the file at `path` under an unused name beside it. Returns the name; on failure, an empty
// text and errno.
std::string linkDamaged(const std::string& path) {
  for (int number = 0; number < kMaxDamagedFiles; ++number) {
    std::string kept = damagedPath(path, number);
    if (::link(path.c_str(), kept.c_str()) == 0) {
      return kept;
    }
    if (errno != EEXIST) {
      return std::string();
    }
    if (isSameFile(path, kept)) {
      return kept;  // by a writer that died before it could replace the file
    }
  }
  errno = EEXIST;
  return std::string();
}

}  // namespace

std::string normalDevicePath(const std::string& path) {
  return std::filesystem::path("/" + path).lexically_normal().string();
}

ConfigFile::ConfigFile(const std::string& path, Access access)
    : devicePath_(normalDevicePath(path)), path_(base::hostPath(devicePath_)), access_(access) {}

ConfigFile::~ConfigFile() {
  wipe(&clearText_);
}

const std::set<std::string>& ConfigFile::keys() {
  if (!keys_) {
    fileEntries();
    keys_.emplace();
    for (const ConfigEntries* entries : {&fromFile_.entries, &written_, &missing_}) {
      for (const auto& entry : *entries) {
        keys_->emplace_hint(keys_->end(), entry.first);
      }
    }
  }
  return *keys_;
}

const ConfigValue* ConfigFile::find(const std::string& key) {
  fileEntries();
  for (const ConfigEntries* entries : {&written_, &fromFile_.entries, &missing_}) {
    const auto found = entries->find(key);
    if (found != entries->end()) {
      return &found->second;
    }
  }
  return nullptr;
}

const char* ConfigFile::clearTextOf(const std::string& key, const ConfigValue& value) {
  if (!box_) {
    box_ = SecretBox::open();
  }
  if (!box_) {
    return nullptr;  // already logged
  }
  if (!box_->unseal(value.text, devicePath_, key, &clearText_)) {
    BASE_LOG_FAILURE(
        "%s: the secret %s cannot be decrypted; using the default. The secret was changed, or "
        "comes from another key, file or machine. Sign in or discover the stores again.",
        path_.c_str(), key.c_str());
    return nullptr;
  }
  return clearText_.c_str();
}

void ConfigFile::write(const std::string& key, const std::string& text) {
  written_[key] = {text, false};
  keys_.reset();
}

void ConfigFile::writeIfMissing(const std::string& key, const std::string& text) {
  missing_[key] = {text, false};
  keys_.reset();
}

void ConfigFile::writeSecret(const std::string& key, const std::string& clearText) {
  if (!box_) {
    box_ = SecretBox::openOrMake();
  }
  if (!box_) {
    lacksSecret_ = true;
    return;
  }
  // Sealing gives a different text each time: an unchanged secret would replace the file.
  const ConfigValue* value = find(key);
  const bool isKept = value != nullptr && value->isSecret &&
                      box_->unseal(value->text, devicePath_, key, &clearText_) &&
                      clearText_ == clearText;
  written_[key] = isKept ? *value : ConfigValue{box_->seal(clearText, devicePath_, key), true};
  keys_.reset();
}

const ConfigEntries& ConfigFile::fileEntries() {
  if (!isLoaded_) {
    isLoaded_ = true;
    std::string content;
    const base::FileFailure failure = base::readWholeFile(path_, kMaxFileBytes, &content);
    if (!failure) {
      takeOver(std::move(content));
    } else if (failure.error != ENOENT) {
      BASE_LOG_FAILURE("Cannot read %s, using an empty file: %s", path_.c_str(),
                       failure.text().c_str());
    }
  }
  return fromFile_.entries;
}

// The text of a damaged line is not logged: it may be a secret.
void ConfigFile::takeOver(std::string content) {
  fromFile_ = parseConfig(content);
  content_ = std::move(content);
  const std::size_t count = fromFile_.damagedLines.size();
  for (std::size_t i = 0; i < std::min(count, kMaxDamagedLinesLogged); ++i) {
    BASE_LOG_FAILURE(
        "%s:%zu: this line is ignored: it has no '=', or an escape other than "
        "\\n, \\r, \\t, \\\\ and \\xHH",
        path_.c_str(), fromFile_.damagedLines[i]);
  }
  if (count > kMaxDamagedLinesLogged) {
    BASE_LOG_FAILURE("%s: %zu more lines are ignored", path_.c_str(),
                     count - kMaxDamagedLinesLogged);
  }
}

bool ConfigFile::save() {
  if (!mayBeSaved() || !updateFile()) {
    return false;
  }
  isLoaded_ = true;
  written_.clear();
  missing_.clear();
  keys_.reset();
  return true;
}

bool ConfigFile::mayBeSaved() const {
  if (access_ == Access::Read) {
    return failed("it was opened read-only; open it with CfgWrapper::Write");
  }
  if (lacksSecret_) {
    return failed("a secret could not be encrypted; fix the key file");
  }
  return true;
}

bool ConfigFile::updateFile() {
  const base::FileLock lock(path_);
  if (lock.failure()) {
    return failed(lock.failure().text());
  }
  std::string content;
  const base::FileFailure unread = base::readWholeFile(path_, kMaxFileBytes, &content);
  if (unread && unread.error != ENOENT) {
    return failed("its content cannot be read and would be lost: " + unread.text());
  }
  if (content != content_) {
    takeOver(std::move(content));
  }
  if (!unread && fromFile_.damagedLines.empty() && holdsAllWritten()) {
    return true;  // flash memory wears with each write
  }
  return replaceFile();
}

bool ConfigFile::replaceFile() {
  ConfigEntries merged = fromFile_.entries;
  for (const auto& entry : written_) {
    merged[entry.first] = entry.second;
  }
  merged.insert(missing_.begin(), missing_.end());
  std::string content = formatConfig(merged);
  if (content.size() > kMaxFileBytes) {
    return failed("it would be larger than 16 MiB; write less");
  }
  if (!fromFile_.damagedLines.empty() && !keepDamagedFile()) {
    return false;
  }
  const base::FileFailure unsaved = base::placeWholeFile(path_, content, base::Placing::Replace);
  if (unsaved && !unsaved.isPlaced) {
    return failed(unsaved.text());
  }
  if (unsaved) {
    BASE_LOG_FAILURE("%s is saved, but a power failure could undo it: %s", path_.c_str(),
                     unsaved.text().c_str());
  }
  fromFile_ = {std::move(merged), {}};
  content_ = std::move(content);
  return true;
}

// Includes the values that are only written if their keys are missing.
bool ConfigFile::holdsAllWritten() const {
  const ConfigEntries& entries = fromFile_.entries;
  const auto isHeld = [&entries](const auto& entry) {
    const auto found = entries.find(entry.first);
    return found != entries.end() && found->second.text == entry.second.text &&
           found->second.isSecret == entry.second.isSecret;
  };
  const auto isThere = [&entries](const auto& entry) { return entries.count(entry.first) != 0; };
  return std::all_of(written_.begin(), written_.end(), isHeld) &&
         std::all_of(missing_.begin(), missing_.end(), isThere);
}

bool ConfigFile::keepDamagedFile() const {
  const std::string kept = linkDamaged(path_);
  if (kept.empty()) {
    return failed("the damaged file cannot be kept as " + damagedPath(path_, 0) + ": " +
                  std::generic_category().message(errno) + "; move away the earlier damaged files");
  }
  BASE_LOG_FAILURE("%s was damaged; kept as %s", path_.c_str(), kept.c_str());
  return true;
}

bool ConfigFile::failed(const std::string& why) const {
  BASE_LOG_FAILURE("Cannot save %s, which is unchanged: %s", path_.c_str(), why.c_str());
  return false;
}

}  // namespace host

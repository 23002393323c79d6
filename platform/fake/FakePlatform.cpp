#include "platform/fake/FakePlatform.h"

#include <memory>

namespace fake {

const char kWrongKind[] = "<read as the wrong kind>";

std::string Request::header(const std::string& name) const {
  for (const auto& entry : headers) {
    if (entry.first == name) {
      return entry.second;
    }
  }
  return std::string();
}

void Http::answer(long status, const std::string& body,
                  const std::unordered_map<std::string, std::string>& headers) {
  answers.push_back({0, status, body, headers});
}

void Http::failTransfer(int err, long status, const std::string& body) {
  answers.push_back({err, status, body, {}});
}

void Config::setText(const std::string& path, const std::string& key, const std::string& value) {
  files[path][key] = value;
  secretKeys[path].erase(key);
}

void Config::setSecret(const std::string& path, const std::string& key, const std::string& value) {
  files[path][key] = value;
  secretKeys[path].insert(key);
}

bool Config::isSecret(const std::string& path, const std::string& key) const {
  const auto keys = secretKeys.find(path);
  return keys != secretKeys.end() && keys->second.count(key) != 0;
}

std::vector<std::string> Platform::callsOf(const std::set<std::string>& names) const {
  std::vector<std::string> found;
  for (const std::string& call : calls) {
    if (names.count(call.substr(0, call.find(' '))) != 0) {
      found.push_back(call);
    }
  }
  return found;
}

std::vector<std::string> Platform::logTexts(int level) const {
  std::vector<std::string> texts;
  for (const LogLine& line : log) {
    if (line.level == level) {
      texts.push_back(line.text);
    }
  }
  return texts;
}

void Platform::throwAt(const std::string& name, int nth) {
  traps_.push_back({name, nth, true});
}

void Platform::failAt(const std::string& name, int nth) {
  traps_.push_back({name, nth, false});
}

bool Platform::record(const std::string& name, const std::string& detail) {
  calls.push_back(detail.empty() ? name : name + " " + detail);
  bool fails = false;
  for (Trap& trap : traps_) {
    if (trap.name == name && --trap.countdown == 0) {
      if (trap.throws) {
        throw Failure(name + " was arranged to throw");
      }
      fails = true;
    }
  }
  return fails;
}

namespace {

std::unique_ptr<Platform>& instance() {
  static std::unique_ptr<Platform> platform(new Platform);
  return platform;
}

}  // namespace

Platform& platform() {
  return *instance();
}

void reset() {
  instance().reset(new Platform);
}

}  // namespace fake

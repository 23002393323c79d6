// Configuration files: the class CfgWrapper and the value functions of the device SDK. What was
// saved is read by another process than the one that saved it.

#include <ov_sdk.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <functional>
#include <random>
#include <set>

#include <orvane/utilities/CfgWrapper.h>

#include "platform_check/Check.h"
#include "platform_check/Child.h"

using orvane::utilities::CfgWrapper;

namespace platform_check {

namespace {

namespace fs = std::filesystem;

const int kKillRounds = 40;
const int kSavesEach = 50;
const int kNumberedKeys = 4;
const std::size_t kFillingBytes = 5000;

// --- Reading and writing -------------------------------------------------------------------------

std::string notNull(const char* text, const char* function, const std::string& key) {
  if (text == nullptr) {
    throw Failure(std::string(function) + " returned null for the key " + quoted(key));
  }
  return text;
}

std::string textOf(const CfgWrapper& config, const std::string& key) {
  return notNull(ReadString(config.handle, key.c_str(), "(default)"), "ReadString()", key);
}

std::string secretOf(const CfgWrapper& config, const std::string& key) {
  return notNull(ReadSecret(config.handle, key.c_str(), "(default)"), "ReadSecret()", key);
}

std::string savedText(const std::string& path, const std::string& key) {
  return textOf(CfgWrapper(path, CfgWrapper::Read), key);
}

// Saves in a new process what `write` writes.
void save(const Settings& settings, const std::string& path,
          const std::function<void(ov_config*)>& write) {
  inNewProcess(settings.timeoutSeconds, [&] {
    CfgWrapper config(path, CfgWrapper::Write);
    write(config.handle);
    config.saveAndClose();
  });
}

void saveText(const Settings& settings, const std::string& path, const std::string& key,
              const std::string& text) {
  save(settings, path, [&](ov_config* config) { WriteString(config, key.c_str(), text.c_str()); });
}

// Throws Skip when the file behind a device path is not where this program looks.
void requireFile(const Settings& settings, const std::string& name) {
  const std::string path = settings.realPath(name);
  if (!fs::exists(path)) {
    throw Skip("there is no file " + path +
               " after a save; set --root to the folder where the "
               "implementation has the device's /");
  }
}

// --- Values --------------------------------------------------------------------------------------

void valuesComeBack(const Settings& settings) {
  const std::string path = settings.devicePath("values.cfg");
  save(settings, path, [](ov_config* config) {
    WriteInt(config, "least", INT_MIN);
    WriteInt(config, "negative", -1);
    WriteInt(config, "zero", 0);
    WriteInt(config, "most", INT_MAX);
    WriteString(config, "text", "text");
    WriteString(config, "empty", "");
    WriteSecret(config, "secret", "secret text");
    WriteSecret(config, "emptySecret", "");
  });
  const CfgWrapper config(path, CfgWrapper::Read);
  requireEqual("the least integer", ReadInt(config.handle, "least", 7), INT_MIN);
  requireEqual("the integer -1", ReadInt(config.handle, "negative", 7), -1);
  requireEqual("the integer 0", ReadInt(config.handle, "zero", 7), 0);
  requireEqual("the largest integer", ReadInt(config.handle, "most", 7), INT_MAX);
  requireEqual("the text", textOf(config, "text"), "text");
  requireEqual("the empty text", textOf(config, "empty"), "");
  requireEqual("the secret", secretOf(config, "secret"), "secret text");
  requireEqual("the empty secret", secretOf(config, "emptySecret"), "");
}

void textsKeepEveryByte(const Settings& settings) {
  const std::string path = settings.devicePath("bytes.cfg");
  const std::vector<std::string> texts = {
      everyByteButNul(), " a ",       "\n",      "a\n\nb=c\n#d", "=", "\\n", "%41",
      "\"quoted\"",      "[section]", "\xff\xfe"};
  save(settings, path, [&texts](ov_config* config) {
    for (std::size_t i = 0; i < texts.size(); ++i) {
      WriteString(config, ("text" + std::to_string(i)).c_str(), texts[i].c_str());
    }
  });
  const CfgWrapper config(path, CfgWrapper::Read);
  for (std::size_t i = 0; i < texts.size(); ++i) {
    requireEqual("the text", textOf(config, "text" + std::to_string(i)), texts[i]);
  }
}

void secretsKeepEveryByte(const Settings& settings) {
  const std::string path = settings.devicePath("secret-bytes.cfg");
  const std::string text = everyByteButNul();
  save(settings, path, [&text](ov_config* config) { WriteSecret(config, "secret", text.c_str()); });
  requireEqual("the secret", secretOf(CfgWrapper(path, CfgWrapper::Read), "secret"), text);
}

void longTextsComeBack(const Settings& settings) {
  const std::string path = settings.devicePath("long.cfg");
  const std::string text(20000, 'x');
  save(settings, path, [&text](ov_config* config) {
    WriteString(config, "text", text.c_str());
    WriteSecret(config, "secret", text.c_str());
  });
  const CfgWrapper config(path, CfgWrapper::Read);
  requireEqual("the long text", textOf(config, "text"), text);
  requireEqual("the long secret", secretOf(config, "secret"), text);
}

void textsAreCopied(const Settings& settings) {
  CfgWrapper config(settings.devicePath("copies.cfg"), CfgWrapper::Write);
  std::string key = "key", text = "text", secretKey = "secret", secret = "secret text";
  WriteString(config.handle, key.c_str(), text.c_str());
  WriteSecret(config.handle, secretKey.c_str(), secret.c_str());
  for (std::string* each : {&key, &text, &secretKey, &secret}) {
    each->assign(each->size(), '?');
  }
  requireEqual("the text, after the caller's copy was overwritten", textOf(config, "key"), "text");
  requireEqual("the secret, after the caller's copy was overwritten", secretOf(config, "secret"),
               "secret text");
}

void writtenValuesAreVisibleAtOnce(const Settings& settings) {
  const std::string path = settings.devicePath("visible.cfg");
  saveText(settings, path, "text", "old");
  const CfgWrapper config(path, CfgWrapper::Write);
  WriteString(config.handle, "text", "new");
  WriteInt(config.handle, "number", 5);
  WriteSecret(config.handle, "secret", "secret text");
  requireEqual("the text before it is saved", textOf(config, "text"), "new");
  requireEqual("the integer before it is saved", ReadInt(config.handle, "number", 0), 5);
  requireEqual("the secret before it is saved", secretOf(config, "secret"), "secret text");
}

void textStaysUntilTheNextCall(const Settings& settings) {
  const std::string path = settings.devicePath("stays.cfg");
  const std::string otherPath = settings.devicePath("stays-too.cfg");
  saveText(settings, path, "text", std::string(300, 'a'));
  saveText(settings, otherPath, "text", std::string(300, 'b'));
  const CfgWrapper config(path, CfgWrapper::Read);
  const CfgWrapper other(otherPath, CfgWrapper::Read);
  const char* const returned = ReadString(config.handle, "text", "");
  textOf(other, "text");
  requireEqual("the text, after a call for another configuration",
               notNull(returned, "ReadString()", "text"), std::string(300, 'a'));
}

// --- Keys ----------------------------------------------------------------------------------------

void absentKeysGiveTheDefault(const Settings& settings) {
  const std::string path = settings.devicePath("absent.cfg");
  saveText(settings, path, "present", "text");
  const CfgWrapper config(path, CfgWrapper::Read);
  requireEqual("an absent integer", ReadInt(config.handle, "absent", 7), 7);
  requireEqual("an absent text", textOf(config, "absent"), "(default)");
  requireEqual("an absent secret", secretOf(config, "absent"), "(default)");
  requireEqual("a key in upper case", textOf(config, "PRESENT"), "(default)");
}

void readingCreatesNoKey(const Settings& settings) {
  const std::string path = settings.devicePath("created.cfg");
  inNewProcess(settings.timeoutSeconds, [&path] {
    CfgWrapper config(path, CfgWrapper::Write);
    WriteString(config.handle, "present", "text");
    ReadInt(config.handle, "absentInt", 7);
    textOf(config, "absentText");
    secretOf(config, "absentSecret");
    config.saveAndClose();
  });
  for (const std::string& key : CfgWrapper(path, CfgWrapper::Read).keys()) {
    require(key == "present", "the key " + quoted(key) + " was read and is in the file now");
  }
}

void keysAreComplete(const Settings& settings) {
  const std::string path = settings.devicePath("keys.cfg");
  const std::set<std::string> expected = {"number", "text", "empty", "secret", "Text"};
  save(settings, path, [](ov_config* config) {
    WriteInt(config, "number", 1);
    WriteString(config, "text", "text");
    WriteString(config, "Text", "other");
    WriteString(config, "empty", "");
    WriteSecret(config, "secret", "secret text");
  });
  CfgWrapper config(path, CfgWrapper::Write);
  const std::set<std::string> keys = config.keys();
  for (const std::string& key : expected) {
    require(keys.count(key) != 0, "keys() lacks the key " + quoted(key));
  }
  requireEqual("the number of keys", static_cast<long long>(keys.size()),
               static_cast<long long>(expected.size()));
  WriteString(config.handle, "later", "text");
  require(config.keys().count("later") != 0, "keys() lacks a key that was written just now");
}

void otherKeysSurvive(const Settings& settings) {
  const std::string path = settings.devicePath("others.cfg");
  save(settings, path, [](ov_config* config) {
    WriteString(config, "others", "other program's text");
    WriteSecret(config, "othersSecret", "other program's secret");
    WriteInt(config, "othersNumber", -5);
  });
  saveText(settings, path, "own", "text");
  const CfgWrapper config(path, CfgWrapper::Read);
  requireEqual("a text of another program", textOf(config, "others"), "other program's text");
  requireEqual("a secret of another program", secretOf(config, "othersSecret"),
               "other program's secret");
  requireEqual("an integer of another program", ReadInt(config.handle, "othersNumber", 0), -5);
  requireEqual("the own text", textOf(config, "own"), "text");
}

// --- Opening, saving and closing -----------------------------------------------------------------

void missingFileIsEmpty(const Settings& settings) {
  CfgWrapper config(settings.devicePath("missing.cfg"), CfgWrapper::Read);
  require(config.handle != nullptr, "the handle of a missing file is null");
  require(config.keys().empty(), "a missing file has keys");
  requireEqual("a text of a missing file", textOf(config, "key"), "(default)");
  config.closeNoSave();
  require(!fs::exists(settings.realPath("missing.cfg")), "reading a missing file created it");
}

void savesTwice(const Settings& settings) {
  const std::string path = settings.devicePath("twice.cfg");
  inNewProcess(settings.timeoutSeconds, [&path] {
    CfgWrapper config(path, CfgWrapper::Write);
    WriteString(config.handle, "first", "1");
    config.save();
    requireEqual("the text after save()", textOf(config, "first"), "1");
    config.save();
    WriteString(config.handle, "second", "2");
    config.saveAndClose();
  });
  requireEqual("the text of the first save", savedText(path, "first"), "1");
  requireEqual("the text of the second save", savedText(path, "second"), "2");
}

void saveWithoutCloseIsEnough(const Settings& settings) {
  const std::string path = settings.devicePath("save.cfg");
  inNewProcess(settings.timeoutSeconds, [&path] {
    CfgWrapper config(path, CfgWrapper::Write);
    WriteString(config.handle, "key", "text");
    config.save();
  });
  requireEqual("the text", savedText(path, "key"), "text");
}

void closingSavesNothing(const Settings& settings) {
  const std::string path = settings.devicePath("closed.cfg");
  saveText(settings, path, "key", "old");
  inNewProcess(settings.timeoutSeconds, [&path] {
    CfgWrapper closed(path, CfgWrapper::Write);
    WriteString(closed.handle, "key", "closed");
    closed.closeNoSave();
    const CfgWrapper destroyed(path, CfgWrapper::Write);
    WriteString(destroyed.handle, "key", "destroyed");
  });
  requireEqual("the text", savedText(path, "key"), "old");
}

void readModeSavesNothing(const Settings& settings) {
  const std::string path = settings.devicePath("read.cfg");
  saveText(settings, path, "key", "old");
  inNewProcess(settings.timeoutSeconds, [&path] {
    CfgWrapper config(path, CfgWrapper::Read);
    WriteString(config.handle, "key", "new");
    config.saveAndClose();
  });
  requireEqual("the text", savedText(path, "key"), "old");
}

void failedSaveIsSurvived(const Settings& settings) {
  const std::string path = settings.devicePath("blocked.cfg");
  fs::create_directories(settings.realPath("blocked.cfg") + "/in-the-way");
  inNewProcess(settings.timeoutSeconds, [&path] {
    CfgWrapper config(path, CfgWrapper::Write);
    WriteString(config.handle, "key", "text");
    config.save();
    requireEqual("the text after a save that failed", textOf(config, "key"), "text");
    config.saveAndClose();
  });
  require(fs::is_directory(settings.realPath("blocked.cfg") + "/in-the-way"),
          "a folder in place of the file was replaced");
}

// --- Secrets -------------------------------------------------------------------------------------

std::string hexOf(const std::string& text) {
  static const char digits[] = "0123456789abcdef";
  std::string result;
  for (const char byte : text) {
    result += {digits[byte >> 4 & 0xf], digits[byte & 0xf]};
  }
  return result;
}

// What anybody can make the secret from; empty when `content` has none of it.
std::string exposedForm(const std::string& content, const std::string& secret) {
  const auto has = [&content](const std::string& form) {
    return content.find(form) != std::string::npos;
  };
  if (has(secret)) {
    return "in clear text";
  }
  if (has(std::string(secret.rbegin(), secret.rend()))) {
    return "in clear text, backwards";
  }
  if (lowerCase(content).find(hexOf(secret)) != std::string::npos) {
    return "as hexadecimal digits";
  }
  const std::string base64 = base64Of(secret);
  if (has(base64.substr(0, base64.size() - 4))) {  // the end depends on what follows
    return "as Base64";
  }
  for (int mask = 1; mask < 256; ++mask) {
    std::string masked = secret;
    for (char& byte : masked) {
      byte = static_cast<char>(byte ^ mask);
    }
    if (has(masked)) {
      return "with each byte XOR " + std::to_string(mask);
    }
  }
  return "";
}

void secretsAreUnreadable(const Settings& settings) {
  const std::string secret = "q7Zr2mXw9LpKd4Tf8BvYc3Ng";  // as random as a token
  save(settings, settings.devicePath("secrets/token.cfg"),
       [&secret](ov_config* config) { WriteSecret(config, "token", secret.c_str()); });
  requireFile(settings, "secrets/token.cfg");
  for (const auto& entry : fs::recursive_directory_iterator(settings.realPath("secrets"))) {
    const std::string form = exposedForm(contentOf(entry.path().string()), secret);
    require(form.empty(), entry.path().filename().string() + " has the secret " + form);
  }
}

void secretsDifferFromTexts(const Settings& settings) {
  const std::string path = settings.devicePath("kinds.cfg");
  saveText(settings, path, "key", "text");
  save(settings, path, [](ov_config* config) { WriteSecret(config, "key", "secret text"); });
  requireEqual("a text that was replaced by a secret",
               secretOf(CfgWrapper(path, CfgWrapper::Read), "key"), "secret text");
  saveText(settings, path, "key", "text again");
  requireEqual("a secret that was replaced by a text", savedText(path, "key"), "text again");
}

// --- Several processes ---------------------------------------------------------------------------

// Saves the number, with filling, under several keys at once.
void saveNumbered(const std::string& path, const std::string& prefix, int number) {
  CfgWrapper config(path, CfgWrapper::Write);
  const std::string text = std::to_string(number) + "." + std::string(kFillingBytes, 'x');
  for (int key = 0; key < kNumberedKeys; ++key) {
    WriteString(config.handle, (prefix + std::to_string(key)).c_str(), text.c_str());
  }
  config.saveAndClose();
}

// The number of the last save that is in the file; -1 for none. Fails when the file has a part
// only.
int savedNumber(const std::string& path, const std::string& prefix) {
  const CfgWrapper config(path, CfgWrapper::Read);
  const std::string first = textOf(config, prefix + "0");
  for (int key = 1; key < kNumberedKeys; ++key) {
    requireEqual("value " + std::to_string(key) + " of one save",
                 textOf(config, prefix + std::to_string(key)), first);
  }
  if (first == "(default)") {
    return -1;
  }
  const std::size_t expected = first.find('.') + 1 + kFillingBytes;
  requireEqual("the length of a saved text", static_cast<long long>(first.size()),
               static_cast<long long>(expected));
  return std::stoi(first);
}

void twoProcessesSaveAtOnce(const Settings& settings) {
  const std::string path = settings.devicePath("two.cfg");
  saveText(settings, path, "others", "text");
  const auto saver = [&path](const char* prefix) {
    return [&path, prefix] {
      for (int number = 1; number <= kSavesEach; ++number) {
        saveNumbered(path, prefix, number);
      }
    };
  };
  Child one(saver("one"));
  Child two(saver("two"));
  for (Child* each : {&one, &two}) {
    const Result result = each->wait(settings.timeoutSeconds);
    require(result.outcome == Outcome::Passed, "one of two processes failed: " + result.reason);
  }
  const int lastOne = savedNumber(path, "one");
  const int lastTwo = savedNumber(path, "two");
  require(lastOne == kSavesEach || lastTwo == kSavesEach,
          "neither of the two last saves is in the file");
  requireEqual("a text of another program", savedText(path, "others"), "text");
}

void readersSeeWholeFiles(const Settings& settings) {
  const std::string path = settings.devicePath("readers.cfg");
  save(settings, path, [](ov_config* config) { WriteString(config, "others", "text"); });
  Child saver([&path] {
    for (int number = 1; number <= kSavesEach; ++number) {
      saveNumbered(path, "a", number);
    }
  });
  for (int last = -1; last < kSavesEach;) {
    const int number = savedNumber(path, "a");
    require(number >= last, "a reader saw an older file after a newer one");
    requireEqual("a text of another program during a save", savedText(path, "others"), "text");
    last = number;
  }
  const Result result = saver.wait(settings.timeoutSeconds);
  require(result.outcome == Outcome::Passed, "the saving process failed: " + result.reason);
}

// Saves without end, and says so first.
std::function<void()> endlessSaver(const std::string& path, int number, int started) {
  return [path, number, started] {
    int next = ::write(started, "s", 1) == 1 ? number : -1;
    while (next >= 0) {
      saveNumbered(path, "a", next++);
    }
  };
}

void killDuringASave(const Settings& settings) {
  const std::string path = settings.devicePath("killed.cfg");
  save(settings, path, [](ov_config* config) { WriteString(config, "others", "text"); });
  int ends[2];
  require(::pipe(ends) == 0, "no pipe");
  std::mt19937 random(1);
  int last = -1;
  for (int round = 0; round < kKillRounds; ++round) {
    Child saver(endlessSaver(path, last + 1, ends[1]));
    char started = 0;
    require(::read(ends[0], &started, 1) == 1, "the saving process did not start");
    ::usleep(std::uniform_int_distribution<useconds_t>(0, 20000)(random));
    saver.kill();
    const int number = savedNumber(path, "a");
    require(number >= last, "a save was lost after a kill: the file has number " +
                                std::to_string(number) + ", before it had " + std::to_string(last));
    requireEqual("a text of another program after a kill", savedText(path, "others"), "text");
    last = number;
  }
  require(last >= 0, "no save was complete within " + std::to_string(kKillRounds) + " rounds");
  requireFile(settings, "killed.cfg");
}

}  // namespace

const std::vector<Check> kConfigChecks = {
    {"config", "values-come-back",
     "Store integers of 32 bits, texts and secrets, empty ones too; never return null.",
     &valuesComeBack},
    {"config", "texts-keep-every-byte",
     "Escape what has a meaning in the file: line feeds, the separator, quotes, blanks at the "
     "ends.",
     &textsKeepEveryByte},
    {"config", "secrets-keep-every-byte", "Encrypt bytes, not characters.", &secretsKeepEveryByte},
    {"config", "long-texts-come-back", "Use no buffer of fixed size: tokens have many kilobytes.",
     &longTextsComeBack},
    {"config", "texts-are-copied", "Copy key and text before the function returns.",
     &textsAreCopied},
    {"config", "written-values-are-visible-at-once", "Read from what was written, then the file.",
     &writtenValuesAreVisibleAtOnce},
    {"config", "text-stays-until-the-next-call",
     "Keep a returned text in the configuration, not in a buffer that all share.",
     &textStaysUntilTheNextCall},
    {"config", "absent-keys-give-the-default",
     "Return the default of the call, and compare keys byte for byte.", &absentKeysGiveTheDefault},
    {"config", "reading-creates-no-key", "Do not store the default of a reading function.",
     &readingCreatesNoKey},
    {"config", "keys-are-complete",
     "Return every key, those of secrets and of values written just now too.", &keysAreComplete},
    {"config", "other-keys-survive",
     "Load the file in mode Write as well, and save all its keys: other programs have theirs in "
     "it.",
     &otherKeysSurvive},
    {"config", "missing-file-is-empty", "Open a missing file as an empty one; do not create it.",
     &missingFileIsEmpty},
    {"config", "saves-twice", "Keep the configuration open, and its values, after save().",
     &savesTwice},
    {"config", "save-without-close-is-enough", "Write the file in save(), not when it is closed.",
     &saveWithoutCloseIsEnough},
    {"config", "closing-saves-nothing",
     "Write the file in save() and saveAndClose() only, not in closeNoSave() or the destructor.",
     &closingSavesNothing},
    {"config", "read-mode-saves-nothing", "Do not write a file that was opened in mode Read.",
     &readModeSavesNothing},
    {"config", "failed-save-is-survived",
     "Log a failure to save; do not throw, and keep the configuration open.",
     &failedSaveIsSurvived},
    {"config", "secrets-are-unreadable",
     "Encrypt secrets with a key of the device; an encoding is no protection.",
     &secretsAreUnreadable},
    {"config", "secrets-and-texts-replace-each-other",
     "Let the last write decide whether a value is a secret.", &secretsDifferFromTexts},
    {"config", "two-processes-save-at-once",
     "Write to a temporary file of the process and rename it over the file, or lock the file.",
     &twoProcessesSaveAtOnce},
    {"config", "readers-see-whole-files",
     "Write to a temporary file and rename it over the file; never write into the file itself.",
     &readersSeeWholeFiles},
    {"config", "kill-leaves-old-or-new-file",
     "Write to a temporary file, call fsync() and rename it over the file.", &killDuringASave},
};

}  // namespace platform_check

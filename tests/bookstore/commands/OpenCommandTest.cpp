// The command over a script that plays the browser: no real one is started.

#include <sys/stat.h>
#include <sys/wait.h>

#include <csignal>

#include "tests/bookstore/CustomerTest.h"
#include "tests/support/NewProcess.h"

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

namespace {

// Writes down its options and what it is sent, answers, and ends when it has been told all.
const char kPlayedBrowser[] = R"(#!/bin/bash
printf '%s\n' "$@" >"$PLAYED_BROWSER/options"
for option in "$@"; do
  case $option in --user-data-dir=*) profile=${option#*=} ;; esac
done
: >"$profile/left-behind"
while IFS= read -r line; do
  case $line in SigBlk:*) printf '%s' "$line" >"$PLAYED_BROWSER/blocked-signals" ;; esac
done </proc/$$/status
for id in 1 2; do
  IFS= read -r -d '' message <&3 || exit 1
  printf '%s\n' "$message" >>"$PLAYED_BROWSER/messages"
  printf '{"method":"x","error":{"message":"of its own"}}\0{"id":%d,"result":{}}\0' "$id" >&4
done
)";

class OpenCommandTest : public bookstore_tests::CustomerTest {
 protected:
  OpenCommandTest() {
    signedIn();
    std::filesystem::create_directories(temporary());
  }

  std::string temporary() const { return folder.path() + "/temporary"; }

  void install(const std::string& name, const std::string& script = kPlayedBrowser) {
    const std::string program = folder.path() + "/" + name;
    std::ofstream(program) << script;
    ::chmod(program.c_str(), 0700);
  }

  std::string written(const std::string& name) const {
    std::ifstream in(folder.path() + "/" + name);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }

  std::vector<Json::Value> messages() const {
    std::vector<Json::Value> all;
    std::istringstream in(written("messages"));
    for (std::string line; std::getline(in, line);) {
      all.emplace_back();
      std::istringstream(line) >> all.back();
    }
    return all;
  }

  void expectNothingLeft() { EXPECT_TRUE(std::filesystem::is_empty(temporary())); }

  const support::TemporaryFolder folder;
  const support::ScopedSetting path{"PATH", "/nowhere::" + folder.path()};
  const support::ScopedSetting temporarySetting{"TMPDIR", temporary()};
  const support::ScopedSetting played{"PLAYED_BROWSER", folder.path()};
  const support::ScopedSetting connectTo{"ORVANE_CONNECT_TO", ""};
  const support::ScopedSetting caFile{"ORVANE_CA_FILE", ""};
  const support::ScopedSetting pinnedKey{"ORVANE_PINNED_KEY", ""};
};

}  // namespace

TEST_F(OpenCommandTest, SetsTheCookiesThenShowsTheStoreAndWaits) {
  install("chromium");
  EXPECT_EQ(run({"open"}), bookstore::kDone) << err;
  EXPECT_EQ(out, "Closed: " + folder.path() + "/chromium showed https://de.example/\n");
  EXPECT_EQ(err, "bookstore: waiting until the browser is closed\n");
  ASSERT_EQ(messages().size(), 2u);
  const Json::Value set = messages()[0];
  EXPECT_EQ(set["method"], "Storage.setCookies");
  ASSERT_EQ(set["params"]["cookies"].size(), 4u);
  const Json::Value cookie = set["params"]["cookies"][0];
  EXPECT_EQ(cookie["name"], "orvane-customer");
  EXPECT_EQ(cookie["value"], "access-secret");
  EXPECT_EQ(cookie["url"], "https://de.example/");
  EXPECT_EQ(cookie["path"], "/");
  EXPECT_EQ(cookie["secure"], true);
  const Json::Value create = messages()[1];
  EXPECT_EQ(create["method"], "Target.createTarget");
  EXPECT_EQ(create["params"]["url"], "https://de.example/");
}

TEST_F(OpenCommandTest, GivesProgramsTheSame) {
  install("chromium");
  EXPECT_EQ(run({"open", "--json"}), bookstore::kDone);
  EXPECT_EQ(json()["schema"], 1);
  EXPECT_EQ(json()["browser"], folder.path() + "/chromium");
  EXPECT_EQ(json()["url"], "https://de.example/");
}

TEST_F(OpenCommandTest, StartsAFreshProfileThatGoesAndPutsNoSecretOnTheCommandLine) {
  install("chromium");
  run({"open"});
  EXPECT_THAT(written("options"), AllOf(StartsWith("--user-data-dir=" + temporary() + "/"),
                                        HasSubstr("\n--remote-debugging-pipe\n"),
                                        Not(HasSubstr("secret")), Not(HasSubstr("resolver"))));
  expectNothingLeft();
}

TEST_F(OpenCommandTest, StartsTheBrowserWithoutBlockedSignals) {
  install("chromium");
  run({"open"});
  EXPECT_EQ(written("blocked-signals"), "SigBlk:\t0000000000000000");
}

TEST_F(OpenCommandTest, FindsEachKindOfBrowserInThisOrder) {
  for (const char* name : {"google-chrome", "chromium-browser", "chromium"}) {
    install(name);
    EXPECT_EQ(run({"open"}), bookstore::kDone);
    EXPECT_THAT(out, HasSubstr("/" + std::string(name) + " showed"));
  }
}

TEST_F(OpenCommandTest, WithoutABrowserSaysHow) {
  EXPECT_EQ(run({"open"}), bookstore::kLocalFailure);
  EXPECT_THAT(out, IsEmpty());
  EXPECT_THAT(err, AllOf(HasSubstr("Chromium family to open https://de.example/. Install chromium"),
                         HasSubstr("bookstore cookies --format netscape --show-secrets")));
}

TEST_F(OpenCommandTest, PassesOnWhereToConnect) {
  install("chromium");
  const support::ScopedSetting to("ORVANE_CONNECT_TO",
                                  "a.example:443:127.0.0.1:1443,b.example::10.0.0.1:,::c:2");
  run({"open"});
  EXPECT_THAT(written("options"),
              HasSubstr("\n--host-resolver-rules=MAP a.example:443 127.0.0.1:1443, "
                        "MAP b.example 10.0.0.1, MAP * c:2\n"));
}

TEST_F(OpenCommandTest, SaysWhatABrowserCannotTake) {
  install("chromium");
  const support::ScopedSetting to("ORVANE_CONNECT_TO", "a:443::1443,[::1]:443:[::1]:1443");
  const support::ScopedSetting ca("ORVANE_CA_FILE", "/ca.pem");
  const support::ScopedSetting pin("ORVANE_PINNED_KEY", "sha256//AAAA");
  EXPECT_EQ(run({"open"}), bookstore::kDone);
  EXPECT_THAT(
      err, AllOf(HasSubstr("ignores a:443::1443 of ORVANE_CONNECT_TO"),
                 HasSubstr("ignores [::1]:443:[::1]:1443 of"), HasSubstr("ignores ORVANE_CA_FILE"),
                 HasSubstr("ignores ORVANE_PINNED_KEY")));
  EXPECT_THAT(written("options"), Not(HasSubstr("resolver")));
}

TEST_F(OpenCommandTest, NamesABrowserThatEndsAtOnce) {
  install("chromium", "#!/bin/bash\nexit 1\n");
  EXPECT_TRUE(support::passesInNewProcess([this] {
    std::signal(SIGPIPE, SIG_IGN);  // as the program does
    EXPECT_EQ(run({"open"}), bookstore::kLocalFailure);
    EXPECT_THAT(err, HasSubstr("/chromium ended before it showed the page"));
  }));
  expectNothingLeft();
}

TEST_F(OpenCommandTest, NamesABrowserThatRefuses) {
  install("chromium",
          "#!/bin/bash\nIFS= read -r -d '' message <&3\n"
          "printf '{\"id\":1,\"error\":{\"message\":\"no such method\"}}\\0' >&4\nread <&3\n");
  EXPECT_EQ(run({"open"}), bookstore::kLocalFailure);
  EXPECT_THAT(err, HasSubstr("/chromium refused a command (no such method). Install "));
  expectNothingLeft();
}

TEST_F(OpenCommandTest, NamesABrowserThatCannotBeStarted) {
  install("chromium", "#!/nowhere/shell\n");
  EXPECT_EQ(run({"open"}), bookstore::kLocalFailure);
  EXPECT_THAT(err, HasSubstr("/chromium: No such file or directory"));
  expectNothingLeft();
}

TEST_F(OpenCommandTest, ASignalEndsTheBrowserAndTheProfileBeforeTheProgram) {
  install("chromium", std::string(kPlayedBrowser) +
                          "trap 'echo ended >\"$PLAYED_BROWSER/end\"; exit' TERM\n"
                          "kill -TERM $PPID\n"
                          "while :; do IFS= read -r -t 0.1 -d '' message <&3; done\n");
  const int status = support::statusOfNewProcess([this] { return run({"open"}); });
  EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM) << status;
  EXPECT_EQ(written("end"), "ended\n");
  expectNothingLeft();
}

TEST_F(OpenCommandTest, NeedsASession) {
  install("chromium");
  customerAt(german, "", "");
  EXPECT_EQ(run({"open"}), bookstore::kNoSession);
  EXPECT_EQ(written("options"), "");
}

// The built bookstore program, a new process for each command: a customer's use of the store, over
// HTTPS against both lines of the platform.

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <utmp.h>

#include <chrono>
#include <csignal>
#include <future>
#include <thread>

#include "base/WholeFile.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/EndToEndTest.h"
#include "tests/support/WaitUntil.h"

using graphql::GraphQLStorageApi;
using support::Ended;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;
using ::testing::StartsWith;
using ::testing::UnorderedElementsAre;

namespace {

const char kPassword[] = "Secret \"Pass\" 1";
const char kEscapedPassword[] = "Secret \\\"Pass\\\" 1";  // escaped as in a request

class CommandLineTest : public support::EndToEndTest,
                        public ::testing::WithParamInterface<const char*> {
 protected:
  CommandLineTest() {
    store().reset(GetParam());
    store().change(R"({"tokenLifetimeSeconds":3600,"clockOffsetSeconds":0})");
    static int customers = 0;
    email = "reader" + std::to_string(++customers) + "@" + GetParam() + ".example";
    EXPECT_EQ(run({"stores", "--refresh"}).code, 0);
  }

  // Checks that the program's output and log contain no secret.
  ~CommandLineTest() override {
    secrets.insert(secrets.end(), {kPassword, kEscapedPassword});
    noteTokens();
    for (const std::string& secret : secrets) {
      EXPECT_THAT(printed, Not(HasSubstr(secret)));
      EXPECT_THAT(logged(secret), IsEmpty());
    }
  }

  static bool isNewLine() { return std::string(GetParam()) == "new"; }

  Ended run(const std::vector<std::string>& words, const std::string& input = "") {
    Ended ended = runQuietly(words, input);
    printed += ended.output;
    return ended;
  }

  // Safe from any thread.
  static Ended runQuietly(std::vector<std::string> words, const std::string& input = "") {
    words.insert(words.begin(), BOOKSTORE_PROGRAM);
    return support::run(words, input);
  }

  Ended registerCustomer(const std::string& password = kPassword) {
    return run({"register", "--store", "de_de", "--email", email, "--first-name", "Ada",
                "--last-name", "Byron", "--password-stdin"},
               password + "\n");
  }

  Ended signIn(const std::string& password = kPassword) {
    return run({"sign-in", "--store", "de_de", "--email", email, "--password-stdin"},
               password + "\n");
  }

  void registerAndSignIn() {
    ASSERT_EQ(registerCustomer().code, 0) << printed;
    ASSERT_EQ(signIn().code, 0) << printed;
    noteTokens();
  }

  void noteTokens() {
    const GraphQLStorageApi state;
    for (const std::string& token : {state.accessToken(), state.refreshToken()}) {
      if (!token.empty()) {
        secrets.push_back(token);
      }
    }
  }

  // Waits until processes that run now have read the session so often.
  void waitUntilRead(std::size_t times) {
    ASSERT_TRUE(support::waitUntil([&] { return logged("Load tokens: ").size() >= times; }));
  }

  std::string lockedPath() const {
    return root() + "/mnt/ext1/system/config/bookstore.cfg.session";
  }

  std::string email;
  std::string printed;
  std::vector<std::string> secrets;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Line, CommandLineTest, ::testing::Values("old", "new"),
                         [](const auto& line) { return std::string(line.param); });

TEST_P(CommandLineTest, ACustomerLivesWithTheStore) {
  const std::string german = "Bücherwelt Deutschland (bookstore-de)\n";
  EXPECT_EQ(run({"email-available", "--store", "de_de", "--email", email}).output,
            email + " is available at " + german);
  EXPECT_EQ(registerCustomer().output, "Registered " + email + " at " + german);
  EXPECT_EQ(run({"email-available", "--store", "de_de", "--email", email}).output,
            email + " is already registered at " + german);
  EXPECT_EQ(signIn().output, "Signed in as " + email + " at " + german);
  noteTokens();
  // Every command is a new process, which reads the session from the token file.
  EXPECT_EQ(run({"whoami"}).output, "Ada Byron <" + email + "> at " + german);
  EXPECT_EQ(run({"refresh"}).output, "Refreshed the tokens\n");
  noteTokens();
  EXPECT_EQ(run({"whoami"}).output, "Ada Byron <" + email + "> at " + german);
  EXPECT_THAT(run({"status"}).output, HasSubstr("Token lifetime      3600 "));
  EXPECT_EQ(run({"cookies", "-v"}).code, 0);
  EXPECT_EQ(run({"reset-password", "--email", email}).code, 0);
  EXPECT_THAT(support::contentOf(store().folder()),
              Contains(Pair(HasSubstr("/mail/"), HasSubstr(email))));
  EXPECT_EQ(run({"sign-out"}).output, "Signed out\n");
  EXPECT_EQ(run({"whoami"}).code, 6);
}

TEST_P(CommandLineTest, AWrongPasswordIsARefusedSignIn) {
  registerAndSignIn();
  const Ended refused = signIn("Wrong Pass 1");
  EXPECT_EQ(refused.code, 1);
  EXPECT_THAT(refused.output,
              HasSubstr(isNewLine() ? "refused the sign-in with HTTP status 401; nobody is"
                                    : "refused the sign-in (The account sign-in was incorrect"));
  EXPECT_FALSE(GraphQLStorageApi().isLoggedIn());
}

TEST_P(CommandLineTest, ARefusedRegistrationIsToldInTheServersWords) {
  registerCustomer();
  const Ended again = registerCustomer();
  EXPECT_EQ(again.code, 1);
  EXPECT_THAT(again.output, HasSubstr("same email address already exists"));
  EXPECT_THAT(registerCustomer("short").output, HasSubstr("at least 8 characters"));
}

TEST_P(CommandLineTest, ThePasswordComesFromAnyDescriptor) {
  registerCustomer();
  const char script[] =
      R"("$0" sign-in --store de_de --email "$1" --password-fd 7 7<&0 </dev/null)";
  EXPECT_EQ(support::outputOf({"/bin/bash", "-c", script, BOOKSTORE_PROGRAM, email},
                              std::string(kPassword) + "\n"),
            "Signed in as " + email + " at Bücherwelt Deutschland (bookstore-de)\n");
}

TEST_P(CommandLineTest, AnExpiredSessionSaysHowToGoOn) {
  registerAndSignIn();
  store().change(R"({"clockOffsetSeconds":7200})");
  const Ended ended = run({"whoami"});
  EXPECT_EQ(ended.code, isNewLine() ? 6 : 5);
  EXPECT_THAT(ended.output, HasSubstr("Run \"bookstore refresh\" or \"bookstore sign-in\""));
  EXPECT_EQ(run({"refresh"}).code, 0);
  EXPECT_EQ(run({"whoami"}).code, 0);
}

TEST_P(CommandLineTest, ARefusedRefreshSaysWhatBecameOfTheTokens) {
  registerAndSignIn();
  store().change(R"({"clockOffsetSeconds":3000000})");  // the refresh token has expired, too
  const Ended refused = run({"refresh"});
  EXPECT_EQ(refused.code, 1);
  EXPECT_THAT(refused.output, HasSubstr(isNewLine() ? "; the stored tokens are unchanged"
                                                    : "; the stored tokens are removed"));
  EXPECT_EQ(GraphQLStorageApi().isLoggedIn(), isNewLine());
}

TEST_P(CommandLineTest, ADryRunSendsNothingAndKeepsTheSession) {
  registerAndSignIn();
  const auto before = support::contentOf(root());
  store().reset(GetParam());
  for (const std::vector<std::string>& words :
       std::vector<std::vector<std::string>>{{"refresh"},
                                             {"whoami"},
                                             {"sign-in", "--email", email, "--password-stdin"},
                                             {"reset-password", "--email", email},
                                             {"email-available", "--email", email},
                                             {"register", "--email", email, "--first-name", "A",
                                              "--last-name", "B", "--password-stdin"}}) {
    std::vector<std::string> dry = words;
    dry.insert(dry.end(), {"--dry-run", "--curl"});
    const Ended ended = run(dry, kPassword);
    EXPECT_EQ(ended.code, 0) << ended.output;
    EXPECT_THAT(ended.output, StartsWith("curl "));
  }
  EXPECT_EQ(support::contentOf(root()), before);
  EXPECT_EQ(store().requests().size(), 0U);
}

// --- Two processes at once ----------------------------------------------------------------------

TEST_P(CommandLineTest, OfTwoRefreshesAtOnceOneReachesTheStore) {
  registerAndSignIn();
  const std::size_t readBefore = logged("Load tokens: ").size();
  std::vector<std::future<Ended>> refreshes;
  {
    // Both have read the token before either can use it.
    const base::FileLock lock(lockedPath());
    for (int count = 0; count < 2; ++count) {
      refreshes.push_back(std::async(std::launch::async, [] { return runQuietly({"refresh"}); }));
    }
    waitUntilRead(readBefore + 2);
  }
  std::vector<std::string> outputs;
  for (auto& refresh : refreshes) {
    const Ended ended = refresh.get();
    EXPECT_EQ(ended.code, 0);
    outputs.push_back(ended.output);
  }
  EXPECT_THAT(outputs, UnorderedElementsAre("Refreshed the tokens\n",
                                            "Another process has refreshed the tokens\n"));
  EXPECT_EQ(store().requestsOf("refreshTokens"), 1);
  EXPECT_EQ(run({"whoami"}).code, 0);
}

TEST_P(CommandLineTest, ARefreshDoesNotUndoASignOutThatCameFirst) {
  registerAndSignIn();
  GraphQLStorageApi state;
  const std::size_t readBefore = logged("Load tokens: ").size();
  std::future<Ended> refresh;
  {
    const base::FileLock lock(lockedPath());
    refresh = std::async(std::launch::async, [] { return runQuietly({"refresh"}); });
    waitUntilRead(readBefore + 1);
    state.logoutOnlyFromStore();
  }
  EXPECT_EQ(refresh.get().code, 6);
  EXPECT_EQ(store().requestsOf("refreshTokens"), 0);
  EXPECT_FALSE(GraphQLStorageApi().isLoggedIn());
}

TEST_P(CommandLineTest, ASignOutWaitsForARefreshAndComesLast) {
  registerAndSignIn();
  store().addFault(R"({"operation":"refreshTokens","times":1,"delayMilliseconds":500})");
  auto refresh = std::async(std::launch::async, [] { return runQuietly({"refresh"}); });
  ASSERT_TRUE(support::waitUntil([] { return store().requestsOf("refreshTokens") > 0; }));
  EXPECT_EQ(run({"sign-out"}).code, 0);
  EXPECT_EQ(refresh.get().code, 0);
  EXPECT_FALSE(GraphQLStorageApi().isLoggedIn());
}

// --- At a terminal ------------------------------------------------------------------------------

namespace {

// The program on a pseudo-terminal, at which the test types.
class AtTerminal {
 public:
  explicit AtTerminal(std::vector<std::string> words) {
    words.insert(words.begin(), BOOKSTORE_PROGRAM);
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
      arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    EXPECT_EQ(::openpty(&master_, &slave_, nullptr, nullptr, nullptr), 0);
    pid_ = ::fork();
    if (pid_ == 0) {
      ::close(master_);
      ::login_tty(slave_);
      for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        std::signal(signal, SIG_DFL);  // the caller of the tests may ignore the signal
      }
      ::execv(arguments[0], arguments.data());
      ::_exit(127);
    }
  }
  ~AtTerminal() {
    if (pid_ > 0) {
      ::kill(pid_, SIGKILL);
      ::waitpid(pid_, nullptr, 0);
    }
    ::close(master_);
    ::close(slave_);
  }
  AtTerminal(const AtTerminal&) = delete;
  AtTerminal& operator=(const AtTerminal&) = delete;

  // Waits until the terminal shows `text`, after the texts of earlier calls.
  void waitFor(const std::string& text) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    std::size_t found = 0;
    while ((found = shown.find(text, seen_)) == std::string::npos) {
      ASSERT_LT(std::chrono::steady_clock::now(), deadline) << shown;
      readFor(20);
    }
    seen_ = found + text.size();
  }

  void type(const std::string& text) {
    EXPECT_EQ(::write(master_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }

  void send(int signal) const { ::kill(pid_, signal); }

  bool isEchoOn() const {
    termios settings = {};
    EXPECT_EQ(::tcgetattr(slave_, &settings), 0);
    return (settings.c_lflag & ECHO) != 0;
  }

  // The exit status of the program, as from waitpid().
  int waitForEnd() {
    int status = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (::waitpid(pid_, &status, WNOHANG) == 0) {
      EXPECT_LT(std::chrono::steady_clock::now(), deadline) << shown;
      if (std::chrono::steady_clock::now() >= deadline) {
        return -1;
      }
      readFor(20);
    }
    pid_ = -1;
    readFor(50);
    return status;
  }

  std::string shown;

 private:
  void readFor(int milliseconds) {
    pollfd source = {master_, POLLIN, 0};
    char piece[1024];
    while (::poll(&source, 1, milliseconds) > 0) {
      const ssize_t count = ::read(master_, piece, sizeof(piece));
      if (count <= 0) {
        return;
      }
      shown.append(piece, static_cast<std::size_t>(count));
    }
  }

  int master_ = -1;
  int slave_ = -1;
  pid_t pid_ = -1;
  std::size_t seen_ = 0;
};

}  // namespace

TEST_P(CommandLineTest, AsksForThePasswordWithoutEcho) {
  AtTerminal registration({"register", "--store", "de_de", "--email", email, "--first-name", "Ada",
                           "--last-name", "Byron"});
  registration.waitFor("Password: ");
  EXPECT_FALSE(registration.isEchoOn());
  registration.type(std::string(kPassword) + "\n");
  registration.waitFor("Password again: ");
  registration.type(std::string(kPassword) + "\n");
  EXPECT_EQ(registration.waitForEnd(), 0) << registration.shown;
  EXPECT_TRUE(registration.isEchoOn());
  EXPECT_THAT(registration.shown, HasSubstr("Registered " + email));
  printed += registration.shown;

  AtTerminal session({"sign-in", "--store", "de_de", "--email", email});
  session.waitFor("Password: ");
  session.type(std::string(kPassword) + "\n");
  EXPECT_EQ(session.waitForEnd(), 0) << session.shown;
  EXPECT_THAT(session.shown, Not(HasSubstr("again")));
  EXPECT_TRUE(GraphQLStorageApi().isLoggedIn());
  printed += session.shown;
}

TEST_P(CommandLineTest, RefusesANewPasswordThatIsTypedInTwoWays) {
  AtTerminal registration({"register", "--store", "de_de", "--email", email, "--first-name", "Ada",
                           "--last-name", "Byron"});
  registration.waitFor("Password: ");
  registration.type(std::string(kPassword) + "\n");
  registration.waitFor("Password again: ");
  registration.type("Secret Pass 2\n");
  EXPECT_EQ(WEXITSTATUS(registration.waitForEnd()), 2);
  EXPECT_THAT(registration.shown, HasSubstr("the two passwords differ"));
  EXPECT_EQ(store().requestsOf("createCustomerV2"), 0U);
  printed += registration.shown;
}

TEST_P(CommandLineTest, SwitchesTheEchoBackOnWhateverEndsTheQuestion) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
    AtTerminal session({"sign-in", "--store", "de_de", "--email", email});
    session.waitFor("Password: ");
    if (signal == SIGINT) {
      session.type("Secr\x03");  // Ctrl-C
    } else {
      session.send(signal);
    }
    const int status = session.waitForEnd();
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << signal << ": " << status;
    EXPECT_TRUE(session.isEchoOn()) << signal;
    EXPECT_THAT(session.shown, Not(HasSubstr("Secr"))) << signal;
  }
  EXPECT_EQ(store().requestsOf("generateCustomerToken"), 0U);
}

TEST_P(CommandLineTest, EndOfInputIsNoPassword) {
  AtTerminal session({"sign-in", "--store", "de_de", "--email", email});
  session.waitFor("Password: ");
  session.type("\x04");  // Ctrl-D
  EXPECT_EQ(WEXITSTATUS(session.waitForEnd()), 2);
  EXPECT_TRUE(session.isEchoOn());
  EXPECT_THAT(session.shown, HasSubstr("the password is empty"));
}

TEST_P(CommandLineTest, AsksAgainAfterASignalThatDidNotEndIt) {
  registerCustomer();
  AtTerminal session({"sign-in", "--store", "de_de", "--email", email});
  session.waitFor("Password: ");
  session.send(SIGTSTP);  // without a parent shell, the process continues at once
  session.waitFor("Password: ");
  session.type(std::string(kPassword) + "\n");
  EXPECT_EQ(session.waitForEnd(), 0) << session.shown;
  EXPECT_TRUE(session.isEchoOn());
  printed += session.shown;
}

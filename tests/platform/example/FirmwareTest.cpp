// The example's firmware program against the store service. The process of this test is the
// development machine: it uses the same library, over the host.

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "tests/support/ChildProcess.h"
#include "tests/support/EndToEndTest.h"

using support::contentOf;
using support::outputOf;
using ::testing::Contains;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Pair;

namespace {

const char kPassword[] = "Secret Pass 1";
const char kEmail[] = "ada@firmware.example";
const char kStores[] = "de_de  Bücherwelt Deutschland\n";
const char kSignedIn[] = "Signed in to Bücherwelt Deutschland: ada@firmware.example\n";

class FirmwareTest : public support::EndToEndTest {
 protected:
  FirmwareTest() {
    configure(store().connectTo());
    set("FIRMWARE_ROOT", device_.path());
  }

  void configure(const std::string& connectTo) {
    const std::string folder = device_.path() + "/mnt/ext1/system/config";
    std::filesystem::create_directories(folder);
    std::ofstream(folder + "/device.cfg")
        << "serialNumber=FIRMWARE0001\ncaFile=" << store().authority()
        << "\nconnectTo=" << connectTo << "\n";
  }

  // Registers a customer over the host.
  void registerCustomer(const char* email) {
    const auto api = makeApi();
    const auto store = api->getStores().at(0);
    EXPECT_EQ(api->createAccount(store, email, kPassword, "Ada", "Byron", false).error, 0);
  }

  // Runs the program, a new process each time, to its end.
  std::string run(const std::vector<std::string>& arguments = {}, const std::string& input = "") {
    std::vector<std::string> command = {FIRMWARE};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const support::Ended ended = support::run(command, input);
    status_ = ended.code;
    return ended.output;
  }

  const support::TemporaryFolder device_;
  int status_ = -1;
};

// Device and inode number of a file, which identify it.
std::pair<dev_t, ino_t> fileAt(const std::string& path) {
  struct stat status = {};
  EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
  return {status.st_dev, status.st_ino};
}

// The library files that the dynamic linker loads for the program, by name. The linker lists them
// without starting the program.
std::map<std::string, std::string> librariesOf(const std::string& program) {
  std::istringstream lines(outputOf({"env", "LD_TRACE_LOADED_OBJECTS=1", program}));
  std::map<std::string, std::string> libraries;
  std::string name;
  std::string arrow;
  std::string path;
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    if (words >> name >> arrow >> path && arrow == "=>") {
      libraries[name] = path;
    }
  }
  return libraries;
}

}  // namespace

TEST_F(FirmwareTest, TheSameLibraryFileServesTheHostAndTheFirmware) {
  std::ifstream maps("/proc/self/maps");
  std::string ownLibrary;
  std::string ownSdk;
  for (std::string line; std::getline(maps, line);) {
    const std::string path = line.substr(std::min(line.find('/'), line.size()));
    ownLibrary = path.find("/libgraphql_api.so.1") != std::string::npos ? path : ownLibrary;
    ownSdk = path.find("/libov_sdk.so") != std::string::npos ? path : ownSdk;
  }
  auto libraries = librariesOf(FIRMWARE);
  EXPECT_EQ(fileAt(libraries["libgraphql_api.so.1"]), fileAt(ownLibrary));
  const std::filesystem::path folder = std::filesystem::path(FIRMWARE).parent_path();
  EXPECT_EQ(fileAt(libraries["libov_sdk.so"]), fileAt(folder / "libov_sdk.so"));
  EXPECT_EQ(fileAt(libraries["liborvane_utilities.so"]), fileAt(folder / "liborvane_utilities.so"));
  EXPECT_NE(fileAt(libraries["libov_sdk.so"]), fileAt(ownSdk));
}

TEST_F(FirmwareTest, ACustomerSignsInAndStillIsAfterARestart) {
  registerCustomer(kEmail);
  EXPECT_THAT(run(), AllOf(HasSubstr(kStores), EndsWith("Not signed in\n")));
  EXPECT_THAT(run({"de_de", kEmail}, std::string(kPassword) + "\n"), EndsWith(kSignedIn));
  EXPECT_EQ(status_, 0);
  EXPECT_THAT(run(), AllOf(HasSubstr(kStores), EndsWith(kSignedIn)));
  EXPECT_EQ(status_, 0);
  const Json::Value requests = store().requests();
  EXPECT_THAT(requests[requests.size() - 1].toStyledString(), HasSubstr("FIRMWARE0001"));
}

TEST_F(FirmwareTest, AWrongPasswordSignsNobodyIn) {
  run({"de_de", kEmail}, "Wrong Pass 1\n");
  EXPECT_EQ(status_, 1);
  EXPECT_THAT(run(), EndsWith("Not signed in\n"));
}

TEST_F(FirmwareTest, AnUnreachableServiceLeavesTheStoresOfTheFile) {
  run();
  configure("::127.0.0.1:1");
  EXPECT_THAT(run(), AllOf(HasSubstr("The request failed: error 7, HTTP status 0\n"),
                           HasSubstr(kStores), EndsWith("Not signed in\n")));
}

TEST_F(FirmwareTest, AServiceOfAnotherAuthorityIsNotTrusted) {
  std::ofstream(device_.path() + "/mnt/ext1/system/config/device.cfg")
      << "connectTo=" << store().connectTo() << "\n";
  EXPECT_THAT(run(), HasSubstr("The request failed: error 60, HTTP status 0\n"));
}

TEST_F(FirmwareTest, NoFileAndNoLineShowsASecret) {
  const char kOther[] = "grace@firmware.example";
  registerCustomer(kOther);
  const std::string printed = run({"de_de", kOther}, std::string(kPassword) + "\n");
  EXPECT_THAT(printed, Not(HasSubstr(kPassword)));
  const auto files = contentOf(device_.path());
  EXPECT_THAT(files, Contains(Pair(HasSubstr("store_list.cfg"), HasSubstr("bookstore-de"))));
  for (const auto& file : files) {
    EXPECT_THAT(file.second, Not(HasSubstr(kPassword))) << file.first;
    EXPECT_THAT(file.second, Not(HasSubstr("inventedintegrationtoken"))) << file.first;
  }
}

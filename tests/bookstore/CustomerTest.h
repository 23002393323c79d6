// What the tests of the customer's commands share.

#ifndef TESTS_BOOKSTORE_CUSTOMERTEST_H_
#define TESTS_BOOKSTORE_CUSTOMERTEST_H_

#include <unistd.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "base/WholeFile.h"
#include "tests/bookstore/BookstoreTest.h"

namespace bookstore_tests {

constexpr char kPassword[] = "Pass \"word\" 1";
constexpr char kTokenFile[] = "/mnt/ext1/system/config/bookstore.cfg";

// A descriptor from which a short `text` is read.
inline int readable(const std::string& text) {
  int ends[2];
  if (::pipe(ends) != 0 ||
      ::write(ends[1], text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::runtime_error("no pipe");
  }
  ::close(ends[1]);
  return ends[0];
}

// A registered device that knows one store; nobody is signed in.
class CustomerTest : public BookstoreTest {
 protected:
  CustomerTest() {
    fake::platform().config.setSecret(kTokenFile, "fakeSac", "device");
    fileHolds({german});
  }

  void signedIn() { customerAt(german, "access-secret", "refresh-secret"); }

  // The command with the password in a file descriptor.
  int runWithPassword(std::vector<std::string> words, const std::string& password = kPassword) {
    const base::Descriptor descriptor(readable(password));
    words.insert(words.end(), {"--password-fd", std::to_string(descriptor.get())});
    return run(words);
  }

  // What the one request that was sent says in its "variables".
  Json::Value sentVariables() const {
    return support::parseJson(fake::platform().http.requests.at(0).body)["variables"];
  }

  std::string keptText(const std::string& key) const {
    return fake::platform().config.files[kTokenFile][key];
  }

  // No request was sent, and the token file holds what it held.
  void expectNothingDone(const std::vector<std::string>& words, int code) {
    const auto before = fake::platform().config.files;
    EXPECT_EQ(runWithPassword(words), code) << err;
    EXPECT_THAT(fake::platform().http.requests, ::testing::IsEmpty());
    EXPECT_EQ(fake::platform().config.files, before);
  }

  const Store german = store("de", "de_de", "Buch");
  const std::string url = german.apiUrl;
};

}  // namespace bookstore_tests

#endif  // TESTS_BOOKSTORE_CUSTOMERTEST_H_

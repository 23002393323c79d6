// What the tests of the commands for samples share: a customer who can be signed in, a folder for
// books, and an empty queue in a /tmp of the program's own.

#ifndef TESTS_BOOKSTORE_SAMPLETEST_H_
#define TESTS_BOOKSTORE_SAMPLETEST_H_

#include <filesystem>
#include <string>
#include <vector>

#include "tests/bookstore/CustomerTest.h"
#include "tests/support/SampleQueueFile.h"

namespace bookstore_tests {

class SampleTest : public CustomerTest {
 protected:
  SampleTest() {
    support::removeQueue();
    root.put("/mnt/ext1/books/readme", "");
  }

  // What takes the place of the queue file cannot be opened for writing.
  static void queueCannotBeLocked() { std::filesystem::create_directory(support::kQueuePath); }

  // The store's next answer: the book `uid`.
  void serverKnows(const std::string& uid, const std::string& regularPrice = "9.99") {
    serverAnswers(R"({"data":{"productDetails":{"product":{"uid":")" + uid +
                  R"(","name":"Title of )" + uid + R"(","authors":[{"full_name":"Ada"}],)" +
                  R"("thumbnail":{"url":"http://picture.example/1"},"price_range":)" +
                  R"({"minimum_price":{"regular_price":{"currency":"EUR","value":)" + regularPrice +
                  R"(},"final_price":{"currency":"EUR","value":9.99}}}}}}})");
  }

  // The store's next answers: no such book, and who the customer is.
  void serverKnowsOnlyTheCustomer() {
    serverAnswers(R"({"data":{"productDetails":{"product":null}}})");
    serverAnswers(R"({"data":{"customer":{"email":"a","firstname":"A","lastname":"B"}}})");
  }
};

}  // namespace bookstore_tests

#endif  // TESTS_BOOKSTORE_SAMPLETEST_H_

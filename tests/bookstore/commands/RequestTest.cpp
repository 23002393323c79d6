#include "bookstore/commands/Request.h"

#include "tests/bookstore/BookstoreTest.h"

using bookstore::FailureListener;

namespace {

class RequestTest : public bookstore_tests::BookstoreTest {
 protected:
  graphql::GraphQLApi api{nullptr};
};

}  // namespace

TEST_F(RequestTest, AListenerThrowsWhatItHeard) {
  const FailureListener listener(api);
  EXPECT_NO_THROW(listener.throwIfAny("https://a.example/"));
  fake::platform().http.failTransfer(28);
  api.getStores();
  EXPECT_THROW(listener.throwIfAny("https://a.example/"), bookstore::Failure);
}

// Under the address sanitizer, which sees a call of a callback that is gone.
TEST_F(RequestTest, AListenerListensOnlyAsLongAsItLives) {
  std::make_unique<FailureListener>(api).reset();
  EXPECT_TRUE(api.getStores().empty());
}

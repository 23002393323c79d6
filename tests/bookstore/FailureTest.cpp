#include "bookstore/Failure.h"

#include <curl/curl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/HttpResult.h"

using bookstore::Failure;
using bookstore::throwIfFailed;
using bookstore::transferFailure;
using ::testing::HasSubstr;

namespace {

const char kUrl[] = "https://a.example/graphql";

graphql::GraphQLStorageApi::ErrorInfo info(int error, int code, const std::string& message = "") {
  graphql::GraphQLStorageApi::ErrorInfo info;
  info.error = error;
  info.code = code;
  info.message = message;
  return info;
}

Failure failureOf(const graphql::GraphQLStorageApi::ErrorInfo& info) {
  try {
    throwIfFailed(info, kUrl);
  } catch (const Failure& failure) {
    return failure;
  }
  return Failure(bookstore::kDone, "", "");
}

}  // namespace

TEST(FailureTest, ATransferFailureNamesReasonPlaceAndRemedy) {
  const Failure failure = transferFailure(CURLE_COULDNT_CONNECT, 0, kUrl);
  EXPECT_EQ(failure.code(), bookstore::kTransferFailed);
  EXPECT_STREQ(failure.what(),
               "the request to https://a.example/graphql failed: no connection to the server (7)");
  EXPECT_THAT(failure.remedy(), HasSubstr("ORVANE_CONNECT_TO"));
}

TEST(FailureTest, EachSettingThatCausesAFailureIsNamedInItsRemedy) {
  const auto remedy = [](int result) { return transferFailure(result, 0, kUrl).remedy(); };
  EXPECT_THAT(remedy(CURLE_COULDNT_RESOLVE_HOST), HasSubstr("ORVANE_CONNECT_TO"));
  EXPECT_THAT(remedy(CURLE_PEER_FAILED_VERIFICATION), HasSubstr("ORVANE_CA_FILE"));
  EXPECT_THAT(remedy(CURLE_SSL_CACERT_BADFILE), HasSubstr("ORVANE_CA_FILE"));
  EXPECT_THAT(remedy(CURLE_SSL_PINNEDPUBKEYNOTMATCH), HasSubstr("ORVANE_PINNED_KEY"));
  EXPECT_THAT(remedy(CURLE_HTTP2_STREAM), HasSubstr("ORVANE_HTTP_VERSION"));
  EXPECT_THAT(remedy(base::kResponseTooLarge), HasSubstr("ORVANE_MAX_ANSWER_BYTES"));
}

TEST(FailureTest, TheHostsOwnResultsHaveWordsOfTheirOwn) {
  const auto what = [](int result) { return std::string(transferFailure(result, 0, kUrl).what()); };
  EXPECT_THAT(what(base::kMethodRefused), HasSubstr("method"));
  EXPECT_THAT(what(base::kUrlRefused), HasSubstr("NUL"));
  EXPECT_THAT(what(base::kHeaderRefused), HasSubstr("header"));
  EXPECT_THAT(what(base::kResponseTooLarge), HasSubstr("too large"));
}

TEST(FailureTest, AnUnusualResultIsGivenByItsNumber) {
  const Failure failure = transferFailure(4242, 0, kUrl);
  EXPECT_EQ(failure.code(), bookstore::kTransferFailed);
  EXPECT_THAT(failure.what(), HasSubstr("(4242)"));
}

TEST(FailureTest, AnAnswerWithAnotherStatusIsNoTransferFailure) {
  EXPECT_EQ(transferFailure(0, 500, kUrl).code(), bookstore::kBadStatus);
}

TEST(FailureTest, AFailedTransferCountsBeforeItsStatus) {
  EXPECT_EQ(transferFailure(56, 200, kUrl).code(), bookstore::kTransferFailed);
}

TEST(FailureTest, ARecordWithoutAnErrorIsNoFailure) {
  EXPECT_NO_THROW(throwIfFailed(info(0, 0), kUrl));
}

TEST(FailureTest, ARecordWithTheStoresErrorTellsItsWords) {
  const Failure failure = failureOf(info(1, 0, "no such customer"));
  EXPECT_EQ(failure.code(), bookstore::kStoreRefused);
  EXPECT_THAT(failure.what(), HasSubstr("refused the request (no such customer)"));
}

TEST(FailureTest, ARecordOfAFailedRequestTellsStatusAndResultApart) {
  EXPECT_EQ(failureOf(info(-1, 100)).code(), bookstore::kBadStatus);
  EXPECT_EQ(failureOf(info(-1, 599)).code(), bookstore::kBadStatus);
  EXPECT_EQ(failureOf(info(-1, 99)).code(), bookstore::kTransferFailed);
  EXPECT_EQ(failureOf(info(-1, 1004)).code(), bookstore::kTransferFailed);
  EXPECT_THAT(failureOf(info(-1, 404)).what(), HasSubstr("HTTP status 404"));
  EXPECT_THAT(failureOf(info(-1, 7)).what(), HasSubstr("(7)"));
}

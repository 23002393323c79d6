#include "bookstore/Failure.h"

#include <algorithm>
#include <iterator>

#include "base/HttpResult.h"

namespace bookstore {

namespace {

const char kRefreshStores[] = "Run \"bookstore stores --refresh\"";
const char kRunAgain[] = "Run the command again";
const char kUseHttp1[] = "Run the command again, or set ORVANE_HTTP_VERSION=1.1";

// A result of the HTTP runner, in words. Numbers below 100 are libcurl's.
struct TransferReason {
  int result;
  const char* what;
  const char* remedy;
};

const TransferReason kTransferReasons[] = {
    {1, "not an https URL", kRefreshStores},
    {3, "not a valid URL", kRefreshStores},
    {6, "the server's name cannot be resolved",
     "Check the network, or name another server in ORVANE_CONNECT_TO"},
    {7, "no connection to the server",
     "Check that the store is running and that ORVANE_CONNECT_TO leads to it"},
    {16, "the HTTP/2 connection broke", kUseHttp1},
    {18, "the response was cut short", kRunAgain},
    {28, "the server took too long", "Run the command again, or raise ORVANE_CONNECT_TIMEOUT"},
    {35, "no TLS connection", "Check that an https server listens there"},
    {49, "ORVANE_CONNECT_TO is not valid", "Set ORVANE_CONNECT_TO to HOST:PORT:TO-HOST:TO-PORT"},
    {52, "the server closed the connection without a response", kRunAgain},
    {56, "the connection broke before the response was complete", kRunAgain},
    {58, "the CA certificates cannot be used", "Set ORVANE_CA_FILE to a file in PEM format"},
    {60, "the server's certificate is not trusted",
     "Set ORVANE_CA_FILE to the certificate of the CA that signed it"},
    {61, "the response has an unknown content encoding", "Check that a store listens there"},
    {77, "the CA certificates cannot be read",
     "Set ORVANE_CA_FILE to a readable file in PEM format"},
    {90, "the server's public key is not the pinned one", "Correct the key in ORVANE_PINNED_KEY"},
    {92, "the HTTP/2 stream broke", kUseHttp1},
    {base::kMethodRefused, "the request's method is not valid", "Report this defect"},
    {base::kUrlRefused, "the URL contains a NUL", kRefreshStores},
    {base::kHeaderRefused, "a request header contains a line end", kRefreshStores},
    {base::kResponseTooLarge, "the response is too large",
     "Raise ORVANE_MAX_ANSWER_BYTES if a response of that size is expected"},
};

const TransferReason kUnknownReason = {
    0, "an unusual failure",
    "Look up the number in \"man libcurl-errors\", or run the command again with -v"};

const TransferReason& reasonOf(int result) {
  const auto found =
      std::find_if(std::begin(kTransferReasons), std::end(kTransferReasons),
                   [result](const TransferReason& reason) { return reason.result == result; });
  return found == std::end(kTransferReasons) ? kUnknownReason : *found;
}

bool isHttpStatus(int code) {
  return code >= 100 && code <= 599;
}

}  // namespace

Failure::Failure(ExitCode code, const std::string& what, const std::string& remedy)
    : std::runtime_error(what), code_(code), remedy_(remedy) {}

Failure transferFailure(int result, int status, const std::string& url) {
  if (result == 0) {
    return Failure(kBadStatus, url + " returned HTTP status " + std::to_string(status),
                   "Check that a store listens there, or run the command again later");
  }
  const TransferReason& reason = reasonOf(result);
  return Failure(
      kTransferFailed,
      "the request to " + url + " failed: " + reason.what + " (" + std::to_string(result) + ")",
      reason.remedy);
}

std::string withServerWords(const std::string& what, const std::string& words) {
  return what + (words.empty() ? " without a reason" : " (" + words + ")");
}

void throwIfFailed(const graphql::GraphQLStorageApi::ErrorInfo& info, const std::string& url) {
  if (info.error == -1) {
    // The record has one number for both; the runner's results keep clear of the statuses.
    throw isHttpStatus(info.code) ? transferFailure(0, info.code, url)
                                  : transferFailure(info.code, 0, url);
  }
  if (info.error != 0) {
    throw Failure(kStoreRefused, withServerWords(url + " refused the request", info.message),
                  "Correct what the store names, or run the command again with -v to see the "
                  "response");
  }
}

}  // namespace bookstore

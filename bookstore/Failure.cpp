#include "bookstore/Failure.h"

#include <algorithm>
#include <iterator>

#include "base/HttpResult.h"

namespace bookstore {

namespace {

// A result of the host's HTTP runner, in words. Numbers below 100 are libcurl's, the others the
// host's own.
struct TransferReason {
  int result;
  const char* what;
  const char* remedy;
};

const TransferReason kTransferReasons[] = {
    {1, "this is no https address", "fetch the addresses anew: bookstore stores --refresh"},
    {3, "this is no valid address", "fetch the addresses anew: bookstore stores --refresh"},
    {6, "the server's name is not known",
     "check the network, or name another server in ORVANE_CONNECT_TO"},
    {7, "no connection to the server",
     "see whether the store is running, and whether ORVANE_CONNECT_TO leads there"},
    {16, "the HTTP/2 connection broke", "run it again, or set ORVANE_HTTP_VERSION=1.1"},
    {18, "the answer was cut short", "run it again"},
    {28, "the server took too long", "run it again, or raise ORVANE_CONNECT_TIMEOUT"},
    {35, "no TLS connection", "see whether an https server listens there"},
    {49, "ORVANE_CONNECT_TO cannot be read", "set it to HOST:PORT:TO-HOST:TO-PORT"},
    {52, "the server closed the connection without an answer", "run it again"},
    {56, "the connection broke before the answer was complete", "run it again"},
    {58, "the file of authorities cannot be used", "set ORVANE_CA_FILE to a file in PEM form"},
    {60, "the server's certificate is not trusted",
     "set ORVANE_CA_FILE to the certificate of the authority that signed it"},
    {61, "the answer is compressed in an unknown way", "see whether a store answers there"},
    {77, "the file of authorities cannot be read",
     "set ORVANE_CA_FILE to a readable file in PEM form"},
    {90, "the server's public key is not the pinned one", "check the key in ORVANE_PINNED_KEY"},
    {92, "the HTTP/2 stream broke", "run it again, or set ORVANE_HTTP_VERSION=1.1"},
    {base::kMethodRefused, "the request's method is refused", "report this defect"},
    {base::kUrlRefused, "this address holds a NUL",
     "fetch the addresses anew: bookstore stores --refresh"},
    {base::kHeaderRefused, "a request header would hold a line end",
     "fetch the stores anew: bookstore stores --refresh"},
    {base::kResponseTooLarge, "the answer is too large",
     "raise ORVANE_MAX_ANSWER_BYTES if that much is expected"},
};

const TransferReason kUnknownReason = {
    0, "an unusual failure", "look the number up in `man libcurl-errors`, or run it again with -v"};

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
    return Failure(kBadStatus,
                   url + " answered with HTTP status " + std::to_string(status) + ", not 200",
                   "see whether a store answers there, or run it again later");
  }
  const TransferReason& reason = reasonOf(result);
  return Failure(
      kTransferFailed,
      "the transfer to " + url + " failed: " + reason.what + " (" + std::to_string(result) + ")",
      reason.remedy);
}

void throwIfFailed(const graphql::GraphQLStorageApi::ErrorInfo& info, const std::string& url) {
  if (info.error == -1) {
    // The record has one number for both; the runner's results keep clear of the statuses.
    throw isHttpStatus(info.code) ? transferFailure(0, info.code, url)
                                  : transferFailure(info.code, 0, url);
  }
  if (info.error != 0) {
    throw Failure(kStoreRefused, url + " answered with an error: " + info.message,
                  "mend what the store names, or run it again with -v to see the answer");
  }
}

}  // namespace bookstore

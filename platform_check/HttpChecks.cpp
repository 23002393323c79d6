// HTTP: the classes HttpRequest and HttpRequestRunner, against a real server. Responses that a
// healthy server does not send are arranged over the store service's control port.

#include <algorithm>
#include <functional>
#include <stdexcept>
#include <thread>

#include <orvane/utilities/HttpRequestRunner.h>

#include "platform_check/Check.h"
#include "platform_check/Network.h"

using orvane::utilities::HttpRequest;
using orvane::utilities::HttpRequestRunner;

namespace platform_check {

namespace {

using Headers = std::unordered_map<std::string, std::string>;

const unsigned int kAmpleSeconds = 30;
const char kQuery[] = "{\"query\":\"{ __typename }\",\"variables\":null}\n";

struct Response {
  int result;
  long status;
  std::string body;
  Headers headers;
};

void requireServer(const std::string& url) {
  if (!isReachable(url)) {
    throw Skip("nothing listens at " + url + "; start a server there or set --url");
  }
}

// Starts with old values in the output arguments: an implementation has to replace them.
Response perform(const HttpRequest& request, unsigned int limit = kAmpleSeconds) {
  std::vector<char> body = {'o', 'l', 'd'};
  Response response = {-1, -1, "", {}};
  response.result = HttpRequestRunner().PerformRequest(request, &response.status, &body, limit);
  response.body.assign(body.begin(), body.end());
  return response;
}

Response performWithHeaders(const HttpRequest& request,
                            const HttpRequestRunner::ReadCallback& read = {},
                            const HttpRequestRunner::ProgressCallback& progress = {}) {
  Response response = {-1, -1, "", {{"old", "old"}}};
  const auto write = [&response](std::size_t length, const char* data) {
    response.body.append(data, length);
    return length;
  };
  response.result = HttpRequestRunner().PerformRequest(request, &response.status, &response.headers,
                                                       read, write, progress);
  return response;
}

// A request like those of the library.
class Query : public HttpRequest {
 public:
  explicit Query(const std::string& url, const std::string& body = kQuery)
      : HttpRequest("POST", url) {
    AddHeader("Content-Type", "application/json");
    AddPostData(body);
  }
};

void requireResponse(const Response& response, long status) {
  requireEqual("the result of PerformRequest()", response.result, 0);
  requireEqual("the status", response.status, status);
}

// The service with a fault for the next request.
class FaultyService {
 public:
  FaultyService(const Settings& settings, const std::string& fault)
      : url_(settings.url), control_(settings.control) {
    requireServer(url_);
    if (!fault.empty()) {
      control_.addFault(fault);
    }
  }

  const std::string& url() const { return url_; }

  // Requires that the JSON of the requests has `part`.
  void requireRequest(const std::string& part, const std::string& what) const {
    require(control_.requests().find(part) != std::string::npos,
            "the server did not receive " + what + ": " + part);
  }

  // The same for headers such as ["x-name","value"]: names are in any letter case.
  void requireHeaders(const std::string& part, const std::string& what) const {
    require(lowerCase(control_.requests()).find(part) != std::string::npos,
            "the server did not receive " + what + ": " + part);
  }

  void requireNone(const std::string& part, const std::string& what) const {
    require(lowerCase(control_.requests()).find(part) == std::string::npos,
            "the server received " + what);
  }

 private:
  const std::string url_;
  const ControlPort control_;
};

// --- Any server ----------------------------------------------------------------------------------

void responseArrives(const Settings& settings) {
  requireServer(settings.url);
  const Response response = perform(Query(settings.url));
  requireEqual("the result of PerformRequest()", response.result, 0);
  require(response.status >= 200 && response.status <= 599,
          "the status is " + std::to_string(response.status));
  require(response.body.compare(0, 3, "old") != 0, "the body was appended to what was there");
  const Response withHeaders = performWithHeaders(Query(settings.url));
  requireResponse(withHeaders, response.status);
  requireEqual("the body of the overload with headers", withHeaders.body, response.body);
  require(withHeaders.headers.count("old") == 0, "the headers were added to those that were there");
}

void headerNamesAreInLowerCase(const Settings& settings) {
  requireServer(settings.url);
  const Response response = performWithHeaders(Query(settings.url));
  requireEqual("the result of PerformRequest()", response.result, 0);
  require(!response.headers.empty(), "the response has no headers");
  for (const auto& header : response.headers) {
    require(std::none_of(header.first.begin(), header.first.end(),
                         [](char byte) { return byte >= 'A' && byte <= 'Z'; }),
            "a header is called " + quoted(header.first));
  }
}

void callbacksCanBeEmpty(const Settings& settings) {
  requireServer(settings.url);
  long status = -1;
  Headers headers;
  const Query query(settings.url);
  requireEqual("the result of PerformRequest()",
               HttpRequestRunner().PerformRequest(query, &status, &headers, {}, {}, {}), 0);
  require(status >= 200, "the status is " + std::to_string(status));
}

void refusedDataStopsTheTransfer(const Settings& settings) {
  requireServer(settings.url);
  int calls = 0;
  long status = -1;
  Headers headers;
  const auto refuse = [&calls](std::size_t length, const char*) {
    ++calls;
    return length - 1;
  };
  const Query query(settings.url);
  const int result = HttpRequestRunner().PerformRequest(query, &status, &headers, {}, refuse, {});
  requireEqual("the number of calls of the write callback", calls, 1);
  require(result != 0, "PerformRequest() returned 0, though the write callback took less");
}

void exceptionsComeBack(const Settings& settings) {
  requireServer(settings.url);
  long status = -1;
  Headers headers;
  const auto fail = [](std::size_t, const char*) -> std::size_t {
    throw std::length_error("full");
  };
  const Query query(settings.url);
  try {
    HttpRequestRunner().PerformRequest(query, &status, &headers, {}, fail, {});
  } catch (const std::length_error&) {
    return;
  }
  throw Failure("an exception of the write callback did not leave PerformRequest()");
}

void callbacksRunOnTheCallingThread(const Settings& settings) {
  requireServer(settings.url);
  const auto caller = std::this_thread::get_id();
  bool isCaller = true;
  const auto look = [&isCaller, caller](std::size_t length, const char*) {
    isCaller = isCaller && std::this_thread::get_id() == caller;
    return length;
  };
  long status = -1;
  Headers headers;
  const Query query(settings.url);
  HttpRequestRunner().PerformRequest(query, &status, &headers, {}, look, {});
  require(isCaller, "the write callback ran on another thread");
}

void threadsUseItAtOnce(const Settings& settings) {
  requireServer(settings.url);
  const int kThreads = 4;
  std::vector<Response> responses(kThreads, Response{-1, -1, "", {}});
  std::vector<std::thread> threads;
  threads.reserve(kThreads);
  for (Response& response : responses) {
    threads.emplace_back(
        [&response, &settings] { response = performWithHeaders(Query(settings.url)); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  for (const Response& response : responses) {
    requireResponse(response, responses[0].status);
  }
}

// --- What is sent --------------------------------------------------------------------------------

void requestIsSentAsBuilt(const Settings& settings) {
  const FaultyService service(settings, "");
  HttpRequest request("POST", service.url());
  request.AddHeader("Content-Type", "application/json");
  request.AddHeader("X-Second", "2");
  request.AddHeader("X-First", "1 a, b");
  request.AddPostData("replaced");
  request.AddPostData(kQuery);
  requireResponse(perform(request), 200);
  service.requireRequest("\"method\":\"POST\"", "the method");
  service.requireHeaders("[\"x-second\",\"2\"],[\"x-first\",\"1 a, b\"]", "the headers in order");
  service.requireRequest(base64Of(kQuery), "the body, as Base64");
}

void emptyHeaderIsSent(const Settings& settings) {
  const FaultyService service(settings, "");
  Query query(service.url());
  query.AddHeader("X-Empty", "");
  requireResponse(perform(query), 200);
  service.requireHeaders("[\"x-empty\",\"\"]", "a header without a value");
}

void anyBytesAreSent(const Settings& settings) {
  const FaultyService service(settings, "");
  const std::string body = "@" + everyByteButNul() + std::string("\0\0end", 5);
  perform(Query(service.url(), body));
  service.requireRequest(base64Of(body), "the body with every byte, as Base64");
}

void lineEndsMakeNoHeader(const Settings& settings) {
  const FaultyService service(settings, "");
  for (const char* value : {"a\r\nX-Injected: b", "a\nX-Injected: b"}) {
    Query query(service.url());
    query.AddHeader("X-Value", value);
    perform(query);
  }
  service.requireNone("[\"x-injected\"", "a header that was part of a value");
}

void readCallbackGivesTheBody(const Settings& settings) {
  const FaultyService service(settings, "");
  std::string left = kQuery;
  HttpRequest request("POST", service.url());
  request.AddHeader("Content-Type", "application/json");
  const auto read = [&left](std::size_t length, char* data) {
    const std::size_t count = left.copy(data, std::min(length, std::size_t{5}));
    left.erase(0, count);
    return count;
  };
  requireResponse(performWithHeaders(request, read), 200);
  service.requireRequest(base64Of(kQuery), "the body of the read callback, as Base64");
}

// --- What arrives --------------------------------------------------------------------------------

void anyStatusIsAResponse(const Settings& settings) {
  for (const long status : {401L, 404L, 500L, 503L}) {
    const FaultyService service(
        settings, "{\"status\":" + std::to_string(status) + ",\"body\":\"sorry\",\"times\":1}");
    const Response response = perform(Query(service.url()));
    requireResponse(response, status);
    requireEqual("the body", response.body, "sorry");
  }
}

void headersOfTheResponseArrive(const Settings& settings) {
  const FaultyService service(
      settings,
      "{\"headers\":{\"X-MaGeNto-Cache-ID\":\"abc\",\"X-Twice\":[\"1\",\"2\"]},\"times\":1}");
  const Response response = performWithHeaders(Query(service.url()));
  requireResponse(response, 200);
  const auto found = response.headers.find("x-magento-cache-id");
  require(found != response.headers.end(), "the header x-magento-cache-id is missing");
  require(found->second.find("abc") != std::string::npos,
          "the header x-magento-cache-id is " + quoted(found->second));
  require(response.headers.count("x-twice") == 1, "a header that was sent twice is missing");
}

void redirectsAreNotFollowed(const Settings& settings) {
  const FaultyService service(settings, "{\"status\":302,\"headers\":{\"Location\":\"" +
                                            settings.url + "?followed\"},\"times\":1}");
  const Response response = perform(Query(service.url()));
  requireResponse(response, 302);
  service.requireNone("?followed", "the request to the address of a redirect");
}

void compressedBodyIsDecompressed(const Settings& settings) {
  const FaultyService service(settings, "");
  const std::string plain = perform(Query(service.url())).body;
  const FaultyService compressing(settings, "{\"gzip\":true,\"times\":1}");
  const Response response = perform(Query(service.url()));
  requireResponse(response, 200);
  requireEqual("the body of a compressed response", response.body, plain);
}

void emptyBodyIsEmpty(const Settings& settings) {
  const FaultyService service(settings, "{\"body\":\"\",\"gzip\":false,\"times\":1}");
  const Response response = perform(Query(service.url()));
  requireResponse(response, 200);
  requireEqual("the body", response.body, "");
}

void cutResponseIsAFailure(const Settings& settings) {
  const FaultyService service(settings, "{\"cutAfterBytes\":5,\"gzip\":false,\"times\":1}");
  require(perform(Query(service.url())).result != 0, "PerformRequest() returned 0 for a part");
  const FaultyService again(settings, "{\"cutAfterBytes\":5,\"gzip\":false,\"times\":1}");
  require(performWithHeaders(Query(again.url())).result != 0,
          "PerformRequest() with headers returned 0 for a part of a response");
}

void droppedConnectionIsAFailure(const Settings& settings) {
  const FaultyService service(settings, "{\"drop\":true}");
  const Response response = perform(Query(service.url()));
  require(response.result != 0, "PerformRequest() returned 0 without a response");
  requireEqual("the status without a response", response.status, 0);
}

void progressIsTold(const Settings& settings) {
  const std::string body(1000, 'x');
  const FaultyService service(settings, "{\"body\":\"" + body + "\",\"gzip\":false,\"times\":1}");
  std::uint64_t last = 0;
  const auto progress = [&last](std::uint64_t received, std::uint64_t) {
    last = received;
    return true;
  };
  requireResponse(performWithHeaders(Query(service.url()), {}, progress), 200);
  requireEqual("the number of bytes that the progress callback was told last",
               static_cast<long long>(last), 1000);
}

// --- What ends a transfer ------------------------------------------------------------------------

void limitIsKept(const Settings& settings) {
  // Both send something, or nothing, for longer than the limit; without a limit both succeed.
  for (const char* fault : {"{\"delayMilliseconds\":6000,\"times\":1}",
                            "{\"drip\":{\"bytes\":1,\"intervalMilliseconds\":300},"
                            "\"body\":\"01234567890123456789\",\"gzip\":false,\"times\":1}"}) {
    const FaultyService service(settings, fault);
    require(perform(Query(service.url()), 1).result != 0,
            "PerformRequest() returned 0 for a response that took longer than the limit");
  }
}

void endlessResponseEnds(const Settings& settings) {
  const FaultyService service(settings, "{\"endless\":true,\"gzip\":false,\"times\":1}");
  require(perform(Query(service.url()), 2).result != 0,
          "PerformRequest() returned 0 for a response without an end");
}

void progressCanStopTheTransfer(const Settings& settings) {
  const FaultyService service(settings, "{\"endless\":true,\"gzip\":false,\"times\":1}");
  int stops = 0;
  const auto stop = [&stops](std::uint64_t received, std::uint64_t) {
    stops += received < 1000 ? 0 : 1;
    return received < 1000;
  };
  require(performWithHeaders(Query(service.url()), {}, stop).result != 0,
          "PerformRequest() returned 0, though the progress callback returned false");
  requireEqual("the number of calls of the progress callback that returned false", stops, 1);
}

// --- Whom it talks to ----------------------------------------------------------------------------

void requireRefused(const std::string& url) {
  for (const Response& response : {perform(Query(url), 10), performWithHeaders(Query(url))}) {
    require(response.result != 0, "PerformRequest() returned 0 for " + url);
    requireEqual("the status of a transfer that failed", response.status, 0);
  }
}

void unknownAuthorityIsRefused(const Settings& settings) {
  if (settings.untrustedUrl.empty()) {
    throw Skip("set --untrusted-url to a server with a self-signed certificate");
  }
  requireServer(settings.untrustedUrl);
  requireRefused(settings.untrustedUrl);
}

void wrongNameIsRefused(const Settings& settings) {
  if (settings.wrongNameUrl.empty()) {
    throw Skip("set --wrong-name-url to a server with a trusted certificate for another host");
  }
  requireServer(settings.wrongNameUrl);
  requireRefused(settings.wrongNameUrl);
}

void plainHttpIsRefused(const Settings&) {
  const PlainServer server;
  requireRefused("http://127.0.0.1:" + std::to_string(server.port()) + "/graphql");
}

void failedConnectionIsAFailure(const Settings&) {
  const ClosedPort closed;
  requireRefused("https://127.0.0.1:" + std::to_string(closed.port()) + "/graphql");
}

void malformedUrlIsAFailure(const Settings&) {
  for (const char* url : {"", "https://", "not a url", "https://a b/"}) {
    requireRefused(url);
  }
}

}  // namespace

const std::vector<Check> kHttpChecks = {
    {"http", "response-arrives",
     "Set *status, and replace what is in *body and *headers; check that the certificate of the "
     "server is trusted.",
     &responseArrives},
    {"http", "header-names-are-in-lower-case", "Convert the names of the headers to lower case.",
     &headerNamesAreInLowerCase},
    {"http", "callbacks-can-be-empty", "Test a callback before it is called.",
     &callbacksCanBeEmpty},
    {"http", "refused-data-stops-the-transfer",
     "Stop the transfer, and fail, when the write callback returns another number than its length.",
     &refusedDataStopsTheTransfer},
    {"http", "exceptions-of-callbacks-come-back",
     "Catch the exception before it reaches a C library, and rethrow it at the end.",
     &exceptionsComeBack},
    {"http", "callbacks-run-on-the-calling-thread", "Call the callbacks from PerformRequest().",
     &callbacksRunOnTheCallingThread},
    {"http", "threads-use-it-at-once", "Share no state between runners without a lock.",
     &threadsUseItAtOnce},
    {"http", "request-is-sent-as-built",
     "Send method, headers and the last body as they were given, headers in their order.",
     &requestIsSentAsBuilt},
    {"http", "empty-header-is-sent", "Send a header with an empty value, too.", &emptyHeaderIsSent},
    {"http", "any-bytes-are-sent", "Pass the body with its length: it can have NUL bytes.",
     &anyBytesAreSent},
    {"http", "line-ends-make-no-header",
     "Refuse a request with a line end in the name or value of a header.", &lineEndsMakeNoHeader},
    {"http", "read-callback-gives-the-body", "Send what the read callback gives, until it gives 0.",
     &readCallbackGivesTheBody},
    {"http", "any-status-is-a-response",
     "Return 0 with status and body also when the status is 400 or more.", &anyStatusIsAResponse},
    {"http", "headers-of-the-response-arrive",
     "Store each header of the response under its name in lower case.",
     &headersOfTheResponseArrive},
    {"http", "redirects-are-not-followed",
     "Return the redirect itself: the request has tokens for one server only.",
     &redirectsAreNotFollowed},
    {"http", "compressed-body-is-decompressed",
     "Decompress the body, or do not send Accept-Encoding.", &compressedBodyIsDecompressed},
    {"http", "empty-body-is-empty", "Empty *body first.", &emptyBodyIsEmpty},
    {"http", "cut-response-is-a-failure",
     "Return a value other than 0 when the connection ends before the response.",
     &cutResponseIsAFailure},
    {"http", "dropped-connection-is-a-failure",
     "Return a value other than 0, and status 0, when no response began.",
     &droppedConnectionIsAFailure},
    {"http", "progress-is-told", "Call the progress callback with the bytes received so far.",
     &progressIsTold},
    {"http", "limit-is-kept",
     "End the whole transfer after the limit, also while bytes arrive; the limit is in seconds.",
     &limitIsKept},
    {"http", "endless-response-ends", "End the whole transfer after the limit.",
     &endlessResponseEnds},
    {"http", "progress-can-stop-the-transfer",
     "Stop the transfer, and fail, when the progress callback returns false.",
     &progressCanStopTheTransfer},
    {"http", "unknown-authority-is-refused", "Verify the certificate of the server.",
     &unknownAuthorityIsRefused},
    {"http", "wrong-host-name-is-refused", "Compare the name in the certificate with the URL.",
     &wrongNameIsRefused},
    {"http", "plain-http-is-refused", "Accept no URL but https.", &plainHttpIsRefused},
    {"http", "failed-connection-is-a-failure",
     "Return a value other than 0, and status 0, when no connection was made.",
     &failedConnectionIsAFailure},
    {"http", "malformed-url-is-a-failure",
     "Return a value other than 0, and status 0, for a URL that cannot be used.",
     &malformedUrlIsAFailure},
};

}  // namespace platform_check

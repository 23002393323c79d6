// Owners of libcurl's handles. Each object belongs to one thread.

#ifndef PLATFORM_HOST_CURLHANDLE_H_
#define PLATFORM_HOST_CURLHANDLE_H_

#include <array>
#include <memory>
#include <string>
#include <type_traits>

#include <curl/curl.h>

namespace host {

// Owns a list of texts for libcurl.
class CurlList {
 public:
  // Appends a copy of `text`. Throws std::bad_alloc.
  void append(const std::string& text);

  // The list, owned by this object; null while it is empty.
  curl_slist* get() const { return list_.get(); }

 private:
  struct Free {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
  };
  std::unique_ptr<curl_slist, Free> list_;
};

// The calling thread's easy handle, borrowed for one exchange, with all options at their defaults.
// The thread keeps the handle, and with it connections, TLS sessions, DNS results and the parsed CA
// certificates. A callback that borrows during an exchange gets another handle.
class CurlHandle {
 public:
  CurlHandle();
  ~CurlHandle();

  CurlHandle(const CurlHandle&) = delete;
  CurlHandle& operator=(const CurlHandle&) = delete;

  // Sets an option. libcurl copies texts, but neither lists nor request bodies. perform() reports a
  // failure.
  template <typename Value>
  void set(CURLoption option, Value value) {
    static_assert(std::is_pointer<Value>::value || std::is_same<Value, long>::value ||
                      std::is_same<Value, curl_off_t>::value,
                  "libcurl reads variadic arguments as one of these types");
    if (optionFailure_ == CURLE_OK) {
      optionFailure_ = curl_easy_setopt(handle_.get(), option, value);
    }
  }

  // Performs the exchange. Fails without sending anything when an option could not be set.
  CURLcode perform();

  // Describes the failure of the last perform(), which returned `code`: one line in English.
  std::string failureText(CURLcode code) const;

  // The handle, owned by this object.
  CURL* get() const { return handle_.get(); }

  struct Free {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
  };
  using Owned = std::unique_ptr<CURL, Free>;

 private:
  Owned handle_;
  CURLcode optionFailure_;
  std::array<char, CURL_ERROR_SIZE> failureText_;
};

}  // namespace host

#endif  // PLATFORM_HOST_CURLHANDLE_H_

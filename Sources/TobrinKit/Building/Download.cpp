#include "Building/Download.h"

#include <curl/curl.h>

#include <memory>
#include <string_view>

#include "Base/AtomicFile.h"

namespace tobrin {
namespace {

constexpr long connectSeconds = 15;
constexpr long stalledSeconds = 30;
constexpr long stalledBytesPerSecond = 100;
constexpr long mostRedirects = 10;
constexpr const char* protocols = "http,https";  // a server cannot redirect to local files

std::size_t append(const char* data, std::size_t size, std::size_t count, void* into) {
  auto& content = *static_cast<std::string*>(into);
  const std::size_t bytes = size * count;
  if (content.size() + bytes > static_cast<std::size_t>(largestDownload)) return 0;
  content.append(data, bytes);
  return bytes;
}

std::string problemOf(CURLcode code, CURL* transfer, const std::string& content,
                      const char* detail) {
  if (code == CURLE_HTTP_RETURNED_ERROR) {
    long status = 0;
    curl_easy_getinfo(transfer, CURLINFO_RESPONSE_CODE, &status);
    return "the server answered " + std::to_string(status);
  }
  if (code == CURLE_FILESIZE_EXCEEDED || (code == CURLE_WRITE_ERROR && !content.empty())) {
    return "larger than " + std::to_string(largestDownload >> 20) + " MiB";
  }
  return std::string_view(detail).empty() ? curl_easy_strerror(code) : detail;
}

}  // namespace

void download(const std::string& url, const std::filesystem::path& file) {
  static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
  const std::unique_ptr<CURL, void (*)(CURL*)> transfer(curl_easy_init(), &curl_easy_cleanup);
  if (started != CURLE_OK || !transfer) throw DownloadError("Can't fetch " + url + ": no memory");
  CURL* curl = transfer.get();
  std::string content;
  char detail[CURL_ERROR_SIZE] = "";
  curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
  curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, detail);
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, protocols);
  curl_easy_setopt(curl, CURLOPT_REDIR_PROTOCOLS_STR, protocols);
  curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 1L);
  curl_easy_setopt(curl, CURLOPT_MAXREDIRS, mostRedirects);
  curl_easy_setopt(curl, CURLOPT_FAILONERROR, 1L);
  curl_easy_setopt(curl, CURLOPT_CONNECTTIMEOUT, connectSeconds);
  curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, stalledSeconds);
  curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, stalledBytesPerSecond);
  curl_easy_setopt(curl, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(largestDownload));
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_USERAGENT, "Tobrin/" TOBRIN_VERSION);
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, &append);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, &content);
  const CURLcode code = curl_easy_perform(curl);
  if (code != CURLE_OK) {
    throw DownloadError("Can't fetch " + url + ": " + problemOf(code, curl, content, detail));
  }
  if (content.empty()) throw DownloadError("Can't fetch " + url + ": it is empty");
  writeFileAtomically(file, content);
}

}  // namespace tobrin

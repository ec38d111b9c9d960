#include "net/mHttp.h"

#include "base/mNumber.h"
#include "net/cNetError.h"

namespace toval {

namespace {

// %A target, %H host, %K cookie line, %R referer line, %L body length. In the
// GET templates the cookie and referer lines come before the connection line,
// in the POST templates after it.
constexpr std::string_view kGetProxy =
    "GET %A HTTP/1.0\r\nHost: %H\r\nUser-Agent: Toval/1.3.1\r\nAccept: */*\r\n"
    "Accept-Charset: utf-8\r\nAccept-Encoding: none\r\n%K%RProxy-Connection: Close\r\n\r\n";
constexpr std::string_view kGetDirect =
    "GET %A HTTP/1.0\r\nHost: %H\r\nUser-Agent: Toval/1.3.1\r\nAccept: */*\r\n"
    "Accept-Charset: utf-8\r\nAccept-Encoding: none\r\n%K%RConnection: Close\r\n\r\n";
constexpr std::string_view kPostProxy =
    "POST %A HTTP/1.0\r\nHost: %H\r\nUser-Agent: Toval/1.3.1\r\nAccept: */*\r\n"
    "Accept-Charset: utf-8\r\nAccept-Encoding: none\r\nProxy-Connection: Close\r\n"
    "%K%RContent-Type: application/x-www-form-urlencoded\r\nContent-Length: %L\r\n\r\n";
constexpr std::string_view kPostDirect =
    "POST %A HTTP/1.0\r\nHost: %H\r\nUser-Agent: Toval/1.3.1\r\nAccept: */*\r\n"
    "Accept-Charset: utf-8\r\nAccept-Encoding: none\r\nConnection: Close\r\n"
    "%K%RContent-Type: application/x-www-form-urlencoded\r\nContent-Length: %L\r\n\r\n";

constexpr int32_t kDefaultPort = 80;
constexpr int32_t kMaxPort = 65535;

void AppendLine(std::string& out, std::string_view name, std::string_view value) {
    if (value.empty()) return;
    out.append(name);
    out.append(value);
    out.append("\r\n");
}

}  // namespace

bool SplitHttpUrl(std::string_view url, std::string& hostPart, std::string& target) {
    // A control character would let a URL add lines of its own to the request
    // (a server host learnt from a service answer is not to be trusted), and a
    // blank cannot be part of a host name.
    for (const char c : url) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F) return false;
    }
    const size_t slashes = url.find("//");
    if (slashes == std::string_view::npos) return false;
    const size_t hostStart = slashes + 2;
    const size_t pathStart = url.find('/', hostStart);
    if (pathStart == std::string_view::npos) return false;
    if (url.substr(hostStart, pathStart - hostStart).find(' ') != std::string_view::npos)
        return false;
    hostPart.assign(url.substr(hostStart, pathStart - hostStart));
    target.assign(url.substr(pathStart));
    return true;
}

void HttpDirectHost(std::string_view hostPart, std::string& host, int32_t& port) {
    port = kDefaultPort;
    const size_t colon = hostPart.find(':');
    if (colon == std::string_view::npos) {
        host.assign(hostPart);
        return;
    }
    host.assign(hostPart.substr(0, colon));
    double value = 0;
    int32_t number = 0;
    if (ParseNumber(hostPart.substr(colon + 1), value) && ToInt32(value, number) && number >= 0 &&
        number <= kMaxPort) {
        port = number;
    }
}

std::string HttpRequestText(bool post, bool proxy, std::string_view target, std::string_view host,
                            std::string_view cookie, std::string_view referer,
                            std::string_view body) {
    const std::string_view form =
        post ? (proxy ? kPostProxy : kPostDirect) : (proxy ? kGetProxy : kGetDirect);
    // One pass over the template: a value that itself holds "%A" or the like is
    // copied as it stands, never expanded again.
    std::string out;
    out.reserve(form.size() + target.size() + host.size() + cookie.size() + referer.size() +
                (post ? body.size() + 16 : 0) + 32);
    for (size_t i = 0; i < form.size(); ++i) {
        if (form[i] != '%' || i + 1 >= form.size()) {
            out.push_back(form[i]);
            continue;
        }
        ++i;
        switch (form[i]) {
            case 'A':
                out.append(target);
                break;
            case 'H':
                out.append(host);
                break;
            case 'K':
                AppendLine(out, "Cookie: ", cookie);
                break;
            case 'R':
                AppendLine(out, "Referer: ", referer);
                break;
            case 'L':
                out.append(DecimalBytes(static_cast<int64_t>(body.size())));
                break;
            default:
                out.push_back('%');
                out.push_back(form[i]);
                break;
        }
    }
    if (post) out.append(body);
    return out;
}

int16_t TakeHttpBody(std::string& data, cNetError& why) {
    using Category = cNetError::Category;
    why = {};
    const size_t lineEnd = data.find("\r\n");
    const std::string_view first = std::string_view(data).substr(0, lineEnd);
    if (data.empty()) {
        why = {Category::kBadAnswer, "the service closed the connection without answering"};
    } else if (lineEnd == std::string::npos) {
        why = {Category::kBadAnswer,
               "the service's answer is not HTTP: '" + cNetError::Printable(first) + "'"};
    } else if (first.find("200 OK") == std::string_view::npos) {
        why = {Category::kStatus, "the service answered '" + cNetError::Printable(first) + "'"};
    } else if (const size_t headEnd = data.find("\r\n\r\n"); headEnd != std::string::npos) {
        data.erase(0, headEnd + 4);
        return 2;
    } else {
        why = {Category::kBadAnswer, "the service's answer ends inside its headers"};
    }
    data.clear();
    return 3;
}

}  // namespace toval

// The byte-level side of the HTTP client, apart from any socket: splitting a
// URL, the port rule, filling the request templates and judging an answer.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "net/cNetError.h"

namespace toval {

// Splits "scheme://host/path" into the host part (everything between the first
// "//" and the next "/") and the target (from that "/" on). False when there
// is no "//" or no "/" after the host, when the URL holds a control character
// (CR LF would add lines to the request) or the host part a blank: such a URL
// is never requested.
bool SplitHttpUrl(std::string_view url, std::string& hostPart, std::string& target);

// The host and port to reach without a proxy. A host part "h:p" gives host "h"
// and port p when p is numeric and within 0 to 65535; otherwise the port is 80.
void HttpDirectHost(std::string_view hostPart, std::string& host, int32_t& port);

// The request bytes from the fixed GET or POST template, for the proxy or the
// direct connection. Empty cookie and referer leave out their lines; a POST
// carries its body after the blank line.
std::string HttpRequestText(bool post, bool proxy, std::string_view target, std::string_view host,
                            std::string_view cookie, std::string_view referer,
                            std::string_view body);

// Judges a whole answer: when the text before the first CR LF holds "200 OK"
// and a CR LF CR LF ends the headers, data keeps only the body and the result
// is 2; otherwise data is emptied, the result is 3 and why says what failed:
// no answer at all, not HTTP, a status other than "200 OK" (quoting the first
// line), or no end of the headers.
int16_t TakeHttpBody(std::string& data, cNetError& why);

}  // namespace toval

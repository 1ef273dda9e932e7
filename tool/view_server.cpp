#include "tool/view_server.h"

#include <arpa/inet.h>
#include <fmt/format.h>

#include <cerrno>
#include <cstring>
#include <random>
#include <utility>

#include "tool/code_text.h"
#include "tool/parameter_access.h"
#include "tool/parameter_json.h"
#include "tool/text.h"
#include "view_page.h"

namespace velmora::tool {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kMostStreams = 32;
constexpr std::chrono::milliseconds kPatience{1000};  ///< After which a silent stream is tested.

constexpr std::chrono::milliseconds kStartUp{1};

constexpr const char* kJson = "application/json";
constexpr const char* kTokenHeader = "X-Velmora-Token";
constexpr const char* kTokenMark = "{{token}}";

enum Status { kForbidden = 403, kUnusable = 422, kBroken = 500, kBusy = 503 };

std::string randomToken() {
  std::random_device random;
  std::string token;
  for (int i = 0; i < 4; ++i) token += fmt::format("{:08x}", random());
  return token;
}

std::string wordsFor(int status) {
  switch (status) {
    case 400:
      return "the request is malformed, too long or too slow";
    case 404:
      return "there is no such page";
    case 413:
      return "more than 1 MiB of content";
    default:
      return fmt::format("HTTP status {}", status);
  }
}

void answer(httplib::Response& response, const Json& json) {
  response.set_content(jsonText(json), kJson);
}

void refuse(httplib::Response& response, Status status, const std::vector<std::string>& messages) {
  response.status = status;
  answer(response, {{"failures", messages}});
}

/// The ports that a request names: "?port=0,2"; all if it names none.
std::vector<unsigned> portsOf(const httplib::Request& request) {
  const std::string text = request.has_param("port") ? request.get_param_value("port") : "all";
  const auto ports = parsePorts(text);
  if (!ports) throw Failure(fmt::format("'{}' is neither ports 0 to 3 nor all", text));
  return *ports;
}

/// When a stream ends that is asked for "?seconds=3"; never if it does not say.
Clock::time_point endOf(const httplib::Request& request) {
  if (!request.has_param("seconds")) return Clock::time_point::max();
  const auto seconds = parseWhole<std::uint16_t>(request.get_param_value("seconds"));
  if (!seconds) throw Failure("'seconds' is no whole number up to 65535");
  return Clock::now() + std::chrono::seconds(*seconds);
}

/// None when it is too long or breaks off; the answer's status is set then. (In the library's other
/// way, what calls itself a form, as curl does, is refused from 8 KiB on.)
std::optional<std::string> bodyOf(const httplib::ContentReader& read) {
  std::string body;
  const bool whole = read([&body](const char* bytes, std::size_t size) {
    body.append(bytes, size);
    return true;
  });
  return whole ? std::optional(std::move(body)) : std::nullopt;
}

/// {"assignments": ["FG_WIDTH@0=512", ...]}
std::vector<std::string> assignmentsOf(const std::string& body) {
  try {
    return Json::parse(body).at("assignments").get<std::vector<std::string>>();
  } catch (const Json::exception&) {
    throw Failure(R"(a body like {"assignments": ["FG_WIDTH@0=512"]} is expected)");
  }
}

/// What is different between two moments, as the data of an event; empty if there is nothing.
std::string differences(const LiveBoard::Moment& before, const LiveBoard::Moment& now) {
  std::string lists[3];
  for (std::size_t i = 0; i < now->size(); ++i) {
    const LiveItem& item = (*now)[i];
    if (before && i < before->size() && (*before)[i].json == item.json) continue;
    std::string& list = lists[static_cast<int>(item.kind)];
    list += (list.empty() ? "" : ",") + item.json;
  }
  if (lists[0].empty() && lists[1].empty() && lists[2].empty()) return {};
  return fmt::format(R"({{"parameters":[{}],"ports":[{}],"events":[{}]}})", lists[0], lists[1],
                     lists[2]);
}

/// A part of a stream of pictures.
std::string partOf(const LivePicture& picture) {
  return fmt::format(
             "--picture\r\nContent-Type: image/jpeg\r\nContent-Length: {}\r\nX-Port: {}\r\n"
             "X-Number: {}\r\n\r\n",
             picture.jpeg.size(), picture.port, picture.number) +
         picture.jpeg + "\r\n";
}

}  // namespace

std::optional<ListenAddress> parseListenAddress(const std::string& text) {
  const auto colon = text.rfind(':');
  if (colon == std::string::npos) return std::nullopt;
  std::string host = text.substr(0, colon);
  const auto port = parseWhole<std::uint16_t>(text.substr(colon + 1));
  if (host.starts_with('[') && host.ends_with(']'))
    host = host.substr(1, host.size() - 2);
  else if (host.find(':') != std::string::npos)
    return std::nullopt;
  if (host.empty() || !port) return std::nullopt;
  return ListenAddress{host, *port};
}

ViewServer::ViewServer(LiveBoard& board, ListenAddress address)
    : board_(board), address_(std::move(address)), token_(randomToken()) {
  guard();
  addPage();
  addCommands();
  addStreams();
  errno = 0;
  const int port = address_.port != 0 ? address_.port : server_.bind_to_any_port(address_.host);
  const bool bound = address_.port == 0 ? port > 0 : server_.bind_to_port(address_.host, port);
  if (!bound)
    throw Failure(fmt::format("cannot listen on {}:{}: {}", address_.host, address_.port,
                              errno != 0 ? std::strerror(errno) : "no such address"));
  address_.port = port;
  listener_ = std::jthread([this] {
    server_.listen_after_bind();
    ended_ = true;
  });
  while (!server_.is_running() && !ended_) std::this_thread::sleep_for(kStartUp);
}

ViewServer::~ViewServer() { server_.end(); }

std::string ViewServer::url() const {
  const bool ipv6 = address_.host.find(':') != std::string::npos;
  return fmt::format("http://{}:{}/", ipv6 ? '[' + address_.host + ']' : address_.host,
                     address_.port);
}

void ViewServer::guard() {
  server_.set_default_headers({
      {"Cache-Control", "no-store"},
      {"Content-Security-Policy",
       "default-src 'none'; script-src 'self'; style-src 'self'; img-src blob: data:; "
       "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
      {"Cross-Origin-Resource-Policy", "same-origin"},
      {"X-Content-Type-Options", "nosniff"},
  });
  server_.set_pre_routing_handler([this](const Request& request, Response& response) {
    const std::string why = objection(request);
    if (why.empty()) return httplib::Server::HandlerResponse::Unhandled;
    refuse(response, kForbidden, {why});
    return httplib::Server::HandlerResponse::Handled;
  });
  server_.set_exception_handler(
      [](const Request&, Response& response, const std::exception_ptr& thrown) {
        try {
          std::rethrow_exception(thrown);
        } catch (const Failure& failure) {
          refuse(response, kUnusable, failure.messages());
        } catch (const std::exception& error) {
          refuse(response, kBroken, {error.what()});
        }
      });
  server_.set_error_handler([](const Request&, Response& response) {
    if (response.body.empty()) answer(response, {{"failures", {wordsFor(response.status)}}});
  });
}

std::string ViewServer::objection(const Request& request) const {
  const std::string host = request.get_header_value("Host");
  if (!isOwnHost(host)) return "this server is not " + host;
  if (request.has_header("Origin") && request.get_header_value("Origin") != "http://" + host)
    return "pages of other servers have no access";
  const std::string site = request.get_header_value("Sec-Fetch-Site");
  if (request.path != "/" && !site.empty() && site != "same-origin" && site != "none")
    return "pages of other servers have no access";
  if (request.method == "POST" && request.get_header_value(kTokenHeader) != token_)
    return "the page's token is missing or old; load the page again";
  return {};
}

/// A page of another server whose name is made to lead here still asks for that name; numbers
/// cannot be made to lead anywhere.
bool ViewServer::isOwnHost(const std::string& host) const {
  const bool withPort = host.find(':') != std::string::npos && !host.ends_with(']');
  const auto address = parseListenAddress(withPort ? host : host + ":80");
  if (!address || address->port != address_.port) return false;
  in6_addr numbers{};
  return equalIgnoringCase(address->host, "localhost") ||
         equalIgnoringCase(address->host, address_.host) ||
         inet_pton(AF_INET, address->host.c_str(), &numbers) == 1 ||
         inet_pton(AF_INET6, address->host.c_str(), &numbers) == 1;
}

void ViewServer::addPage() {
  std::string page = kViewPage;
  page.replace(page.find(kTokenMark), std::string_view(kTokenMark).size(), token_);
  const auto add = [this](const char* path, std::string content, const char* type) {
    server_.Get(path, [content = std::move(content), type](const Request&, Response& response) {
      response.set_content(content, type);
    });
  };
  add("/", std::move(page), "text/html; charset=utf-8");
  add("/view.css", kViewStyle, "text/css; charset=utf-8");
  add("/view.js", kViewScript, "text/javascript; charset=utf-8");
}

void ViewServer::addCommands() {
  server_.Get("/describe", [this](const Request& request, Response& response) {
    Json trees = Json::array();
    for (const unsigned port : portsOf(request)) trees.push_back(board_.tree(port));
    answer(response, trees);
  });
  server_.Get("/save", [this](const Request&, Response& response) {
    response.set_header("Content-Disposition", "attachment; filename=\"velmora.mcf\"");
    response.set_content(board_.save(), "application/octet-stream");
  });
  using httplib::ContentReader;
  server_.Post("/set", [this](const Request&, Response& response, const ContentReader& read) {
    const auto body = bodyOf(read);
    if (!body) return;
    const Json result = board_.set(assignmentsOf(*body));
    if (!result["failures"].empty()) response.status = kUnusable;
    answer(response, result);
  });
  server_.Post("/load", [this](const Request&, Response& response, const ContentReader& read) {
    if (const auto body = bodyOf(read)) answer(response, board_.load(*body));
  });
  // Content that there may be is not read.
  for (const auto& [path, wanted] : {std::pair{"/start", true}, {"/stop", false}})
    server_.Post(path, [this, wanted = wanted](const Request& request, Response& response,
                                               const ContentReader&) {
      answer(response, {{"ports", board_.run(portsOf(request), wanted)}});
    });
}

/// Answers with what `next` gives until the viewer leaves or the time is over; that is an empty
/// text after a while without anything.
template <class Next>
void ViewServer::stream(Response& response, const char* type, Clock::time_point end, Next next) {
  const bool free = ++streams_ <= kMostStreams;
  const std::shared_ptr<void> place(nullptr, [this](void*) { --streams_; });
  if (!free) return refuse(response, kBusy, {"too many viewers"});
  response.set_chunked_content_provider(type, [this, place, end, next = std::move(next)](
                                                  std::size_t, httplib::DataSink& sink) mutable {
    if (Clock::now() >= end) sink.done();
    const std::string data = Clock::now() < end ? next() : "";
    return !server_.ended() && sink.is_writable() &&
           (data.empty() || sink.write(data.data(), data.size()));
  });
}

void ViewServer::addStreams() {
  server_.Get("/changes", [this](const Request&, Response& response) {
    const auto next = [this, seen = LiveBoard::Moment()]() mutable {
      const LiveBoard::Moment now = board_.next(seen, kPatience);
      const std::string data = differences(std::exchange(seen, now), now);
      return data.empty() ? ":\n\n" : "data: " + data + "\n\n";
    };
    stream(response, "text/event-stream", Clock::time_point::max(), next);
  });
  server_.Get("/pictures", [this](const Request& request, Response& response) {
    LivePictures::Viewer viewer;
    for (const unsigned port : portsOf(request)) viewer.wanted.at(port) = true;
    const auto next = [this, viewer]() mutable {
      std::string parts;
      for (const auto& picture : board_.pictures().next(viewer, kPatience))
        parts += partOf(*picture);
      return parts;
    };
    stream(response, "multipart/x-mixed-replace; boundary=picture", endOf(request), next);
  });
}

}  // namespace velmora::tool

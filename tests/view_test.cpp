/// The server of `velmora view`, run as a user runs it and asked as a browser asks, and as a page
/// does that means no good.
#include <fmt/format.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <netinet/in.h>
#include <signal.h>
#include <sys/socket.h>
#include <turbojpeg.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <utility>

namespace {

using Json = nlohmann::json;

constexpr const char* kForm = "application/x-www-form-urlencoded";  ///< As curl says.

class View : public testing::Test {
 protected:
  View() {
    const std::string tool = TOOL;
    const std::string command = "echo $$; export LD_LIBRARY_PATH='" LIBRARIES "'; exec '" + tool +
                                "' view --listen 127.0.0.1:0 --port all --set FG_WIDTH=64 "
                                "FG_HEIGHT=64 FG_WIDTH@2=640 2>/dev/null";
    process_ = popen(command.c_str(), "r");
    pid_ = std::stoi(line());
    const std::string url = line();
    port_ = std::stoi(url.substr(url.rfind(':') + 1));
    std::smatch match;
    const std::string page = client().Get("/")->body;
    std::regex_search(page, match, std::regex("name=\"token\" content=\"(\\w+)\""));
    token_ = match[1];
  }
  ~View() override {
    if (process_) {
      EXPECT_EQ(end(), 0);
    }
  }

  /// Exit status after Ctrl-C.
  int end() {
    kill(pid_, SIGINT);
    return pclose(std::exchange(process_, nullptr));
  }

  httplib::Client client() const {
    httplib::Client client("127.0.0.1", port_);
    client.set_read_timeout(20);
    return client;
  }
  Json post(const std::string& path, const std::string& body, int status = 200) const {
    const auto answer = client().Post(path, {{"X-Velmora-Token", token_}}, body, kForm);
    if (!answer) {
      ADD_FAILURE() << path << ": no answer";
      return {};
    }
    EXPECT_EQ(answer->status, status) << answer->body;
    return Json::parse(answer->body);
  }
  Json set(const std::vector<std::string>& assignments, int status = 200) const {
    return post("/set", Json{{"assignments", assignments}}.dump(), status);
  }

  /// Reads a stream until `enough` says so of what came.
  template <class Enough>
  void read(const std::string& path, Enough enough) const {
    std::string came;
    client().Get(path, [&](const char* data, std::size_t size) {
      came.append(data, size);
      return !enough(came);
    });
  }
  /// Waits for a change of which `wanted` holds.
  template <class Wanted>
  void follow(const Wanted& wanted) const {
    read("/changes", [&, from = std::size_t{0}](const std::string& came) mutable {
      for (auto to = came.find("\n\n", from); to != came.npos; to = came.find("\n\n", from)) {
        const std::string event = came.substr(from, to - from);
        from = to + 2;
        if (event.starts_with("data: ") && wanted(Json::parse(event.substr(6)))) return true;
      }
      return false;
    });
  }
  /// Of all that there is to be known at the moment.
  Json changes() const {
    Json first;
    follow([&first](const Json& change) {
      first = change;
      return true;
    });
    return first;
  }
  /// Fails by reaching the time limit of the test.
  void waitForValue(const std::string& name, unsigned port, const Json& value) const {
    follow([&](const Json& change) {
      return std::ranges::any_of(change["parameters"], [&](const Json& parameter) {
        return parameter["name"] == name && parameter["port"] == port &&
               parameter["value"] == value;
      });
    });
  }

  /// Waits for a picture of a port that has a size.
  void waitForPicture(unsigned port, int width, int height) const {
    read(fmt::format("/pictures?port={}", port), [=](const std::string& came) {
      const auto part = came.rfind("--picture");
      const auto begin = came.find("\r\n\r\n", part);
      std::smatch match;
      const std::string headers = came.substr(part, begin - part);
      if (!std::regex_search(headers, match, std::regex("Content-Length: (\\d+)\r\nX-Port: (\\d)")))
        return false;
      const std::size_t size = std::stoul(match[1]);
      if (came.size() < begin + 4 + size) return false;
      EXPECT_EQ(match[2], std::to_string(port));
      int seen[4];
      const auto jpeg = tjInitDecompress();
      const std::string bytes = came.substr(begin + 4, size);
      EXPECT_EQ(tjDecompressHeader3(jpeg, reinterpret_cast<const unsigned char*>(bytes.data()),
                                    size, &seen[0], &seen[1], &seen[2], &seen[3]),
                0);
      tjDestroy(jpeg);
      return seen[0] == width && seen[1] == height;
    });
  }

  std::string line() {
    char text[100] = "";
    EXPECT_NE(fgets(text, sizeof text, process_), nullptr);
    return text;
  }

  std::FILE* process_;
  int pid_;
  int port_ = 0;
  std::string token_;
};

TEST_F(View, ShowsAndChangesWhatTheToolDoes) {
  waitForValue("FG_WIDTH", 2, 640);
  waitForPicture(2, 640, 64);
  EXPECT_EQ(set({"FG_WIDTH@1=512", "FG_HEIGHT@1=100"})["values"][1],
            Json::parse(R"({"name": "FG_HEIGHT", "port": 1, "value": 100, "unit": "pixel"})"));
  waitForPicture(1, 512, 100);
  // Larger than what its buffers were made for.
  set({"FG_WIDTH@1=2000", "FG_HEIGHT@1=1500"});
  waitForPicture(1, 2000, 1500);
  // Larger than what is shown.
  set({"FG_WIDTH@1=4096", "FG_HEIGHT@1=16"});
  waitForPicture(1, 2048, 8);
  // Larger than what is shown in one direction only, or at all.
  set({"FG_WIDTH@1=16", "FG_HEIGHT@1=65535"});
  waitForPicture(1, 1, 2048);
  set({"FG_WIDTH@1=8192"});
  const Json states = post("/start", "")["ports"];
  EXPECT_EQ(states[0]["reason"], "");
  EXPECT_EQ(states[1]["reason"], "pictures of 1610588160 bytes are too large to be shown");
  set({"FG_WIDTH@1=8", "FG_HEIGHT@1=8"});
  waitForPicture(1, 8, 8);

  const Json refused = set({"FG_WIDTH@3=1000", "FG_WIDTH@3=17", "FG_HEIGHT@3=8"}, 422);
  EXPECT_EQ(refused["values"].size(), 1u);
  EXPECT_EQ(
      refused["failures"],
      Json({"FG_WIDTH@3: refused: -7080, value breaks a step rule: 8 to 8192 pixel, step 4"}));
  waitForValue("FG_WIDTH", 3, 1000);
  waitForValue("FG_HEIGHT", 3, 64);
  const Json tree = Json::parse(client().Get("/describe?port=3")->body);
  EXPECT_EQ(tree[0]["children"][1]["children"][0]["value"], 1000);
}

TEST_F(View, TellsEveryViewerWhatAnotherChanges) {
  bool began = false;
  follow([&](const Json& change) {
    if (!std::exchange(began, true)) set({"FG_XOFFSET@2=8"});
    for (const Json& parameter : change["parameters"])
      if (parameter["name"] == "FG_XOFFSET" && parameter["port"] == 2 && parameter["value"] == 8)
        return true;
    return false;
  });
  // Software triggers, each of which makes a picture and an event.
  set({"FG_AREATRIGGERMODE@0=ATM_SOFTWARE", "FG_TRIGGERSTATE@0=TS_ACTIVE"});
  post("/stop?port=0,1", "");
  post("/start?port=0", "");
  EXPECT_EQ(changes()["ports"][1]["acquiring"], false);
  set({"FG_SENDSOFTWARETRIGGER@0=1"});
  follow([](const Json& change) {
    return !change["ports"].empty() && change["ports"][0]["port"] == 0 &&
           change["ports"][0]["pictures"] == 1;
  });
  std::string counted;
  const Json now = changes();
  for (const Json& event : now["events"])
    if (event["name"] == "FG_TRIGGER_OUTPUT_CAM0") counted = event["count"].dump();
  EXPECT_EQ(counted, "1");
}

TEST_F(View, SavesAndLoads) {
  std::string file = client().Get("/save")->body;
  set({"FG_WIDTH@2=1000"});
  EXPECT_EQ(post("/load", file), Json::parse(R"({"ports": 4, "differences": []})"));
  waitForValue("FG_WIDTH", 2, 640);
  file.replace(file.find("FG_WIDTH=64"), 11, "FG_WIDTH=17");
  const Json differences = post("/load", file)["differences"];
  ASSERT_EQ(differences.size(), 1u);
  EXPECT_EQ(differences[0]["text"], "17");
  EXPECT_EQ(post("/load", "nothing", 422)["failures"],
            Json({"not loaded: -5000, configuration not loaded; no key "
                  "Hersteller"}));
}

TEST_F(View, RefusesOtherPagesAndMalformedRequests) {
  const struct {
    std::string method, path;
    httplib::Headers headers;
    std::string body;
    int status;
    std::string words;
  } cases[] = {
      {"GET", "/", {{"Host", "pages.example"}}, "", 403, "this server is not pages.example"},
      {"GET", "/", {{"Host", "127.0.0.1:1"}}, "", 403, "this server is not 127.0.0.1:1"},
      {"GET", "/changes", {{"Origin", "http://pages.example"}}, "", 403, "other servers"},
      {"GET", "/pictures", {{"Sec-Fetch-Site", "cross-site"}}, "", 403, "other servers"},
      {"GET", "/", {{"Sec-Fetch-Site", "cross-site"}}, "", 200, "<title>Velmora"},
      {"POST", "/stop", {}, "", 403, "token"},
      {"POST", "/stop", {{"X-Velmora-Token", "0"}}, "", 403, "token"},
      {"GET", "/stop", {}, "", 404, "no such page"},
      {"GET", "/describe?port=4", {}, "", 422, "'4' is neither ports 0 to 3 nor all"},
      {"POST", "/start?port=x", {{"X-Velmora-Token", token_}}, "", 422, "'x' is neither"},
      {"POST", "/set", {{"X-Velmora-Token", token_}}, "[", 422, "is expected"},
      {"POST", "/set", {{"X-Velmora-Token", token_}}, R"({"assignments": [1]})", 422, "expected"},
      {"POST", "/load", {{"X-Velmora-Token", token_}}, std::string(20000, 'x'), 422, "no key"},
      {"POST", "/load", {{"X-Velmora-Token", token_}}, std::string(2 << 20, 'x'), 413, "1 MiB"},
  };
  for (const auto& [method, path, headers, body, status, words] : cases) {
    auto client = this->client();
    const auto answer =
        method == "GET" ? client.Get(path, headers) : client.Post(path, headers, body, kForm);
    ASSERT_TRUE(answer) << path;
    EXPECT_EQ(answer->status, status) << path;
    EXPECT_NE(answer->body.find(words), std::string::npos) << path << ": " << answer->body;
  }
  std::set<unsigned> acquiring;
  follow([&acquiring](const Json& change) {
    for (const Json& port : change["ports"])
      if (port["acquiring"]) acquiring.insert(port["port"].get<unsigned>());
    return acquiring.size() == 4;
  });
}

/// A client that reads no more than the status of an answer.
class Client {
 public:
  Client(int port, const std::string& request) : socket_(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const auto* const place = reinterpret_cast<const sockaddr*>(&address);
    EXPECT_EQ(connect(socket_, place, sizeof address), 0);
    send(socket_, request.data(), request.size(), MSG_NOSIGNAL);
  }
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;
  ~Client() { close(socket_); }
  /// Empty when the connection ends without an answer.
  std::string status() const {
    char text[13] = "";
    return recv(socket_, text, 12, MSG_WAITALL) == 12 ? text + 9 : "";
  }

 private:
  int socket_;
};

TEST_F(View, BoundsItsViewersAndOutlivesThoseThatDoNotRead) {
  const std::string request =
      fmt::format("GET /pictures HTTP/1.1\r\nHost: 127.0.0.1:{}\r\n\r\n", port_);
  std::deque<Client> viewers;
  while (viewers.size() < 31) EXPECT_EQ(viewers.emplace_back(port_, request).status(), "200");
  std::int64_t begin = -1;
  follow([&begin](const Json& change) {
    if (change["ports"].empty()) return false;
    const auto number = change["ports"][0]["pictures"].get<std::int64_t>();
    if (begin < 0) begin = number;
    return number > begin + 16;
  });
  viewers.clear();
  // Without pictures no viewer is given up.
  post("/stop", "");
  while (viewers.size() < 32)  // As soon as those before are gone.
    if (viewers.emplace_back(port_, request).status() != "200") viewers.pop_back();
  EXPECT_EQ(Client(port_, request).status(), "503");
  EXPECT_EQ(end(), 0);
}

TEST_F(View, IsNotHeldUpByRequestsThatDoNotEnd) {
  std::string headers = "GET / HTTP/1.1\r\n";
  while (headers.size() < 2 << 20) headers += "X: y\r\n";
  EXPECT_EQ(Client(port_, headers).status(), "400");
  EXPECT_EQ(Client(port_, "GET /" + std::string(2 << 20, 'x')).status(), "");
  // Events that come faster than they can be counted.
  set({"FG_WIDTH@0=8", "FG_HEIGHT@0=2", "FG_TRIGGER_PULSEFORMGEN0_WIDTH@0=1",
       "FG_TRIGGER_PULSEFORMGEN1_WIDTH@0=1", "FG_TRIGGER_FRAMESPERSECOND@0=100000"});
  set({"FG_TRIGGER_FRAMESPERSECOND@0=8"});
  const Client unfinished(port_, "GET / HTTP/1.1\r\nX");
  EXPECT_EQ(end(), 0);
}

}  // namespace

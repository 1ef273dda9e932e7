/// The input is what a runtime describes: a forest of any kinds, texts and ids. The applet starts,
/// and a port has a document of the size that was told, well-formed when the texts are printable.
#include <fuzzer/FuzzedDataProvider.h>
#include <libxml/parser.h>

#include <algorithm>
#include <deque>

#include "fuzz/fuzzing.h"
#include "fuzz/hostile_runtime.h"
#include "tests/applet_fixture.h"

using namespace fuzzing;

namespace {

constexpr unsigned kMaxChildren = 5, kMaxDepth = 4, kMaxTextLength = 24;
constexpr int kPrintable = '~' - ' ' + 1;

const std::string kAwkward[] = {"a<b",   "R&D", "\"'>",   "]]>", "--",
                                "&amp;", "",    "1 name", "_",   "Name"};

HostileRuntime* runtime = nullptr;

/// Builds a forest and keeps its memory.
class Forest {
 public:
  explicit Forest(FuzzedDataProvider& input) : in_(input), printable_(input.ConsumeBool()) {}

  bool printable() const { return printable_; }

  /// A list of nodes, each with those below it.
  RegisterInfo* list(unsigned depth) {
    RegisterInfo* first = nullptr;
    for (unsigned i = in_.ConsumeIntegralInRange(0u, kMaxChildren); i > 0; --i) {
      RegisterInfo* const node = make(depth);
      node->next = first;
      first = node;
    }
    return first;
  }

 private:
  RegisterInfo* make(unsigned depth) {
    RegisterInfo& node = nodes_.emplace_back();
    const bool unusual = in_.ConsumeIntegral<std::uint8_t>() % 4 == 0;
    if (depth < kMaxDepth && (depth == 0) != unusual)
      node.kind = REGISTER_INFO_GROUP;
    else
      node.kind = in_.ConsumeIntegralInRange(unsigned{REGISTER_INFO_UINT}, 16u);
    for (unsigned char& byte : node.value.bytes) byte = in_.ConsumeIntegral<unsigned char>();
    node.name = text();
    node.paramName = text();
    node.accessMode = in_.ConsumeIntegral<std::uint8_t>();
    node.qualifier = in_.ConsumeIntegral<std::uint8_t>();
    node.visible = in_.ConsumeIntegral<std::uint8_t>();
    node.id = in_.ConsumeBool() ? in_.ConsumeIntegral<std::uint8_t>() : in_.ConsumeIntegral<int>();
    node.unit = text();
    node.process = in_.ConsumeIntegral<std::int32_t>();
    if (node.paramName) runtime->ids[node.paramName] = node.id;
    if (node.kind == REGISTER_INFO_STRING) node.value.string.value = text();
    if (node.kind == REGISTER_INFO_ENUM) fill(node.value.enumeration);
    if (node.kind == REGISTER_INFO_GROUP) fill(node.value.group, depth);
    return &node;
  }

  template <class Group>
  void fill(Group& group, unsigned depth) {
    auto& children = lists_.emplace_back(in_.ConsumeIntegralInRange(0u, kMaxChildren));
    for (RegisterInfo*& child : children) child = in_.ConsumeBool() ? make(depth + 1) : nullptr;
    group.childCount = static_cast<std::uint32_t>(children.size());
    group.children = children.data();
  }

  template <class Enumeration>
  void fill(Enumeration& enumeration) {
    const unsigned count = in_.ConsumeIntegralInRange(0u, kMaxChildren);
    auto& values = values_.emplace_back(count);
    for (std::int32_t& value : values) value = in_.ConsumeIntegral<std::int32_t>();
    enumeration.entryCount = count;
    enumeration.names = texts(count);
    enumeration.values = values.data();
    enumeration.identifiers = texts(count);
  }

  char** texts(unsigned count) {
    auto& pointers = pointers_.emplace_back(count);
    for (char*& pointer : pointers) pointer = text();
    return pointers.data();
  }
  /// Null, a text that is hard to write, or any text.
  char* text() {
    const unsigned choice = in_.ConsumeIntegral<std::uint8_t>() % 4;
    if (choice == 0) return nullptr;
    std::string& text =
        texts_.emplace_back(choice == 1 ? in_.ConsumeRandomLengthString(kMaxTextLength)
                                        : in_.PickValueInArray(kAwkward));
    for (char& c : text)
      if (printable_) c = static_cast<char>(' ' + static_cast<unsigned char>(c) % kPrintable);
    return text.data();
  }

  FuzzedDataProvider& in_;
  const bool printable_;
  std::deque<RegisterInfo> nodes_;
  std::deque<std::string> texts_;
  std::deque<std::vector<RegisterInfo*>> lists_;
  std::deque<std::vector<std::int32_t>> values_;
  std::deque<std::vector<char*>> pointers_;
};

bool isWellFormed(const std::string& document) {
  const xmlDocPtr parsed =
      xmlReadMemory(document.data(), static_cast<int>(document.size()), nullptr, nullptr,
                    XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET);
  xmlFreeDoc(parsed);
  return parsed != nullptr;
}

std::string documentOf(fixture::Applet& applet, int port) {
  std::size_t size = 0;
  require(Fg_getParameterInfoXML(applet.fg(), port, nullptr, &size) == VELMORA_OK && size > 0,
          "a port has a document");
  std::string text(size, '?');
  std::size_t less = size - 1;
  require(
      Fg_getParameterInfoXML(applet.fg(), port, text.data(), &less) == VELMORA_BUFFER_TOO_SMALL &&
          less == size - 1 && text == std::string(size, '?'),
      "a buffer that is too small stays as it is");
  require(Fg_getParameterInfoXML(applet.fg(), port, text.data(), &size) == VELMORA_OK &&
              size == text.size() && text.find('\0') == size - 1,
          "a document has the size that was told");
  text.pop_back();
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  runtime = static_cast<HostileRuntime*>(dlsym(keepOpen(HOSTILE_RUNTIME), "hostileRuntime"));
  setenv("KORV_ENABLE_DKTA", "1", 1);
  setenv("KORV_ENABLE_DRA", "1", 1);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FuzzedDataProvider input(data, size);
  *runtime = {};
  runtime->result = input.ConsumeIntegralInRange(-1, 0);
  const int port = input.ConsumeIntegralInRange(0, int{VELMORA_PORTS} - 1);
  Forest forest(input);
  runtime->forest = forest.list(0);
  fixture::Applet applet;
  board::stopJournal();
  require(applet.opened(), "the applet starts");
  const std::string text = documentOf(applet, port);
  if (forest.printable()) require(isWellFormed(text), "a document is well-formed");
  return 0;
}

/// The folder paraminfo/ describes parameters to tools, as nodes and as a GenApi document. This
/// header is the registry: one forest of `RegisterInfo` nodes per process.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "velmora/register_info.h"

namespace velmora {

/// Describes the parameters of every process (camera port) as groups and value nodes.
///
/// The registry owns every node with its texts and arrays until the node's process is destroyed or
/// initialised again; a parent only refers to its children. Texts given to an add operation are
/// copied, null stays null. Nodes may be read and their ranges rewritten in place, but not freed or
/// relinked.
///
/// Every add operation returns the new node, or null, with nothing changed, when
/// - the process does not exist or is finalized,
/// - a value node has no parent,
/// - the parent is not a group.
/// A parent belongs to the same process as its children. When memory runs out `std::bad_alloc` is
/// thrown, with nothing changed.
///
/// There is no lock: the registry is filled by one thread before others read it.
class Fg_ParameterInfo {
 public:
  /// An empty registry for the processes 0 to `processCount` - 1.
  explicit Fg_ParameterInfo(int processCount);

  /// Releases the nodes of every process.
  ~Fg_ParameterInfo() = default;
  Fg_ParameterInfo(const Fg_ParameterInfo&) = delete;
  Fg_ParameterInfo& operator=(const Fg_ParameterInfo&) = delete;

  /// Empties a process and opens it for nodes again. Ignored for an unknown process.
  void init(int process);
  /// Releases all nodes of a process; a finalized process stays closed. Ignored for an unknown
  /// process.
  void destroy(int process);
  /// Closes a process: it takes no further nodes. Ignored for an unknown process.
  void finalize(int process);

  /// Adds a group below `parent`, or, with a null parent, as the newest root group of `process`.
  RegisterInfo* addGroupInfo(int process, RegisterInfo* parent, const char* name);

  /// @name Value nodes with a range
  /// @param name display text.
  /// @param paramName SDK parameter name.
  /// @param inc step between values; 0 when there is none.
  /// @param accessMode `RegisterInfoAccess` bits.
  /// @param qualifier for the runtime's tools.
  /// @param visible nonzero: part of the GenApi document.
  /// @param unit unit text, may be null.
  /// @param id SDK parameter id.
  /// @{
  RegisterInfo* addInfoUInt(RegisterInfo* parent, const char* name, const char* paramName,
                            std::uint32_t min, std::uint32_t max, std::uint32_t inc, int accessMode,
                            int qualifier, int visible, const char* unit, int id, int process);
  RegisterInfo* addInfoInt(RegisterInfo* parent, const char* name, const char* paramName,
                           std::int32_t min, std::int32_t max, std::int32_t inc, int accessMode,
                           int qualifier, int visible, const char* unit, int id, int process);
  RegisterInfo* addInfoUInt64(RegisterInfo* parent, const char* name, const char* paramName,
                              std::uint64_t min, std::uint64_t max, std::uint64_t inc,
                              int accessMode, int qualifier, int visible, const char* unit, int id,
                              int process);
  RegisterInfo* addInfoInt64(RegisterInfo* parent, const char* name, const char* paramName,
                             std::int64_t min, std::int64_t max, std::int64_t inc, int accessMode,
                             int qualifier, int visible, const char* unit, int id, int process);
  RegisterInfo* addInfoDouble(RegisterInfo* parent, const char* name, const char* paramName,
                              double min, double max, double inc, int accessMode, int qualifier,
                              int visible, const char* unit, int id, int process);
  /// @}

  /// Adds a text parameter; `value` is its text, for example a file pattern.
  RegisterInfo* addInfoString(RegisterInfo* parent, const char* name, const char* paramName,
                              const char* value, int accessMode, int qualifier, int visible,
                              const char* unit, int id, int process);

  /// Adds an enumeration with `entryCount` empty entries, to be filled by `addEnumNameValue`. A
  /// negative count is taken as 0.
  RegisterInfo* addInfoEnum(RegisterInfo* parent, const char* name, const char* paramName,
                            int entryCount, int accessMode, int qualifier, int visible,
                            const char* unit, int id, int process);

  /// Sets an entry of an enumeration, replacing what it held.
  /// @param symbolicName identifier of the value, such as "FG_ON"; may be null.
  /// @return 0; -500, with the entry unchanged, when the display text is null or cannot be copied,
  ///         or the node is not an enumeration with such an entry.
  static int addEnumNameValue(RegisterInfo* enumeration, int entryIndex, const char* displayText,
                              int value, const char* symbolicName);

  /// @name Value nodes of field parameters: `count` elements up to `max`
  /// `value` is stored twice, as the value and as the initial value.
  /// @{
  RegisterInfo* addInfoIntField(RegisterInfo* parent, const char* name, const char* paramName,
                                std::int32_t count, std::int32_t value, std::int32_t max,
                                std::int32_t ignored, int accessMode, int qualifier, int visible,
                                const char* unit, int id, int process);
  RegisterInfo* addInfoUIntField(RegisterInfo* parent, const char* name, const char* paramName,
                                 std::uint32_t count, std::uint32_t value, std::uint32_t max,
                                 std::uint32_t ignored, int accessMode, int qualifier, int visible,
                                 const char* unit, int id, int process);
  RegisterInfo* addInfoDoubleField(RegisterInfo* parent, const char* name, const char* paramName,
                                   std::int32_t count, double value, double max, double ignored,
                                   int accessMode, int qualifier, int visible, const char* unit,
                                   int id, int process);
  /// @}

  /// Replaces the parameter name of a node of any registry by a copy of `paramName`, which may be
  /// null. Groups that stand for a group of the runtime carry its parameter name. Ignored for a
  /// null node.
  static void setParamName(RegisterInfo* node, const char* paramName);

  /// The newest root group of a process; null for an unknown or empty process.
  RegisterInfo* getRegisterInfo(int process) const;
  /// The next older root group after `node`, or the newest one for a null node; null at the end and
  /// for an unknown process.
  RegisterInfo* getNextRegisterInfo(const RegisterInfo* node, int process) const;

 private:
  struct NodeDeleter {
    void operator()(RegisterInfo* node) const noexcept;
  };
  using NodePtr = std::unique_ptr<RegisterInfo, NodeDeleter>;

  struct Process {
    RegisterInfo* newestRoot = nullptr;
    std::vector<NodePtr> nodes;
    bool finalized = false;
  };

  /// What all value nodes have in common; groups have a name and a process only.
  struct Attributes {
    RegisterInfo* parent = nullptr;
    const char* name = nullptr;
    const char* paramName = nullptr;
    int accessMode = 0;
    int qualifier = 0;
    int visible = 0;
    const char* unit = nullptr;
    int id = 0;
    int process = 0;
  };

  Process* find(int process);
  const Process* find(int process) const;
  /// The process if it accepts a node below `parent` (null: a root group), else null.
  Process* openProcess(int process, const RegisterInfo* parent);

  static NodePtr createNode(RegisterInfoKind kind, const Attributes& attributes);
  static RegisterInfo* appendChild(Process& process, RegisterInfo& parent, NodePtr node);
  static RegisterInfo* prependRoot(Process& process, NodePtr node);

  template <class Fill>
  RegisterInfo* addValueNode(RegisterInfoKind kind, const Attributes& attributes, Fill fill);

  std::vector<Process> processes_;
};

}  // namespace velmora

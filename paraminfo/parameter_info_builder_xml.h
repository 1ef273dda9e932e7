/// GenApi document of a process's parameters.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "velmora/register_info.h"

namespace velmora {

class Category;
class Fg_ParameterInfo;
struct ParameterInfoBuilderXMLPrivate;

/// Renders the description forest of one process as a GenICam GenApi register description: a
/// register and a feature per visible parameter, and a category per group that holds parameters.
/// Parameters of kinds that have no element, and those under "Direct Register Access", are left
/// out.
///
/// A builder makes one document. It only reads the registry; builders are independent.
class ParameterInfoBuilderXML {
 public:
  /// `registry` and `modelName`, which may be null, must outlive the builder.
  ParameterInfoBuilderXML(Fg_ParameterInfo& registry, const char* modelName, int process);
  virtual ~ParameterInfoBuilderXML();
  ParameterInfoBuilderXML(const ParameterInfoBuilderXML&) = delete;
  ParameterInfoBuilderXML& operator=(const ParameterInfoBuilderXML&) = delete;

  /// The complete document, without parameters if the process does not exist or is empty.
  std::string build();

 private:
  /// Renders `node`, the nodes after it in its list, and the descendants of groups.
  void processRegisterInfo(std::string& out, const RegisterInfo* node, const RegisterInfo* parent);
  /// Renders a parameter and records it as a feature of its category.
  void buildParamDescr(std::string& out, const RegisterInfo& node, const RegisterInfo* parent);
  /// Renders a category, then its children.
  void writeCategory(std::string& out, const Category& category);

  Category& categoryOf(std::string_view group);

  std::unique_ptr<ParameterInfoBuilderXMLPrivate> private_;
};

}  // namespace velmora

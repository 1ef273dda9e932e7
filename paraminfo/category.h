/// Tree of named feature lists in a GenApi document.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velmora {

/// A category: its name, its child categories and its features, both in insertion order. A category
/// owns its children; a child exists only within its parent and lives as long as it.
class Category {
 public:
  /// A category without a parent, the root of a tree.
  explicit Category(std::string name);
  Category(const Category&) = delete;
  Category& operator=(const Category&) = delete;

  const std::string& getName() const { return name_; }

  /// Appends a child category. Names may repeat.
  Category& addChild(std::string name);
  std::size_t getChildCount() const { return children_.size(); }
  /// The child at `position`, from 0; null when out of range.
  Category* getChild(std::size_t position) const;
  /// The first child with exactly this name; null when there is none.
  Category* getChild(std::string_view name) const;
  bool hasChild(std::string_view name) const { return getChild(name); }

  /// Appends a feature. Features may repeat.
  void addFeature(std::string feature);
  std::size_t getFeatureCount() const { return features_.size(); }
  /// The feature at `position`, from 0; empty when out of range.
  std::string_view getFeature(std::size_t position) const;
  /// Whether a feature with exactly this text exists.
  bool hasFeature(std::string_view feature) const;

 private:
  std::string name_;
  std::vector<std::unique_ptr<Category>> children_;
  std::vector<std::string> features_;
};

}  // namespace velmora

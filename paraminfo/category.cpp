#include "paraminfo/category.h"

#include <algorithm>
#include <utility>

namespace velmora {

Category::Category(std::string name) : name_(std::move(name)) {}

Category& Category::addChild(std::string name) {
  return *children_.emplace_back(std::make_unique<Category>(std::move(name)));
}

Category* Category::getChild(std::size_t position) const {
  return position < children_.size() ? children_[position].get() : nullptr;
}

Category* Category::getChild(std::string_view name) const {
  const auto found = std::find_if(children_.begin(), children_.end(),
                                  [&](const auto& child) { return child->name_ == name; });
  return found == children_.end() ? nullptr : found->get();
}

void Category::addFeature(std::string feature) { features_.push_back(std::move(feature)); }

std::string_view Category::getFeature(std::size_t position) const {
  return position < features_.size() ? features_[position] : std::string_view();
}

bool Category::hasFeature(std::string_view feature) const {
  return std::find(features_.begin(), features_.end(), feature) != features_.end();
}

}  // namespace velmora

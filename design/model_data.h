// What the model mapping hangs on a component: ports, generics, parameters, .model cards.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

struct ModelGeneric {
  std::string name;
  std::string defaultValue;
  std::string content;
  std::string attributeName;
  std::string attributeValue;
};

struct ModelParameter {
  std::string name;
  std::string instanceText;
  std::string declaredText;
  std::string type;
};

/// Shared by every copy of a component; filled once by the mapping at load.
struct ModelData {
  std::string modelPinList;
  bool hasModelPins = false;
  std::map<std::string, std::shared_ptr<ModelGeneric>> modelGenerics;
  std::vector<std::shared_ptr<ModelParameter>> modelParameters;
  std::map<std::string, std::string> modelCards;
};

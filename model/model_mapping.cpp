// Model mapping: the model declaration and the instance values of a component, read with libxml2.
#include "model/model_mapping.h"

#include <libxml/parser.h>
#include <libxml/xmlerror.h>
#include <strings.h>
#include <unistd.h>

#include <climits>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <unordered_map>

#include "design/platform.h"
#include "design/spice_project.h"
#include "expr/text.h"
#include "model/model_files.h"

namespace {

const char kDefaultMappingFile[] = "Sym/Models_Info.xml";
const char kInstanceMappingFile[] = "sym\\Instances_Info.xml";

// What the run knows of one mapping file: whether it exists, and its parsed document.
struct MappingFile {
  bool exists = false;
  bool parsed = false;
  xmlDocPtr doc = nullptr;
};

struct DocFree {
  void operator()(MappingFile* file) const {
    if (file->doc) xmlFreeDoc(file->doc);
    delete file;
  }
};

std::unordered_map<std::string, std::unique_ptr<MappingFile, DocFree>>& MappingFiles() {
  static std::unordered_map<std::string, std::unique_ptr<MappingFile, DocFree>> files;
  return files;
}

std::string WorkingFolder() {
  char buffer[PATH_MAX];
  return ::getcwd(buffer, sizeof buffer) ? buffer : "";
}

// The record of `fileName` as seen from the working folder, looked up once per run.
MappingFile& LookUpFile(const std::string& fileName) {
  auto& entry = MappingFiles()[WorkingFolder() + '\n' + fileName];
  if (!entry) {
    entry.reset(new MappingFile);
    entry->exists = FileExists(fileName);
  }
  return *entry;
}

void IgnoreGenericError(void*, const char*, ...) {}
void IgnoreStructuredError(void*, xmlErrorPtr) {}

void StartParser() {
  static bool started = false;
  if (started) return;
  started = true;
  xmlInitParser();
  xmlSetGenericErrorFunc(nullptr, IgnoreGenericError);
  xmlSetStructuredErrorFunc(nullptr, IgnoreStructuredError);
}

// A document that declares entities is refused: mapping files have no use for them, and
// expanding them could be made to exhaust memory.
bool DeclaresEntities(xmlDocPtr doc) {
  return (doc->intSubset && doc->intSubset->entities) || (doc->extSubset && doc->extSubset->entities);
}

xmlDocPtr ParseText(const std::string& text) {
  if (text.size() > static_cast<size_t>(INT_MAX)) return nullptr;
  StartParser();
  const int options = XML_PARSE_NONET | XML_PARSE_NOBLANKS | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
  xmlDocPtr doc = xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, options);
  if (doc && DeclaresEntities(doc)) {
    xmlFreeDoc(doc);
    return nullptr;
  }
  return doc;
}

std::string Property(xmlNodePtr node, const char* name) {
  if (!node) return "";
  xmlChar* value = xmlGetProp(node, reinterpret_cast<const xmlChar*>(name));
  if (!value) return "";
  std::string text = reinterpret_cast<const char*>(value);
  xmlFree(value);
  return text;
}

std::string Content(xmlNodePtr node) {
  if (!node) return "";
  xmlChar* value = xmlNodeGetContent(node);
  if (!value) return "";
  std::string text = reinterpret_cast<const char*>(value);
  xmlFree(value);
  return text;
}

bool IsTextNode(xmlNodePtr node) {
  return node->name && ::strcasecmp(reinterpret_cast<const char*>(node->name), "text") == 0;
}

xmlNodePtr FirstChild(xmlNodePtr node) { return node ? node->children : nullptr; }
xmlNodePtr SecondChild(xmlNodePtr node) { return node && node->children ? node->children->next : nullptr; }

// The model a component names, and its library for an HDL model ("lib.model(arch)").
struct ModelName {
  std::string model;
  std::string library;
};

ModelName ComponentModel(const SpiceComp& comp) {
  if (!comp.IsHdlModel()) return {comp.Attribute("MODEL"), ""};
  ModelName name{comp.Attribute("VHDL MODEL"), ""};
  size_t dot = name.model.find('.');
  if (dot != std::string::npos) {
    name.library = name.model.substr(0, dot);
    name.model.erase(0, dot + 1);
  }
  size_t paren = name.model.find('(');
  if (paren != std::string::npos) name.model.resize(paren);
  return name;
}

// "Type:=Value", or whichever of the two is not empty.
std::string JoinTypeAndValue(const std::string& type, const std::string& value) {
  if (!type.empty() && !value.empty()) return type + ":=" + value;
  return value.empty() ? type : value;
}

// The root element of a mapping file, or nullptr after the error line.
xmlNodePtr RootOf(const std::string& fileName) {
  xmlDocPtr doc = ParseXmlFile(fileName);
  xmlNodePtr root = doc ? xmlDocGetRootElement(doc) : nullptr;
  if (!root)
    std::cout << "Error while reading '" << fileName << "' file"
              << "\n";
  return root;
}

// The element among `first` and its siblings named by the component's qualified name, or by its name.
xmlNodePtr FindByComponentName(xmlNodePtr first, const SpiceComp& comp) {
  xmlNodePtr found = FindElementByAttribute(first, "Name", comp.QualifiedName());
  return found ? found : FindElementByAttribute(first, "Name", comp.Name());
}

// The model element of an HDL model; a stored path relative to the project matches on a second try.
xmlNodePtr FindHdlModel(xmlNodePtr first, const ModelName& target, std::string modelFile) {
  xmlNodePtr found =
      FindModelElement(first, "Name", target.model, "Library", target.library, "ModelFile", modelFile);
  if (found) return found;
  MakeRelativeToProject(modelFile);
  return FindModelElement(first, "Name", target.model, "Library", target.library, "ModelFile", modelFile);
}

void ReadPorts(xmlNodePtr portList, ModelData& data) {
  for (xmlNodePtr port = FirstChild(portList); port; port = port->next) {
    data.hasModelPins = true;
    long assigned = std::strtol(Property(port, "Assigned").c_str(), nullptr, 10);
    if (assigned != 0) data.modelPinList += Content(port->children) + " ";
  }
}

// Builds the parameter records of the declaration; true when an attribute overrides one.
bool ReadDeclaredParameters(xmlNodePtr parameterList, const SpiceComp& comp, ModelData& data) {
  bool overridden = false;
  for (xmlNodePtr element = FirstChild(parameterList); element; element = element->next) {
    auto generic = std::make_shared<ModelGeneric>();
    generic->name = Property(element, "Name");
    generic->defaultValue = Property(element, "DefValue");
    generic->content = Content(FirstChild(element));
    generic->attributeName = UpperText(Content(SecondChild(element)));
    if (!generic->attributeName.empty()) generic->attributeValue = comp.Attribute(generic->attributeName);
    if (!generic->attributeName.empty() && !generic->attributeValue.empty()) overridden = true;

    auto parameter = std::make_shared<ModelParameter>();
    parameter->name = generic->name;
    parameter->type = Property(element, "Type");
    parameter->declaredText = JoinTypeAndValue(parameter->type, generic->defaultValue);
    data.modelParameters.push_back(parameter);
    data.modelGenerics[LowerText(generic->name)] = generic;
  }
  return overridden;
}

// The model element that the mapping file declares for the component, or nullptr.
xmlNodePtr FindDeclaredModel(xmlNodePtr root, const SpiceComp& comp, const ModelName& target,
                             const std::string& modelFile) {
  xmlNodePtr part = FindElementByAttribute(root->children, "Name", comp.Attribute("PART NUMBER"));
  xmlNodePtr symbol = part ? FindByComponentName(SecondChild(part), comp) : nullptr;
  if (!symbol) return nullptr;
  if (!comp.IsHdlModel()) return FindElementByAttribute(symbol->children, "Name", target.model);
  return FindHdlModel(symbol->children, target, modelFile);
}

}  // namespace

xmlNodePtr FindElementByAttribute(xmlNodePtr node, const char* attributeName, const std::string& value) {
  for (; node; node = node->next) {
    if (IsTextNode(node)) continue;
    if (EqualsIgnoringCase(Property(node, attributeName), value)) return node;
  }
  return nullptr;
}

xmlNodePtr FindModelElement(xmlNodePtr node, const char* nameKey, const std::string& nameValue,
                            const char* libraryKey, const std::string& libraryValue, const char* fileKey,
                            const std::string& fileValue) {
  for (; node; node = node->next) {
    if (IsTextNode(node)) continue;
    std::string file = Property(node, "isOstrelCompiled") == "1" ? "" : Property(node, fileKey);
    if (EqualsIgnoringCase(Property(node, nameKey), nameValue) &&
        EqualsIgnoringCase(Property(node, libraryKey), libraryValue) && EqualsIgnoringCase(file, fileValue))
      return node;
  }
  return nullptr;
}

xmlDocPtr ParseXmlFile(const std::string& fileName) {
  MappingFile& file = LookUpFile(fileName);
  if (file.parsed) return file.doc;
  file.parsed = true;
  std::string text;
  if (ReadWholeFile(fileName, text)) file.doc = ParseText(text);
  return file.doc;
}

void ClearModelMappingCache() { MappingFiles().clear(); }

void ReadModelMapping(SpiceComp& comp) {
  std::string mappingFile = ExpandEnvironmentInPath(comp.Attribute("SIMULATION MAPPING"));
  const std::string modelFile = comp.Attribute("VHDL FILE");
  ModelName target = ComponentModel(comp);
  if (target.library.empty()) target.library = "work";

  if (!mappingFile.empty() && !LookUpFile(mappingFile).exists)
    std::cout << "Warning: Could not open Mapping file " << mappingFile << " For Component " << comp.Label()
              << "\n";
  if (mappingFile.empty()) mappingFile = kDefaultMappingFile;
  if (target.model.empty() || comp.Name().empty() || !LookUpFile(mappingFile).exists) return;

  if (comp.model) comp.model->modelPinList.clear();
  xmlNodePtr root = RootOf(mappingFile);
  if (!root) return;
  xmlNodePtr element = FindDeclaredModel(root, comp, target, modelFile);
  if (!element) return;

  const std::string modelType = Property(element, "ModType");
  ModelData& data = comp.MutableModel();
  ReadPorts(FirstChild(element), data);
  bool overridden = ReadDeclaredParameters(SecondChild(element), comp, data);
  if (!data.modelGenerics.empty()) WriteModelData(comp, modelType, target.model, overridden);
}

void ReadInstanceMapping(SpiceComp& comp) {
  const std::string modelFile = comp.Attribute("VHDL FILE");
  const ModelName target = ComponentModel(comp);
  if (target.model.empty() || comp.Name().empty() || !LookUpFile(kInstanceMappingFile).exists) return;

  xmlNodePtr root = RootOf(kInstanceMappingFile);
  if (!root) return;
  xmlNodePtr block = FindByComponentName(root->children, comp);
  xmlNodePtr instance =
      block ? FindElementByAttribute(block->children, "Name", comp.InstancePath()) : nullptr;
  xmlNodePtr element = instance ? FindHdlModel(instance->children, target, modelFile) : nullptr;
  if (!element) return;

  // A non-empty list on the instance replaces the declared list as a whole.
  xmlNodePtr parameterList = FirstChild(element);
  ModelData& data = comp.MutableModel();
  if (FirstChild(parameterList)) data.modelParameters.clear();
  for (xmlNodePtr node = FirstChild(parameterList); node; node = node->next) {
    auto parameter = std::make_shared<ModelParameter>();
    parameter->name = Property(node, "Name");
    const std::string type = Property(node, "Type");
    parameter->declaredText = JoinTypeAndValue(type, Property(node, "DefValue"));
    const std::string value = Content(FirstChild(node));
    if (!value.empty()) parameter->instanceText = JoinTypeAndValue(type, value);
    data.modelParameters.push_back(parameter);
  }
}

void MapComponentModel(SpiceComp& comp) {
  ReadModelMapping(comp);
  ReadInstanceMapping(comp);
}

// Model mapping: reads the model and instance XML files and hangs the model data on a component.
#pragma once

#include <libxml/tree.h>

#include <string>

#include "design/spice_comp.h"

/// Reads the declaration of the component's model (ports, parameters, overriding
/// attributes) from its mapping file, and writes the model's card or parameter section.
void ReadModelMapping(SpiceComp& comp);
/// Reads the parameter values set on this instance from "sym\Instances_Info.xml".
void ReadInstanceMapping(SpiceComp& comp);
/// Both stages, in order; the mapper that run/ hands to the loader for Kelpo decks.
void MapComponentModel(SpiceComp& comp);

/// The first node from `node` on through its siblings that is not named "text" and whose
/// attribute `attributeName` equals `value` ignoring case (a missing attribute reads as "").
xmlNodePtr FindElementByAttribute(xmlNodePtr node, const char* attributeName, const std::string& value);
/// As FindElementByAttribute, for three attributes at once. The file attribute of an
/// element with isOstrelCompiled="1" counts as empty.
xmlNodePtr FindModelElement(xmlNodePtr node, const char* nameKey, const std::string& nameValue,
                            const char* libraryKey, const std::string& libraryValue, const char* fileKey,
                            const std::string& fileValue);
/// The parsed document of a file, or nullptr when it does not open or is not well formed.
/// Documents are kept for the whole run (the program never writes these files); entities,
/// network access and libxml2's own error printing are off.
xmlDocPtr ParseXmlFile(const std::string& fileName);
/// Forgets the parsed documents and file lookups (tests that rewrite mapping files).
void ClearModelMappingCache();

#pragma once

// The way of this folder's files to libxml2: nothing else in src/ includes it.

#include <libxml/parser.h>
#include <libxml/tree.h>

// Some of its functions are marked deprecated by newer versions.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace vyr::xml {

inline xmlNodePtr AsNode(void* node)
{
    return static_cast<xmlNodePtr>(node);
}

inline xmlDocPtr AsDoc(void* document)
{
    return static_cast<xmlDocPtr>(document);
}

inline const xmlChar* AsName(const char* name)
{
    return reinterpret_cast<const xmlChar*>(name);
}

inline const char* AsText(const xmlChar* text)
{
    return reinterpret_cast<const char*>(text);
}

}  // namespace vyr::xml

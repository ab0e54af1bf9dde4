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

/// While it lives libxml2 reports the calling thread's errors to XmlError; afterwards to whom it did before.
/// It tells many a failed allocation in no other way.
class CErrorsToLog {
  public:
    CErrorsToLog();
    ~CErrorsToLog();
    CErrorsToLog(const CErrorsToLog&) = delete;
    CErrorsToLog& operator=(const CErrorsToLog&) = delete;

    /// Whether one of them was that memory is out: what libxml2 made may be cut then.
    bool MemoryOut() const;

  private:
    xmlGenericErrorFunc m_handler;
    void* m_context;
};

}  // namespace vyr::xml

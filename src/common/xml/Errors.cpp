#include "common/xml/Errors.h"

#include "common/XML.h"
#include "common/xml/LibXml.h"

namespace vyr::xml {

CErrorsToLog::CErrorsToLog()
{
    // The start of libxml2 is nothing for two threads at a time, and comes before its globals are looked at.
    static const bool s_started = (xmlInitParser(), true);
    static_cast<void>(s_started);
    m_handler = xmlGenericError;
    m_context = xmlGenericErrorContext;
    xmlSetGenericErrorFunc(nullptr, XmlError);
}

CErrorsToLog::~CErrorsToLog()
{
    xmlSetGenericErrorFunc(m_context, m_handler);
}

}  // namespace vyr::xml

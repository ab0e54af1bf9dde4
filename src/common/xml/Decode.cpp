#include "common/xml/Decode.h"

#include <climits>

#include "common/xml/Errors.h"
#include "common/xml/LibXml.h"

namespace vyr::xml {

bool DecodeXml(const char* encoding, const char* data, std::size_t size, std::string* out)
{
    const CErrorsToLog errors;
    xmlCharEncodingHandlerPtr decoder = xmlFindCharEncodingHandler(encoding);
    if (!decoder) {
        return false;
    }
    // It may do less than everything at a time, and stops for good before what it cannot decode.
    // A copy: for its message it reads four bytes from the wrong one on.
    const xmlBufferPtr text = xmlBufferCreate();
    const xmlBufferPtr rest = xmlBufferCreateSize(size + 4);
    if (rest) {
        xmlBufferAdd(rest, reinterpret_cast<const xmlChar*>(data), static_cast<int>(size));
    }
    for (int before = INT_MAX; text && rest && xmlBufferLength(rest) > 0 && xmlBufferLength(rest) < before;) {
        before = xmlBufferLength(rest);
        xmlCharEncInFunc(decoder, text, rest);
    }
    if (text && xmlBufferContent(text)) {
        out->assign(AsText(xmlBufferContent(text)), static_cast<std::size_t>(xmlBufferLength(text)));
    }
    xmlBufferFree(text);
    xmlBufferFree(rest);
    xmlCharEncCloseFunc(decoder);
    return true;
}

}  // namespace vyr::xml

#include "mmt/IdentifierUnit/IdentifierUnit1.h"

#include <memory>

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"

bool CIdentifierUnit1::Parse(SItem* item)
try {
    m_arrayUrl.RemoveAll();
    vyr::CBitReader reader(item);
    const unsigned int count = reader.Value(16);
    if (!reader.Valid()) {
        return false;
    }
    for (unsigned int i = 0; i < count && reader.Left() > 0; ++i) {
        const unsigned int length = reader.Value(16);
        std::unique_ptr<unsigned char, std::default_delete<unsigned char[]>> url(vyr::ReadCopy(item, length));
        if (!url) {
            return false;
        }
        m_arrayUrl.Append(std::move(url));
    }
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CIdentifierUnit1::Dump() const
{
    if (!vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
        return;
    }
    for (unsigned short i = 0; i < UrlCount(); ++i) {
        VYR_DUMP("URL [%s]", Url(i));
    }
}

const char* CIdentifierUnit1::Url(unsigned short index) const
{
    return reinterpret_cast<const char*>(m_arrayUrl.At(index));
}

#include "mmt/element/MMTElementMime.h"

#include <cstring>

#include "common/BitReader.h"
#include "common/OutOfMemory.h"
#include "platform/Log.h"

namespace {

bool BeginsWith(const vyr::CBytes& text, const char (&word)[6])
{
    return text.Length() >= 5 && std::memcmp(text.Data(), word, 5) == 0;
}

}  // namespace

bool CMMTElementMime::Parse(SItem* item)
try {
    vyr::CBitReader reader(item);
    reader.Field(8, m_length);
    if (!reader.Valid()) {
        return false;
    }
    reader.Keep(m_length, m_mimeType);
    return reader.Valid();
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTElementMime::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "MIME type [%s]", m_mimeType ? m_mimeType.Text() : "");
}

bool CMMTElementMime::IsAudio() const
{
    return BeginsWith(m_mimeType, "audio");
}

bool CMMTElementMime::IsVideo() const
{
    return BeginsWith(m_mimeType, "video");
}

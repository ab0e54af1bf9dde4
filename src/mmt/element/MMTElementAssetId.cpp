#include "mmt/element/MMTElementAssetId.h"

#include <algorithm>
#include <cstdio>

#include "common/BitReader.h"
#include "common/OutOfMemory.h"
#include "platform/Log.h"

bool CMMTElementAssetId::Parse(SItem* item)
try {
    vyr::CBitReader reader(item);
    const unsigned char* scheme = reader.Bytes(4);
    if (!scheme) {
        return false;
    }
    std::copy(scheme, scheme + m_assetIdScheme.size(), m_assetIdScheme.begin());
    reader.Field(32, m_assetIdLength);
    if (m_assetIdScheme[3] == 0 && m_assetIdLength == 16) {
        static constexpr unsigned int k_bits[] = {32, 16, 16, 8, 8, 16, 16, 16};
        unsigned int v[8];
        std::transform(std::begin(k_bits), std::end(k_bits), v,
                       [&reader](unsigned int bits) { return reader.Value(bits); });
        unsigned char* text = new unsigned char[37];
        std::snprintf(reinterpret_cast<char*>(text), 37, "%08x-%04x-%04x-%02x%02x-%04x%04x%04x", v[0], v[1], v[2], v[3],
                      v[4], v[5], v[6], v[7]);
        m_assetId.Take(text, 36);
    } else {
        reader.Keep(m_assetIdLength, m_assetId);
    }
    Dump();
    return reader.Valid();
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

void CMMTElementAssetId::Dump() const
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "asset id scheme [%02x%02x%02x%02x] length [%u] id [%s]", m_assetIdScheme[0],
            m_assetIdScheme[1], m_assetIdScheme[2], m_assetIdScheme[3], m_assetIdLength,
            m_assetId ? m_assetId.Text() : "");
}

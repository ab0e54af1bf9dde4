#include "lls/ParseLLS.h"

#include <tuple>

#include "common/OutOfMemory.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

namespace {

constexpr unsigned int k_headerSize = 4;
constexpr unsigned char k_none = 0xFF;

}  // namespace

std::atomic<bool> TCParseLLS::m_decompressLLS{true};

TCParseLLS::TCParseLLS()
    : t_parsing(false),
      m_lastTableId(k_none),
      m_lastGroupId(k_none),
      m_lastGroupCountMinus1(k_none),
      m_lastVersion(k_none),
      m_skipTableId(k_none),
      m_skipGroupId(k_none)
{
}

TCParseLLS::~TCParseLLS() = default;

void TCParseLLS::SetDecompressLLS(bool decompress)
{
    m_decompressLLS.store(decompress, std::memory_order_relaxed);
}

bool TCParseLLS::t_DecompressLLS() const
{
    return m_decompressLLS.load(std::memory_order_relaxed);
}

bool TCParseLLS::t_Idle() const
{
    return VYR_ASSERT(!t_parsing, "!m->parsing");
}

void TCParseLLS::SkipCheckVersion(unsigned char tableId, unsigned char groupId, bool skip)
{
    VYR_LOG(LOG_PRIORITY_DEBUG, "[TCParseLLS::SkipCheckVersion] TableId[%d] GroupId[%d] skip[%d]", tableId, groupId,
            skip);
    m_skipTableId = skip ? tableId : k_none;
    m_skipGroupId = skip ? groupId : k_none;
}

bool TCParseLLS::m_CheckVersion(unsigned char tableId, unsigned char groupId, unsigned char groupCountMinus1,
                                unsigned char version)
{
    VYR_LOG(LOG_PRIORITY_DEBUG,
            "[TCParseLLS::t_CheckVersion] TableId[%d] GroupId[%d] GroupCountMinus1[%d] TableVersion[%d]", m_lastTableId,
            m_lastGroupId, m_lastGroupCountMinus1, m_lastVersion);
    if (tableId != m_lastTableId || groupId != m_lastGroupId || groupCountMinus1 != m_lastGroupCountMinus1 ||
        version != m_lastVersion) {
        return true;
    }
    return (m_skipTableId != k_none && tableId == m_skipTableId) ||
           (m_skipGroupId != k_none && groupId == m_skipGroupId);
}

bool TCParseLLS::Parse(IParse::SItem* item)
{
    const vyr::CEntry entry;
    if (!VYR_ASSERT(item, "item") || !VYR_ASSERT(item->buffer, "item->buffer") || !t_Idle()) {
        return false;
    }
    const unsigned int start = item->bitpos / 8;
    if (!VYR_ASSERT(start <= item->size && item->size - start >= k_headerSize, "item->size - start >= 4")) {
        return false;
    }
    const unsigned char* p = item->buffer + start;
    const bool isNew = m_CheckVersion(p[0], p[1], p[2], p[3]);
    VYR_LOG(LOG_PRIORITY_DEBUG,
            "[TCParseLLS::Parse] TableId[%d] groupId[%d] groupCount[%d] TableVersion[%d], valid[%d]", p[0], p[1], p[2],
            p[3], isNew);
    if (!isNew) {
        return false;
    }
    // Required: remembered before the payload is parsed. One that fails is not tried again.
    auto header = std::tie(m_lastTableId, m_lastGroupId, m_lastGroupCountMinus1, m_lastVersion);
    const auto before = std::make_tuple(m_lastTableId, m_lastGroupId, m_lastGroupCountMinus1, m_lastVersion);
    header = std::tie(p[0], p[1], p[2], p[3]);
    const unsigned int size = item->size - start - k_headerSize;
    IParse::SItem payload = {p + k_headerSize, size, size * 8, 0, true};
    try {
        const vyr::CScoped<bool> parsing(t_parsing, true, false);
        t_Parse(&payload);
        return true;
    } catch (...) {
        vyr::HandleOutOfMemory(VYR_HERE);
        header = before;  // the table is taken when it comes again
        return false;
    }
}

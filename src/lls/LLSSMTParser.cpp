#include "lls/LLSSMTParser.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "common/CoreOS/PtrArray.h"
#include "common/OutOfMemory.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

namespace {

/// Bytes that are owned, and how many there are.
struct SBytes {
    std::unique_ptr<unsigned char[]> data;
    unsigned int length = 0;

    bool CopyTo(unsigned char* buffer, unsigned int room) const
    {
        if (data && buffer) {
            std::memcpy(buffer, data.get(), std::min(length, room));
        }
        return data && buffer;
    }
};

struct SSPayload {
    unsigned int tableId;
    SBytes bytes;
};

void g_CbRemovePayload(void* /*context*/, void* element)
{
    delete static_cast<SSPayload*>(element);
}

}  // namespace

struct CLLSSMTParser::SParseSMT {
    int payloadCount = 0;
    unsigned int signatureLength = 0;
    SBytes signature;
    SBytes signedBlock;
    CCPtrArray payloads{g_CbRemovePayload, nullptr};
};

CLLSSMTParser::CLLSSMTParser() : m(nullptr) {}

CLLSSMTParser::~CLLSSMTParser()
{
    VYR_ASSERT(!m, "!m");
}

bool CLLSSMTParser::Create()
{
    if (!VYR_ASSERT(!m, "!m")) {
        return false;
    }
    m = new (std::nothrow) SParseSMT;
    if (!m) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Create FAIL !!!!!]");
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Create] m[%p]", static_cast<void*>(m));
    return true;
}

void CLLSSMTParser::Destroy()
{
    if (VYR_ASSERT(m, "m")) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Destroy]");
        delete m;
        m = nullptr;
    }
}

bool CLLSSMTParser::Parse(IParse::SItem* item)
try {
    const vyr::CEntry entry;
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Parse] parse SMT");
    if (!m) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Parse] does not exist !!!");
        return false;
    }
    if (!VYR_ASSERT(item, "item") || !VYR_ASSERT(item->buffer, "item->buffer")) {
        return false;
    }
    m->payloads.RemoveAll();
    const unsigned int start = item->bitpos / 8;
    m->payloadCount = static_cast<int>(t_Value(item, 8));
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Parse] payloadcnt[%u]", static_cast<unsigned int>(m->payloadCount));
    for (int i = 0; i < m->payloadCount; ++i) {
        auto payload = std::make_unique<SSPayload>();
        payload->tableId = t_Value(item, 8);
        const unsigned int version = t_Value(item, 8);
        payload->bytes.length = t_Value(item, 16);
        payload->bytes.data.reset(t_AllocAndCopy(item, payload->bytes.length));
        if (!payload->bytes.data) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Parse] SMT ID:%d VER:%d allocation payload[%u] fail !!!",
                    static_cast<int>(payload->tableId), static_cast<int>(version), payload->bytes.length);
            return false;
        }
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Parse] SMT ID:%d VER:%d LEN:%d",
                static_cast<int>(payload->tableId), static_cast<int>(version), static_cast<int>(payload->bytes.length));
        vyr::Append(m->payloads, std::move(payload));
    }

    const unsigned int signedLength = item->bitpos / 8 - start;
    m->signatureLength = t_Value(item, 16);
    if (unsigned char* signature = t_AllocAndCopy(item, m->signatureLength)) {
        m->signature.data.reset(signature);
        m->signature.length = m->signatureLength;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Parse] signatureLength[%u]", m->signatureLength);

    item->bitpos = start * 8;
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Parse] signedBlocklength[%u] item size[%u]", signedLength, item->size);
    if (item->size - std::min(start, item->size) < signedLength) {
        return VYR_FAIL(FAILURE_SIZE, "[CLLSSMTParser::Parse] Signed Block size ERROR length[%u] item size[%u]",
                        signedLength, item->size);
    }
    if (signedLength == 0) {
        return true;
    }
    unsigned char* block = t_AllocAndCopy(item, signedLength);
    if (!block) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Parse] Signed Block t_AllocAndCopy Error");
        return false;
    }
    m->signedBlock.data.reset(block);
    m->signedBlock.length = signedLength;
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

int CLLSSMTParser::PayloadCount() const
{
    return VYR_ASSERT(m, "m") ? m->payloadCount : 0;
}

const void* CLLSSMTParser::m_Payload(int index) const
{
    if (!VYR_ASSERT(m, "m")) {
        return nullptr;
    }
    if (m->payloads.Size() == 0) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::GetPayload] No SMT payload");
        return nullptr;
    }
    void* smtPayload = nullptr;
    m->payloads.GetAt(index, &smtPayload);
    VYR_ASSERT(smtPayload, "smtPayload");
    return smtPayload;
}

bool CLLSSMTParser::GetPayloadLength(int index, unsigned int& length) const
{
    const auto* payload = static_cast<const SSPayload*>(m_Payload(index));
    if (payload) {
        length = payload->bytes.length;
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::GetPayload] index[%d], length[%u]", index, length);
    }
    return payload != nullptr;
}

bool CLLSSMTParser::GetPayload(int index, unsigned int& tableId, unsigned char* buffer) const
{
    const auto* payload = static_cast<const SSPayload*>(m_Payload(index));
    if (payload) {
        tableId = payload->tableId;
        payload->bytes.CopyTo(buffer, payload->bytes.length);
    }
    return payload != nullptr;
}

bool CLLSSMTParser::GetSignatureLength(unsigned int& length) const
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    length = m->signatureLength;
    return true;
}

bool CLLSSMTParser::GetSignatureData(unsigned char* buffer) const
{
    return VYR_ASSERT(m, "m") && m->signature.CopyTo(buffer, m->signatureLength);
}

bool CLLSSMTParser::GetSignedBlockLength(unsigned int& length) const
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    length = m->signedBlock.length;
    return true;
}

bool CLLSSMTParser::GetSignedBlock(unsigned char* buffer) const
{
    return VYR_ASSERT(m, "m") && m->signedBlock.CopyTo(buffer, m->signedBlock.length);
}

#include "lls/LLSSMTParser.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "common/BitReader.h"
#include "common/OutOfMemory.h"
#include "common/Owned.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

namespace {

/// One table of the multi-table.
struct SPayload {
    unsigned int tableId = 0;
    vyr::CBytes bytes;
};

const SPayload* Payload(const TPtrArray<SPayload>& payloads, int index, VYR_CALLER)
{
    if (payloads.Size() == 0) {
        if (vyr::LogEnabled(LOG_PRIORITY_DEBUG)) {
            vyr::Print(LOG_PRIORITY_DEBUG, here, "[CLLSSMTParser::GetPayload] No SMT payload");
        }
        return nullptr;
    }
    const SPayload* smtPayload = payloads.Get(index);
    if (!smtPayload) {
        vyr::AssertFailed(here, "smtPayload");
    }
    return smtPayload;
}

bool CopyTo(unsigned char* buffer, unsigned int room, const vyr::CBytes& bytes)
{
    if (bytes && buffer) {
        std::memcpy(buffer, bytes.Data(), std::min(bytes.Length(), room));
    }
    return bytes && buffer;
}

}  // namespace

struct CLLSSMTParser::SParseSMT {
    int payloadCount = 0;
    unsigned int signatureLength = 0;
    vyr::CBytes signature;
    vyr::CBytes signedBlock;
    TPtrArray<SPayload> payloads;
};

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
    vyr::CBitReader reader(item);
    m->payloads.RemoveAll();
    const unsigned int start = item->bitpos / 8;
    reader.Field(8, m->payloadCount);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Parse] payloadcnt[%u]", static_cast<unsigned int>(m->payloadCount));
    for (int i = 0; i < m->payloadCount; ++i) {
        auto payload = std::make_unique<SPayload>();
        reader.Field(8, payload->tableId);
        const unsigned int version = reader.Value(8);
        const unsigned int length = reader.Value(16);
        if (!reader.Keep(length, payload->bytes)) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Parse] SMT ID:%d VER:%d allocation payload[%u] fail !!!",
                    static_cast<int>(payload->tableId), static_cast<int>(version), length);
            return false;
        }
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Parse] SMT ID:%d VER:%d LEN:%d",
                static_cast<int>(payload->tableId), static_cast<int>(version), static_cast<int>(length));
        m->payloads.Append(std::move(payload));
    }

    const unsigned int signedLength = item->bitpos / 8 - start;
    reader.Field(16, m->signatureLength);
    if (vyr::CBytes signature; reader.Keep(m->signatureLength, signature)) {
        m->signature = std::move(signature);
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
    vyr::CBytes block;
    if (!reader.Keep(signedLength, block)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::Parse] Signed Block t_AllocAndCopy Error");
        return false;
    }
    m->signedBlock = std::move(block);
    return true;
} catch (...) {
    return vyr::OutOfMemory(VYR_HERE);
}

int CLLSSMTParser::PayloadCount() const
{
    return VYR_ASSERT(m, "m") ? m->payloadCount : 0;
}

bool CLLSSMTParser::GetPayloadLength(int index, unsigned int& length) const
{
    const SPayload* payload = VYR_ASSERT(m, "m") ? Payload(m->payloads, index) : nullptr;
    if (payload) {
        length = payload->bytes.Length();
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CLLSSMTParser::GetPayload] index[%d], length[%u]", index, length);
    }
    return payload != nullptr;
}

bool CLLSSMTParser::GetPayload(int index, unsigned int& tableId, unsigned char* buffer) const
{
    const SPayload* payload = VYR_ASSERT(m, "m") ? Payload(m->payloads, index) : nullptr;
    if (payload) {
        tableId = payload->tableId;
        CopyTo(buffer, payload->bytes.Length(), payload->bytes);
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
    return VYR_ASSERT(m, "m") && CopyTo(buffer, m->signatureLength, m->signature);
}

bool CLLSSMTParser::GetSignedBlockLength(unsigned int& length) const
{
    if (!VYR_ASSERT(m, "m")) {
        return false;
    }
    length = m->signedBlock.Length();
    return true;
}

bool CLLSSMTParser::GetSignedBlock(unsigned char* buffer) const
{
    return VYR_ASSERT(m, "m") && CopyTo(buffer, m->signedBlock.Length(), m->signedBlock);
}

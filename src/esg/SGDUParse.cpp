#include "esg/SGDUParse.h"

#include <climits>
#include <functional>
#include <utility>

#include "common/BitReader.h"
#include "common/Inflate.h"
#include "common/State.h"
#include "esg/ESGContentFragment.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "esg/GenreAsking.h"
#include "platform/FailureKeeping.h"
#include "platform/Log.h"

CSGDUParse::CSGDUParse() : m(nullptr) {}

CSGDUParse::~CSGDUParse()
{
    VYR_ASSERT(!m, "!m");
}

bool CSGDUParse::Create()
{
    if (!vyr::CreateState(m)) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_INFO, "create SGDU");
    return true;
}

void CSGDUParse::Destroy()
{
    if (VYR_ASSERT(m, "m")) {
        delete m;
        m = nullptr;
        VYR_LOG(LOG_PRIORITY_INFO, "destroy SGDU");
    }
}

void CSGDUParse::SetCompress(bool compressed)
{
    if (VYR_ASSERT(m, "m")) {
        m->compress = compressed;
    }
}

void CSGDUParse::SetInflateLimit(unsigned int bytes)
{
    if (VYR_ASSERT(m, "m")) {
        m->inflateLimit = bytes;
    }
}

void CSGDUParse::SetReplace(bool replace)
{
    if (VYR_ASSERT(m, "m")) {
        m->replace = replace;
    }
}

bool CSGDUParse::Parse(IParse::SItem* item)
{
    const vyr::CEntry entry;
    if (!VYR_ASSERT(m, "m") || !VYR_ASSERT(item, "item") || !VYR_ASSERT(item->buffer, "item->buffer")) {
        return false;
    }
    const vyr::CGenreAsking asking;
    // With `replace` the unit is parsed into nothing, and what was held comes back when that fails.
    SSGDUParse held;
    const auto swap = [this, &held] {
        if (m->replace) {
            std::swap(m->extensionOffset, held.extensionOffset);
            std::swap(m->reserved, held.reserved);
            std::swap(m->nOServiceGuideFragments, held.nOServiceGuideFragments);
            m->arrayHead.swap(held.arrayHead);
            m->arrayFragment.swap(held.arrayFragment);
        }
    };
    swap();
    const std::size_t heads = m->arrayHead.size();
    const std::size_t fragments = m->arrayFragment.size();
    bool parsed = false;
    try {
        parsed = m_Parse(item);
    } catch (...) {
        // Half a unit would shift the entries of the next.
        m->arrayHead.resize(heads);
        m->arrayFragment.resize(fragments);
        swap();
        return vyr::OutOfMemory(VYR_HERE);
    }
    if (!parsed) {
        swap();
    }
    return parsed;
}

bool CSGDUParse::m_Parse(IParse::SItem* item)
{
    if (m->compress && !m_ExtractData(item)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "[CSGDUParse::Parse] Extra Data failed ");
        return false;
    }
    vyr::CBitReader reader(item);
    reader.Field(32, m->extensionOffset);
    reader.Field(16, m->reserved);
    reader.Field(24, m->nOServiceGuideFragments);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSGDUParse::Parse] extensionOffset=%u", m->extensionOffset);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSGDUParse::Parse] reserved=%u", m->reserved);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSGDUParse::Parse] nOServiceGuideFragments=%u", m->nOServiceGuideFragments);
    if (!item->valid) {
        return false;
    }
    const unsigned int count = m->nOServiceGuideFragments;
    for (unsigned int i = 0; i < count; ++i) {
        if (!t_ProcessServiceGuide(item)) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CSGDUParse::Parse] t_ProcessServiceGuide -return false ");
            return false;
        }
    }
    for (unsigned int i = 0; i < count; ++i) {
        if (!m_ProcessFragmentSGDU(item, i, i + 1 == count)) {
            return false;
        }
    }
    return true;
}

bool CSGDUParse::t_ProcessServiceGuide(IParse::SItem* item)
{
    auto head = std::make_unique<SFragmentHead>();
    vyr::CBitReader reader(item);
    reader.Field(32, head->fragmentTransportID);
    reader.Field(32, head->fragmentVersion);
    reader.Field(32, head->fragmentOffset);
    if (reader.Valid()) {
        m->arrayHead.push_back(std::move(head));
    }
    return reader.Valid();
}

/// Reads the fragment `index` of the unit; false: the unit cannot be read any further.
bool CSGDUParse::m_ProcessFragmentSGDU(IParse::SItem* item, unsigned int index, bool last)
{
    auto frag = std::make_unique<SFragmentSGDU>();
    vyr::CBitReader reader(item);
    reader.Field(8, frag->fragmentEncoding);
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSGDUParse::Parse] p_frag->fragmentEncoding =%u", frag->fragmentEncoding);
    if (frag->fragmentEncoding == 0) {
        reader.Field(8, frag->fragmentType);
        frag->length = reader.Left();
        bool fits = frag->length > 0;
        if (!last) {
            // Required: the entries are counted from the first one ever read.
            const unsigned int a = m->arrayHead[index]->fragmentOffset;
            const unsigned int b = m->arrayHead[index + 1]->fragmentOffset;
            fits = a + 2 < b;
            frag->length = b - a - 2;
        }
        if (fits) {
            frag->data.reset(vyr::ReadCopy(item, frag->length));
        }
        if (!frag->data) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CSGDUParse::Parse] invalid offset -a[%d] ", static_cast<int>(index));
            return false;
        }
        frag->fragment =
            t_ProcessFragment(frag->fragmentType, reinterpret_cast<const char*>(frag->data.get()), frag->length);
        if (!frag->fragment) {
            VYR_LOG(LOG_PRIORITY_DEBUG, "[CSGDUParse::Parse] 0 = p_xmlfrag - parse failed-a[%d] ",
                    static_cast<int>(index));
            return true;
        }
    }
    if (!item->valid) {
        return false;
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "[CSGDUParse::Parse] m->arrayFragment.push_back() -a[%d] ", static_cast<int>(index));
    m->arrayFragment.push_back(std::move(frag));
    return true;
}

TOwned<CESGFragmentBase> CSGDUParse::t_ProcessFragment(int fragmentType, const char* data, unsigned int length)
{
    std::unique_ptr<CESGFragmentBase> fresh;
    switch (fragmentType) {
        case 1:
            fresh = std::make_unique<CESGServiceFragment>();
            break;
        case 2:
            fresh = std::make_unique<CESGContentFragment>();
            break;
        case 3:
            fresh = std::make_unique<CESGScheduleFragment>();
            break;
        default:
            VYR_LOG(LOG_PRIORITY_DEBUG, "invalid fragment type");
            return nullptr;
    }
    if (!fresh->Create()) {
        return nullptr;
    }
    TOwned<CESGFragmentBase> fragment(fresh.release());
    if (!fragment->Parse(data, length)) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "new failure");
        return nullptr;
    }
    return fragment;
}

/// Whether the address is one of the block's bytes or its end; null: of no block.
static bool PointsInto(const unsigned char* address, const char* block, std::size_t size)
{
    const auto* begin = reinterpret_cast<const unsigned char*>(block);
    return begin && !std::less<>()(address, begin) && !std::less<>()(begin + size, address);
}

/// What an item without bytes points to.
static const unsigned char k_nothing = 0;

/// Points the item to the inflated unit; false: it does not inflate.
bool CSGDUParse::m_ExtractData(IParse::SItem* item)
{
    vyr::SInflated inflated;
    const char* failed = nullptr;
    if (vyr::HasGzipMagic(item->buffer, item->size)) {
        failed = vyr::InflateBySteps(item->buffer, item->size, m->inflateLimit, inflated);
    } else {
        inflated.data = std::make_unique<char[]>(0);  // required: it is empty, however much there is
    }
    // The item may still point to what an earlier call inflated.
    const std::unique_ptr<char[]> old = std::exchange(m->extracted, nullptr);
    const std::size_t oldSize = std::exchange(m->extractedSize, 0);
    if (failed) {
        VYR_LOG(LOG_PRIORITY_DEBUG, "%s", failed);
        if (PointsInto(item->buffer, old.get(), oldSize)) {
            *item = {&k_nothing, 0, 0, 0, false};
        }
        return false;
    }
    m->extracted = std::move(inflated.data);
    m->extractedSize = inflated.size;
    item->buffer = m->extracted ? reinterpret_cast<const unsigned char*>(m->extracted.get()) : &k_nothing;
    item->size = static_cast<unsigned int>(inflated.size);
    // A cursor that counts bits reaches no further.
    item->bitsize = item->size > UINT_MAX / 8 ? UINT_MAX : item->size * 8;
    return true;
}

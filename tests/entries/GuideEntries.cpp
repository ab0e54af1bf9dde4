#include "entries/Entries.h"
#include "esg/ESGContentFragment.h"
#include "esg/ESGScheduleFragment.h"
#include "esg/ESGServiceFragment.h"
#include "esg/SGDUParse.h"
#include "esg/SGResponse.h"

namespace {

template <class TFragment>
SEntryKind FragmentKind(const std::string& seed)
{
    return DocumentKind<TFragment>(seed, 1,
                                   [](const TFragment& fragment) { return TextOf(fragment.State()->id.get()); });
}

std::string Digest(const CSGDDParse& sgdd)
{
    const auto& entries = sgdd.State()->descriptorEntries;
    return TextOf(sgdd.State()->id.get()) +
           (entries.empty() ? "" : std::to_string(entries.back()->State()->deliveryUnits.size()));
}

std::string Digest(const CSGResponse& response)
{
    const auto& descriptors = response.State()->descriptors;
    return (descriptors.empty() ? "" : Digest(*descriptors.back())) + TextOf(response.State()->privateExt.get());
}

std::string Digest(const CSGDUParse& unit)
{
    const auto& all = unit.State()->arrayFragment;
    return all.empty() ? "" : TextOf(reinterpret_cast<const char*>(all.back()->data.get()));
}

/// A fragment that does not parse is dropped.
SEntryKind UnitKind(const std::string& seed)
{
    const auto parse = [](CSGDUParse& unit, TBytes& bytes) {
        unit.SetCompress(!bytes.empty() && bytes[0] == '\x1F');
        return FeedItem(unit, bytes);
    };
    return EntryKind<CSGDUParse>(seed, 1, CreatePlainly<CSGDUParse>, parse, Digest, true);
}

}  // namespace

TEntryKinds GuideEntries()
{
    return {UnitKind("esg_sgdu/gzip"),
            UnitKind("esg_sgdu/whole-fragments"),
            FragmentKind<CESGServiceFragment>("esg_documents/service"),
            FragmentKind<CESGContentFragment>("esg_documents/content"),
            FragmentKind<CESGScheduleFragment>("esg_documents/schedule"),
            DocumentKind<CSGDDParse>("esg_documents/sgdd", 1, Digest),
            DocumentKind<CSGResponse>("esg_documents/response", 1, Digest)};
}

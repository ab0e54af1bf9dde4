// MMT tables in a row, as a PA message carries them.
// Sources: src/mmt/table src/mmt/element src/mmt/IdentifierUnit src/mmt/Elements.h
#include <memory>

#include "MmtWalk.h"
#include "Mutate.h"
#include "mmt/table/MMTTblFactory.h"

namespace {

/// Reaches the flat records.
struct CRecords : CMMTTblSi {
    static void Touch(CMMTTblMp& mp)
    {
        for (int i = 0; i < mp.AssetCount(); ++i) {
            SIdentifier identifier = {};
            if (t_GetIdentifier(&identifier, mp.Asset(i)->Identifier())) {
                ::Touch(identifier.identifier.assetId, std::string_view(identifier.identifier.assetId).size());
            }
            delete[] identifier.identifier.assetId;
        }
    }
};

}  // namespace

VYR_MUTATOR(MutateBinary)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<unsigned char> bytes(data, data + size);
    SetLogging(size > 1 && data[1] & 1);
    const unsigned int length = static_cast<unsigned int>(size);
    IParse::SItem item = {bytes.data(), length, length * 8, 0, true};
    g_mayAssert = size == 0;
    for (bool parsed = true; parsed;) {
        const unsigned int begin = item.bitpos;
        const std::unique_ptr<CMMTTbl> table(CMMTTblFactory::GenerateTbl(&item));
        Require(item.bitpos == begin);
        parsed = table && table->Parse(&item);
        if (parsed) {
            auto* mp = dynamic_cast<CMMTTblMp*>(table.get());
            // Required: an MP table that is cut in front of its assets is taken as one without.
            Require(item.valid ? item.bitpos > begin && item.bitpos % 8 == 0 && item.bitpos / 8 <= size
                               : mp && mp->AssetCount() == 0);
            Touch(*table);
            if (mp) {
                CRecords::Touch(*mp);
            }
            parsed = item.valid;
        }
        if (table) {
            // What failed, and a second parse of the same object, must be safe to have and to free.
            table->Dump();
            TouchDescriptors(*table);
            g_mayAssert = true;
            IParse::SItem again = {bytes.data(), length, length * 8, begin, true};
            table->Parse(&again);
            table->Process();
            table->Dump();
            TouchDescriptors(*table);
            g_mayAssert = false;
        }
    }
    return 0;
}

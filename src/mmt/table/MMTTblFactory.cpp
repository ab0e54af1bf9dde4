#include "mmt/table/MMTTblFactory.h"

#include "common/OutOfMemory.h"
#include "mmt/Elements.h"
#include "mmt/table/MMTTblCri.h"
#include "mmt/table/MMTTblDci.h"
#include "mmt/table/MMTTblMp.h"
#include "mmt/table/MMTTblMpi.h"
#include "mmt/table/MMTTblPa.h"
#include "mmt/table/MMTTblSi.h"
#include "platform/Log.h"

namespace {

constexpr struct {
    unsigned int first;
    unsigned int last;
    CMMTTbl* (*make)();
} k_tables[] = {{CMMTTblPa::k_tableId, CMMTTblPa::k_tableId, vyr::New<CMMTTbl, CMMTTblPa>},
                {CMMTTblMpi::k_tableId, CMMTTblMpi::k_lastTableId, vyr::New<CMMTTbl, CMMTTblMpi>},
                {CMMTTblMp::k_tableId, CMMTTblMp::k_lastTableId, vyr::New<CMMTTbl, CMMTTblMp>},
                {CMMTTblCri::k_tableId, CMMTTblCri::k_tableId, vyr::New<CMMTTbl, CMMTTblCri>},
                {CMMTTblDci::k_tableId, CMMTTblDci::k_tableId, vyr::New<CMMTTbl, CMMTTblDci>},
                {CMMTTblSi::k_tableId, CMMTTblSi::k_tableId, vyr::New<CMMTTbl, CMMTTblSi>}};

}  // namespace

CMMTTbl* CMMTTblFactory::GenerateTbl(IParse::SItem* item)
try {
    if (!VYR_ASSERT_AT(24, item, "item") || !VYR_ASSERT(item->buffer, "item->buffer") || vyr::BytesLeft(*item) == 0) {
        return nullptr;
    }
    const unsigned int id = item->buffer[item->bitpos / 8];
    for (const auto& row : k_tables) {
        if (id >= row.first && id <= row.last) {
            return row.make();
        }
    }
    VYR_LOG(LOG_PRIORITY_DEBUG, "invalid table id[0x%x]", id);
    return nullptr;
} catch (...) {
    return vyr::OutOfMemory<CMMTTbl*>(VYR_HERE);
}

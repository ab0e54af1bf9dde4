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

CMMTTbl* CMMTTblFactory::GenerateTbl(IParse::SItem* item)
try {
    if (!VYR_ASSERT_AT(24, item, "item") || !VYR_ASSERT(item->buffer, "item->buffer") || vyr::BytesLeft(*item) == 0) {
        return nullptr;
    }
    const unsigned int id = item->buffer[item->bitpos / 8];
    if (id == 0) {
        return new CMMTTblPa;
    }
    if (id <= 0x10) {
        return new CMMTTblMpi;
    }
    if (id <= 0x20) {
        return new CMMTTblMp;
    }
    switch (id) {
        case 0x21:
            return new CMMTTblCri;
        case 0x22:
            return new CMMTTblDci;
        case 0x23:
            return new CMMTTblSi;
        default:
            VYR_LOG(LOG_PRIORITY_DEBUG, "invalid table id[0x%x]", id);
            return nullptr;
    }
} catch (...) {
    return vyr::OutOfMemory<CMMTTbl*>(VYR_HERE);
}

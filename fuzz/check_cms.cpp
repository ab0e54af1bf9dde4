// Separation of the signed-data element from a table.
// Sources: src/lls/ParseLLSCMS.cpp
#include <string>

#include "Fuzz.h"
#include "lls/ParseLLS.h"
#include "platform/Platform.h"

namespace {

class CTable : public TCParseLLS {
  public:
    void Destroy() override {}
    bool t_Parse(IParse::SItem*) override { return true; }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    const std::vector<unsigned char> table(data, data + size);
    CTable parser;
    std::string xml = "x";
    std::string cms = "c";
    if (parser.CheckCMS(table.data(), static_cast<int>(table.size()), xml, cms)) {
        Require(cms.size() > 30 && cms.compare(cms.size() - 14, 14, "</CMSSignedDat") == 0);
        Require(xml.size() + cms.size() < 524288);
    } else {
        Require(xml == "x" && cms == "c");
    }
    return 0;
}

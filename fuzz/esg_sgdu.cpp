// Delivery units of the service guide: bit 0 of the first byte announces gzip, bit 1 sets a limit on what
// comes out, and what follows are up to four units in a row on one parser.
// Sources: src/esg/SGDUParse.cpp src/esg/ESGFragmentBase.cpp src/common/Inflate.cpp
#include "esg/SGDUParse.h"

#include "Fuzz.h"
#include "Mutate.h"
#include "platform/Platform.h"

namespace {

/// The units read so far: every fragment is what its type says, and nothing is kept without its bytes.
void Read(const CSGDUParse::SSGDUParse& state, std::size_t bytes)
{
    Require(state.arrayHead.size() * 12 <= bytes);
    for (const auto& fragment : state.arrayFragment) {
        Require((fragment->fragment != nullptr) == (fragment->fragmentEncoding == 0));
        Require((fragment->data != nullptr) == (fragment->fragmentEncoding == 0));
        Require(!fragment->fragment || (fragment->fragmentType >= 1 && fragment->fragmentType <= 3));
        Require(!fragment->data || (fragment->length > 0 && fragment->data[fragment->length] == 0));
    }
}

}  // namespace

VYR_MUTATOR(MutateUnit)

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    SetFileRoot("/nowhere");
    CScript script(data, size);
    const std::uint8_t flags = script.Byte();
    CSGDUParse sgdu;
    sgdu.Create();
    sgdu.SetCompress((flags & 1) != 0);
    sgdu.SetInflateLimit((flags & 2) != 0 ? 100000 : 0);
    std::size_t bytes = 0;
    ForEachPart(script.Rest(), 4, [&](const std::vector<unsigned char>& unit) {
        const unsigned int length = static_cast<unsigned int>(unit.size());
        IParse::SItem item = {unit.data(), length, length * 8, 0, true};
        sgdu.Parse(&item);
        Require((flags & 2) == 0 || (flags & 1) == 0 || !item.valid || item.size <= 100000 ||
                item.buffer == unit.data());
        bytes += item.size;
        Read(*sgdu.State(), bytes);
    });
    sgdu.Destroy();
    return 0;
}

#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "common/Parse.h"
#include "mmt/desc/MMTDescCri.h"
#include "support/MmtWriter.h"
#include "support/Recorder.h"

/// Gives bytes to a parser in a heap block of exactly their size, and tells where the cursor ended.
struct SFed {
    SFed(IParse& parser, const std::string& bytes) : block(Exact(bytes))
    {
        const unsigned int size = static_cast<unsigned int>(block.size());
        block.reserve(1);
        item = {block.data(), size, size * 8, 0, true};
        result = parser.Parse(&item);
    }

    unsigned int Cursor() const { return item.bitpos / 8; }

    std::vector<unsigned char> block;
    IParse::SItem item;
    bool result;
};

/// A clock relation descriptor.
inline std::string MmtCri(unsigned int clock)
{
    return CMmtBuilder().Put(16, 0).Open(16).Put(8, clock).Put(6, 0).Put(42, 7).Put(64, 8).Close().Bytes();
}

/// A descriptor that no class reads.
inline std::string MmtUnknown()
{
    return CMmtBuilder().Put(16, 0x8001).Open(16).Put("??").Close().Bytes();
}

/// asset_id.
inline std::string MmtAssetId(const std::string& id)
{
    return CMmtBuilder().Put("urn ").Open(32).Put(id).Close().Bytes();
}

/// A table of version 3.
inline std::string MmtTable(unsigned int id, const std::string& body)
{
    return CMmtBuilder().Put(8, id).Put(8, 3).Open(16).Put(body).Close().Bytes();
}

/// A message of version 7 with a length of `bits` bits.
inline std::string MmtMessage(unsigned int id, unsigned int bits, const std::string& payload)
{
    return CMmtBuilder().Put(16, id).Put(8, 7).Open(bits).Put(payload).Close().Bytes();
}

/// An MP table of three assets: "a1" with everything; one with two URLs and a clock without timescale; one with
/// nothing. Ids 0x11 and 0x20 have a package id and table descriptors. The clocks of its descriptors are 1 and 2;
/// 3 stands behind an unknown one.
inline std::string MmtMpTable(unsigned int id)
{
    CMmtBuilder b;
    b.Put(6, 0x3F).Put(2, 2);
    if (id == 0x11 || id == 0x20) {
        b.Open(8).Put("pkg").Close().Open(16).Put(MmtCri(1)).Close();
    }
    b.Put(8, 3);
    b.Put(8, 0).Put(MmtAssetId("a1")).Put("hev1").Put(6, 0x3F).Put(2, 3).Put(8, 9).Put(7, 0).Put(1, 1).Put(32, 90000);
    b.Put(8, 2).Put(8, 0).Put(16, 0x1001).Put(8, 1).Put(64, 5).Put(16, 5000).Put(16, 0x1002);
    b.Open(16).Put(MmtCri(2) + MmtUnknown() + MmtCri(3)).Close();
    b.Put(8, 1).Put(16, 2).Open(16).Put("u1").Close().Open(16).Put("url2").Close().Put("mp4a").Put(8, 0xFD);
    b.Put(8, 8).Put(8, 0xFE).Put(8, 0).Put(16, 0);
    b.Put(8, 0).Put(MmtAssetId("")).Put("stpp").Put(8, 0xFC).Put(8, 0).Put(16, 0);
    return MmtTable(id, b.Bytes());
}

/// An MPI table of two contents, the second empty; the clocks of its descriptors are 4 and 5.
inline std::string MmtMpiTable(unsigned int id)
{
    CMmtBuilder b;
    b.Put(4, 0xF).Put(2, 1).Put(2, 3).Open(16).Put(MmtCri(4)).Close().Put(8, 2);
    b.Open(8).Put("text/html").Close().Open(8).Put("a").Close().Open(16).Put(MmtCri(5) + MmtUnknown()).Close();
    b.Open(16).Put("<html/>").Close().Put(8, 0).Put(8, 0).Put(16, 0).Put(16, 0);
    return MmtTable(id, b.Bytes());
}

/// A PA table of four entries; the second to fourth have alternative locations, and one of the second and
/// fourth has a type that is not reported.
inline std::string MmtPaTable()
{
    CMmtBuilder b;
    b.Put(8, 4);
    b.Put(8, 0x20).Put(8, 1).Put(8, 0).Put(16, 0x101).Put(8, 0xFE);
    b.Put(8, 0x21).Put(8, 2).Put(8, 7).Put(8, 0xFF).Put(8, 0).Put(16, 0x102);
    b.Put(8, 0x22).Put(8, 3).Put(8, 0).Put(16, 0x103).Put(8, 0xFF).Put(8, 1).Put(64, 5).Put(16, 9).Put(16, 0x104);
    b.Put(8, 0x23).Put(8, 4).Put(8, 0).Put(16, 0x105).Put(8, 1).Put(8, 8).Put(16, 0x8100);
    b.Put(7, 0).Put(1, 1);
    return MmtTable(0, b.Bytes());
}

/// The clocks of all descriptors that `owner` hands out.
template <class TOwner>
std::string MmtClocks(TOwner& owner)
{
    std::string clocks;
    owner.GetDescriptors(
        [](void* user, CMMTDesc* descriptor) {
            *static_cast<std::string*>(user) +=
                std::to_string(static_cast<CMMTDescCri*>(descriptor)->ClockRelationId()) + " ";
        },
        &clocks);
    return clocks;
}

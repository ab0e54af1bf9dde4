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

/// A descriptor, its length as it comes.
inline std::string MmtDesc(unsigned int tag, const std::string& payload)
{
    return CMmtBuilder().Put(16, tag).Open(16).Put(payload).Close().Bytes();
}

/// An H.265 profile of 88 bits.
inline void MmtPutProfile(CMmtBuilder& b, unsigned int idc)
{
    b.Put(2, 1).Put(1, 1).Put(5, idc).Put(32, 0x60000000).Put(4, 0xA).Put(44, 0x80000000001);
}

/// An asset id behind its length.
inline CMmtBuilder MmtCountedId(const std::string& id)
{
    return CMmtBuilder().Open(32).Put(id).Close();
}

/// Video stream properties of two assets, A with every group and B with the least of each.
inline std::string MmtVideo()
{
    CMmtBuilder b;
    b.Put(8, 2).Put(MmtCountedId("A").Bytes()).Put("hev1").Put(8, 0xFE);
    b.Put(6, 2).Put(1, 1).Put(1, 1).Put(3, 5).Put(3, 1).Put(2, 2);
    b.Put(6, 33).Put(2, 3);
    b.Put(6, 9).Put(6, 10).Put(4, 15).Put(11, 1025).Put(11, 1026).Put(2, 3);
    b.Put(16, 3840).Put(16, 2160).Put(2, 3).Put(1, 1).Put(3, 0).Put(1, 0).Put(1, 1).Put(4, 2).Put(4, 3);
    b.Put(8, 255).Put(16, 5994).Put(8, 6);
    b.Put(16, 100).Put(16, 200).Put(16, 300).Put(16, 400);
    b.Put(8, 9).Put(8, 16).Put(8, 10).Put(8, 0x80).Put(1, 1).Put(15, 1).Put("eo");
    MmtPutProfile(b, 2);
    b.Put(8, 153).Put(2, 3).Put(14, 0);
    MmtPutProfile(b, 2);
    b.Put(8, 120);
    // Groups whose conditional fields are not there.
    b.Put(MmtCountedId("B").Bytes()).Put("avc1").Put(8, 0x12);
    b.Put(16, 1).Put(16, 2).Put(2, 1).Put(4, 15).Put(1, 1).Put(1, 0).Put(4, 0).Put(4, 1);
    b.Put(8, 8).Put(8, 16).Put(8, 1).Put(8, 0x7F);
    MmtPutProfile(b, 2);
    return b.Put(8, 90).Bytes();
}

/// Audio stream properties of two assets, likewise.
inline std::string MmtAudio()
{
    CMmtBuilder b;
    b.Put(8, 2).Put(MmtCountedId("A").Bytes()).Put("ac-4").Put(8, 2).Put(8, 0xC0);
    b.Put(8, 1).Put(8, 0xFF).Put(24, 70000).Put(24, 80000).Put(8, 3);
    b.Put(8, 1).Open(8).Put("en").Close().Open(8).Put("es").Close();
    b.Put(8, 4).Put(8, 5).Put(8, 6).Open(8).Put("Main").Close().Put(8, 2).Put(8, 7).Put(8, 8);
    b.Put(8, 2).Put(8, 0x42).Put(8, 9).Put(8, 10).Put(8, 11).Put(8, 0);
    b.Put(8, 0x81).Put(8, 0x82).Put(8, 0x82).Put(8, 0x83).Put(8, 4);
    b.Put(8, 0xC0).Put(32, 1000).Put(6, 0).Put(10, 999).Put(32, 2000).Put(6, 63).Put(10, 1);
    return b.Put(MmtCountedId("B").Bytes())
        .Put("mhm1")
        .Put(8, 0)
        .Put(8, 0x40)
        .Put(8, 0x40)
        .Put(32, 3000)
        .Put(16, 5)
        .Bytes();
}

/// Dumps at a priority at which nothing of it is shown.
template <class T>
void DumpUnseen(const T& object)
{
    const std::size_t lines = CRecorder::s_log.size();
    SetLogPriority(LOG_PRIORITY_ERROR);
    object.Dump();
    SetLogPriority(LOG_PRIORITY_DEBUG);
    EXPECT_EQ(CRecorder::s_log.size(), lines);
}

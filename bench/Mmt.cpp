// MMT messages, each made by the factory, parsed, asked for its descriptors and let go of. The floor is one
// pass over the same bytes that adds up the fields and keeps nothing.
#include <benchmark/benchmark.h>

#include "Bench.h"
#include "mmt/desc/MMTDesc.h"
#include "mmt/msg/MMTMsgFactory.h"
#include "support/MmtWriter.h"

namespace {

const std::string k_assetId = "5f3a9c1e-video-main-0001";

std::string Cri()
{
    return CMmtBuilder().Put(16, 0).Open(16).Put(8, 1).Put(6, 0).Put(42, 7).Put(64, 8).Close().Bytes();
}

std::string Timestamp()
{
    return CMmtBuilder().Put(16, 1).Open(16).Put(32, 77).Put(64, 0xE8A1B2C3D4E5F607).Close().Bytes();
}

std::string Dependency()
{
    return CMmtBuilder().Put(16, 2).Open(16).Put(8, 1).Put("urn ").Open(32).Put(k_assetId).Close().Close().Bytes();
}

std::string MpTable(int assets)
{
    CMmtBuilder b;
    b.Put(8, 0x20).Put(8, 1).Open(16).Put(6, 0x3F).Put(2, 0).Open(8).Put("package").Close().Put(16, 0);
    b.Put(8, static_cast<unsigned int>(assets));
    for (int i = 0; i < assets; ++i) {
        b.Put(8, 0).Put("urn ").Open(32).Put(k_assetId).Close().Put("hev1").Put(6, 0x3F).Put(2, 3);
        b.Put(8, 1).Put(7, 0).Put(1, 1).Put(32, 90000);
        b.Put(8, 1)
            .Put(8, 1)
            .Put(32, 0xC000020A)
            .Put(32, 0xEFFF0701)
            .Put(16, 5000)
            .Put(16, 0x100u + static_cast<unsigned int>(i % 100));
        b.Open(16).Put(Cri() + Timestamp() + Dependency()).Close();
    }
    return b.Close().Bytes();
}

std::string MptMessage(int assets)
{
    return CMmtBuilder().Put(16, 0x20).Put(8, 1).Open(16).Put(MpTable(assets)).Close().Bytes();
}

/// A PA table of two entries, an MPI table with one content, and an MP table of two assets.
std::string PaMessage()
{
    CMmtBuilder pa;
    pa.Put(8, 0).Put(8, 1).Open(16).Put(8, 2);
    for (const unsigned int id : {0x01u, 0x20u}) {
        pa.Put(8, id).Put(8, 1).Put(8, 0).Put(16, 0x100).Put(7, 0x7F).Put(1, 1).Put(8, 0).Put(16, 0x101);
    }
    pa.Put(8, 0).Close();
    CMmtBuilder mpi;
    mpi.Put(8, 1).Put(8, 1).Open(16).Put(8, 0).Open(16).Put(Cri()).Close().Put(8, 1);
    mpi.Open(8).Put("application/dash+xml").Close().Open(8).Put("live.mpd").Close().Put(16, 0);
    mpi.Open(16).Put(std::string(1500, 'm')).Close().Close();
    CMmtBuilder message;
    message.Put(16, 0).Put(8, 1).Open(32).Put(8, 3);
    const std::string tables[] = {pa.Bytes(), mpi.Bytes(), MpTable(2)};
    for (const std::string& table : tables) {
        message.Put(table.substr(0, 4));
    }
    for (const std::string& table : tables) {
        message.Put(table);
    }
    return message.Close().Bytes();
}

std::string AtscMessage()
{
    std::string mpd;
    for (int i = 0; i < 60; ++i) {
        mpd += "<Representation id=\"" + std::to_string(i) + "\" codecs=\"hvc1.2.4.L123.B0\" width=\"1920\"/>\n";
    }
    CMmtBuilder b;
    b.Put(16, 0x8100).Put(8, 1).Open(32).Put(16, 1001).Put(16, 2).Put(8, 1).Put(8, 2).Open(8).Put("live.mpd").Close();
    return b.Open(32).Put(Gzip(mpd)).Close().Close().Bytes();
}

void Parse(const std::string& bytes)
{
    const auto* data = reinterpret_cast<const unsigned char*>(bytes.data());
    const unsigned int size = static_cast<unsigned int>(bytes.size());
    const std::shared_ptr<CMMTMsg> message = CMMTMsgFactory::CreateMessage(data, size);
    IParse::SItem item = {data, size, size * 8, 0, true};
    unsigned int sum = message->Parse(&item) ? 1 : 0;
    message->Process();
    message->GetDescriptors(
        [](void* user, CMMTDesc* descriptor) { *static_cast<unsigned int*>(user) += descriptor->Tag(); }, &sum);
    benchmark::DoNotOptimize(sum);
}

/// A cursor that adds up what it passes.
struct SPass {
    const unsigned char* at;
    std::uint64_t sum = 0;

    explicit SPass(const std::string& bytes) : at(reinterpret_cast<const unsigned char*>(bytes.data())) {}

    unsigned int Field(unsigned int bytes)
    {
        unsigned int value = 0;
        for (; bytes > 0; --bytes) {
            value = value << 8 | *at++;
        }
        sum += value;
        return value;
    }

    void Bytes(unsigned int count)
    {
        for (; count > 0; --count) {
            sum += *at++;
        }
    }

    void Location()
    {
        if (Field(1) == 1) {
            Bytes(10);
        }
        Field(2);
    }

    void MpTable()
    {
        Field(4);
        Field(1);
        Bytes(Field(1));
        Bytes(Field(2));
        for (unsigned int assets = Field(1); assets > 0; --assets) {
            Field(1);
            Field(4);
            Bytes(Field(4));
            Field(4);
            Field(1);
            Field(1);
            Field(1);
            Field(4);
            for (unsigned int locations = Field(1); locations > 0; --locations) {
                Location();
            }
            for (unsigned int left = Field(2); left > 0;) {
                Field(2);
                const unsigned int length = Field(2);
                Bytes(length);
                left -= length + 4;
            }
        }
    }
};

void PassMpt(const std::string& bytes)
{
    SPass pass(bytes);
    pass.Bytes(5);
    pass.MpTable();
    benchmark::DoNotOptimize(pass.sum);
}

void PassPa(const std::string& bytes)
{
    SPass pass(bytes);
    pass.Bytes(7);
    pass.Bytes(4 * pass.Field(1));
    pass.Field(4);
    for (unsigned int entries = pass.Field(1); entries > 0; --entries) {
        pass.Field(2);
        pass.Location();
        pass.Field(1);
        pass.Location();
    }
    pass.Field(1);
    pass.Bytes(5);
    pass.Bytes(pass.Field(2));
    pass.Field(1);
    pass.Bytes(pass.Field(1));
    pass.Bytes(pass.Field(1));
    pass.Bytes(pass.Field(2));
    pass.Bytes(pass.Field(2));
    pass.MpTable();
    benchmark::DoNotOptimize(pass.sum);
}

void PassAtsc(const std::string& bytes)
{
    SPass pass(bytes);
    pass.Bytes(13);
    pass.Bytes(pass.Field(1));
    const unsigned int length = pass.Field(4);
    pass.sum += Inflated(std::string(reinterpret_cast<const char*>(pass.at), length));
    benchmark::DoNotOptimize(pass.sum);
}

const bool g_registered = [] {
    Register("pa/floor/3", PassPa, PaMessage());
    Register("pa/parse/3", Parse, PaMessage());
    for (const int assets : {1, 10, 100}) {
        Register("mpt/floor/" + std::to_string(assets), PassMpt, MptMessage(assets));
        Register("mpt/parse/" + std::to_string(assets), Parse, MptMessage(assets));
    }
    Register("atsc3/floor/gzip", PassAtsc, AtscMessage());
    Register("atsc3/parse/gzip", Parse, AtscMessage());
    return true;
}();

}  // namespace

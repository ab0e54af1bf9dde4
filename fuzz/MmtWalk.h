#pragma once

#include <cstdarg>
#include <cstdio>
#include <string>
#include <string_view>

#include "Fuzz.h"
#include "mmt/IdentifierUnit/IdentifierUnit0.h"
#include "mmt/IdentifierUnit/IdentifierUnit1.h"
#include "mmt/IdentifierUnit/IdentifierUnit2.h"
#include "mmt/IdentifierUnit/IdentifierUnit3.h"
#include "mmt/IdentifierUnit/IdentifierUnitPriv.h"
#include "mmt/desc/MMTDesc.h"
#include "mmt/table/MMTTblCri.h"
#include "mmt/table/MMTTblDci.h"
#include "mmt/table/MMTTblMp.h"
#include "mmt/table/MMTTblMpi.h"
#include "mmt/table/MMTTblPa.h"
#include "mmt/table/MMTTblSi.h"
#include "platform/BaseParser.h"
#include "platform/Platform.h"

// Reads whatever the MMT tables give, for the fuzz targets of tables and messages.

/// Whether an assertion ends the run: bytes off the air are no misuse.
inline bool g_mayAssert = false;

extern "C" inline __attribute__((used)) void _TCParserAssert(const char* expression, const char* file, unsigned line)
{
    if (!g_mayAssert) {
        std::fprintf(stderr, "asserted: %s, %s:%u\n", expression, file, line);
        std::abort();
    }
}

/// Formats messages when `on`, so that dumps are read too; else there are none.
inline void SetLogging(bool on)
{
    const SPlatform platform = {[](int, const char*, const char* format, va_list arguments) {
                                    char text[512];
                                    std::vsnprintf(text, sizeof text, format, arguments);
                                },
                                [](const char*, int*) { return false; }};
    SetPlatform(&platform);
    SetLogPriority(on ? LOG_PRIORITY_DEBUG : LOG_PRIORITY_SILENT);
}

/// Reads every byte.
inline void Touch(const void* data, std::size_t size)
{
    static volatile unsigned char s_sum;
    for (std::size_t i = 0; i < size; ++i) {
        s_sum = static_cast<unsigned char>(s_sum + static_cast<const unsigned char*>(data)[i]);
    }
}

/// Reads every byte and the zero behind them.
inline void TouchText(const char* text, std::size_t size)
{
    Require(text && text[size] == 0);
    Touch(text, size);
}

inline void Touch(CMMTDesc* descriptor)
{
    Require(descriptor && descriptor->Tag() != 0xFFFF);
    descriptor->Dump();
}

template <class TOwner>
void TouchDescriptors(TOwner& owner)
{
    int count = 0;
    owner.GetDescriptors(
        [](void* user, CMMTDesc* descriptor) {
            Touch(descriptor);
            ++*static_cast<int*>(user);
        },
        &count);
    Require(count >= 0);
}

inline void Touch(const CMMTElementAssetId& id)
{
    Touch(id.AssetIdScheme(), 4);
    TouchText(id.AssetId(), id.AssetIdTextLength());
}

inline void Touch(const CMMTElementLocation& location)
{
    const CLocationUnitBase* unit = location.Location();
    Require(unit && location.LocationType() <= 0x0C);
    unsigned int word = 0;
    unsigned short half = 0;
    unsigned short address[8] = {};
    std::string text;
    const int answers = unit->GetPacketId(&word) + unit->GetDstPort(&half) + unit->GetNetworkId(&half) +
                        unit->GetMPEG2TsId(&half) + unit->GetMPEG2PID(&half) + unit->GetMsgId(&half) +
                        unit->GetIpv4SrcAddr(&word) + unit->GetIpv4DstAddr(&word) + unit->GetIpv6SrcAddr(address) +
                        unit->GetIpv6DstAddr(address) + unit->GetUrl(text) + unit->GetPrivateLocationInfo(text);
    Require((answers == 0) == (location.LocationType() == 7));
}

inline void Touch(const CMMTElementIdentifierMapping& mapping)
{
    const CIdentifierUnitBase* unit = mapping.Identifier();
    switch (mapping.IdentifierType()) {
        case 0:
            Touch(*dynamic_cast<const CIdentifierUnit0&>(*unit).AssetId());
            break;
        case 1: {
            const auto& urls = dynamic_cast<const CIdentifierUnit1&>(*unit);
            for (unsigned short i = 0; i < urls.UrlCount(); ++i) {
                Touch(urls.Url(i), std::string_view(urls.Url(i)).size());
            }
            break;
        }
        case 2: {
            const auto& regex = dynamic_cast<const CIdentifierUnit2&>(*unit);
            TouchText(regex.Regex(), regex.RegexLength());
            break;
        }
        case 3: {
            const auto& id = dynamic_cast<const CIdentifierUnit3&>(*unit);
            TouchText(id.RepresentationId(), id.RepresentationIdLength());
            break;
        }
        default: {
            const auto& bytes = dynamic_cast<const CIdentifierUnitPriv&>(*unit);
            TouchText(bytes.Private(), bytes.PrivateLength());
            break;
        }
    }
}

inline void Touch(CMMTTblMpAsset& asset)
{
    Touch(*asset.Identifier());
    Touch(asset.AssetType(), 4);
    Require(asset.AssetClockRelationFlag() || !asset.AssetTimeScaleFlag());
    Require(asset.AssetTimeScaleFlag() || asset.AssetTimeScale() == 0);
    for (unsigned char i = 0; i < asset.LocationCount(); ++i) {
        Touch(*asset.Location(i));
    }
    for (unsigned int i = 0; i < asset.AssetDescriptorSize(); ++i) {
        Touch(asset.AssetDescriptor(i));
    }
    Require(!asset.AssetDescriptor(asset.AssetDescriptorSize()));
    TouchDescriptors(asset);
}

inline void Touch(CMMTTblMp& mp)
{
    if (mp.PackageId()) {
        TouchText(mp.PackageId(), mp.PackageIdLength());
    }
    for (int i = 0; i < mp.DescriptorCount(); ++i) {
        Touch(mp.Descriptor(i));
    }
    for (int i = 0; i < mp.AssetCount(); ++i) {
        Touch(*mp.Asset(i));
    }
}

inline void Touch(CMMTTblMpi& mpi)
{
    for (int i = 0; i < mpi.DescriptorCount(); ++i) {
        Touch(mpi.Descriptor(i));
    }
    for (unsigned short i = 0; i < mpi.PiContentCount(); ++i) {
        CMMTTblMpiContent& content = *mpi.PiContent(i);
        TouchText(content.PiContentType(), content.PiContentTypeLen());
        TouchText(content.PiContentName(), content.PiContentNameLen());
        TouchText(content.PiContent(), content.PiContentLen());
        for (int k = 0; k < content.DescriptorCount(); ++k) {
            Touch(content.Descriptor(k));
        }
    }
}

inline void Touch(CMMTTblPa& pa)
{
    static int s_told;
    s_told = 0;
    int both = 0;
    for (int i = 0; i < pa.InfoCount(); ++i) {
        CMMTTblPaInfo& info = *pa.Info(i);
        Touch(*info.Location());
        Require((info.Flag() == 1) == (info.AlternativeLocation()->Location() != nullptr));
        if (info.Flag()) {
            Touch(*info.AlternativeLocation());
            both += info.Location()->LocationType() < 2 && info.AlternativeLocation()->LocationType() < 2;
        }
    }
    const CMMTTblPa::SCallback callback = {
        nullptr, [](void*, unsigned char, unsigned char, SLocationInfo* location, SLocationInfo* alternative) {
            Require(location->locationType < 2 && alternative->locationType < 2);
            ++s_told;
        }};
    pa.SetCallback(&callback);
    Require(pa.Process() && s_told == both);
    pa.SetCallback(nullptr);
}

inline void Touch(CMMTTblDci& dci)
{
    for (int i = 0; i < dci.AssetCount(); ++i) {
        const CMMTTblDci::SAsset& asset = *dci.Asset(i);
        Touch(asset.assetId);
        TouchText(asset.mimeType.MimeType(), asset.mimeType.MimeTypeLength());
        Require(!asset.requiredStorage || !asset.averageBitrate);
    }
}

template <class TTable>
void TouchDescriptorTable(TTable& table)
{
    for (int i = 0; i < table.DescriptorCount(); ++i) {
        Touch(table.Descriptor(i));
    }
}

/// Everything of a table that parsed.
inline void Touch(CMMTTbl& table)
{
    table.Dump();
    table.Process();
    TouchDescriptors(table);
    if (auto* bounded = dynamic_cast<CMMTTblPayload*>(&table)) {
        Require(bounded->PayloadLength() == table.Length());
        Touch(bounded->Payload(), bounded->PayloadLength());
    }
    switch (table.ClassType()) {
        case CMMTTbl::CLASS_TYPE_PA:
            Touch(dynamic_cast<CMMTTblPa&>(table));
            break;
        case CMMTTbl::CLASS_TYPE_MPI:
            Touch(dynamic_cast<CMMTTblMpi&>(table));
            break;
        case CMMTTbl::CLASS_TYPE_MP:
            Touch(dynamic_cast<CMMTTblMp&>(table));
            break;
        case CMMTTbl::CLASS_TYPE_CRI:
            TouchDescriptorTable(dynamic_cast<CMMTTblCri&>(table));
            break;
        case CMMTTbl::CLASS_TYPE_DCI:
            Touch(dynamic_cast<CMMTTblDci&>(table));
            break;
        default:
            TouchDescriptorTable(dynamic_cast<CMMTTblSi&>(table));
            break;
    }
}

#include "Inspector.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <memory>
#include <stdexcept>
#include <vector>

#include "Broadcast.h"
#include "base/Gunzip.h"
#include "base/Text.h"
#include "content/Genres.h"
#include "content/LibraryPort.h"
#include "content/LlsTables.h"
#include "content/MessageHead.h"
#include "content/Roots.h"
#include "follow/MessageFollower.h"
#include "follow/SlsFollower.h"
#include "judge/Judge.h"
#include "wire/LinkLayer.h"
#include "wire/Live.h"

namespace vyr::inspect {

namespace {

/// Of what begins like an LLS table of id 2 (RRT): whether it is a message that fits the file, and no table
/// that parses.
bool IsMessageAndNoTable(SView bytes)
{
    if (!IsMessageFile(bytes)) {
        return false;
    }
    const bool table = ParseTable({bytes[0], bytes[1], bytes[2], bytes[3]}, bytes).content.has_value();
    TakeAssertions();
    return !table;
}

STime Now()
{
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return {now.tv_sec, static_cast<std::int32_t>(now.tv_nsec)};
}

/// Of a text that is nothing which is read by itself.
std::string WhatItIs(SView bytes)
{
    std::vector<unsigned char> inflated;
    if (Gunzip(bytes, CSlsFollower::k_maxPackage, inflated)) {
        bytes = {inflated.data(), inflated.size()};
    }
    const std::string known = KnownDocument(bytes).text;
    const std::string root = RootElement(bytes);
    return !known.empty() ? known : k_unknown + (root.empty() ? "" : ": its root element is " + Quoted(root));
}

}  // namespace

CInspector::CInspector(const SOptions& options, CReport& report, const COutput& output, CProgress& progress)
    : m_options(options), m_report(report), m_output(output), m_progress(progress)
{
    InstallPlatform(options.log, options.settings);
    TCParseLLS::SetDecompressLLS(true);
    m_rules = m_options.rules;
    m_rules.verifier = &m_verifier;
    if (const std::string wrong = options.trust.empty() ? std::string() : m_verifier.ReadRoots(options.trust);
        !wrong.empty()) {
        throw std::runtime_error(Printable(options.trust) + ": " + wrong);
    }
    m_channelMap.Create();
    if (const std::string wrong = options.genres.empty() ? std::string() : ReadGenres(options.genres); !wrong.empty()) {
        m_channelMap.Destroy();
        throw std::runtime_error(Printable(options.genres) + ": " + wrong);
    }
}

CInspector::~CInspector()
{
    m_channelMap.Destroy();
}

EExitStatus CInspector::Run()
{
    for (const std::string& name : m_options.inputs) {
        ++m_report.Summary().inputs;
        m_report.Begin();
        try {
            m_Inspect(name);
        } catch (const CInputError& error) {
            m_progress.Clear();
            if (IsInputRule(error.Code())) {
                std::fprintf(stderr, "vyr-atsc30-inspect: %s: %s\n", Printable(name).c_str(), error.what());
            }
            m_failed = m_failed || error.Code() <= ERule::INPUT_DIRECTORY;
            m_report.Finding({error.Code(), error.what(), {name, 0, {}}});
        }
        if (m_output.Ended() || CInput::Stopped()) {
            break;
        }
    }
    m_report.Finish();
    m_progress.Clear();
    return m_failed ? EXIT_FAILED : m_report.Summary().From(m_options.failOn) != 0 ? EXIT_FINDINGS : EXIT_FINE;
}

void CInspector::m_Inspect(const std::string& name)
{
    if (!m_options.live.interface.empty()) {
        m_Live(name);
        return;
    }
    CInput input(name);
    m_report.Received(input.Bytes().size);  // none of a capture
    CJudge judge(m_report, name, input.IsCapture(), m_rules);
    if (input.IsCapture()) {
        ++m_report.Summary().captures;
        m_Capture(input, name, judge);
        return;
    }
    if (input.IsText()) {
        if (!m_GuideFile(input.Bytes(), name)) {
            m_SlsFile(input.Bytes(), name);
        }
    } else if (input.IsBinary() || IsMessageAndNoTable(input.Bytes())) {
        if (!m_GuideFile(input.Bytes(), name)) {
            m_MessageFile(input.Bytes(), name);
        }
    } else {
        ++m_report.Summary().rawTables;
        m_RawTable(input.Bytes(), name);
    }
    judge.Finish({}, false, nullptr);
}

void CInspector::m_Capture(CInput& input, const std::string& name, CJudge& judge)
{
    RequireKnownLinkType(input.LinkType());
    CBroadcast* receiver = nullptr;
    CPacketDecoder decoder(input.LinkType(), [&](const SDatagram& datagram) { receiver->Take(datagram); });
    CBroadcast broadcast(m_options, name, m_channelMap, m_report, judge, [&] { return SReception{decoder.Counts()}; });
    receiver = &broadcast;
    const auto finish = [&](bool told) {
        decoder.Finish();
        broadcast.Finish(told && !m_output.Ended());
    };
    SPacket packet;
    try {
        while (!m_output.Ended() && input.Next(packet)) {
            if (broadcast.Next(packet.time)) {
                m_report.Received(packet.bytes.size);
                decoder.Decode(packet.bytes, packet.cut, packet.time);
            }
            m_progress.Show(name, broadcast.Packets());
        }
    } catch (const CInputError& error) {
        finish(broadcast.Packets() != 0);
        throw CInputError(error.Code(), "behind packet " + std::to_string(broadcast.Packets()) + ": " + error.what());
    }
    finish(true);
}

/// Until it is interrupted, or has received enough.
void CInspector::m_Live(const std::string& name)
{
    const SLiveOptions& options = m_options.live;
    CJudge judge(m_report, name, true, m_rules);
    std::unique_ptr<CLive> live;
    CBroadcast broadcast(m_options, name, m_channelMap, m_report, judge, [&] { return live->Reception(); });
    bool taken = false;
    const SLiveSink sink = {[&](const STime& time, std::size_t bytes) {
                                taken = broadcast.Next(time);
                                m_report.Received(taken ? bytes : 0);
                            },
                            [&](const SDatagram& datagram) {
                                if (taken) {
                                    broadcast.Take(datagram);
                                }
                            },
                            [&](const std::string& message) {
                                m_report.Finding({ERule::NOT_JOINED, message, {name, 0, {}}});
                            }};
    live =
        options.join ? JoinGroups(options.interface, sink) : CaptureInterface(options.interface, options.filter, sink);
    ++m_report.Summary().interfaces;
    const auto begin = std::chrono::steady_clock::now();
    const std::uint64_t most = options.packets.value_or(~std::uint64_t{0});
    const auto goesOn = [&] {
        const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
        return !m_output.Ended() && !CInput::Stopped() && broadcast.Packets() < most &&
               (!options.seconds || passed.count() < *options.seconds);
    };
    const auto finish = [&] {
        live->Finish();
        broadcast.Finish(!m_output.Ended());
    };
    try {
        while (goesOn()) {
            live->Want(broadcast.Now(Now()));
            live->Receive(most - broadcast.Packets());
            m_progress.ShowNow(name, broadcast.Packets());
        }
    } catch (const CInputError& error) {
        finish();
        throw CInputError(error.Code(), "behind packet " + std::to_string(broadcast.Packets()) + ": " + error.what());
    }
    finish();
}

void CInspector::m_RawTable(SView table, const std::string& name)
{
    CLlsFollower follower("", !m_options.strict, m_channelMap, m_report);
    follower.Take(table, {name, 0, {}});
    m_report.Summary().services += follower.Services();
}

/// False: it is nothing of the guide.
bool CInspector::m_GuideFile(SView bytes, const std::string& name)
{
    CGuideFollower guide(m_report);
    if (!guide.Take({}, bytes, {name, 0, {}})) {
        return false;
    }
    ++m_report.Summary().guideFiles;
    guide.Finish(name);
    return true;
}

void CInspector::m_SlsFile(SView bytes, const std::string& name)
{
    const SFollowed followed;
    CSlsFollower follower(followed, m_report);
    if (!follower.Take({}, bytes, {name, 0, {}})) {
        throw CInputError(ERule::INPUT_UNKNOWN, WhatItIs(bytes));
    }
    ++m_report.Summary().slsFiles;
}

void CInspector::m_MessageFile(SView bytes, const std::string& name)
{
    if (!IsMessageFile(bytes)) {
        throw CInputError(ERule::INPUT_UNKNOWN, k_unknown);
    }
    const SFollowed followed;
    CMessageFollower follower(followed, m_report);
    follower.Take({}, bytes, {name, 0, {}});
    ++m_report.Summary().rawMessages;
}

}  // namespace vyr::inspect

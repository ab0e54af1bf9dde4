#include "follow/MessageFollower.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "MmtCaptures.h"

namespace {

using namespace vyr::inspect;
using packets::MmtAtsc3;
using packets::MmtSigned;
using packets::Number;

class CStatusWriter : public IReportWriter {
  public:
    void Table(const STable&) override {}
    void Signalling(const SSignalling&) override {}
    void Message(const SMessage& message) override { statuses.push_back(message.status); }
    void Finding(const SFinding&) override {}
    void GuideObject(const SGuideObject&) override {}
    void Guide(const SGuide&) override {}
    void Summary(const SSummary&) override {}

    std::vector<EStatus> statuses;
};

struct SRun {
    CStatusWriter writer;
    CReport report{writer, false};
    SFollowed followed;
    CMessageFollower follower{followed, report};

    /// What is new about the message; repeats are not told to the writer.
    EStatus Take(std::uint16_t packetId, const std::string& message)
    {
        const std::vector<unsigned char> block(message.begin(), message.end());
        const std::size_t before = writer.statuses.size();
        follower.Take(packetId, {block.data(), block.size()}, {});
        return writer.statuses.size() == before ? EStatus::REPEATED : writer.statuses.back();
    }
};

std::string Versioned(std::string message, char version)
{
    message[2] = version;
    return message;
}

TEST(MessageFollower, WhatMakesAMessageAnother)
{
    const std::string mpt = MmtMessage(0x20, 16, MmtMpTable(0x20));
    const std::string changed = MmtMessage(0x20, 16, MmtMpTable(0x20) + "?");
    std::string otherPackage = MmtMpTable(0x20);
    otherPackage[6] = 'q';
    const std::string signedMpt = MmtMessage(0x8101, 32, MmtSigned(mpt));
    const auto atsc = [](unsigned type, const std::string& content, unsigned version = 1) {
        return MmtMessage(0x8100, 32, MmtAtsc3(type, content, version));
    };
    const std::string uri = MmtMessage(0x8100, 32, Number(1, 2) + Number(3, 2) + "\1\1\1u" + Number(1, 4) + "a");
    const std::string otherUri = MmtMessage(0x8100, 32, Number(1, 2) + Number(3, 2) + "\1\1\1U" + Number(1, 4) + "a");
    const struct {
        const char* name;
        std::string first;
        std::string second;
        EStatus status;
        std::uint16_t packetId = 7;
    } cases[] = {
        {"the same", mpt, mpt, EStatus::REPEATED},
        {"bytes behind it", mpt, mpt + "??", EStatus::REPEATED},
        {"another packet id", mpt, mpt, EStatus::NEW, 8},
        {"another message id", mpt, MmtMessage(0x11, 16, MmtMpTable(0x20)), EStatus::NEW},
        {"a new version", mpt, Versioned(mpt, 8), EStatus::NEW_VERSION_SAME_CONTENT},
        {"a new content", mpt, changed, EStatus::CHANGED_WITHOUT_VERSION},
        {"both", mpt, Versioned(changed, 8), EStatus::CHANGED},
        {"another content type", atsc(3, "a"), atsc(4, "a"), EStatus::NEW},
        {"a new content version", atsc(3, "a"), atsc(3, "a", 2), EStatus::NEW_VERSION_SAME_CONTENT},
        {"and content", atsc(3, "a"), atsc(3, "b", 2), EStatus::CHANGED},
        {"content alone", atsc(3, "a"), atsc(3, "b"), EStatus::CHANGED_WITHOUT_VERSION},
        {"another compression", atsc(3, "a"), MmtMessage(0x8100, 32, MmtAtsc3(3, "a", 1, 2)),
         EStatus::CHANGED_WITHOUT_VERSION},
        {"another URI", uri, otherUri, EStatus::NEW},
        {"another service", uri, MmtMessage(0x8100, 32, Number(2, 2) + uri.substr(9)), EStatus::NEW},
        {"another package", mpt, MmtMessage(0x20, 16, otherPackage), EStatus::NEW},
        {"another signature", signedMpt, MmtMessage(0x8101, 32, MmtSigned(mpt, "other")), EStatus::REPEATED},
        {"signed: another version", signedMpt, MmtMessage(0x8101, 32, MmtSigned(Versioned(mpt, 8))),
         EStatus::NEW_VERSION_SAME_CONTENT},
        {"signed: another content", signedMpt, MmtMessage(0x8101, 32, MmtSigned(changed)),
         EStatus::CHANGED_WITHOUT_VERSION},
        {"signed: another message", signedMpt, MmtMessage(0x8101, 32, MmtSigned(atsc(3, "a"))), EStatus::NEW},
        {"signed, and not", signedMpt, mpt, EStatus::NEW},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        SRun run;
        EXPECT_EQ(run.Take(7, test.first), EStatus::NEW);
        EXPECT_EQ(run.Take(test.packetId, test.second), test.status);
        for (std::size_t size = 0; size < test.first.size(); ++size) {
            run.Take(9, test.first.substr(0, size));
        }
    }
}

TEST(MessageFollower, RemembersABoundedNumber)
{
    SRun run;
    const std::string message = MmtMessage(0x203, 16, "?");
    for (std::uint16_t packetId = 0; packetId <= 256; ++packetId) {
        EXPECT_EQ(run.Take(packetId, message), EStatus::NEW);
    }
    EXPECT_EQ(run.Take(1, message), EStatus::REPEATED);
    EXPECT_EQ(run.Take(0, message), EStatus::NEW) << "the oldest is forgotten";
    EXPECT_FALSE(run.follower.Signals());
}

}  // namespace

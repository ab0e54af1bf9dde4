#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "GuideObjects.h"
#include "Inspector.h"
#include "Markup.h"
#include "MmtCaptures.h"
#include "Tool.h"
#include "report/HtmlReport.h"
#include "report/JsonReport.h"
#include "report/TextReport.h"

namespace {

using namespace packets;
using namespace vyr::inspect;

/// A file that is only in memory.
class CMemoryFile {
  public:
    CMemoryFile() : m_file(memfd_create("vyr", MFD_CLOEXEC)) {}
    ~CMemoryFile() { close(m_file); }
    CMemoryFile(const CMemoryFile&) = delete;
    CMemoryFile& operator=(const CMemoryFile&) = delete;
    int File() const { return m_file; }
    std::string Name() const { return "/proc/self/fd/" + std::to_string(m_file); }
    void Set(const std::string& bytes) const
    {
        EXPECT_EQ(ftruncate(m_file, 0), 0);
        EXPECT_EQ(pwrite(m_file, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
        EXPECT_EQ(lseek(m_file, 0, SEEK_SET), 0);
    }
    std::string Take() const
    {
        std::string bytes(static_cast<std::size_t>(lseek(m_file, 0, SEEK_END)), 0);
        EXPECT_EQ(pread(m_file, bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
        Set({});
        return bytes;
    }

  private:
    int m_file;
};

/// A standard stream that goes to a file while this lives.
class CDiverted {
  public:
    CDiverted(int stream, int file) : m_stream(stream), m_kept(dup(stream)) { dup2(file, stream); }
    ~CDiverted()
    {
        dup2(m_kept, m_stream);
        close(m_kept);
    }
    CDiverted(const CDiverted&) = delete;
    CDiverted& operator=(const CDiverted&) = delete;

  private:
    int m_stream, m_kept;
};

/// What the inspector says of a capture, in this process, and its page unless that is null.
std::string Report(const std::string& capture, bool json, std::string* page)
{
    static const CMemoryFile s_in, s_out, s_error;
    s_in.Set(capture);
    SOptions options;
    options.inputs = {s_in.Name()};
    options.llsStreams = {{k_lls, 4937}};
    CProgress progress(false);
    COutput output(progress);
    CTextReport text(output, false);
    CJsonReport lines(output);
    CHtmlReport html(false, {"", 0});
    CReport report(json ? static_cast<IReportWriter&>(lines) : text, false,
                   page != nullptr ? std::vector<IReportWriter*>{&html} : std::vector<IReportWriter*>());
    {
        const CDiverted out(STDOUT_FILENO, s_out.File()), error(STDERR_FILENO, s_error.File());
        CInspector(options, report, output, progress).Run();
    }
    if (page != nullptr) {
        *page = html.Page();
    }
    return s_out.Take();
}

/// A service list, signalling of ROUTE and MMT and a guide, one packet cut in two.
std::string SmallCapture()
{
    const std::string list = MmtService(1, 6001, 1) + MmtService(2, 6002);
    const std::string stsid =
        "<S-TSID><RS><LS tsi='9'><SrcFlow rt='false'><EFDT><FDT-Instance Content-Type='application/vnd.oma.bcast.sgdu'>"
        "<File TOI='1'/></FDT-Instance></EFDT></SrcFlow></LS></RS></S-TSID>\n";
    const std::string unit = guide::Unit({{1, guide::k_service2}, {2, "<Content id='c' version='1'/>"}});
    CCapture capture(1);
    capture.AddLls(Slt(list, 1)).AddLls(std::string("\3\0\0\1", 4) + Gzip("<SystemTime currentUtcOffset='37'/>"));
    capture.AddSession(Lct({1, 0, static_cast<int>(stsid.size())}, stsid), 6001);
    capture.AddSession(Lct({1, 0, -1, true, 9}, unit), 6001);
    const std::string message = Udp(Mmtp({}, MmtMessage(0, 32, Number(1, 1) + Number(0, 4) + MmtPaTable())), 6002);
    SIpv4 part;
    part.destination = k_session;
    part.flagsAndOffset = 0x2000;
    capture.Add(Ethernet(Ipv4(message.substr(0, 24), part)));
    part.flagsAndOffset = 3;
    capture.Add(Ethernet(Ipv4(message.substr(24), part), {0x8100, 0x0800}));
    return capture.Bytes();
}

/// Every prefix of a capture, and eight values at every place of it: each is reported in whole lines, elements that
/// are closed, and leaves nothing behind.
TEST(EveryByte, OfACaptureIsReportedWhateverItIs)
{
    const std::string capture = SmallCapture();
    std::string page;
    const auto whole = [&] { return Report(capture, true, nullptr) + Report(capture, false, &page) + page; };
    const std::string good = whole();
    for (const char* known : {"SLT", "SystemTime", "S-TSID", "PA table", "Movies"}) {
        EXPECT_NE(good.find(known), std::string::npos) << known;
    }
    unsigned turn = 0;
    const auto report = [&](const std::string& input) {
        const bool json = ++turn % 8 == 0;
        const bool paged = turn % 16 == 0;
        std::istringstream said(Report(input, json, paged ? &page : nullptr));
        for (std::string line; json && std::getline(said, line);) {
            EXPECT_TRUE(nlohmann::json::accept(line)) << line;
        }
        EXPECT_EQ(paged ? MarkupFault(page) : "", "");
    };
    for (std::size_t at = 0; at < capture.size(); ++at) {
        report(capture.substr(0, at));
        std::string changed = capture;
        for (const int value : {0x00, 0x01, 0x7F, 0x80, 0xFF, int{'<'}, int{'&'}, capture[at] + 1}) {
            changed[at] = static_cast<char>(value);
            report(changed);
        }
    }
    EXPECT_EQ(whole(), good);
}

}  // namespace

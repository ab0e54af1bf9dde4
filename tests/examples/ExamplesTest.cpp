#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "inspect/Packets.h"
#include "support/Gzip.h"
#include "support/Places.h"
#include "support/Programs.h"

// The examples as their users run them, and the documents that quote them.

namespace {

/// What an example prints, and its status when that is not 0.
std::string Output(const std::string& example)
{
    const SEnded ended = Shell("cd '" + DataFile() + "' && VYR_LOG=silent exec " + k_emulator + " '" +
                               BuiltFile("examples/example-'") + example);
    return ended.out + (ended.status != 0 ? "status " + std::to_string(ended.status) + '\n' : "");
}

/// Whether the parts of a quotation, which lines of dots divide, are whole lines of the text, in that order.
bool IsFrom(const std::string& quotation, const std::string& text)
{
    const std::string dots = "// \u2026\n";
    std::size_t found = 0;
    for (std::size_t at = 0; at < quotation.size();) {
        const std::size_t next = std::min(quotation.find(dots, at), quotation.size());
        const std::string part = '\n' + quotation.substr(at, next - at);
        found = text.find(part, found);
        if (part.size() == 1 || found == std::string::npos) {
            return false;
        }
        found += part.size() - 1;
        at = next + dots.size();
    }
    return true;
}

}  // namespace

TEST(Examples, PrintWhatIsRecorded)
{
    const std::string package = "route/gpac-a2-multi-service-239.255.7.1-30100-sls2.mime";
    const auto data = [](const std::string& name) { return ReadFile(DataFile(name)); };
    const CTemporary gzip(Gzip(data("route/gpac-a2-multi-service-239.255.7.1-30101-sls3.mime")));
    const CTemporary broken(std::regex_replace(data(package), std::regex("</Period>"), ""));
    // Two groups by turns, the first one's list a second time, and packets that are not whole, or not for it.
    const std::string first = data("made/services-1.slt");
    const std::string second = data("made/services-2.slt");
    std::string other = first;
    other[1] = 2;
    packets::SIpv4 piece;
    piece.flagsAndOffset = 0x2000;
    packets::SIpv4 withOptions;
    withOptions.options = std::string(4, '\1');
    const CTemporary capture(packets::CCapture(1)
                                 .AddLls(first)
                                 .AddLls(other)
                                 .AddLls(first)
                                 .Add(packets::Ethernet(packets::Ipv4(packets::Udp(second), piece)))
                                 .Add(packets::Ethernet(packets::Ipv4(packets::Udp(second))).substr(0, 60))
                                 .Add(packets::Ethernet(packets::Ipv4(packets::Udp(second, 4938))))
                                 .AddLls(data("made/services-cut.slt"))
                                 .Add(packets::Ethernet(packets::Ipv4(packets::Udp(second), withOptions)))
                                 .Bytes());
    const struct {
        const char* name;  ///< of the record
        std::string command;
    } cases[] = {
        {"services", "services < lls/lineup-bsid2090-slt.bin"},
        {"monitor", "monitor made/services-1.slt made/services-1.slt made/services-2.slt made/services-cut.slt"},
        {"monitor-stations", "monitor lls/gpac-a2-multi-service-slt.bin lls/lineup-bsid2090-slt.bin"},
        {"alerts",
         "alerts made/alerts-1.aeat made/alerts-1.aeat made/alerts-2.aeat made/services-1.slt "
         "made/alerts-3.aeat"},
        {"guide", "guide 2026-12-27 -5 made/guide-1.sgdu made/guide-2.sgdu made/service.xml"},
        {"guide-next-day", "guide 2026-12-28 -5 made/guide-1.sgdu"},
        {"package", "package made/package-2004.pa made/package-2004-more.mpt made/package-cut.pa made/service.xml"},
#ifdef VYR_EXAMPLE_RECEIVER
        {"receiver", "receiver pcap/gpac-a2-multi-service.pcap 239.255.7.1:30100=" + package +
                         " 239.255.7.1:30101=" + gzip.Name() + " 239.255.7.1:30100=" + broken.Name() +
                         " 239.255.7.1:30102=route/gpac-a1-single-service-sls3-usbd.xml" +
                         " 239.255.7.1:30102=mpd/eyevinn-thumbnails.mpd"},
        {"receiver-versions", "receiver " + capture.Name()},
        {"receiver-no-capture", "receiver made/service.xml"},
#endif
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.command);
        const std::string record = DataFile(std::string("examples/") + test.name + ".txt");
        const std::string out = Output(test.command);
        if (std::getenv("VYR_RECORD") != nullptr) {
            std::ofstream(record, std::ios::binary) << out;
        }
        EXPECT_EQ(out, ReadFile(record)) << "VYR_RECORD=1 makes it anew";
    }
}

TEST(Examples, AreQuotedAsTheyAre)
{
    std::vector<std::string> examples;
    for (const auto& file : std::filesystem::directory_iterator(TreeFile("examples"))) {
        examples.push_back('\n' + ReadFile(file.path().string()));
    }
    const auto isQuotation = [&examples](const std::string& text) {
        return std::any_of(examples.begin(), examples.end(),
                           [&text](const std::string& example) { return IsFrom(text, example); });
    };
    const struct {
        const char* document;
        int quotations;  ///< at least
    } cases[] = {{"README.md", 1}, {"docs/using.md", 5}};
    for (const auto& test : cases) {
        const std::string text = ReadFile(TreeFile(test.document));
        const std::string begin = "\n```cpp\n";
        int quotations = 0;
        for (std::size_t at = 0; (at = text.find(begin, at)) != std::string::npos; ++quotations) {
            at += begin.size();
            const std::size_t end = text.find("```\n", at);
            const std::string quotation = text.substr(at, end - at);
            EXPECT_TRUE(isQuotation(quotation)) << test.document << ":\n" << quotation;
            at = end;
        }
        EXPECT_GE(quotations, test.quotations) << test.document;
    }
    EXPECT_TRUE(isQuotation("    CParseSLT slt;\n// \u2026\n    return 0;\n}\n"));
    EXPECT_FALSE(isQuotation("    return 0;\n}\n// \u2026\n    CParseSLT slt;\n")) << "the other way round";
    EXPECT_FALSE(isQuotation("CParseSLT slt;\n")) << "no whole line";
}

TEST(Documents, UsingKnowsEveryHeader)
{
    const std::string guide = ReadFile(TreeFile("docs/using.md"));
    int headers = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(TreeFile("inc"))) {
        if (entry.path().extension() == ".h") {
            ++headers;
            const std::string name = entry.path().lexically_relative(TreeFile("inc")).generic_string();
            EXPECT_NE(guide.find('`' + name + '`'), std::string::npos) << name;
        }
    }
    EXPECT_GE(headers, 100);
}

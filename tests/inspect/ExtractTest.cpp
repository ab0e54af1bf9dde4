#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <set>

#include "GuideObjects.h"
#include "MmtCaptures.h"
#include "RouteBroadcast.h"
#include "Signing.h"
#include "extract/Folder.h"
#include "support/Gzip.h"
#include "support/Places.h"

namespace {

using namespace packets;
using nlohmann::json;
namespace fs = std::filesystem;

/// A folder of the test's own, gone with it; the tool writes to `out` in it.
class CRoom : public CTemporaryFolder {
  public:
    std::string Out() const { return Of("out"); }
    std::vector<json> Index() const { return Lines(ReadFile(Out() + "/index.jsonl"), "extracted"); }
    /// Files below `out`, the index aside, with their sizes.
    std::map<std::string, std::uint64_t> Files() const
    {
        std::map<std::string, std::uint64_t> files;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(Out())) {
            if (entry.is_regular_file() && entry.path().filename() != "index.jsonl") {
                files[fs::relative(entry.path(), Out())] = entry.file_size();
            }
        }
        return files;
    }
    /// The index has a line for each file, and no other; returns the bytes of all.
    std::uint64_t ExpectWhole() const
    {
        std::map<std::string, std::uint64_t> told;
        std::uint64_t bytes = fs::file_size(Out() + "/index.jsonl");
        for (const json& line : Index()) {
            EXPECT_TRUE(told.emplace(line["path"], line["bytes"]).second) << line;
            bytes += line["bytes"].get<std::uint64_t>();
        }
        EXPECT_EQ(told, Files());
        return bytes;
    }
};

/// What is not of the content of a record: where it came, and what only a stream of records tells.
json Content(json record, bool inflated)
{
    for (const char* place :
         {"source", "stream", "session", "serviceIds", "TSI", "TOI", "packet_id", "Content-Location", "status",
          "intervalSeconds", "insideSignedMultiTable", "since", "changes", "servicesUnchanged", "servicesRemoved"}) {
        record.erase(place);
        for (std::size_t i = 0; record.contains("documents") && i < record["documents"].size(); ++i) {
            record["documents"][i].erase(place);
        }
    }
    if (inflated) {
        record.erase("size");
        record.erase("gzip");
    }
    return record;
}

bool IsOf(const json& record, const json& line)
{
    for (const char* key : {"type", "stream", "session", "LLS_table_id", "LLS_group_id", "LLS_table_version", "TSI",
                            "TOI", "packet_id", "message_id", "version", "insideSignedMultiTable", "name"}) {
        if (line.contains(key) != record.contains(key) || (line.contains(key) && line[key] != record[key])) {
            return false;
        }
    }
    return line["source"] == record["source"];
}

/// The records that the line of the index is of, and of a service list its services; without their places.
std::vector<json> Told(const std::vector<json>& report, const std::function<bool(const json&)>& is, bool inflated)
{
    std::vector<json> found;
    for (auto at = report.begin(); at != report.end(); ++at) {
        if ((*at)["type"] != "service" && is(*at)) {
            json all = json::array({Content(*at, inflated)});
            for (auto service = at + 1; service != report.end() && (*service)["type"] == "service"; ++service) {
                all.push_back(Content(*service, inflated));
            }
            found.push_back(all);
        }
    }
    return found;
}

/// What a part says, of a record of its own or of that of the whole.
json PartOf(const json& record, const json& line)
{
    if (line["type"] == "signalling") {
        const std::string name = line["readAs"][0];
        return record.contains(name) ? record[name] : json();
    }
    if (record.contains("SGDU")) {
        for (const json& fragment : record["SGDU"]["fragments"]) {
            if (fragment["fragmentTransportID"] == line["fragmentTransportID"]) {
                return fragment["parsed"] ? fragment[fragment["fragmentTypeName"].get<std::string>()] : json();
            }
        }
    }
    const json fragment = record.value("fragment", json::object());
    return fragment.value(fragment.value("fragmentTypeName", ""), json());
}

std::string GuideCapture()
{
    const std::string unit = guide::WholeUnit();
    const std::string stsid =
        "<S-TSID><RS><LS tsi='20'><SrcFlow><EFDT><FDT-Instance><File TOI='1' Content-Location='../g.sgdu'/>"
        "</FDT-Instance></EFDT></SrcFlow></LS></RS></S-TSID>\n";
    CCapture capture(1);
    capture.AddLls(
        Slt("<Service serviceId='9' serviceCategory='4'><BroadcastSvcSignaling slsProtocol='1' "
            "slsDestinationIpAddress='239.255.7.1' slsDestinationUdpPort='6004'/></Service>",
            1));
    capture.AddSession(Lct({1, 0, -1, true}, stsid), 6004);
    for (const std::string& object : {unit, guide::Fragment("Service", "s9", 1),
                                      "Content-Type: x\r\n\r\n" + Gzip(guide::Fragment("Content", "c9", 1))}) {
        static unsigned toi = 0;
        capture.AddSession(Lct({++toi, 0, -1, true, 20}, object), 6004);
    }
    return capture.Bytes();
}

TEST(Extract, WhatIsWrittenSaysTheSame)
{
    std::map<std::string, std::string> samples = {
        {"messages", EveryMessage()}, {"guide", GuideCapture()}, {"made", SBroadcast().Bytes()}};
    for (const fs::directory_entry& entry : fs::directory_iterator(DataFile("pcap"))) {
        samples[entry.path().filename()] = ReadFile(entry.path());
    }
    std::map<std::string, int> same;
    for (const auto& [name, bytes] : samples) {
        SCOPED_TRACE(name);
        const CRoom room;
        const std::string arguments = "--json --full --no-limit --route 239.255.9.1:9000 ";
        const SResult result = Inspect(arguments + "--files --extract " + room.Out() + " -", bytes);
        EXPECT_TRUE(result.out == Inspect(arguments + '-', bytes).out) << "the report is the same";
        room.ExpectWhole();
        const std::vector<json> report = Lines(result.out);
        const std::vector<json> index = room.Index();
        std::string inputs;
        for (const json& line : index) {
            inputs += " '" + room.Out() + '/' + line["path"].get<std::string>() + '\'';
        }
        const std::vector<json> alone = Lines(Inspect("--json --full --no-limit" + inputs).out);
        for (const json& line : index) {
            const std::string path = room.Out() + '/' + line["path"].get<std::string>();
            const std::string form = line["form"];
            const auto ofCapture = [&](const json& record) { return IsOf(record, line); };
            const auto ofFile = [&](const json& record) {
                return record["type"] == line["type"] && record["source"]["file"] == path;
            };
            const bool part = form == "part";
            const bool read =
                part ? line.value("fragmentType", 4) < 4 ||
                           (line.contains("readAs") && line["readAs"][0] != "metadataEnvelope" &&
                            line["readAs"][0] != "signature")
                     : form == "sent" || (form == "inflated" && line["type"] != "table" && line["type"] != "message");
            const bool unknown = line["type"] == "message" && !line.contains("message_idName");
            if (!read || unknown || line["type"] == "file") {
                continue;
            }
            std::vector<json> there = Told(report, ofCapture, form == "inflated");
            std::vector<json> here = Told(alone, ofFile, form == "inflated");
            ASSERT_EQ(here.size(), 1u) << line;
            if (part) {
                here[0] = PartOf(here[0][0], line);
                for (json& record : there) {
                    record = PartOf(record[0], line);
                }
            }
            // What is broken in a unit may be something else alone.
            const bool broken = part && there == std::vector<json>{json()};
            EXPECT_TRUE(broken || std::find(there.begin(), there.end(), here[0]) != there.end())
                << line << '\n'
                << (there.empty() ? here[0] : json::diff(there[0], here[0]));
            ++same[line["type"].get<std::string>() + ' ' + form];
        }
    }
    for (const char* kind : {"table sent", "signalling sent", "signalling inflated", "signalling part", "message sent",
                             "guideObject sent", "guideObject inflated", "guideObject part"}) {
        EXPECT_GE(same[kind], 1) << kind;
    }
}

TEST(Extract, FilesThatAreTooLargeAreTold)
{
    for (const int more : {0, 1}) {
        CRoom room;
        SBroadcast broadcast;
        broadcast.Edit("</RS>", "<LS tsi='30'><SrcFlow rt='false'/></LS></RS>");
        broadcast.more = [more](unsigned, CCapture& capture) {
            capture.AddSession(Lct({1, 0, 8388608 + more, false, 30}, "x"), 7001);
        };
        const SResult result = Inspect("--json --files --extract '" + room.Out() + "' -", broadcast.Bytes());
        EXPECT_EQ(Lines(result.out).back()["findings"].value("extract-limit", 0), more) << result.out;
    }
}

TEST(Extract, Certificates)
{
    const std::string der = CSigner("one", 1800000000, 1900000000).Der();
    std::string base64(der.size() * 2, '\0');
    base64.resize(static_cast<std::size_t>(EVP_EncodeBlock(reinterpret_cast<unsigned char*>(base64.data()),
                                                           reinterpret_cast<const unsigned char*>(der.data()),
                                                           static_cast<int>(der.size()))));
    const CRoom room;
    Inspect("--extract " + room.Out() + " -",
            Number(0x06000001, 4) + "<CertificationData><ToBeSignedData><Certificates>!</Certificates><Certificates>" +
                base64 + "</Certificates></ToBeSignedData></CertificationData>");
    room.ExpectWhole();
    const std::vector<json> index = room.Index();
    ASSERT_EQ(index.size(), 3u);
    EXPECT_EQ(index[2]["form"], "certificate");
    EXPECT_NE(index[2]["path"].get<std::string>().find("-certificate1.der"), std::string::npos);
    EXPECT_EQ(ReadFile(room.Out() + '/' + index[2]["path"].get<std::string>()), der);
}

/// Files of a broadcast with one LCT session that is not streaming, by their names.
std::map<std::string, std::set<std::string>> FilesOf(SBroadcast& broadcast, const std::string& arguments = "--files")
{
    const CRoom room;
    Inspect(arguments + " --extract " + room.Out() + " -", broadcast.Bytes());
    room.ExpectWhole();
    std::map<std::string, std::set<std::string>> files;
    for (const json& line : room.Index()) {
        if (line["type"] == "file") {
            const std::string name =
                line.value("Content-Location", "TSI " + line["TSI"].dump() + " TOI " + line["TOI"].dump());
            files[name].insert(line["form"].get<std::string>() + ' ' +
                               ReadFile(room.Out() + '/' + line["path"].get<std::string>()));
        }
    }
    return files;
}

TEST(Extract, Files)
{
    const std::string lct = "tsi='10' bw='10'><SrcFlow rt='";
    const std::string init = "sent " + std::string(40, 'i');
    const std::string media = "sent " + std::string(800, 'm');
    using TFiles = std::map<std::string, std::set<std::string>>;
    const struct {
        const char* what;
        std::function<void(SBroadcast&)> change;
        TFiles files;
    } cases[] = {
        {"streaming", [](SBroadcast&) {}, {}},
        {"by template and by name, rounds aside",
         Edits({{lct + "true'", lct + "false'"}}),
         {{"video-init.mp4", {init}}, {"video-1.m4s", {media}}, {"video-2.m4s", {media}}}},
        {"without rt",
         Edits({{lct + "true'", "tsi='10' bw='10'><SrcFlow"}, {"video-$TOI$", "v/$TOI%03d$"}}),
         {{"video-init.mp4", {init}}, {"v/001.m4s", {media}}, {"v/002.m4s", {media}}}},
        {"without names, by TOI",
         All(Edits({{lct + "true'", lct + "0'"}, {"video-$TOI$.m4s", "video"}, {"TOI='99'", "TOI='98'"}})),
         {{"TSI 10 TOI 99", {init}}, {"TSI 10 TOI 1", {media}}, {"TSI 10 TOI 2", {media}}}},
        {"no flow of source data",
         Edits({{lct + "true'", "tsi='10' bw='10'><RepairFlow/></LS><LS tsi='11'><SrcFlow rt='"}}),
         {}},
        {"not whole",
         All(Edits({{lct + "true'", lct + "false'"}}),
             Keep([](const SBroadcast::SPart& part) { return part.toi != 2 || part.part != 3; })),
         {{"video-init.mp4", {init}}, {"video-1.m4s", {media}}}},
        {"compressed",
         All(Edits({{lct + "true'", lct + "false'"}}),
             Keep([](const SBroadcast::SPart& part) { return part.tsi == 0; }), More([](unsigned, CCapture& capture) {
                 capture.AddSession(Lct({99, 0, -1, true, 10}, Gzip("text")), 7001);
                 capture.AddSession(Lct({5, 0, -1, true, 10}, "Content-Type: a\r\n\r\nbody"), 7001);
             })),
         {{"video-init.mp4", {"sent " + Gzip("text"), "inflated text"}},
          {"video-5.m4s", {"sent Content-Type: a\r\n\r\nbody", "inflated body"}}}},
    };
    for (const auto& test : cases) {
        SBroadcast broadcast;
        broadcast.seconds = 2;
        test.change(broadcast);
        EXPECT_EQ(FilesOf(broadcast), test.files) << test.what;
        EXPECT_EQ(FilesOf(broadcast, ""), TFiles()) << test.what;
    }
}

TEST(Extract, NamesOfTheBroadcastStandInTheIndexAlone)
{
    const std::string longest(5000, 'x');
    const std::vector<std::string> hostile = {
        "../../evil", "/evil", "..",    ".",   "evil/../../evil", "a\\b",        "\xC3\x28\xFF",
        "CON",        longest, "a%00b", "-rf", "\x1B[2J",         "index.jsonl", std::string("nul\0evil", 8)};
    CCapture capture(1);
    capture.AddLls(
        Slt("<Service serviceId='1' serviceCategory='1' majorChannelNo='5' minorChannelNo='1' "
            "shortServiceName='../evil'><BroadcastSvcSignaling "
            "slsProtocol='1' slsDestinationIpAddress='239.255.7.1' slsDestinationUdpPort='7001'/></Service>",
            1));
    std::string package;
    std::string files;
    for (std::size_t i = 0; i < hostile.size(); ++i) {
        package += "--x\r\nContent-Location: " + hostile[i] + "\r\nContent-Type: ../" + hostile[i] + "\r\n\r\n" +
                   std::to_string(i) + "\r\n";
    }
    for (const char* name : {"../../evil", "/evil", "a&#x202E;b"}) {
        files += "<File TOI='" + std::to_string(files.size()) + "' Content-Location='" + name + "'/>";
    }
    const std::string stsid = "<S-TSID><RS><LS tsi='10'><SrcFlow><EFDT><FDT-Instance fileTemplate='../$TOI$'>" + files +
                              "</FDT-Instance></EFDT></SrcFlow></LS></RS></S-TSID>";
    package = "Content-Type: multipart/related; boundary=\"x\"\r\n\r\n--x\r\nContent-Location: s\r\n\r\n" + stsid +
              "\r\n" + package + "--x--";
    capture.AddSession(Lct({1, 0, -1, true}, package), 7001);
    for (const unsigned toi : {0u, 7u, 0x7FFFFFFFu}) {
        capture.AddSession(Lct({toi, 0, -1, true, 10}, "file"), 7001);
    }
    const CRoom room;
    EXPECT_EQ(Inspect("--files --extract " + room.Out() + " -", capture.Bytes()).err, "");
    EXPECT_GT(room.ExpectWhole(), 0u);
    EXPECT_GE(room.Files().size(), hostile.size() + 5);
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(room.Name())) {
        const std::string path = fs::relative(entry.path(), room.Name());
        EXPECT_TRUE(std::regex_match(path, std::regex("out(/[a-z0-9][a-z0-9.-]{0,80}){0,2}"))) << path;
    }
    const std::string index = ReadFile(room.Out() + "/index.jsonl");
    EXPECT_NE(index.find("\"Content-Location\":\"../../evil\""), std::string::npos);
    EXPECT_EQ(index.find('\x1B'), std::string::npos);
    EXPECT_EQ(index.find("\xC3\x28"), std::string::npos);
}

TEST(Extract, TheFolder)
{
    const CRoom room;
    fs::create_directory(room.Name() + "/empty");
    fs::create_directory_symlink("empty", room.Name() + "/link");
    fs::create_directory_symlink("nowhere", room.Name() + "/dangling");
    std::ofstream(room.Name() + "/file") << "mine";
    fs::create_directory(room.Name() + "/full");
    std::ofstream(room.Name() + "/full/.hidden") << "mine";
    const struct {
        const char* name;
        std::string error;
    } cases[] = {{"new", ""},
                 {"new", "Directory not empty"},
                 {"link", ""},
                 {"empty", "Directory not empty"},
                 {"file", "Not a directory"},
                 {"full", "Directory not empty"},
                 {"none/new", "No such file or directory"},
                 {"dangling", "No such file or directory"}};
    for (const auto& test : cases) {
        const std::string folder = room.Name() + '/' + test.name;
        const SResult result = Inspect("--extract " + folder + ' ' + k_lineup);
        EXPECT_EQ(result.status, test.error.empty() ? 0 : 2) << test.name;
        EXPECT_EQ(result.err, test.error.empty() ? "" : "vyr-atsc30-inspect: " + folder + ": " + test.error + '\n')
            << test.name;
        EXPECT_EQ(result.out.empty(), !test.error.empty()) << test.name;
    }
    EXPECT_TRUE(fs::exists(room.Name() + "/empty/lls")) << "a raw file has no session";
    EXPECT_EQ(ReadFile(room.Name() + "/file"), "mine");
    for (const char* usage :
         {"--files", "--extract-limit 5", "--extract x --extract-limit 5q", "--extract x --extract-limit -1"}) {
        EXPECT_EQ(Inspect(usage + (' ' + k_lineup)).status, 2) << usage;
    }
    EXPECT_FALSE(fs::exists(DataFile("x")));
}

TEST(Extract, NeverThroughALinkNorOverAFile)
{
    const vyr::inspect::SView bytes = {reinterpret_cast<const unsigned char*>("bytes"), 5};
    const struct {
        const char* what;
        std::function<void(const std::string& out)> plant;
        int error;
    } cases[] = {
        {"nothing", [](const std::string&) {}, 0},
        {"a link for a folder",
         [](const std::string& out) { fs::create_directory_symlink("../other", out + "/folder"); }, EEXIST},
        {"a link for a folder of ours",
         [](const std::string& out) {
             fs::rename(out + "/first", out + "/moved");
             fs::create_directory_symlink("../other", out + "/first");
         },
         ENOTDIR},
        {"a link for a file",
         [](const std::string& out) { fs::create_symlink("../../other/file", out + "/first/name"); }, EEXIST},
        {"a file", [](const std::string& out) { std::ofstream(out + "/first/name") << "mine"; }, EEXIST},
    };
    for (const auto& test : cases) {
        const CRoom room;
        fs::create_directory(room.Name() + "/other");
        vyr::inspect::CFolder folder(room.Out());
        ASSERT_TRUE(folder.Write("first", "a", {bytes}, "1\n"));
        ASSERT_TRUE(folder.Write("second", "a", {bytes, bytes}, "2\n"));
        test.plant(room.Out());
        const bool written = folder.Write("first", "name", {bytes}, "3\n") && folder.Write("folder", "a", {}, "4\n");
        EXPECT_EQ(written, test.error == 0) << test.what;
        EXPECT_EQ(folder.Error(), test.error) << test.what;
        EXPECT_TRUE(fs::is_empty(room.Name() + "/other")) << test.what;
        EXPECT_EQ(ReadFile(room.Out() + "/second/a"), "bytesbytes");
        EXPECT_EQ(folder.Write("third", "a", {bytes}, "5\n"), test.error == 0) << "nothing behind a failure";
        const std::string index = ReadFile(room.Out() + "/index.jsonl");
        EXPECT_EQ(index.compare(0, 4, "1\n2\n"), 0);
        EXPECT_EQ(index.find('5') != std::string::npos, test.error == 0);
    }
}

TEST(Extract, TheLimit)
{
    const std::string capture = " pcap/gpac-a2-multi-service.pcap";
    const CRoom whole;
    const int status = Inspect("--extract " + whole.Out() + capture).status;
    const std::uint64_t all = whole.ExpectWhole();
    const CRoom unread;
    EXPECT_EQ(Inspect("--extract " + unread.Out() + capture + " > /dev/full").status, 2);
    EXPECT_EQ(unread.ExpectWhole(), all) << "though nobody reads the report";
    const struct {
        std::string limit;
        int findings;
    } cases[] = {{std::to_string(all), 0}, {std::to_string(all - 1), 1}, {"8k", 1}, {"0", 1}, {"1M", 0}};
    for (const auto& test : cases) {
        const CRoom room;
        const SResult result = Inspect("--json --extract " + room.Out() + " --extract-limit " + test.limit + capture);
        EXPECT_EQ(result.status, status) << "it is no error of the broadcast";
        EXPECT_EQ(Lines(result.out).back()["findings"].value("extract-limit", 0), test.findings) << test.limit;
        const std::uint64_t bytes = room.ExpectWhole();
        EXPECT_EQ(bytes == all, test.findings == 0) << test.limit;
        EXPECT_LE(bytes, test.limit == "8k" ? 8192 : all);
        EXPECT_EQ(bytes == 0, test.limit == "0");
    }
}

TEST(Extract, AFailureToWriteLeavesNothingInHalf)
{
    std::set<std::size_t> counts;
    for (int blocks = 0; blocks < 12; ++blocks) {
        const CRoom room;
        const std::string tool = Command("--quiet --extract " + room.Out() + " pcap/gpac-a2-multi-service.pcap");
        const std::string err = room.Name() + "/err";
        const std::string command =
            "{ sh -c \"ulimit -f " + std::to_string(blocks) + "; exec 2>&1; " + tool + "\" | cat; } > '" + err + "'";
        EXPECT_NE(std::system(command.c_str()), -1);
        room.ExpectWhole();
        counts.insert(room.Files().size());
        const std::string last = ReadFile(err);
        EXPECT_NE(last.find("vyr-atsc30-inspect: " + room.Out() + ": File too large\n"), std::string::npos) << last;
        const int status =
            std::system(("sh -c \"ulimit -f " + std::to_string(blocks) + "; " +
                         Command("--quiet --extract " + room.Name() + "/again pcap/gpac-a2-multi-service.pcap") +
                         "\" > /dev/null 2>&1")
                            .c_str());
        EXPECT_EQ(WEXITSTATUS(status), 2) << blocks;
    }
    EXPECT_GT(counts.size(), 3u) << "some come to the index, some to a file";
}

}  // namespace

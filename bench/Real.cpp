// What other people's programs wrote, every file of tests/data: tables, manifests, packages of service layer
// signalling and the documents in them. Main.cpp tells the median and the worst ratio of each kind.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <vector>

#include "Bench.h"
#include "lls/ParseCDT.h"
#include "lls/ParseSystemTime.h"
#include "route/SLS/MPD.h"
#include "route/SLS/ROUTEUsbd.h"
#include "route/SLS/STSID.h"
#include "route/SLSManager.h"
#include "support/Places.h"

namespace {

struct SFile {
    std::string name, bytes;
};

/// The files of a folder whose names end so, by name. The list with a zlib header is none for a receiver.
std::vector<SFile> Files(const std::string& folder, const std::string& end)
{
    std::vector<SFile> files;
    for (const auto& entry : std::filesystem::directory_iterator(DataFile(folder))) {
        const std::string name = entry.path().filename().string();
        if (name != "recompressed-pigz-zlib-slt.bin" && name.size() > end.size() &&
            name.compare(name.size() - end.size(), end.size(), end) == 0) {
            std::ifstream file(entry.path(), std::ios::binary);
            files.push_back({name, {std::istreambuf_iterator<char>(file), {}}});
        }
    }
    std::sort(files.begin(), files.end(), [](const SFile& a, const SFile& b) { return a.name < b.name; });
    return files;
}

using TRun = void (*)(const std::string&);

void RegisterReal(const std::string& kind, const SFile& file, TRun floor, TRun parse)
{
    Register("real-" + kind + "/floor/" + file.name, floor, file.bytes, k_realTime);
    Register("real-" + kind + "/parse/" + file.name, parse, file.bytes, k_realTime);
}

void RegisterFiles(const std::string& kind, const std::vector<SFile>& files, TRun floor, TRun parse)
{
    for (const SFile& file : files) {
        RegisterReal(kind, file, floor, parse);
    }
}

void ParseTime(const std::string& table)
{
    CParseSystemTime parser;
    parser.Create(1);
    Feed(parser, table);
}

void ParseCdt(const std::string& table)
{
    CParseCDT parser;
    parser.Create();
    Feed(parser, table);
}

/// The documents of a package that the library parses, as they lie between its boundaries.
std::vector<std::string> Documents(const std::string& package)
{
    std::vector<std::string> documents;
    std::size_t begin = 0;
    while ((begin = package.find("<?xml", begin)) != std::string::npos) {
        const std::size_t end = package.find("\n--", begin);
        const std::string document = package.substr(begin, package.find_last_of('>', end) + 1 - begin);
        for (const char* root : {"<BundleDescriptionROUTE", "<S-TSID", "<MPD"}) {
            if (document.find(root) != std::string::npos) {
                documents.push_back(document);
            }
        }
        begin = end;
    }
    return documents;
}

/// The package on a manager that is kept, as a receiver keeps it.
void RegisterPackage(const SFile& file)
{
    const std::string name = "real-sls/parse/" + file.name;
    Register(
        "real-sls/floor/" + file.name,
        [](const std::string& package) {
            static std::string known;
            static std::vector<std::string> documents;
            if (known != package) {
                known = package;
                documents = Documents(package);
            }
            for (const std::string& document : documents) {
                FloorDocument(document);
            }
        },
        file.bytes, k_realTime);
    Register(
        name,
        [](const std::string& package) {
            static CSLSManager* manager = [] {
                static CSLSManager made;
                made.Create(nullptr);
                return &made;
            }();
            manager->Parse(reinterpret_cast<const unsigned char*>(package.data()),
                           static_cast<unsigned int>(package.size()), nullptr, false);
        },
        file.bytes, k_realTime);
}

const bool g_registered = [] {
    RegisterFiles("slt", Files("lls", "-slt.bin"), Floor, ParseSlt);
    RegisterFiles("systemtime", Files("lls", "-systemtime.bin"), Floor, ParseTime);
    RegisterFiles("cdt", Files("lls", "-cdt.bin"), Floor, ParseCdt);
    RegisterFiles("mpd", Files("mpd", ".mpd"), FloorDocument, ParseDocument<CMPD>);
    std::set<std::string> known;
    for (const SFile& package : Files("route", ".mime")) {
        RegisterPackage(package);
        for (const std::string& document : Documents(package.bytes)) {
            if (!known.insert(document).second) {
                continue;
            }
            if (document.find("<S-TSID") != std::string::npos) {
                RegisterReal("stsid", {package.name, document}, FloorDocument, ParseDocument<CSTSID>);
            } else if (document.find("<BundleDescriptionROUTE") != std::string::npos) {
                RegisterReal("usbd", {package.name, document}, FloorDocument, ParseDocument<CROUTEUsbd>);
            }
        }
    }
    return true;
}();

}  // namespace
